"""The device in the emulator: started, asked through the guest agent of qemu, and cut from its power."""

import base64
import collections
import json
import os
import signal
import socket
import subprocess
import time

from support.waiting import wait_until

# Seconds. The emulator is slow, and the machine may do much else.
BOOT_DEADLINE = 300.0
COMMAND_DEADLINE = 120.0
# Between two questions, each of which costs the box some time.
PAUSE = 0.2
# Where the box has the project's files.
PROJECT = "/root/kestal"
DEVICE = f"{PROJECT}/tests/device"

Result = collections.namedtuple("Result", "status output errors")


class Agent:
    """The guest agent's protocol: JSON, a line each."""

    def __init__(self, path):
        self.socket = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        self.socket.connect(str(path))
        self.lines = self.socket.makefile("rb")

    def close(self):
        self.lines.close()
        self.socket.close()

    def call(self, name, deadline, **arguments):
        self.socket.settimeout(deadline)
        self.socket.sendall(json.dumps({"execute": name, "arguments": arguments}).encode() + b"\n")
        answer = json.loads(self._line())
        if "error" in answer:
            raise RuntimeError(f"{name}: {answer['error']['desc']}")
        return answer["return"]

    def synchronize(self, deadline):
        """Answers of an agent that has ended in the meantime must not be taken for its successor's."""
        number = time.monotonic_ns() % (1 << 31)
        self.socket.settimeout(deadline)
        question = {"execute": "guest-sync", "arguments": {"id": number}}
        self.socket.sendall(b"\xff" + json.dumps(question).encode() + b"\n")
        while json.loads(self._line()).get("return") != number:
            pass

    def _line(self):
        line = self.lines.readline()
        if not line:
            raise ConnectionError("the emulator has ended")
        return line.lstrip(b"\xff")


class Disk:
    """A copy of the box's disk, as the next start finds it: what is in its journal is in force; and the changes that
    the box had told."""

    def __init__(self, image, changes):
        self.image = image
        self.changes = changes
        result = subprocess.run(["e2fsck", "-fy", image], capture_output=True, text=True, timeout=COMMAND_DEADLINE)
        # 1 means that it has repaired what every cut leaves, such as files without a name.
        assert result.returncode in (0, 1), result

    def read(self, path):
        """The text of a file."""
        result = subprocess.run(["debugfs", "-R", f"cat {path}", self.image], check=True, capture_output=True,
                                text=True, timeout=COMMAND_DEADLINE)
        assert "not found" not in result.stderr, result
        return result.stdout


class Box:
    """`folder` has the kernel, the initial file system and the disk."""

    def __init__(self, folder, accelerator):
        self.folder = folder
        self.accelerator = accelerator
        self.console = folder / "console"
        # What the box has said at its port "changes".
        self.changes = folder / "changes"
        self.process = None
        self.agent = None

    def start(self):
        """Switches the box on, and waits until it can be asked. Its services may still be starting."""
        path = self.folder / "agent"
        path.unlink(missing_ok=True)
        command = [
            "qemu-system-x86_64", "-accel", self.accelerator, "-m", "1024", "-nodefaults", "-nographic",
            "-kernel", self.folder / "vmlinuz", "-initrd", self.folder / "initrd",
            # The kernel's question for the disks of the BIOS takes for ever in some emulators.
            "-append", "root=/dev/vda rw console=ttyS0 edd=off mitigations=off quiet systemd.show_status=false",
            "-drive", f"file={self.folder / 'disk'},format=raw,if=virtio",
            "-device", "virtio-serial", "-chardev", f"socket,id=agent,path={path},server=on,wait=off",
            "-device", "virtserialport,chardev=agent,name=org.qemu.guest_agent.0",
            "-chardev", f"file,id=changes,path={self.changes},append=on",
            "-device", "virtserialport,chardev=changes,name=changes",
            "-chardev", f"file,id=console,path={self.console},append=on", "-serial", "chardev:console",
            "-device", "virtio-rng",
        ]
        with (self.folder / "emulator").open("ab") as errors:
            # It ends with the tests, however they end.
            self.process = subprocess.Popen(["setpriv", "--pdeathsig", "KILL", "--", *map(str, command)],
                                            stdin=subprocess.DEVNULL, stdout=errors, stderr=errors)
        wait_until(path.exists, "the emulator has started", 30)
        self.connect()

    def connect(self):
        """Waits until the agent of a box that starts answers."""
        def answers():
            assert self.process.poll() is None, (self.folder / "emulator").read_text()
            self.forget_agent()
            # While nobody listens at the other end, a line is kept for whoever does later.
            agent = Agent(self.folder / "agent")
            try:
                agent.synchronize(10)
            except (TimeoutError, ValueError):
                agent.close()
                return False
            self.agent = agent
            return True

        wait_until(answers, "the box has started", BOOT_DEADLINE)

    def boot(self, deadline=COMMAND_DEADLINE):
        """The id of this run of the kernel."""
        return self.get("cat /proc/sys/kernel/random/boot_id", deadline)

    def wait_for_another_boot(self, before):
        def has_begun():
            self.connect()
            try:
                return self.boot(10) != before
            except TimeoutError:
                # It went down in the middle of the question.
                return False

        self.wait(has_begun, "the box has started again", BOOT_DEADLINE)

    def forget_agent(self):
        if self.agent:
            self.agent.close()
            self.agent = None

    def run(self, command, deadline=COMMAND_DEADLINE):
        """Runs a shell command as root on the box, and returns how it has ended."""
        pid = self.agent.call("guest-exec", deadline, path="/bin/sh", arg=["-c", command],
                              **{"capture-output": True})["pid"]
        state = {}

        def ended():
            nonlocal state
            state = self.agent.call("guest-exec-status", deadline, pid=pid)
            return state["exited"]

        self.wait(ended, f"the end of {command}", deadline)
        return Result(state.get("exitcode", -1), *(base64.b64decode(state.get(name, "")).decode(errors="replace")
                                                   for name in ("out-data", "err-data")))

    def get(self, command, deadline=COMMAND_DEADLINE):
        """What a command prints that must succeed."""
        result = self.run(command, deadline)
        assert result.status == 0, f"{command}: {result}"
        return result.output.strip()

    def write(self, path, text):
        """Writes a file on the box."""
        data = base64.b64encode(text.encode()).decode()
        self.get(f"mkdir -p \"$(dirname '{path}')\" && echo {data} | base64 -d > '{path}'")

    def property(self, name, unit="kestal"):
        return self.get(f"systemctl show -P {name} {unit}")

    def wait(self, condition, what, deadline=COMMAND_DEADLINE):
        """wait_until with questions that take the box some time."""
        return wait_until(lambda: condition() or time.sleep(PAUSE), what, deadline)

    def cut(self):
        """No power from one moment to the next: what the box has not written to its disk is lost."""
        self.forget_agent()
        self.process.send_signal(signal.SIGKILL)
        self.process.wait()

    def disk_after_a_cut(self):
        """The disk as a cut in this moment would leave it. The box goes on afterwards."""
        copy = self.folder / "disk.cut"
        self.process.send_signal(signal.SIGSTOP)
        try:
            os.waitpid(self.process.pid, os.WUNTRACED)
            subprocess.run(["cp", "--sparse=always", self.folder / "disk", copy], check=True)
            changes = self.changes.read_text()
        finally:
            self.process.send_signal(signal.SIGCONT)
        return Disk(copy, changes)

    def close(self):
        if self.process and self.process.poll() is None:
            self.cut()
