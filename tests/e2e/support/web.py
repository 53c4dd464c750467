"""An HTTP client that sends the request target and the headers exactly as given."""

import dataclasses
import json
import socket


@dataclasses.dataclass
class Answer:
    status: int
    headers: dict
    body: bytes

    def json(self):
        return json.loads(self.body)


def read_answer(connection):
    data = b""
    while piece := connection.recv(65536):
        data += piece
    head, _, body = data.partition(b"\r\n\r\n")
    lines = head.decode("latin-1").split("\r\n")
    headers = {name.lower(): value for name, _, value in (line.partition(": ") for line in lines[1:])}
    return Answer(int(lines[0].split()[1]), headers, body)


def connect(port, timeout=30.0, address="127.0.0.1"):
    return socket.create_connection((address, port), timeout)


def ask(port, target, headers=(), method="GET", body=b"", raw_body=b"", address="127.0.0.1"):
    """Sends one request on a new connection. headers is a list of (name, value); a raw body is sent
    without Content-Length."""
    headers = list(headers)
    names = {name.lower() for name, _ in headers}
    if "host" not in names:
        headers.insert(0, ("Host", f"127.0.0.1:{port}"))
    if body and "content-length" not in names:
        headers.append(("Content-Length", str(len(body))))
    headers.append(("Connection", "close"))
    target = target if isinstance(target, bytes) else target.encode()
    head = method.encode() + b" " + target + b" HTTP/1.1\r\n"
    head += b"".join(f"{name}: {value}\r\n".encode("latin-1") for name, value in headers) + b"\r\n"
    with connect(port, address=address) as connection:
        connection.sendall(head + body + raw_body)
        return read_answer(connection)
