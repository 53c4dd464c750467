"""Which operation a request target names, tested on the real process."""

import pytest

from support import fastcgi

CONNECTED = 2
DISCONNECTED = 0


def operation(responder, uri):
    """The operation that the service performed for a target: status, connect, disconnect or none."""
    untouched = 1
    responder.device.set(getCellularDataConnectionStatus=untouched)
    answer = responder.ask(uri)
    assert (answer.status, answer.complete) == (200, True)
    assert answer.header["content-type"] == "application/json"
    if b'"statusData"' in answer.body:
        return "status"
    actions = {untouched: "none", CONNECTED: "connect", DISCONNECTED: "disconnect"}
    return actions[responder.device.get("getCellularDataConnectionStatus")]


@pytest.mark.parametrize(
    ("uri", "expected"),
    [
        ("/srv/status", "status"),
        ("/srv/connect", "connect"),
        ("/srv/disconnect", "disconnect"),
        ("/srv/notification", "none"),
        ("/srv/passcoderecovery", "none"),
        ("/srv/", "none"),
        # The name may stand anywhere after the prefix.
        ("/srv/a/status/b", "status"),
        ("/srv/mystatuspage", "status"),
        ("/srv/x#connect", "connect"),
        # The query string is part of the name.
        ("/srv/x?connect", "connect"),
        ("/srv/?a=disconnect", "disconnect"),
        # The service looks for notification, status, disconnect, connect in this order; the first match counts.
        ("/srv/statusnotification", "none"),
        ("/srv/status?notification", "none"),
        ("/srv/connect?status", "status"),
        ("/srv/connectdisconnect", "disconnect"),
        # The first five characters are dropped, whatever they are.
        ("/abc/status", "status"),
        ("statusstatus", "status"),
        ("/srvstatus", "none"),
        ("/xstatus", "none"),
        # Names are case sensitive and are not decoded.
        ("/srv/Status", "none"),
        ("/srv/stat%75s", "none"),
        ("/srv/%63onnect", "none"),
        # No name at all.
        ("/srv", "none"),
        ("/", "none"),
        ("", "none"),
        ("abcd", "none"),
        ("abcde", "none"),
    ],
)
def test_operation_of_a_target(responder, uri, expected):
    assert operation(responder, uri) == expected


@pytest.mark.parametrize(
    "uri",
    [
        b"/srv/\xff\xfe\x80",
        b"/srv/" + bytes(range(1, 256)),
        b"/srv/%s%n%d%x%p",
        b"/srv/\n\r\n\r\nHTTP/1.1 200 OK\r\n\r\n",
        b"/srv/" + b"a" * 100_000,
        b"\xc3\x28" * 3,
    ],
    ids=["not UTF-8", "every byte", "format directives", "line feeds", "over-long", "short binary"],
)
def test_a_hostile_target_names_no_operation(responder, uri):
    answer = responder.ask(uri)
    assert (answer.status, answer.body) == (200, b'{"loginStatus":0}')
    assert responder.ask().status == 200
    responder.log.messages()


def test_a_name_is_found_after_any_bytes(responder):
    answer = responder.ask(b"/srv/" + b"\xff" * 70_000 + b"status")
    assert b'"statusData"' in answer.body


def test_a_target_ends_at_a_zero_byte(responder):
    assert b'"statusData"' not in responder.ask(b"/srv/\0status").body


def test_a_missing_target_names_no_operation(responder):
    answer = fastcgi.ask(responder.socket, {"REQUEST_METHOD": "GET", "REMOTE_ADDR": "127.0.0.1"})
    assert (answer.status, answer.body) == (200, b'{"loginStatus":0}')
    responder.log.wait_for("int get_service_api(FCGX_ParamArray) - kestal.cgi  request received")


def test_the_log_names_the_operation(responder):
    responder.ask("/srv/x?disconnect")
    messages = responder.log.messages()
    begin = messages.index("[KESTAL_CGI]:[DEBUG] - int get_service_api(FCGX_ParamArray) BEGIN")
    assert messages[begin + 1 : begin + 3] == [
        "[KESTAL_CGI]:[INFO] - int get_service_api(FCGX_ParamArray) - kestal.cgi /srv/x?disconnect "
        "request received",
        "[KESTAL_CGI]:[DEBUG] - int get_service_api(FCGX_ParamArray) END returning 3",
    ]
