"""Clients that send requests without pause over persistent connections and check every answer."""

import collections
import itertools
import multiprocessing
import os
import random
import select
import signal
import socket
import struct
import time

import mix

# Seconds without an answer after which a request counts as failed: longer than the web server waits for the
# service.
PATIENCE = 30.0
# After so many refused connections in a row, with so many seconds between them, clients give up.
REFUSALS = 100
PAUSE = 0.05
RESET = struct.pack("ii", 1, 0)
# Results of checks are kept for so many different heads and bodies, so that equal ones are checked only once.
KNOWN = 5000


class Connection:
    def __init__(self, port):
        self.socket = socket.create_connection(("127.0.0.1", port), PATIENCE)
        self.socket.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        self.kind = None
        self.since = 0.0
        self.data = b""

    def leave(self):
        """Resets the connection, as if the client had disappeared."""
        self.socket.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, RESET)
        self.socket.close()


def parse_head(head):
    lines = head.decode("latin-1").split("\r\n")
    fields = {name.lower(): value for name, _, value in (line.partition(": ") for line in lines[1:])}
    length = fields.get("content-length", "")
    return (
        int(lines[0].split()[1]),
        fields.get("content-type", ""),
        int(length) if length.isdigit() else -1,
        fields.get("connection", "").lower() == "close",
    )


class Client:
    """One client process. It ends when it has made its share of the requests, or when it is stopped."""

    def __init__(self, port, kinds, seed, share, shared, number):
        self.port = port
        weights = [kind.weight for kind in kinds]
        self.kinds = itertools.cycle(random.Random(seed).choices(kinds, weights, k=20_000))
        self.share = share
        self.shared = shared
        self.number = number
        self.started = 0
        self.ended = 0
        self.refusals = 0
        self.parent = os.getppid()
        self.requests = collections.Counter()
        self.problems = collections.Counter()
        self.slowest = 0.0
        self.open = {}
        self.poll = select.epoll()
        self.heads = {}
        self.bodies = {}

    def run(self, connections):
        for _ in range(connections):
            self.ask(None)
        looked = time.monotonic()
        while self.open:
            for number, _ in self.poll.poll(1.0):
                self.receive(self.open[number])
            now = time.monotonic()
            if now - looked > 1:
                looked = now
                if self.is_orphan():
                    break
                for connection in [each for each in self.open.values() if now - each.since > PATIENCE]:
                    self.problem(connection, f"no answer within {PATIENCE} s")
        return self.requests, self.problems, self.slowest

    def is_orphan(self):
        """Whether the parent process has ended, which would stop this client and take its result."""
        return os.getppid() != self.parent

    def goes_on(self):
        return (
            self.started < self.share
            and self.refusals < REFUSALS
            and not self.shared.stopped.value
            and not self.is_orphan()
        )

    def connect(self):
        try:
            connection = Connection(self.port)
        except OSError:
            self.refusals += 1
            time.sleep(PAUSE)
            raise
        self.refusals = 0
        self.open[connection.socket.fileno()] = connection
        self.poll.register(connection.socket, select.EPOLLIN)
        return connection

    def ask(self, connection):
        """Sends the next request, over a new connection if none is given."""
        while self.goes_on():
            self.started += 1
            kind = next(self.kinds)
            try:
                if connection is None:
                    connection = self.connect()
                connection.kind = kind
                connection.since = time.monotonic()
                connection.data = b""
                connection.socket.sendall(kind.request)
            except OSError as error:
                self.problems[f"{kind.name}: {error}"] += 1
                self.done(kind)
                if connection is not None:
                    self.close(connection)
                    connection = None
                continue
            if kind.leaves in (0, mix.IN_ANSWER):
                return
            self.done(kind)
            self.close(connection)
            connection = None
        if connection is not None:
            self.close(connection)

    def receive(self, connection):
        kind = connection.kind
        try:
            data = connection.socket.recv(262_144)
        except OSError as error:
            return self.problem(connection, str(error))
        if not data:
            return self.problem(connection, "the connection ended before the answer")
        if kind.leaves:
            self.close(connection)
            self.done(kind)
            return self.ask(None)
        data = connection.data + data
        connection.data = data
        end = data.find(b"\r\n\r\n")
        if end < 0:
            return None
        head = data[:end]
        if head not in self.heads:
            if len(self.heads) > KNOWN:
                self.heads.clear()
            self.heads[head] = parse_head(head)
        status, content_type, length, closes = self.heads[head]
        if length < 0:
            return self.problem(connection, "no Content-Length")
        if len(data) < end + 4 + length:
            return None
        if len(data) > end + 4 + length:
            return self.problem(connection, "more than the answer")
        problem = self.judge(kind, status, content_type, data[end + 4 :])
        if problem:
            return self.problem(connection, problem)
        self.slowest = max(self.slowest, time.monotonic() - connection.since)
        self.done(kind)
        if closes:
            self.close(connection)
            connection = None
        return self.ask(connection)

    def judge(self, kind, status, content_type, body):
        """Returns what is wrong with an answer, or None. Only the first of equal answers is checked."""
        key = (kind.name, status, content_type, body)
        if key not in self.bodies:
            if len(self.bodies) > KNOWN:
                self.bodies.clear()
            self.bodies[key] = kind.problem(status, content_type, body)
        return self.bodies[key]

    def problem(self, connection, text):
        self.problems[f"{connection.kind.name}: {text}"[:300]] += 1
        self.close(connection)
        self.done(connection.kind)
        self.ask(None)

    def done(self, kind):
        self.requests[kind.name] += 1
        self.ended += 1
        self.shared.counts[self.number] = self.ended

    def close(self, connection):
        self.poll.unregister(connection.socket)
        del self.open[connection.socket.fileno()]
        connection.leave()


class Shared:
    def __init__(self, processes):
        self.counts = multiprocessing.RawArray("Q", processes)
        self.stopped = multiprocessing.RawValue("b", 0)


class Clients:
    """Several client processes and the number of requests that they have made."""

    def __init__(self, port, kinds, requests, processes, connections, seed):
        self.shared = Shared(processes)
        self.pipes = []
        self.processes = []
        for number in range(processes):
            share = requests // processes + (number < requests % processes)
            receiver, sender = multiprocessing.Pipe(duplex=False)
            arguments = (port, kinds, seed + number, share, self.shared, number)
            process = multiprocessing.Process(
                target=self._run, args=(arguments, connections, sender), daemon=True
            )
            process.start()
            sender.close()
            self.pipes.append(receiver)
            self.processes.append(process)

    @staticmethod
    def _run(arguments, connections, sender):
        # After Ctrl-C, the parent stops its clients.
        signal.signal(signal.SIGINT, signal.SIG_IGN)
        signal.signal(signal.SIGTERM, signal.SIG_DFL)
        client = Client(*arguments)
        result = client.run(connections)
        if not client.is_orphan():
            sender.send(result)

    def count(self):
        return sum(self.shared.counts)

    def stop(self):
        self.shared.stopped.value = 1

    def are_done(self):
        """Whether all clients have a result. If the result does not fit in the pipe, the process lives until
        results() reads it."""
        return all(
            pipe.poll() or not process.is_alive() for pipe, process in zip(self.pipes, self.processes)
        )

    def results(self):
        """Returns the number of requests by kind, that of problems by text, and the longest time in seconds
        until an answer."""
        requests, problems, slowest = collections.Counter(), collections.Counter(), 0.0
        for number, pipe in enumerate(self.pipes):
            try:
                of_one = pipe.recv()
                requests += of_one[0]
                problems += of_one[1]
                slowest = max(slowest, of_one[2])
            except (EOFError, OSError):
                problems[f"client {number} has failed"] += 1
        for process in self.processes:
            process.join()
        return requests, problems, slowest
