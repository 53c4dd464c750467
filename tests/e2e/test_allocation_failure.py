"""Allocations that fail in the real process.

libfcgi does not look whether it was given memory: what it asks for itself ends the process, and the
web server starts another one. Changes of the simulated device are left out: the JSON library that
reads its document allocates in destructors. No device has that library.
"""

import time

import pytest

from support import paths
from support.device import Device
from support.memory import HEALTHY, Memory
from support.waiting import wait_until

pytestmark = pytest.mark.skipif(bool(paths.SANITIZERS), reason="sanitizers replace malloc")


@pytest.fixture
def memory(work):
    return Memory(work)


@pytest.fixture(scope="module")
def resting_device(tmp_path_factory):
    """A device whose document is old enough that the service reads it again only after a change."""
    device = Device(tmp_path_factory.mktemp("device") / "device.json")
    device.write((paths.DEVICES / "all-notifications.json").read_bytes())
    device.set(cellularDataConnect={"error": 5}, cellularDataDisconnect={"error": 5})
    wait_until(lambda: time.time() - device.path.stat().st_ctime > 3, "the document counts as unchanged")
    return device


@pytest.fixture
def hungry(make_responder, memory, resting_device):
    responder = make_responder()
    responder.environment |= memory.environment | {
        "KESTAL_DEVICE": str(resting_device.path),
        "KESTAL_LOG_LEVEL": "3",
    }
    return responder.start()


def count(responder, memory, uri):
    memory.fail(HEALTHY)
    assert responder.ask(uri).complete
    return memory.heal()[0]


@pytest.mark.skipif(
    paths.CTPP2 == "system", reason="CTPP2 follows an invalid pointer if it gets no memory for a text"
)
@pytest.mark.parametrize("uri", ["/srv/status", "/srv/notification", "/srv/connect", "/srv/disconnect"])
@pytest.mark.parametrize("persistently", [False, True])
def test_a_request_without_memory_is_finished_and_the_next_answer_is_complete(hungry, memory, uri, persistently):
    for _ in range(3):
        before = hungry.ask(uri)
    total = count(hungry, memory, uri)
    assert total > 10
    failures = 0
    # If there are many allocations, only a sample of them fails.
    for number in range(1, total + 1, max(1, total // 90)):
        memory.fail(number, persistently)
        answer = hungry.ask(uri)
        failures += memory.heal()[1]
        assert answer.complete, number
        # If there is no memory for the writer's text, the answer is empty.
        assert answer.body == b"" or answer.body.startswith(b'{"loginStatus":0'), number
        assert hungry.process.poll() is None, number
        assert hungry.ask(uri).body == before.body, number
    assert failures > 5
    print(f"{uri}: {total} allocations, {failures} failures")


def test_a_service_is_started_again_when_libfcgi_gets_no_memory(make_server, memory):
    server = make_server()
    server.environment["KESTAL_RESPONDER"] = str(memory.program())
    server.start()
    for _ in range(2):
        before = server.ask("/srv/status")
    memory.fail(HEALTHY, libfcgi=True)
    assert server.ask("/srv/status").body == before.body
    total, failed, _ = memory.heal()
    assert total > 4 and failed == 0
    for number in range(1, total + 1, total // 4):
        dead = server.responder()
        memory.fail(number, libfcgi=True)
        assert server.ask("/srv/status").status in (500, 503), number
        wait_until(lambda: server.ask("/srv/status").status == 200, "the service is back")
        assert memory.heal()[1] == 1, number
        assert server.responder() != dead
        assert server.ask("/srv/status").body == before.body
