"""Makes allocations of a service fail on demand and counts its memory blocks; see failing_memory.c."""

import mmap
import pathlib
import struct
import subprocess

from support.program import service_with

# The shared file begins with the orders of the test and the resulting counts (ORDERS). After them, it has the
# number of blocks that the service holds, and their bytes (HELD).
ORDERS = struct.Struct("6i")
HELD = struct.Struct("2q")
SOURCE = pathlib.Path(__file__).parent / "failing_memory.c"
HEALTHY = 1 << 30
"""The number of an allocation that is never reached, so that none fails."""


class Memory:
    def __init__(self, work):
        library = work / "failing_memory.so"
        subprocess.run(
            ["cc", "-shared", "-fPIC", "-O1", "-Wall", "-Werror", "-o", library, SOURCE], check=True
        )
        self.path = work / "orders"
        self.path.write_bytes(bytes(ORDERS.size + HELD.size))
        with self.path.open("r+b") as file:
            self.page = mmap.mmap(file.fileno(), 0)
        self.environment = {"LD_PRELOAD": str(library), "KESTAL_TEST_MEMORY": str(self.path)}

    def program(self, *libraries, **variables):
        """Makes a program that starts the service with this memory and with further libraries and variables."""
        variables |= self.environment | {"LD_PRELOAD": ":".join([*libraries, self.environment["LD_PRELOAD"]])}
        return service_with(self.path.with_name("remembering"), **variables)

    def fail(self, number, persistently=False, libfcgi=False):
        """Makes the n-th allocation from now on fail; with `libfcgi`, only those of libfcgi count."""
        self.page[: ORDERS.size] = ORDERS.pack(number, persistently, 0, 0, 0, libfcgi)

    def heal(self):
        """Returns the number of allocations, of failed ones, and of those made by libfcgi."""
        counts = ORDERS.unpack(self.page[: ORDERS.size])[2:5]
        self.page[: ORDERS.size] = bytes(ORDERS.size)
        return counts


def held(path):
    """How many blocks the service holds that shares this file with a Memory. Only differences between
    two calls have a meaning."""
    return HELD.unpack_from(path.read_bytes(), ORDERS.size)[0]


def held_bytes(path):
    """How many bytes these blocks have."""
    return HELD.unpack_from(path.read_bytes(), ORDERS.size)[1]


def forget(path):
    """Counts from zero again, after a service has ended that shares this file with a Memory."""
    with path.open("r+b") as file:
        file.seek(ORDERS.size)
        file.write(bytes(HELD.size))
