"""Who counts as logged in: session cookie, caller's address and user agent must all match."""

import json
import os

import pytest

from support import fastcgi
from support.sessions import open_session, session_command

AGENT = "test"


def login_status(responder, cookie=None, address="127.0.0.1", agent=AGENT):
    """Returns the login status of one request; a variable that is None is left out."""
    parameters = {"REQUEST_METHOD": "GET", "REQUEST_URI": "/srv/nothing"}
    for name, value in (
        ("HTTP_COOKIE", cookie),
        ("REMOTE_ADDR", address),
        ("HTTP_USER_AGENT", agent),
    ):
        if value is not None:
            parameters[name] = value
    answer = fastcgi.ask(responder.socket, parameters)
    assert answer.complete and answer.status == 200
    assert answer.body in (b'{"loginStatus":0}', b'{"loginStatus":1}')
    return int(answer.body == b'{"loginStatus":1}')


def let_time_pass(responder, seconds):
    """Moves all sessions of the store into the past."""
    store = json.loads(responder.sessions.read_text())
    for session in store["sessions"]:
        session["opened"] -= seconds
        session["renewed"] -= seconds
    new = responder.sessions.with_name("new.sessions")
    new.write_text(json.dumps(store))
    os.replace(new, responder.sessions)


def test_a_caller_with_its_session_is_logged_in_through_the_web_server(server):
    cookie = open_session(server)
    answer = server.ask("/srv/status", [("Cookie", cookie), ("User-Agent", AGENT)])
    assert answer.body.startswith(b'{"loginStatus":1,"statusData":{')


def test_every_operation_tells_the_login_status(responder):
    cookie = open_session(responder)
    for uri in ("/srv/status", "/srv/notification", "/srv/connect", "/srv/disconnect", "/srv/"):
        answer = responder.ask(uri, HTTP_COOKIE=cookie, HTTP_USER_AGENT=AGENT)
        assert answer.body.startswith(b'{"loginStatus":1'), uri


def test_a_session_belongs_to_one_address_and_one_user_agent(responder):
    cookie = open_session(responder)
    assert login_status(responder, cookie) == 1
    assert login_status(responder, cookie, address="127.0.0.2") == 0
    assert login_status(responder, cookie, address="::1") == 0
    assert login_status(responder, cookie, agent="Test") == 0
    assert login_status(responder, cookie, agent="") == 0
    assert login_status(responder, cookie, agent=None) == 0
    assert login_status(responder, cookie) == 1


def test_a_caller_without_user_agent_may_have_a_session(responder):
    cookie = open_session(responder, agent="")
    assert login_status(responder, cookie, agent=None) == 1


@pytest.mark.parametrize(
    ("opened", "asks"),
    [
        ("2001:db8::1", "2001:DB8:0:0::1"),
        ("127.0.0.1", "::ffff:127.0.0.1"),
        ("::ffff:10.0.0.7", "10.0.0.7"),
    ],
)
def test_one_address_may_be_written_in_several_ways(responder, opened, asks):
    assert login_status(responder, open_session(responder, opened), address=asks) == 1


@pytest.mark.parametrize(
    "address",
    [
        None,
        "",
        "localhost",
        "300.1.1.1",
        "127.0.0.1:80",
        "127.0.0.1 ",
        "fe80::1%eth0",
        "::ffff:300.1.1.1",
        "[::1]",
        "1" * 100_000,
        b"\xff\x80",
        "%s%n",
    ],
)
def test_a_caller_without_a_valid_address_is_not_logged_in(responder, address):
    cookie = open_session(responder)
    assert login_status(responder, cookie, address=address) == 0
    assert login_status(responder, cookie) == 1


def test_an_address_of_an_unknown_family_is_logged(responder):
    login_status(responder, "torusess=x", address="nowhere")
    expected = (
        "[KESTAL_CGI]:[ERROR] - int GetLoginStatus(CgiHelper*, FCGX_Request&) Kestal.cgi: Unable to "
        "determine the family of ip(nowhere)"
    )
    assert expected in responder.log.messages()


def test_a_session_ends_when_it_has_been_idle(responder):
    cookie = open_session(responder, "127.0.0.1", AGENT, "--idle", "1000")
    let_time_pass(responder, 800)
    assert login_status(responder, cookie) == 1
    let_time_pass(responder, 800)
    assert login_status(responder, cookie) == 0


def test_requests_do_not_keep_a_session_alive(responder):
    cookie = open_session(responder, "127.0.0.1", AGENT, "--idle", "1000")
    before = responder.sessions.read_bytes()
    assert login_status(responder, cookie) == 1
    assert responder.sessions.read_bytes() == before
    let_time_pass(responder, 1600)
    assert login_status(responder, cookie) == 0


def test_a_closed_session_ends_at_once_and_others_go_on(responder):
    first, second = open_session(responder), open_session(responder)
    assert (login_status(responder, first), login_status(responder, second)) == (1, 1)
    session_command(responder.environment, "close", first)
    assert (login_status(responder, first), login_status(responder, second)) == (0, 1)


def test_the_first_of_several_cookies_of_one_name_counts(responder):
    cookie = open_session(responder)
    assert login_status(responder, f"{cookie}; torusess=0") == 1
    assert login_status(responder, f"torusess=0; {cookie}") == 0
    assert login_status(responder, f"a=1; {cookie}; b=2") == 1


@pytest.mark.parametrize(
    "cookie",
    [
        None,
        "",
        ";",
        "=",
        "torusess",
        "torusess=",
        "torusess=0000",
        "Torusess",
        ";;;;===;;;",
        "torusess=" + "a" * 65536,
        "a=" + "b" * 65536,
        "a=b; " * 10_000,
        b"torusess=\xff\x00\x80",
        "torusess=%s%n%s",
    ],
    ids=lambda cookie: repr(cookie)[:24],
)
def test_a_cookie_that_names_no_session_logs_nobody_in(responder, cookie):
    known = open_session(responder)
    assert login_status(responder, cookie) == 0
    assert login_status(responder, known) == 1


def test_a_session_is_found_in_a_cookie_header_of_64_kilobytes(responder):
    cookie = open_session(responder)
    assert login_status(responder, f"a={'b' * 65536}; {cookie}") == 1


def test_the_web_server_refuses_a_cookie_of_64_kilobytes_clearly(server):
    answer = server.ask("/srv/status", [("Cookie", "torusess=" + "a" * 65536)])
    assert answer.status == 431
    assert server.ask("/srv/status").status == 200


def test_the_session_store_never_holds_the_identifier(responder):
    identifier = open_session(responder).partition("=")[2]
    assert identifier not in responder.sessions.read_text()
    assert responder.sessions.stat().st_mode & 0o077 == 0


def test_a_damaged_session_store_logs_nobody_in_until_it_is_whole_again(responder):
    cookie = open_session(responder)
    whole = responder.sessions.read_bytes()
    responder.sessions.write_bytes(whole[: len(whole) // 2])
    assert login_status(responder, cookie) == 0
    responder.log.wait_for(str(responder.sessions))
    responder.sessions.write_bytes(whole)
    assert login_status(responder, cookie) == 1
