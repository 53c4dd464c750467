"""Request bodies: no operation has one, and the web server lets none through. Even if one got through, the
service must handle it safely."""

import socket
import struct

import pytest

from support import fastcgi, web
from support.sessions import open_session

FORM = {"REQUEST_METHOD": "POST", "CONTENT_TYPE": "application/x-www-form-urlencoded"}


def post(responder, body, length, **parameters):
    return responder.ask("/srv/status", body, CONTENT_LENGTH=length, **{**FORM, **parameters})


def is_right(answer):
    return answer.complete and answer.status == 200 and b'"statusData":{' in answer.body


def test_a_body_of_the_announced_length_is_read(responder):
    cookie = open_session(responder)
    answer = post(responder, b"a=1&b=2", "7", HTTP_COOKIE=cookie, HTTP_USER_AGENT="test")
    assert is_right(answer)
    assert answer.body.startswith(b'{"loginStatus":1')


@pytest.mark.parametrize(
    ("body", "length"),
    [
        (b"", "10"),
        (b"short", "1000"),
        (b"a" * 1000, "10"),
        (b"a" * 1000, "0"),
        (b"a" * 1000, ""),
        (b"", "-1"),
        (b"abc", "-9223372036854775808"),
        (b"abc", "18446744073709551615"),
        (b"abc", "99999999999999999999999999"),
        (b"abc", "4294967297"),
        (b"abc", "abc"),
        (b"abc", "3abc"),
        (b"abc", " 3"),
        (b"abc", "0x3"),
        (b"abc", b"\xff\x00"),
        (b"\0" * 65536, "65536"),
        (b"a" * 1_000_000, "1000000"),
        (b"%" * 999, "999"),
        (b"&=&=" * 5000, "20000"),
    ],
    ids=lambda value: repr(value)[:16],
)
def test_any_body_and_length_get_an_answer_and_the_next_request_too(responder, body, length):
    assert is_right(post(responder, body, length))
    assert is_right(responder.ask())
    assert responder.process.poll() is None


def test_with_a_body_shorter_than_announced_nobody_is_logged_in(responder):
    cookie = open_session(responder)
    session = {"HTTP_COOKIE": cookie, "HTTP_USER_AGENT": "test"}
    assert post(responder, b"short", "1000", **session).body.startswith(b'{"loginStatus":0')
    assert post(responder, b"abc", "99999999999999", **session).body.startswith(b'{"loginStatus":0')
    assert responder.ask("/srv/status", **session).body.startswith(b'{"loginStatus":1')
    assert responder.log.count("session check failed")


@pytest.mark.parametrize(
    "content_type",
    [
        "multipart/form-data",
        "multipart/form-data; boundary=",
        "multipart/form-data; boundary=x",
        "multipart/form-data; boundary=" + "x" * 10_000,
        "application/json",
        "",
        b"\xff\xfe",
    ],
    ids=lambda value: repr(value)[:40],
)
def test_a_malformed_form_gets_an_answer(responder, content_type):
    body = b"--x\r\nContent-Disposition: form-data; name=\"\r\n\r\n--x--garbage--\r\n"
    assert is_right(post(responder, body, str(len(body)), CONTENT_TYPE=content_type))
    assert is_right(responder.ask())


def test_clients_that_go_away_before_their_answer_disturb_nobody(responder):
    for _ in range(50):
        with responder.connect() as connection:
            connection.send(fastcgi.request(fastcgi.STATUS))
    assert is_right(responder.ask())
    assert responder.process.poll() is None


def test_clients_that_go_away_while_they_send_disturb_nobody(responder):
    whole = fastcgi.request({**fastcgi.STATUS, **FORM, "CONTENT_LENGTH": "100"}, b"a" * 100)
    for size in range(0, len(whole), 7):
        with responder.connect() as connection:
            connection.send(whole[:size])
    assert is_right(responder.ask())
    assert responder.process.poll() is None


def test_browsers_that_go_away_disturb_nobody(server):
    responder = server.responder()
    for _ in range(50):
        client = web.connect(server.port)
        client.sendall(b"GET /srv/status HTTP/1.1\r\nHost: localhost\r\n\r\n")
        # With this option, closing the socket resets the connection.
        client.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
        client.close()
    assert server.ask("/srv/status").status == 200
    assert server.responder() == responder
