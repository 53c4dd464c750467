"""A peer that violates the FastCGI protocol, or uses parts of it that are seldom used."""

import random

import pytest

from support import fastcgi, paths
from support.fastcgi import begin, pairs, record, request, stream

STATUS = pairs(fastcgi.STATUS)


def assert_serves(responder):
    answer = responder.ask()
    assert answer.complete and answer.status == 200
    assert answer.body.startswith(b'{"loginStatus":0,"statusData":{')
    assert responder.process.poll() is None


HOSTILE = {
    "nothing": b"",
    "one byte": b"\x01",
    "half a header": record(fastcgi.BEGIN_REQUEST)[:5],
    "a web request": b"GET /srv/connect HTTP/1.1\r\nHost: localhost\r\n\r\n",
    "zeros": bytes(4096),
    "ones": b"\xff" * 4096,
    "another version": record(fastcgi.BEGIN_REQUEST, bytes(8), version=9),
    "an empty begin": record(fastcgi.BEGIN_REQUEST, b""),
    "a begin that is too long": record(fastcgi.BEGIN_REQUEST, bytes(64)),
    "an unknown role": begin(role=77) + stream(fastcgi.PARAMS, STATUS) + stream(fastcgi.STDIN, b""),
    "an authorizer": begin(role=2) + stream(fastcgi.PARAMS, STATUS),
    "parameters without a begin": stream(fastcgi.PARAMS, STATUS),
    "a body without parameters": begin() + stream(fastcgi.STDIN, b"x" * 100),
    "parameters of another request": begin() + stream(fastcgi.PARAMS, STATUS, request=2),
    "an unknown record": begin() + record(99, b"x" * 100),
    "a second begin": begin() + begin() + stream(fastcgi.PARAMS, STATUS),
    "an abort at once": begin() + record(fastcgi.ABORT_REQUEST),
    "an abort among parameters": begin() + record(fastcgi.PARAMS, STATUS) + record(fastcgi.ABORT_REQUEST),
    "an abort of another request": begin() + record(fastcgi.ABORT_REQUEST, request=9),
    "an answer": begin() + record(fastcgi.STDOUT, b"x") + record(fastcgi.END_REQUEST, bytes(8)),
    "a name longer than its record": begin() + stream(fastcgi.PARAMS, b"\x7f\x01a"),
    "a value longer than its record": begin() + stream(fastcgi.PARAMS, b"\x01\x80\x0f\xff\xffa"),
    "half a length": begin() + stream(fastcgi.PARAMS, b"\x80\x00"),
    "a truncated request": request(fastcgi.STATUS)[:-20],
}


@pytest.mark.parametrize("data", HOSTILE.values(), ids=HOSTILE.keys())
def test_a_broken_peer_disturbs_nobody(responder, data):
    with responder.connect() as connection:
        connection.send(data)
    assert_serves(responder)


@pytest.mark.skipif("address" in paths.SANITIZERS, reason="libfcgi loses 48 bytes for each such record")
def test_an_unknown_record_outside_a_request_disturbs_nobody(responder):
    with responder.connect() as connection:
        connection.send(record(99, b"x" * 100, request=0))
    assert_serves(responder)


def test_noise_disturbs_nobody(responder):
    # Bytes below 128 cannot announce a four-byte length. libfcgi ends the process if it cannot allocate
    # memory for such a length. This is accepted, because only the web server can connect: others have no
    # access to the socket's folder.
    noise = random.Random(20261121)
    whole = bytearray(request(fastcgi.STATUS, b"a=1"))
    for _ in range(200):
        data = bytearray(whole)
        for _ in range(noise.randint(1, 8)):
            data[noise.randrange(len(data))] = noise.randrange(128)
        with responder.connect() as connection:
            connection.send(bytes(data[: noise.randint(0, len(data))]))
    assert_serves(responder)


def test_a_silent_peer_delays_others_only_for_a_limited_time(responder):
    with responder.connect():
        assert_serves(responder)


def test_padding_is_skipped(responder):
    with responder.connect() as connection:
        connection.send(begin())
        connection.send(record(fastcgi.PARAMS, STATUS, padding=7) + record(fastcgi.PARAMS, padding=8))
        connection.send(record(fastcgi.STDIN, padding=1))
        assert connection.receive().body.startswith(b'{"loginStatus":0,"statusData":{')


def test_a_request_may_come_byte_by_byte(responder):
    with responder.connect() as connection:
        for byte in request(fastcgi.STATUS):
            connection.send(bytes([byte]))
        assert connection.receive().complete


def test_parameters_may_be_split_anywhere(responder):
    content = pairs({**fastcgi.STATUS, "LONG": "v" * 300, "N" * 300: "short"})
    pieces = b"".join(record(fastcgi.PARAMS, bytes([byte])) for byte in content)
    with responder.connect() as connection:
        connection.send(begin() + pieces + record(fastcgi.PARAMS) + record(fastcgi.STDIN))
        assert connection.receive().body.startswith(b'{"loginStatus":0,"statusData":{')


def test_huge_and_many_variables_are_accepted(responder):
    huge = {f"HTTP_X_{size}": "x" * size for size in (127, 128, 65535, 65536, 1_000_000)}
    many = {f"HTTP_X_{number}": str(number) for number in range(10_000)}
    for extra in (huge, many):
        answer = responder.ask("/srv/status", **extra)
        assert answer.complete and answer.status == 200
    assert_serves(responder)


def test_variables_without_a_name_or_a_value_are_accepted(responder):
    answer = responder.ask("/srv/status", **{"": "x", "EMPTY": "", "A=B": "c", "\0": "\0"})
    assert answer.complete and answer.status == 200
    assert_serves(responder)


def test_no_variable_but_the_target_is_needed(responder):
    answer = fastcgi.ask(responder.socket, {"REQUEST_URI": "/srv/status"})
    assert answer.body.startswith(b'{"loginStatus":0,"statusData":{')
    assert fastcgi.ask(responder.socket, {}).body == b'{"loginStatus":0}'


def test_a_peer_may_ask_for_the_properties_of_the_service(responder):
    with responder.connect() as connection:
        connection.send(record(fastcgi.GET_VALUES, pairs({"FCGI_MPXS_CONNS": ""}), request=0))
        connection.send(request(fastcgi.STATUS))
        assert connection.receive().complete


def test_several_requests_share_a_kept_connection(responder):
    with responder.connect() as connection:
        for uri, operation in (("/srv/status", b"statusData"), ("/srv/x", b"{"), ("/srv/status", b"statusData")):
            connection.send(request({**fastcgi.STATUS, "REQUEST_URI": uri}, flags=fastcgi.KEEP_CONNECTION))
            answer = connection.receive()
            assert answer.complete and operation in answer.body
    assert_serves(responder)


def test_a_connection_that_is_not_kept_ends_with_the_answer(responder):
    with responder.connect() as connection:
        connection.send(request(fastcgi.STATUS))
        assert connection.receive().complete
        assert connection.ended()


def test_many_peers_at_once_are_all_answered(responder):
    connections = [responder.connect() for _ in range(64)]
    for connection in connections:
        connection.send(request(fastcgi.STATUS))
    for connection in connections:
        answer = connection.receive()
        assert answer.complete and answer.status == 200
        connection.socket.close()
