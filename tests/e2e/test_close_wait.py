"""The service does not wait for the web server to close a connection (LIBFCGI_OS_CLOSE_POLL_TIMEOUT
in the shipped configuration). No answer may be cut short by that."""

import json
import socket
import struct

import pytest

from support import processes, web
from support.notifications import CHANNEL, notification
from support.waiting import wait_until


def start(server):
    """Uses the log level of a device, because writing debug lines would give the web server more time."""
    server.environment["KESTAL_LOG_LEVEL"] = "5"
    server.process = server.launch()
    wait_until(server.is_up, "the web server has started")
    return server


@pytest.fixture
def server(make_server):
    return start(make_server())


def is_whole(answer):
    """Whether this is a complete status."""
    return answer.status == 200 and "statusBarBand" in answer.json()["statusData"]


def test_the_service_does_not_wait(server):
    assert processes.environment(server.responder())["LIBFCGI_OS_CLOSE_POLL_TIMEOUT"] == "0"


def test_large_answers_are_whole(server):
    count = 10_000
    server.device.change(msgbus={CHANNEL: [notification()] * count})
    for _ in range(3):
        answer = server.ask("/srv/notification")
        assert answer.status == 200
        assert len(answer.json()["notificationsList"]) == count


def test_a_large_answer_to_a_slow_reader_is_whole(server):
    count = 10_000
    server.device.change(msgbus={CHANNEL: [notification()] * count})
    with web.connect(server.port) as slow:
        slow.sendall(b"GET /srv/notification HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: close\r\n\r\n")
        # The service answers other clients before this client has read a byte.
        assert is_whole(server.ask("/srv/status"))
        answer = web.read_answer(slow)
    assert len(json.loads(answer.body)["notificationsList"]) == count


def test_clients_that_disconnect_do_not_affect_others(server):
    for _ in range(50):
        with web.connect(server.port) as client:
            # With this option, closing the socket resets the connection, even in the middle of an answer.
            client.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
            client.sendall(b"POST /srv/status HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Length: 0\r\n\r\n")
        assert is_whole(server.ask("/srv/status"))


def test_many_answers_on_one_connection_are_whole(server):
    with web.connect(server.port) as client:
        with client.makefile("rb") as stream:
            for _ in range(500):
                client.sendall(b"GET /srv/status HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n")
                assert b" 200 " in stream.readline()
                length = 0
                while (line := stream.readline()) != b"\r\n":
                    name, _, value = line.partition(b": ")
                    if name.lower() == b"content-length":
                        length = int(value)
                assert "statusBarBand" in json.loads(stream.read(length))["statusData"]
