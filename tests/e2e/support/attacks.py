"""Clients that try to use up the web server's connections: each opens many and never ends them."""

import contextlib
import dataclasses
import errno
import multiprocessing
import os
import resource
import select
import socket
import time

from support.waiting import wait_until

# Seconds between two bytes that a slow ("dripping") client sends, and until a client opens a lost
# connection again.
DRIP = 5.0
AGAIN = 1.0
HEAD = b"Host: 127.0.0.1\r\n"


@dataclasses.dataclass(frozen=True)
class Kind:
    name: str
    connections: int
    opening: bytes = b""
    drips: bool = False


KINDS = [
    Kind("dripping bodies", 260, b"POST /srv/status HTTP/1.1\r\n" + HEAD + b"Content-Length: 1000\r\n\r\n", True),
    Kind("silent connections", 256),
    Kind("idle connections", 1000, b"GET /srv/status HTTP/1.1\r\n" + HEAD + b"\r\n"),
    Kind("half heads", 1000, b"GET /srv/sta"),
]


class Attack:
    """A process in the network of an attacker that runs as long as the with block. It opens lost
    connections again. `tried` counts the attempts to connect, `refused` those that were refused."""

    def __init__(self, namespace, address, port, kind):
        self.target = (address, port)
        self.family = socket.AF_INET6 if ":" in address else socket.AF_INET
        self.kind = kind
        self.namespace = namespace
        self.counts = multiprocessing.RawArray("q", 2)
        self.process = multiprocessing.get_context("fork").Process(target=self._run, daemon=True)
        self.open = {}

    tried = property(lambda self: self.counts[0])
    refused = property(lambda self: self.counts[1])

    def __enter__(self):
        self.process.start()
        wait_until(lambda: self.tried >= self.kind.connections, "the attack has begun")
        return self

    def __exit__(self, *_):
        self.process.kill()
        self.process.join()

    def _run(self):
        starter = os.getppid()
        # Many systems let a process open 1024 files unless it asks for more.
        most = resource.getrlimit(resource.RLIMIT_NOFILE)[1]
        resource.setrlimit(resource.RLIMIT_NOFILE, (most, most))
        with self.namespace.entered():
            self.poll = select.epoll()
            due = [0.0] * self.kind.connections
            drip = time.monotonic() + DRIP
            while os.getppid() == starter:
                for number, events in self.poll.poll(0.05):
                    if self._is_lost(self.open[number], events):
                        self._close(number)
                        due.append(time.monotonic() + AGAIN)
                now = time.monotonic()
                if self.kind.drips and now >= drip:
                    drip = now + DRIP
                    self._drip()
                ready = [when for when in due if when <= now]
                due = [when for when in due if when > now]
                for _ in ready:
                    self._connect()

    def _connect(self):
        connection = socket.socket(self.family, socket.SOCK_STREAM | socket.SOCK_NONBLOCK)
        error = connection.connect_ex(self.target)
        assert error in (0, errno.EINPROGRESS), os.strerror(error)
        self.open[connection.fileno()] = connection
        self.poll.register(connection, select.EPOLLIN | select.EPOLLOUT | select.EPOLLET)
        self.counts[0] += 1

    def _is_lost(self, connection, events):
        error = connection.getsockopt(socket.SOL_SOCKET, socket.SO_ERROR)
        if error:
            self.counts[1] += error == errno.ECONNREFUSED
            return True
        try:
            if events & select.EPOLLIN:
                return not connection.recv(65536)
            connection.send(self.kind.opening)
        except OSError:
            return True
        return False

    def _drip(self):
        for connection in self.open.values():
            # If the connection is lost, the loop notices it.
            with contextlib.suppress(OSError):
                connection.send(b"a")

    def _close(self, number):
        self.poll.unregister(number)
        self.open.pop(number).close()
