import pytest

from support.responder import Responder
from support.server import Server
from support.watchdog import Watchdog
# Pytest finds fixtures and hooks by their names here.
from support.work import pytest_runtest_makereport, work


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
