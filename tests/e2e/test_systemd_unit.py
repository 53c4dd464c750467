"""The restrictions in deploy/kestal.service leave launcher, web server and service enough rights, as far as
that can be tested without a running systemd."""

import os
import re
import shlex
import signal
import subprocess

import pytest

from support import paths, processes
from support.notifications import CHANNEL, notification
from support.waiting import DEADLINE, wait_until

UNIT = (paths.BUILD / "deploy" / "kestal.service").read_text()


DOCUMENT = (paths.ROOT / "docs" / "threat-model.md").read_text()


def section(name):
    """The settings of a section that have exactly one value."""
    _, _, rest = UNIT.partition(f"[{name}]\n")
    return dict(re.findall(r"(?m)^(\w+)=(.*)$", rest.partition("\n[")[0]))


def run(*command):
    done = subprocess.run(command, capture_output=True, text=True, timeout=60)
    assert done.returncode == 0, done.stderr
    return done.stdout + done.stderr


def system_calls(group):
    """All system calls in a group of systemd and in the groups that it contains."""
    names = set()
    for line in run("systemd-analyze", "syscall-filter", "--no-pager", group).splitlines()[1:]:
        name = line.strip()
        if name.startswith("@"):
            names |= system_calls(name)
        elif name and not name.startswith("#"):
            names.add(name)
    return names


def allowed():
    names = set()
    for line in re.findall(r"(?m)^SystemCallFilter=(.*)$", UNIT):
        listed = set().union(*map(system_calls, line.lstrip("~").split()))
        names = names - listed if line.startswith("~") else names | listed
    return names


def filtered(trace):
    """The beginning of a command line that runs a program under the filter and records the calls it refuses."""
    others = "!" + ",".join(f"?{name}" for name in sorted(allowed()))
    orders = ["-e", f"trace={others}", "-e", f"inject={others}:error=EPERM", "-e", "signal=none"]
    return ["strace", "-D", "-f", "-q", "-o", str(trace), *orders]


def start_wrapped(server, *wrapper):
    launcher = server.work / "launcher"
    launcher.write_text(f'#!/bin/sh\nexec {shlex.join(wrapper)} {paths.LAUNCHER} "$@"\n')
    launcher.chmod(0o755)
    server.launcher = launcher
    return server.start()


def live(server):
    """Requests all operations, kills the service and waits until it is started again."""
    for target in ("/srv/status", "/srv/notification", "/srv/connect", "/srv/disconnect"):
        assert server.ask(target).status == 200
    dead = server.responder()
    os.kill(dead, signal.SIGSEGV)
    wait_until(lambda: not processes.is_alive(dead), "the service has ended")
    wait_until(lambda: server.ask("/srv/status").status == 200, "the service is back")


def test_systemd_understands_every_line(tmp_path):
    """systemd only warns about settings that it does not know, and ignores them."""
    unit = tmp_path / "kestal.service"
    # The program has to exist.
    unit.write_text(re.sub(r"(?m)^ExecStart=.*$", "ExecStart=/bin/true", UNIT))
    assert run("systemd-analyze", "verify", "--man=no", str(unit)) == ""


def test_a_start_that_fails_is_tried_again_for_ever():
    assert section("Unit")["StartLimitIntervalSec"] == "0"
    assert section("Service")["Restart"] == "always"


def test_the_bounds_of_the_unit_are_those_of_the_threat_model():
    (memory, tasks) = re.search(r"(\d+) MiB and (\d+) tasks", DOCUMENT).groups()
    assert "a crash writes no memory to disk" in DOCUMENT
    bounds = {"MemoryMax": f"{memory}M", "TasksMax": tasks, "LimitCORE": "0"}
    assert section("Service").items() >= bounds.items()


@pytest.mark.skipif(bool(paths.SANITIZERS), reason="sanitizers do not work under strace")
def test_the_allowed_system_calls_are_enough(make_server, work):
    server = make_server()
    trace = work / "trace"
    start_wrapped(server, *filtered(trace))
    live(server)
    server.process.terminate()
    server.process.wait(DEADLINE)
    end = rf"(?m)^{server.process.pid} +\+\+\+ exited"
    wait_until(lambda: re.search(end, trace.read_text()), "strace has recorded the whole run")
    # When the simulator replaces a device document, it tries to keep the file's owner. That this call is
    # refused proves that the filter is active.
    assert set(re.findall(r"(?m)^\d+ +(\w+)\(", trace.read_text())) == {"fchown"}
    assert "(INJECTED)" in trace.read_text()


MOUNT_PROCESSES = "mount -t proc -o subset=pid proc /proc"


def may_mount():
    """Whether this user may mount; in a container, even root often may not."""
    return subprocess.run(["unshare", "--mount", "sh", "-c", MOUNT_PROCESSES], capture_output=True).returncode == 0


@pytest.mark.skipif(not may_mount(), reason="only root can mount, and not everywhere")
def test_a_proc_that_contains_only_processes_is_enough(make_server):
    server = make_server()
    mount = f'{MOUNT_PROCESSES} && [ ! -e /proc/net ] && exec "$@"'
    start_wrapped(server, "unshare", "--mount", "sh", "-c", mount, "sh")
    live(server)
    # The launcher must also find a service that still runs after its web server was killed.
    stray = server.responder()
    server.process.kill()
    server.process.wait()
    server.start()
    wait_until(lambda: not processes.is_alive(stray), "the service that was left behind has ended")
    assert server.ask("/srv/status").status == 200


@pytest.mark.skipif(not may_mount(), reason="only root can mount, and not everywhere")
def test_a_large_answer_is_whole_even_if_nothing_can_be_written_outside_of_the_run_directory(make_server):
    server = make_server()
    server.device.change(msgbus={CHANNEL: [notification()] * 1000})
    start_wrapped(server, "unshare", "--mount", "sh", "-c", 'mount -t tmpfs -o ro none /var/tmp && exec "$@"', "sh")
    assert len(server.ask("/srv/notification").json()["notificationsList"]) == 1000
    assert "temp-file" not in server.server_messages()
