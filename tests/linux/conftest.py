import pathlib
import sys

# Server, ports, namespaces and waiting are those of the tests in the simulator's world.
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "e2e"))

import pytest

from lab.board import Lab
# Pytest finds fixtures and hooks by their names here.
from support.work import pytest_runtest_makereport, work


@pytest.fixture
def lab(work):
    made = Lab(work, pytest.skip)
    try:
        yield made
        if made.service is not None:
            repeated = {text: count for text, count in made.service.said().items() if count > 1}
            assert not repeated, "the service has logged a thing more than once"
    finally:
        made.close()


@pytest.fixture
def impatient(lab):
    """For tests in which a daemon hangs: the service misses it after a few seconds, which a daemon of a busy
    machine may take to answer."""
    lab.silence = 4


@pytest.fixture
def board(lab):
    """A board whose modem is registered and whose service says so."""
    lab.start_modem()
    lab.start_service()
    lab.service.shows(statusBarSimStatus="Ready", statusBarNetwork="Lab Net", statusBarNetworkID="00101",
                      statusBarTechnology="LTE", statusBarSignalBars="5", statusBarConnectionState="Ready")
    lab.service.notifies()
    return lab
