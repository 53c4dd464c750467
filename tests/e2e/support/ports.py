"""Ports for servers under test, also for tests that run at the same time."""

import random
import socket

# Below the range of ports that the system uses for outgoing connections.
RANGE = range(20_000, 32_000)


class Port:
    """A free loopback port that no other Port uses; close() releases it."""

    def __init__(self):
        for number in random.sample(RANGE, len(RANGE)):
            self.claim = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
            try:
                # An abstract socket name reserves the port number: it needs no file and ends with the process.
                self.claim.bind(f"\0kestal-test-port-{number}")
                with socket.socket() as probe:
                    probe.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
                    probe.bind(("127.0.0.1", number))
            except OSError:
                self.claim.close()
                continue
            self.number = number
            return
        raise AssertionError("no free port")

    def close(self):
        self.claim.close()
