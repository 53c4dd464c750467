"""A service whose allocations fail on demand, and whose blocks are counted; see failing_memory.c."""

import mmap
import pathlib
import struct
import subprocess

from support import paths

# What a test orders and what came of it; behind it stands how many blocks the service holds.
ORDERS = struct.Struct("6i")
HELD = struct.Struct("q")
SOURCE = pathlib.Path(__file__).parent / "failing_memory.c"
HEALTHY = 1 << 30
"""The number of an allocation that never comes."""


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
        """The service with this memory, and with more libraries and variables, as a program that the
        web server can start: it hands none on."""
        variables |= self.environment | {"LD_PRELOAD": ":".join([*libraries, self.environment["LD_PRELOAD"]])}
        settings = " ".join(f'{name}="{value}"' for name, value in variables.items())
        program = self.path.with_name("remembering")
        program.write_text(f'#!/bin/sh\n{settings} exec "{paths.SERVICE}"\n')
        program.chmod(0o755)
        return program

    def fail(self, number, persistently=False, libfcgi=False):
        """Makes the n-th allocation from now on fail; of libfcgi's own, if it is libfcgi's turn."""
        self.page[: ORDERS.size] = ORDERS.pack(number, persistently, 0, 0, 0, libfcgi)

    def heal(self):
        """Returns how many allocations there were, failed, and were libfcgi's."""
        counts = ORDERS.unpack(self.page[: ORDERS.size])[2:5]
        self.page[: ORDERS.size] = bytes(ORDERS.size)
        return counts


def held(path):
    """How many blocks the service holds that shares a file with a Memory; only differences count."""
    return HELD.unpack_from(path.read_bytes(), ORDERS.size)[0]
