"""scripts/setup installs the missing packages and does nothing else."""

import subprocess

import pytest

from support import paths
from support.waiting import DEADLINE

SETUP = paths.ROOT / "scripts" / "setup"


@pytest.fixture
def machine(work):
    """A machine with fake packages, users and installer."""
    tools = work / "bin"
    tools.mkdir()

    def tool(name, script):
        (tools / name).write_text(f"#!/bin/sh\n{script}\n")
        (tools / name).chmod(0o755)

    tool("apt-get", f'echo "apt-get $*" >> {work}/calls')
    tool("sudo", f'echo sudo >> {work}/calls; exec "$@"')
    tool("systemctl", f'echo "systemctl $*" >> {work}/calls')
    tool("id", "echo 0")

    def run(argument, missing=(), user="0", has_sudo=True, systemd="/nowhere", programs=("node", "npm")):
        """Runs the script; returns its exit status, its errors and the installer's calls."""
        absent = "|".join(["none", *missing])
        tool("dpkg-query", f"""shift 3
for package do case $package in {absent}) ;; *) echo "$package installed" ;; esac done
exit 1""")
        tool("id", f"echo {user}")
        for name in programs:
            tool(name, "exit 1")
        if not has_sudo:
            (tools / "sudo").unlink()
        path = str(tools)
        for needed in ("env", "true", "sh"):
            if not (tools / needed).exists():
                (tools / needed).symlink_to(f"/usr/bin/{needed}")
        done = subprocess.run(
            ["/bin/sh", str(SETUP), argument],
            env={"PATH": path, "SYSTEMD_DIRECTORY": str(systemd)},
            capture_output=True,
            text=True,
            timeout=DEADLINE,
        )
        calls = work / "calls"
        return done.returncode, done.stderr, calls.read_text().splitlines() if calls.exists() else []

    return run


@pytest.mark.parametrize("kind", ["run", "test"])
def test_nothing_is_installed_where_nothing_is_missing(machine, kind):
    assert machine(kind) == (0, "", [])


def test_what_is_missing_is_installed(machine):
    status, _, calls = machine("run", missing=["lighttpd", "g++", "curl"])
    assert status == 0
    assert calls == ["apt-get update -q", "apt-get install -q -y --no-install-recommends g++ lighttpd curl"]


def test_a_web_server_that_was_installed_does_not_stay_on_port_80(machine, work):
    status, _, calls = machine("run", missing=["lighttpd"], user="1000", systemd=work)
    assert status == 0
    assert calls[-2:] == ["sudo", "systemctl disable -q --now lighttpd"]


def test_a_web_server_that_was_there_before_is_left_alone(machine, work):
    status, _, calls = machine("run", missing=["curl"], systemd=work)
    assert status == 0
    assert not [call for call in calls if call.startswith("systemctl")]


def test_daemons_of_the_lab_are_not_started_as_services(machine, work):
    status, _, calls = machine("lab", missing=["gpsd"], systemd=work)
    assert status == 0
    assert calls == [
        "apt-get update -q",
        "systemctl mask -q gpsd.service",
        "systemctl mask -q gpsd.socket",
        "apt-get install -q -y --no-install-recommends gpsd",
        "systemctl unmask -q gpsd.service",
        "systemctl unmask -q gpsd.socket",
        "systemctl disable -q gpsd.service",
        "systemctl disable -q gpsd.socket",
    ]


def test_running_needs_no_package_of_the_tests(machine):
    assert machine("run", missing=["libgtest-dev", "python3-pytest"]) == (0, "", [])
    status, _, calls = machine("test", missing=["libgtest-dev", "python3-pytest"])
    assert status == 0
    assert calls[-1].endswith(" libgtest-dev python3-pytest")


def test_programs_are_installed_only_where_there_are_none(machine):
    """The programs may come from another source than Debian, with which Debian's packages would conflict."""
    assert machine("test", missing=["nodejs", "npm"]) == (0, "", [])


def test_programs_that_are_missing_are_installed(machine):
    status, _, calls = machine("test", programs=["node"])
    assert status == 0
    assert calls[-1].endswith("--no-install-recommends npm")
    assert machine("run", programs=[])[0] == 0


def test_a_user_who_cannot_install_is_told_what_is_missing(machine):
    status, errors, calls = machine("run", missing=["curl"], user="1000", has_sudo=False)
    assert (status, calls) == (1, [])
    assert errors == "scripts/setup: these packages are missing and there is no sudo: curl\n"


def test_another_argument_is_refused(machine):
    assert machine("all") == (2, "usage: scripts/setup [run | lab | test | coverage | bench | cross | fresh | device]\n", [])
