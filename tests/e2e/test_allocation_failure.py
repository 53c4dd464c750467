"""Allocations that fail in the real process.

libfcgi does not look whether it was given memory: what it asks for itself is left out, and the web
server starts another process where it was in vain. So are changes of the simulated device: the JSON
library that reads its document allocates in destructors. No device has that library.
"""

import mmap
import pathlib
import struct
import subprocess

import pytest

from support import paths

pytestmark = pytest.mark.skipif(bool(paths.SANITIZERS), reason="sanitizers bring their own malloc")

ORDERS = struct.Struct("5i")
SOURCE = pathlib.Path(__file__).parent / "support" / "failing_memory.c"
HEALTHY = 1 << 30
"""The number of an allocation that never comes."""


class Memory:
    def __init__(self, work):
        library = work / "failing_memory.so"
        subprocess.run(
            ["cc", "-shared", "-fPIC", "-O1", "-Wall", "-Werror", "-o", library, SOURCE], check=True
        )
        path = work / "orders"
        path.write_bytes(bytes(ORDERS.size))
        with path.open("r+b") as file:
            self.page = mmap.mmap(file.fileno(), ORDERS.size)
        self.environment = {"LD_PRELOAD": str(library), "KESTAL_TEST_MEMORY": str(path)}

    def fail(self, number, persistently=False):
        self.page[:] = ORDERS.pack(number, persistently, 0, 0, 0)

    def heal(self):
        """Returns how many allocations there were, failed, and were libfcgi's."""
        counts = ORDERS.unpack(self.page[:])[2:]
        self.page[:] = bytes(ORDERS.size)
        return counts


@pytest.fixture
def memory(work):
    return Memory(work)


@pytest.fixture
def hungry(make_responder, memory):
    responder = make_responder()
    responder.device.write((paths.DEVICES / "all-notifications.json").read_bytes())
    responder.device.set(cellularDataConnect={"error": 5}, cellularDataDisconnect={"error": 5})
    responder.environment |= memory.environment | {"KESTAL_LOG_LEVEL": "3"}
    return responder.start()


def count(responder, memory, uri):
    memory.fail(HEALTHY)
    assert responder.ask(uri).complete
    return memory.heal()[0]


@pytest.mark.parametrize("uri", ["/srv/status", "/srv/notification", "/srv/connect", "/srv/disconnect"])
@pytest.mark.parametrize("persistently", [False, True])
def test_a_request_short_of_memory_is_finished_and_the_next_is_whole(hungry, memory, uri, persistently):
    for _ in range(3):
        before = hungry.ask(uri)
    total = count(hungry, memory, uri)
    assert total > 10
    failures = 0
    # A sample where there are many.
    for number in range(1, total + 1, max(1, total // 90)):
        memory.fail(number, persistently)
        answer = hungry.ask(uri)
        failures += memory.heal()[1]
        assert answer.complete, number
        # Without memory for the writer's own text, nothing can be said.
        assert answer.body == b"" or answer.body.startswith(b'{"loginStatus":0'), number
        assert hungry.process.poll() is None, number
        assert hungry.ask(uri).body == before.body, number
    assert failures > 5
    print(f"{uri}: {total} allocations, {failures} failures")
