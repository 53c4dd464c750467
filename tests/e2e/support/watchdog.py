"""The device's watchdog: receives the messages on the socket that applications report to."""

import socket

from support.waiting import DEADLINE


class Watchdog:
    def __init__(self, path):
        self.path = str(path)
        self.socket = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
        self.socket.bind(self.path)

    def close(self):
        self.socket.close()

    def next(self, deadline=DEADLINE):
        """The next message; fails when none comes."""
        self.socket.settimeout(deadline)
        return self.socket.recv(4096).decode()

    def waiting(self):
        """All messages that have arrived and have not been read yet."""
        self.socket.setblocking(False)
        messages = []
        try:
            while True:
                messages.append(self.socket.recv(4096).decode())
        except BlockingIOError:
            return messages
