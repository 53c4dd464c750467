"""scripts/lab, as people use it."""

import os
import re
import signal
import subprocess

import pytest

from lab import scenarios
from lab.service import SERVICE
from support import paths, processes, web
from support.namespaces import may_be_made
from support.waiting import DEADLINE, wait_until

SCRIPT = paths.ROOT / "scripts" / "lab"


@pytest.fixture
def running(work):
    """The script, started on the finished build, in a folder for temporary files of its own."""
    environment = {**paths.CLEAN_ENVIRONMENT, "TMPDIR": str(work), "KESTAL_BUILD": str(paths.BUILD),
                   "KESTAL_SERVICE": str(SERVICE)}
    with (work / "script.output").open("wb") as output:
        process = subprocess.Popen([str(SCRIPT)], env=environment, stdout=output, stderr=output, start_new_session=True)
    yield process, environment
    process.send_signal(signal.SIGTERM)
    process.wait(120)


def test_it_starts_everything_obeys_and_leaves_nothing(running, work):
    process, environment = running
    said = work / "script.output"

    def started():
        assert process.poll() is None, said.read_text()
        return "Ctrl-C stops it." in said.read_text()

    def order(*words):
        run = subprocess.run([str(SCRIPT), *words], env=environment, capture_output=True, text=True, timeout=DEADLINE)
        return run.returncode, run.stdout + run.stderr

    def shown(key):
        return web.ask(port, "/srv/status").json()["statusData"].get(key)

    wait_until(started, "the lab has started", 300)
    port = int(re.search(r"http://127\.0\.0\.1:(\d+)/", said.read_text())[1])
    assert b"<html" in web.ask(port, "/").body
    assert web.ask(port, "/srv/status").status == 200
    assert order("battery", "9") == (0, "")
    assert order("signal", "12") == (0, "")
    assert order("signal", "100")[0] == 1
    assert order("scenarios", "nonsense")[0] == 1
    if may_be_made():
        web.ask(port, "/srv/connect")
        wait_until(lambda: shown("statusBarConnectionState") == "Connected", "the data call has been started")
        assert order("traffic", "0", "2000") == (0, "")
        wait_until(lambda: shown("statusBarBytesReceived") == "2000", "the bytes have been counted")

    process.send_signal(signal.SIGINT)
    assert process.wait(120) == 0
    # What a daemon has started may end a moment later.
    wait_until(lambda: processes.mentioning(str(work)) == [], "nothing is left")
    assert [name for name in os.listdir(work) if name != said.name] == []


@pytest.mark.skipif(not may_be_made(), reason="networks need root")
def test_all_scenarios_come_out_right(work):
    """How long each takes is printed, and judged by no test."""
    environment = {**paths.CLEAN_ENVIRONMENT, "TMPDIR": str(work), "KESTAL_BUILD": str(paths.BUILD),
                   "KESTAL_SERVICE": str(SERVICE)}
    run = subprocess.run([str(SCRIPT), "scenarios"], env=environment, capture_output=True, text=True, timeout=600)
    print(run.stdout)
    assert run.returncode == 0, run.stderr
    assert re.findall(r"^\S.*  \((\w+)\)$", run.stdout, re.MULTILINE) == list(scenarios.SCENARIOS)
    shown = re.sub(" +", " ", run.stdout)
    assert " statusBarBatteryPercent '80' -> '9'\n" in shown
    assert " notification + deviceJoinEthernet\n" in shown
    assert " log modem: lost: ModemManager does not answer\n" in shown
    told = len(re.findall(r"\d+ ms after the word of", shown))
    assert re.search(rf"^{told} changes that daemons told: \d+ stood within 250 ms, median ", shown, re.MULTILINE)
