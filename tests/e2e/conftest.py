import os
import pathlib
import shutil
import tempfile

import pytest

from support import sanitizers
from support.responder import Responder
from support.server import Server
from support.watchdog import Watchdog


@pytest.hookimpl(hookwrapper=True)
def pytest_runtest_makereport(item):
    """Shows the logs of a failed test."""
    report = (yield).get_result()
    work = item.funcargs.get("work")
    if report.failed and work is not None and work.exists():
        for file in sorted(work.iterdir()):
            if file.is_file() and file.suffix in (".log", ".messages") or file.name == "stderr":
                lines = file.read_text(errors="replace").splitlines()[-60:]
                report.sections.append((f"end of {file.name}", "\n".join(lines)))


@pytest.fixture
def work():
    """A folder for one test. Its name is short, because the length of a socket's path is limited."""
    folder = pathlib.Path(tempfile.mkdtemp(prefix="kestal-test-"))
    yield folder
    sanitizers.check(folder)
    if "KESTAL_KEEP" in os.environ:
        print(f"kept: {folder}")
    else:
        shutil.rmtree(folder)


@pytest.fixture
def make_responder(work):
    made = []

    def make(name="responder"):
        made.append(Responder(work, name))
        return made[-1]

    yield make
    for responder in made:
        responder.stop()


@pytest.fixture
def responder(make_responder):
    """The service alone, serving."""
    return make_responder().start()


@pytest.fixture
def make_server(work):
    made = []

    def make(name="server"):
        made.append(Server(work, name))
        return made[-1]

    yield make
    for server in made:
        server.close()


@pytest.fixture
def server(make_server):
    """Web server and service, serving."""
    return make_server().start()


@pytest.fixture
def watchdog(work):
    socket = Watchdog(work / "watchdog.sock")
    yield socket
    socket.close()
