import os
import pathlib
import sys

# Waiting is that of the tests in the simulator's world.
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "e2e"))

import pytest

from box import Box
from hotspot import Hotspot

durations = {}


@pytest.fixture(scope="session")
def box():
    made = Box(pathlib.Path(os.environ["KESTAL_DEVICE_FOLDER"]), os.environ.get("KESTAL_DEVICE_ACCELERATOR", "tcg"))
    try:
        made.start()
        yield made
    finally:
        made.close()


@pytest.fixture
def hotspot(box):
    """The hotspot as it is when nobody has done anything to it."""
    made = Hotspot(box)
    made.wait_until_ready()
    yield made


@pytest.fixture
def phone(hotspot):
    """A phone in the hotspot's Wi-Fi."""
    hotspot.phone_joins()
    return hotspot


def pytest_runtest_logreport(report):
    durations[report.nodeid] = durations.get(report.nodeid, 0) + report.duration


def pytest_terminal_summary(terminalreporter):
    """The transcript: one line for each check."""
    reports = [report for outcome in ("passed", "failed", "error") for report in terminalreporter.getreports(outcome)]
    failed = {report.nodeid for report in reports if not report.passed}
    for nodeid in durations:
        name = nodeid.partition("::test_")[2].replace("_", " ")
        terminalreporter.line(f"{'FAILED' if nodeid in failed else 'ok':<6} {durations[nodeid]:6.1f} s  {name}")
