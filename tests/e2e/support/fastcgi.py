"""A FastCGI peer that can send any bytes, well-formed or not."""

import dataclasses
import socket
import struct

from support.waiting import DEADLINE

BEGIN_REQUEST, ABORT_REQUEST, END_REQUEST, PARAMS, STDIN, STDOUT, STDERR, DATA, GET_VALUES = range(1, 10)
RESPONDER = 1
KEEP_CONNECTION = 1

STATUS = {"REQUEST_METHOD": "GET", "REQUEST_URI": "/srv/status", "REMOTE_ADDR": "127.0.0.1"}


def record(kind, content=b"", request=1, version=1, padding=0):
    header = struct.pack(">BBHHBB", version, kind, request, len(content), padding, 0)
    return header + content + bytes(padding)


def stream(kind, content, request=1):
    """A whole stream as records of at most 65535 bytes and the empty record that ends it."""
    pieces = [content[i : i + 65535] for i in range(0, len(content), 65535)] + [b""]
    return b"".join(record(kind, piece, request) for piece in pieces)


def length(number):
    return bytes([number]) if number < 128 else struct.pack(">I", number | 0x80000000)


def pairs(parameters):
    content = b""
    for name, value in parameters.items():
        name = name.encode() if isinstance(name, str) else name
        value = value.encode() if isinstance(value, str) else value
        content += length(len(name)) + length(len(value)) + name + value
    return content


def begin(flags=0, role=RESPONDER, request=1):
    return record(BEGIN_REQUEST, struct.pack(">HB5x", role, flags), request)


def request(parameters, body=b"", flags=0):
    return begin(flags) + stream(PARAMS, pairs(parameters)) + stream(STDIN, body)


@dataclasses.dataclass
class Answer:
    output: bytes = b""
    errors: bytes = b""
    complete: bool = False
    """Whether the end-of-request record has arrived."""

    @property
    def header(self):
        lines = self.output.partition(b"\r\n\r\n")[0].decode().split("\r\n")
        return {name.lower(): value for name, _, value in (line.partition(": ") for line in lines)}

    @property
    def body(self):
        return self.output.partition(b"\r\n\r\n")[2]

    @property
    def status(self):
        return int(self.header.get("status", "200").split()[0])


class Connection:
    def __init__(self, path, timeout=DEADLINE):
        self.socket = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        # The timeout is set later: without one, connect() waits while the backlog is full.
        self.socket.connect(str(path))
        self.socket.settimeout(timeout)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.socket.close()

    def send(self, data):
        self.socket.sendall(data)

    def _exactly(self, size):
        data = b""
        while len(data) < size:
            piece = self.socket.recv(size - len(data))
            if not piece:
                return None
            data += piece
        return data

    def receive(self):
        """Reads one answer; it is incomplete if the connection ends before its end."""
        answer = Answer()
        try:
            while header := self._exactly(8):
                _, kind, _, size, padding, _ = struct.unpack(">BBHHBB", header)
                content = self._exactly(size + padding)
                if content is None:
                    break
                if kind == STDOUT:
                    answer.output += content[:size]
                elif kind == STDERR:
                    answer.errors += content[:size]
                elif kind == END_REQUEST:
                    answer.complete = True
                    break
        except ConnectionError:
            pass
        return answer

    def ended(self):
        """Waits for the peer to close the connection."""
        try:
            return self.socket.recv(1) == b""
        except ConnectionError:
            return True


def ask(path, parameters, body=b""):
    with Connection(path) as connection:
        connection.send(request(parameters, body))
        return connection.receive()
