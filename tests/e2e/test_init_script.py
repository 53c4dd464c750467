"""The init scripts for machines without systemd: the plain one with the programs of Debian and of busybox, the one for
OpenWrt with functions that write down what it asks of procd."""

import os
import pathlib
import re
import shlex
import shutil
import signal
import subprocess

import pytest

from support import paths, processes
from support.waiting import wait_until

INIT = (paths.BUILD / "deploy" / "kestal.init").read_text()
PROCD = (paths.BUILD / "deploy" / "kestal.procd").read_text()
# Process 1 of a machine: like init, it waits for processes whose parents have ended.
MACHINE = ["unshare", "--mount", "--pid", "--fork", "--kill-child", "--mount-proc", "sh", "-c", "while :; do sleep 1; done"]


def may_have_processes():
    """Whether this user may make a namespace of processes; in a container, even root often may not."""
    return subprocess.run([*MACHINE[:6], "true"], capture_output=True).returncode == 0


only_root = pytest.mark.skipif(not may_have_processes(), reason="only root can have processes apart, and not everywhere")


def replaced(text, **values):
    """The script with other values of its variables."""
    for name, value in values.items():
        text, count = re.subn(rf"(?m)^{name}=.*$", f"{name}={value}", text)
        assert count == 1, name
    return text


class Machine:
    """A machine that starts the service by the init script, as the user nobody, from copies of the installed files."""

    def __init__(self, server, work, programs):
        work.chmod(0o755)
        self.work, self.server = work, server
        self.run = work / "run"
        self.pidfile = work / "kestal.pid"
        installed = work / "installed"
        installed.mkdir()
        shutil.copy(paths.LAUNCHER, installed)
        shutil.copy(paths.SERVICE, installed)
        shutil.copy(paths.ROOT / "deploy" / "lighttpd.conf", installed)
        shutil.copytree(paths.CATALOGUE, work / "texts", ignore=shutil.ignore_patterns("CMakeFiles"))
        tools = work / "tools"
        tools.mkdir()
        if programs == "busybox":
            listed = subprocess.run(["busybox", "--list"], check=True, capture_output=True, text=True, timeout=60)
            for name in listed.stdout.split():
                (tools / name).symlink_to("/usr/bin/busybox")
            (tools / "logger").unlink()
        self.messages = work / "system.messages"
        (tools / "logger").write_text(f'#!/bin/sh\necho "$@" >> {self.messages}\nexec cat >> {self.messages}\n')
        (tools / "logger").chmod(0o755)
        self.shell = tools / "sh" if programs == "busybox" else pathlib.Path("/bin/sh")
        self.settings = installed / "environment"
        self.set(KESTAL_PORT=server.port, KESTAL_DEVICE=server.device.path, KESTAL_LOCALEDIR=f'"{work}/texts"')
        server.device.path.chmod(0o666)
        self.script = work / "kestal"
        self.script.write_text(
            replaced(INIT, PATH=f"{tools}:{paths.CLEAN_ENVIRONMENT['PATH']}", user="nobody", settings=installed,
                     launcher=installed / "kestal-server", run=self.run, state=work / "state", pidfile=self.pidfile,
                     patience=50)
        )
        self.process = subprocess.Popen(MACHINE, env=paths.CLEAN_ENVIRONMENT)
        self.first = wait_until(lambda: processes.children(self.process.pid), "the machine has started")[0]

    def set(self, **values):
        with open(self.settings, "a") as file:
            file.writelines(f"{name}={value}\n" for name, value in values.items())

    def order(self, command, *before):
        inside = ["nsenter", "--mount", "--pid", "--root", "--wd", "--target", str(self.first)]
        return [*inside, *before, str(self.shell), str(self.script), command]

    def call(self, command, expected=0):
        """What the script prints; it must end with the expected status."""
        environment = {**paths.CLEAN_ENVIRONMENT, "KESTAL_TIMEOUT": "of the caller"}
        done = subprocess.run(self.order(command), env=environment, capture_output=True, text=True, timeout=60)
        assert done.returncode == expected, done.stdout + done.stderr + self.printed()
        return re.sub(r"process \d+", "process N", done.stdout + done.stderr)

    def printed(self):
        return self.messages.read_text() if self.messages.exists() else ""

    def serves(self):
        try:
            return self.server.ask("/srv/status").status == 200
        except OSError:
            return False

    def named(self, name):
        """The machine's running processes of a name."""
        own = os.readlink(f"/proc/{self.first}/ns/pid")
        found = []
        for entry in pathlib.Path("/proc").iterdir():
            try:
                if entry.name.isdigit() and os.readlink(entry / "ns" / "pid") == own:
                    found += [int(entry.name)] * (processes.field(entry.name, "Name") == name)
            except OSError:
                continue
        return [pid for pid in found if processes.is_alive(pid)]

    def web_server(self):
        """Its process id. For a moment, a process that it has forked has its name, too."""
        return wait_until(lambda: len(found := self.named("lighttpd")) == 1 and found, "there is one web server")[0]

    def keeper(self):
        """Its process id; None while it is about to write its file."""
        inside = self.pidfile.read_text().strip()
        shells = self.named("sh")
        return next((pid for pid in shells if (processes.field(pid, "NSpid") or "0").split()[-1] == inside), None)

    def kill(self, pid):
        os.kill(pid, signal.SIGKILL)
        wait_until(lambda: not processes.is_alive(pid), "it has ended")

    def close(self):
        self.process.kill()
        self.process.wait()


@pytest.fixture(params=["debian", "busybox"])
def machine(request, make_server, work):
    if request.param == "busybox" and not shutil.which("busybox"):
        pytest.skip("busybox is missing")
    made = Machine(make_server(), work, request.param)
    yield made
    made.close()


@only_root
def test_the_service_is_started_and_stopped(machine):
    assert machine.call("status", 3) == "kestal: is stopped\n"
    assert machine.call("start") == ""
    assert machine.serves()
    assert machine.call("status") == "kestal: serves, process N\n"
    web_server = machine.web_server()
    assert processes.field(web_server, "Uid").split() == ["65534"] * 4
    assert processes.environment(web_server)["KESTAL_TIMEOUT"] == "10"
    assert machine.call("start") == "kestal: runs already, process N\n"
    assert machine.web_server() == web_server
    assert machine.call("restart") == ""
    assert machine.serves()
    assert machine.web_server() != web_server
    assert machine.call("stop") == ""
    assert not machine.named("lighttpd") and not machine.named("kestal.cgi")
    assert machine.call("status", 3) == "kestal: is stopped\n"
    assert machine.call("stop") == ""
    assert {path.name for path in machine.run.iterdir()} == {"kestal.cgi", "lock"}
    assert not list(machine.work.glob("kestal.pid*"))


@only_root
def test_a_web_server_that_is_killed_is_started_again(machine):
    machine.call("start")
    dead = machine.web_server()
    machine.kill(dead)
    wait_until(machine.serves, "it serves again")
    assert machine.web_server() != dead
    wait_until(lambda: len(machine.named("kestal.cgi")) == 1, "the service that was left behind has ended")
    assert machine.call("status") == "kestal: serves, process N\n"
    machine.call("stop")


@only_root
def test_two_starts_at_once_leave_nothing_that_cannot_be_stopped(machine):
    machine.call("start")
    first = machine.keeper()
    # What a second "start" does that has not seen the first one's keeper.
    second = subprocess.Popen(machine.order("keep", "setsid"), env=paths.CLEAN_ENVIRONMENT)
    wait_until(lambda: machine.keeper() not in (None, first), "the second keeper has told that it runs")
    machine.call("stop")
    wait_until(lambda: second.poll() is not None, "the second keeper has ended")
    wait_until(lambda: not processes.is_alive(first), "the first keeper has ended")
    assert not machine.named("lighttpd")


@only_root
def test_a_pid_file_that_is_left_over_misleads_nobody(machine):
    """Its number now is that of another process, which stays."""
    machine.call("start")
    machine.kill(machine.keeper())
    assert machine.call("status", 1) == "kestal: has ended, but was not stopped\n"
    # The web server runs on, without anybody who would start it again.
    orphan = machine.web_server()
    machine.pidfile.write_text("1\n")
    assert machine.call("status", 1) == "kestal: has ended, but was not stopped\n"
    assert machine.call("start") == ""
    assert machine.serves()
    assert machine.web_server() != orphan
    machine.call("stop")
    assert processes.is_alive(machine.first)


@only_root
def test_a_start_that_cannot_succeed_is_tried_again_until_it_can(machine):
    lines = machine.settings.read_text()
    machine.set(KESTAL_PORT="none")
    machine.script.write_text(replaced(machine.script.read_text(), patience=1))
    told = "kestal: does not serve yet, and is started again each second; see the system log\n"
    assert machine.call("start", 1) == told
    assert machine.call("status", 1).startswith("kestal: does not serve, and is started again each second")
    why = "-t kestal\nkestal-server: KESTAL_PORT is not a number: 'none'\n"
    wait_until(lambda: machine.printed().startswith(why), "the system log says why")
    machine.settings.write_text(lines)
    machine.script.write_text(replaced(machine.script.read_text(), patience=50))
    assert machine.call("restart") == ""
    assert machine.serves()
    machine.call("stop")


@only_root
def test_a_line_of_the_settings_is_never_run(machine, work):
    file = work / "state" / "made"
    machine.set(KESTAL_ORIGINS=f"'http://hotspot.example $(touch {file})'")
    machine.settings.write_text(machine.settings.read_text() + f"touch {file}\n# KESTAL_PORT=1\n\nKESTAL_X=1; touch {file}\n")
    machine.call("start")
    web_server = machine.web_server()
    assert processes.environment(web_server)["KESTAL_ORIGINS"] == f"http://hotspot.example $(touch {file})"
    assert not file.exists()
    machine.call("stop")


@pytest.mark.parametrize("arguments", [[], ["reload"], ["become"]])
def test_another_command_prints_the_usage(work, arguments):
    (work / "kestal").write_text(INIT)
    done = subprocess.run(
        ["/bin/sh", work / "kestal", *arguments], capture_output=True, text=True, timeout=20, env=paths.CLEAN_ENVIRONMENT
    )
    assert (done.returncode, done.stderr) == (2, f"usage: {work}/kestal start | stop | restart | status\n")


RECORD = """
procd_open_instance() { echo open; }
procd_close_instance() { echo close; }
procd_set_param() { printf '%s\\n' "set $*"; }
procd_append_param() { printf '%s\\n' "append $*"; }
chown() { echo "chown $*"; }
"""


def test_procd_is_asked_for_what_the_unit_asks_systemd_for(work):
    settings = work / "settings"
    settings.mkdir()
    (settings / "environment").write_text('# KESTAL_PORT=1\nKESTAL_PORT=80\nKESTAL_ORIGINS="http://a http://b"\necho no\n')
    script = work / "kestal"
    script.write_text(replaced(PROCD, settings=settings, run=work / "run", state=work / "state"))
    order = f"{RECORD}. {shlex.quote(str(script))}; start_service; echo $USE_PROCD"
    done = subprocess.run(["/bin/sh", "-euc", order], check=True, capture_output=True, text=True, timeout=20)
    unit = (paths.BUILD / "deploy" / "kestal.service").read_text()
    (launcher,) = re.findall(r"(?m)^ExecStart=(.*)$", unit)
    (delay,) = re.findall(r"(?m)^RestartSec=(\d+)$", unit)
    (stop,) = re.findall(r"(?m)^TimeoutStopSec=(\d+)$", unit)
    assert done.stdout.splitlines() == [
        f"chown kestal:kestal {work}/run",
        f"chown kestal:kestal {work}/state",
        "open",
        f"set command {launcher} start",
        "set user kestal",
        f"set env KESTAL_CONFIGURATION={settings}/lighttpd.conf KESTAL_RUN_DIRECTORY={work}/run"
        f" KESTAL_SOURCES={work}/run/sources STATE_DIRECTORY={work}/state",
        "append env KESTAL_PORT=80",
        "append env KESTAL_ORIGINS=http://a http://b",
        f"set respawn 3600 {delay} 0",
        f"set term_timeout {stop}",
        "set limits core=0",
        "set no_new_privs 1",
        "set stdout 1",
        "set stderr 1",
        f"set file {settings}/environment {settings}/lighttpd.conf",
        "close",
        "1",
    ]
    assert [oct((work / name).stat().st_mode & 0o777) for name in ("run", "state")] == ["0o700"] * 2
