import os
import pathlib
import shutil
import sys
import tempfile

# Server, ports, namespaces and waiting are those of the tests in the simulator's world.
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "e2e"))

import pytest

from lab.board import Lab
from support import sanitizers


@pytest.hookimpl(hookwrapper=True)
def pytest_runtest_makereport(item):
    """Shows the ends of what the daemons said in a failed test."""
    report = (yield).get_result()
    work = item.funcargs.get("work")
    if report.failed and work is not None and work.exists():
        for file in sorted([*work.glob("*.output"), *work.glob("*.log"), *work.glob("*/log"), *work.glob("own/*.log")]):
            lines = file.read_text(errors="replace").splitlines()[-40:]
            report.sections.append((f"end of {file.relative_to(work)}", "\n".join(lines)))


@pytest.fixture
def work():
    """A folder for one test. Its name is short, because the length of a socket's path is limited."""
    folder = pathlib.Path(tempfile.mkdtemp(prefix="kestal-lab-"))
    yield folder
    sanitizers.check(folder)
    if "KESTAL_KEEP" in os.environ:
        print(f"kept: {folder}")
    else:
        shutil.rmtree(folder)


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
def board(lab):
    """A board whose modem is registered and whose service says so."""
    lab.start_modem()
    lab.start_service()
    lab.service.shows(statusBarSimStatus="Ready", statusBarNetwork="Lab Net", statusBarNetworkID="00101",
                      statusBarTechnology="LTE", statusBarSignalBars="5", statusBarConnectionState="Ready")
    lab.service.notifies()
    return lab
