"""What hostile clients can reach in the shipped deployment, and what must not appear in the logs.
docs/threat-model.md explains the threats."""

import concurrent.futures
import contextlib
import json
import os
import pathlib
import re
import signal
import stat

import pytest

from support import fastcgi, paths, web
from support.sessions import open_session, session_command
from support.waiting import wait_until

OPERATIONS = ["/srv/status", "/srv/notification", "/srv/connect", "/srv/disconnect"]
UNTOUCHED = 1

HOST = b"Host: 127.0.0.1\r\n"
GET = b"GET /srv/status HTTP/1.1\r\n" + HOST
POST = b"POST /srv/status HTTP/1.1\r\n" + HOST
LENGTH = b"Content-Length: 5\r\n"
CHUNKED = b"Transfer-Encoding: chunked\r\n"
# Text that an attacker hides in a request so that the web server might treat it as a second request.
HIDDEN = b"GET /srv/disconnect HTTP/1.1\r\n" + HOST + b"\r\n"

SMUGGLING = {
    "a length and chunks": POST + LENGTH + CHUNKED + b"\r\n0\r\n\r\n",
    "chunks and a length": POST + CHUNKED + LENGTH + b"\r\n0\r\n\r\n",
    "two lengths": POST + LENGTH + b"Content-Length: 6\r\n\r\nhello!",
    "one length twice": POST + LENGTH + LENGTH + b"\r\nhello",
    "a list of lengths": POST + b"Content-Length: 5, 5\r\n\r\nhello",
    "a length with a sign": POST + b"Content-Length: +5\r\n\r\nhello",
    "a negative length": POST + b"Content-Length: -1\r\n\r\n",
    "a hexadecimal length": POST + b"Content-Length: 0x5\r\n\r\nhello",
    "a length of two words": POST + b"Content-Length: 5 6\r\n\r\nhello",
    "an empty length": POST + b"Content-Length: \r\n\r\n",
    "no length": POST + b"\r\n",
    "an unknown encoding": POST + b"Transfer-Encoding: xchunked\r\n\r\n0\r\n\r\n",
    "encodings in turn": POST + b"Transfer-Encoding: identity, chunked\r\n\r\n0\r\n\r\n",
    "chunks that are not last": POST + b"Transfer-Encoding: chunked, identity\r\n\r\n0\r\n\r\n",
    "chunks in HTTP 1.0": POST.replace(b"1.1", b"1.0") + CHUNKED + b"\r\n0\r\n\r\n",
    "a blank before the colon": POST + b"Transfer-Encoding : chunked\r\n\r\n0\r\n\r\n",
    "a chunk of no size": POST + CHUNKED + b"\r\nzz\r\nhello\r\n0\r\n\r\n",
    "a chunk of negative size": POST + CHUNKED + b"\r\n-5\r\nhello\r\n0\r\n\r\n",
    "a chunk of absurd size": POST + CHUNKED + b"\r\nffffffffffffffff1\r\nhello\r\n0\r\n\r\n",
    "a chunk longer than it says": POST + CHUNKED + b"\r\n5\r\nhelloXX0\r\n\r\n",
    "chunks beyond the limit": POST + CHUNKED + b"\r\n11000\r\n" + b"a" * 0x11000 + b"\r\n0\r\n\r\n",
    "a body of a GET": GET + LENGTH + b"\r\nhello",
    "a folded first header": b"GET /srv/status HTTP/1.1\r\n X: y\r\n" + HOST + b"\r\n",
    "a header without a colon": GET + b"X\r\n\r\n",
    "a header without a name": GET + b": x\r\n\r\n",
    "a NUL in a header": GET + b"X: a\0b\r\n\r\n",
    "a NUL in the name of a header": GET + b"X\0: a\r\n\r\n",
    "a NUL in the target": b"GET /srv/st\0atus HTTP/1.1\r\n" + HOST + b"\r\n",
    "a NUL in the method": b"G\0ET /srv/status HTTP/1.1\r\n" + HOST + b"\r\n",
    "a carriage return alone": GET + b"X: a\rb\r\n\r\n",
    "line feeds alone": GET.replace(b"\r\n", b"\n") + b"\n",
    "a target of another host": b"GET http://example.com/srv/connect HTTP/1.1\r\n" + HOST + b"\r\n",
    "a host of another target": b"GET http://127.0.0.1/srv/connect HTTP/1.1\r\nHost: example.com\r\n\r\n",
    "a target of another protocol": b"GET ftp://127.0.0.1/srv/connect HTTP/1.1\r\n" + HOST + b"\r\n",
    "no protocol": b"GET /srv/status\r\n\r\n",
    "a later protocol": b"GET /srv/status HTTP/2.0\r\n" + HOST + b"\r\n",
    "the greeting of a later protocol": b"PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n",
}

OTHER_METHODS = [
    "PUT", "DELETE", "OPTIONS", "TRACE", "CONNECT", "PATCH", "PROPFIND", "LOCK", "MOVE", "PURGE", "get",
    "GETX", "G", "HEAD/", "POST,GET", "M" * 100,
]


@pytest.fixture
def armed(server):
    server.device.set(getCellularDataConnectionStatus=UNTOUCHED)
    return server


def is_untouched(server):
    return server.device.get("getCellularDataConnectionStatus") == UNTOUCHED


def converse(server, request):
    """Sends bytes and returns everything received until the web server closes the connection."""
    with web.connect(server.port) as client:
        client.sendall(request)
        received = b""
        with contextlib.suppress(ConnectionError):
            while piece := client.recv(65536):
                received += piece
    return received


def statuses(received):
    return [int(number) for number in re.findall(rb"HTTP/1\.[01] (\d\d\d) ", received)]


@pytest.mark.parametrize("method", OTHER_METHODS, ids=lambda method: method[:9])
def test_methods_other_than_get_head_and_post_are_refused(make_server, method):
    server = make_server()
    server.environment["KESTAL_DOCUMENT_ROOT"] = str(paths.ROOT / "demo")
    server.start()
    server.device.set(getCellularDataConnectionStatus=UNTOUCHED)
    for target in [*OPERATIONS, "/srv/", "/%73rv/connect", "/", "/index.html", "/nothing", "*"]:
        answer = server.ask(target, [("Content-Length", "0")], method=method)
        assert answer.status in (400, 403, 501), target
    assert is_untouched(server)
    assert server.log.count("request received") == 0


@pytest.mark.parametrize("request_", SMUGGLING.values(), ids=SMUGGLING.keys())
def test_a_request_that_can_be_read_in_two_ways_is_refused_with_all_that_follows(armed, request_):
    (status,) = statuses(converse(armed, request_ + HIDDEN))
    assert status in (400, 403, 411, 413, 501, 505)
    assert is_untouched(armed)
    assert armed.log.count("request received") == 0


ANNOUNCED = {
    "counted": b"Content-Length: %d\r\n\r\n" % len(HIDDEN),
    "in chunks": CHUNKED + b"\r\n%x\r\n" % len(HIDDEN),
    "in chunks, said twice": CHUNKED + CHUNKED + b"\r\n%x\r\n" % len(HIDDEN),
    "to be asked for": b"Expect: 100-continue\r\nContent-Length: %d\r\n\r\n" % len(HIDDEN),
    "behind a folded header": b"X:\r\n Content-Length: 0\r\nContent-Length: %d\r\n\r\n" % len(HIDDEN),
}


@pytest.mark.parametrize("target", [b"/srv/status", b"/srv/connect", b"/", b"/nothing"])
@pytest.mark.parametrize("announced", ANNOUNCED.values(), ids=ANNOUNCED.keys())
def test_a_request_with_a_body_is_refused_before_the_body_is_read(armed, announced, target):
    request = POST.replace(b"/srv/status", target) + announced
    # The answer must come before any of the body has been sent, and the body must not be taken for a request.
    for body in (b"", HIDDEN):
        assert statuses(converse(armed, request + body)) == [403]
    assert is_untouched(armed)
    assert armed.log.count("request received") == 0


def test_no_file_outside_the_folder_of_pages_is_served(make_server, work):
    pages = work / "pages"
    (pages / "folder").mkdir(parents=True)
    (pages / "index.html").write_text("page")
    (work / "pages.secret").write_text("SECRET")
    (work / "secret.js").write_text("SECRET")
    server = make_server()
    server.environment["KESTAL_DOCUMENT_ROOT"] = str(pages)
    server.start()
    assert server.ask("/index.html").body == b"page"
    for up in ("..", "%2e%2e", ".%2e", "%2E.", "..%00", "%252e%252e", "%c0%ae%c0%ae", "..;", ". .", "..."):
        for slash in ("/", "%2f", "%5c", "\\", "//", "%252f", "%c0%af"):
            for target in (f"/{up}{slash}secret.js", f"/folder/{up}{slash}{up}{slash}secret.js", f"/{up}.secret",
                           f"/index.html/{up}{slash}{up}{slash}secret.js", f"{up}{slash}secret.js"):
                answer = server.ask(target)
                # The web server ignores what follows the name of a page.
                assert answer.status in (400, 404) or answer.body == b"page", target
    for target in (str(work / "secret.js"), f"/{work}/secret.js", f"file://{work}/secret.js", "/~root/"):
        assert server.ask(target).status in (400, 404), target


def test_answers_of_the_service_are_never_stored_or_guessed_at(make_server):
    server = make_server().start()

    def ask(method, target, *headers):
        answer = server.ask(target, [*headers, ("Content-Length", "0")], method=method)
        assert answer.headers["cache-control"] == "no-store"
        assert answer.headers["x-content-type-options"] == "nosniff"
        assert "access-control-allow-origin" not in answer.headers
        assert not (method == "HEAD" and answer.body)
        return answer

    methods = ("GET", "HEAD", "POST")
    for method in methods:
        for target in [*OPERATIONS, "/srv/", "/srv/x?y"]:
            answer = ask(method, target)
            assert (answer.status, answer.headers["content-type"]) == (200, "application/json")
            assert ask(method, target, ("Host", "example.com")).status == 403
    assert ask("PUT", "/srv/status").status == 403
    server.device.set(getWebUICarrierEnabled=0)
    assert {ask(method, target).status for method in methods for target in OPERATIONS} == {501}
    # The short timeout applies only from here on: before, it would give up a service that is merely slow.
    server.stop()
    server.environment["KESTAL_TIMEOUT"] = "1"
    server.start()
    responder = server.responder()
    os.kill(responder, signal.SIGSTOP)
    assert ask("GET", "/srv/status").status == 504
    (server.run / "kestal.cgi").unlink()
    os.kill(responder, signal.SIGKILL)
    wait_until(lambda: ask("GET", "/srv/status").status == 503, "the web server knows that it is gone")


REFUSED_WHILE_READ = {
    "dot segments": b"GET /srv/../status HTTP/1.1\r\n" + HOST + b"\r\n",
    "a large target": b"GET /srv/" + b"a" * 9000 + b" HTTP/1.1\r\n" + HOST + b"\r\n",
    "a large head": GET + b"X: " + b"a" * 9000 + b"\r\n\r\n",
    "a large body": POST + b"Content-Length: 65537\r\n\r\n",
    "an unknown method": b"GETX /srv/status HTTP/1.1\r\n" + HOST + b"\r\n",
}


def test_answers_that_may_be_stored_contain_nothing_about_the_device(server):
    """The web server refuses such a request before it looks at the target."""
    storable = set()
    for name, request in (SMUGGLING | REFUSED_WHILE_READ).items():
        received = converse(server, request)
        (status,) = statuses(received)
        head, _, body = received.partition(b"\r\n\r\n")
        if b"\r\nCache-Control: no-store" not in head:
            storable.add(status)
        # An error page of the web server, which contains only the status.
        texts = {text for text in re.sub(rb"<[^>]*>", b"\n", body).split(b"\n") if text.strip()}
        assert len(texts) == 1 and texts.pop().startswith(b"%d " % status), name
        assert b"access-control" not in head.lower(), name
    # For a protocol that the web server does not support it answers 505 or 400, depending on its release.
    assert storable | {505} == {400, 411, 413, 431, 501, 505}
    assert server.log.count("request received") == 0


def test_the_configuration_limits_the_cost_of_one_client():
    settings = dict(
        re.findall(r"(?m)^server\.([a-z-]+) += (\d+)$", (paths.ROOT / "deploy" / "lighttpd.conf").read_text())
    )
    assert settings == {
        "max-request-size": "1",
        "max-request-field-size": "8192",
        "max-read-idle": "10",
        "max-write-idle": "30",
        "max-keep-alive-idle": "5",
        "max-connections": "256",
    }


def established(server):
    """The number of the web server's connections that neither side has closed."""
    own = f":{server.port:04X}"
    rows = [row.split() for row in pathlib.Path("/proc/net/tcp").read_text().splitlines()[1:]]
    return sum(local.endswith(own) and state == "01" for _, local, _, state, *_ in rows)


def begin(server, request):
    """A client that sends bytes and then nothing. If it is late, the server has already closed it."""
    client = web.connect(server.port)
    with contextlib.suppress(ConnectionError):
        client.sendall(request)
    return client


def is_answered(server, target):
    """Whether one more client gets an answer; a client that is late does not."""
    with contextlib.suppress(ConnectionError, IndexError):
        return server.ask(target).status == 200
    return False


def test_slow_clients_are_dropped(make_server, work):
    pages = work / "pages"
    pages.mkdir()
    # More than the kernel buffers for a client that does not read.
    (pages / "large.js").write_bytes(b"a" * 50_000_000)
    server = make_server()
    server.environment["KESTAL_DOCUMENT_ROOT"] = str(pages)
    server.limit(max_read_idle=1, max_write_idle=1, max_keep_alive_idle=1)
    server.start()
    begun = {
        "says nothing": b"",
        "stops in the request line": b"GET /srv/sta",
        "stops in the headers": GET + b"X: ",
        "does not read": b"GET /large.js HTTP/1.1\r\n" + HOST + b"\r\n",
    }
    with contextlib.ExitStack() as stack:
        for request in begun.values():
            stack.enter_context(begin(server, request))

        def answers_a_single_request():
            client = stack.enter_context(begin(server, GET.replace(b"status", b"once") + b"\r\n"))
            with contextlib.suppress(ConnectionError):
                return statuses(client.recv(65536)) == [200]
            return False

        wait_until(answers_a_single_request, "a client that sends a single request is answered")
        wait_until(lambda: is_answered(server, "/srv/other"), "others are answered")
        wait_until(lambda: established(server) == 0, "the web server has dropped all slow clients")
    assert server.log.count("/srv/status request received") == 0


def test_when_there_are_too_many_clients_others_wait_until_the_slow_ones_are_dropped(make_server):
    server = make_server()
    server.limit(max_connections=4, max_read_idle=1)
    server.start()
    slow = []

    def too_many():
        slow.append(begin(server, b"GET /srv/sta"))
        return "connection limit reached" in server.server_messages()

    wait_until(too_many, "the web server reports that there are too many")
    with concurrent.futures.ThreadPoolExecutor(1) as pool:
        asked = pool.submit(wait_until, lambda: is_answered(server, "/srv/status"), "another one is answered")
        for client in slow:
            with client, contextlib.suppress(ConnectionError):
                assert client.recv(1) == b""
        asked.result()


def test_no_other_user_reads_what_the_service_writes(make_server):
    before = os.umask(0)
    try:
        server = make_server().start()
        open_session(server)
    finally:
        os.umask(before)
    assert server.ask("/srv/status").status == 200
    for path in (server.run, server.sessions, server.log.path):
        assert stat.S_IMODE(path.stat().st_mode) & 0o007 == 0, path
    assert stat.S_IMODE(server.sessions.stat().st_mode) == 0o600


def present(server, identifier):
    """Sends a session's identifier in every way that a client can."""
    agent = ("User-Agent", "test")
    good = f"torusess={identifier}"
    for cookie in (good, f"a=b; {good}; {good}", f"torusess={identifier}%s%n", f'torusess="{identifier}"',
                   f"{good}\x80", f"a={identifier}", identifier, f"torusess=\x1b[2J{identifier}",
                   f"$Version=1; {good}; $Path=/", f"{good}\r\n folded", good + ";" * 3000, good + "a" * 9000):
        for target in [*OPERATIONS, "/srv/../x", "/nothing"]:
            server.ask(target, [("Cookie", cookie), agent])
    server.ask("/srv/connect", [("Cookie", good), agent, ("Sec-Fetch-Site", "cross-site")])
    server.ask("/srv/status", [("Cookie", good), agent, ("Host", "example.com")])
    server.ask("/srv/status", [("Cookie", good), agent, ("Content-Length", "70000")], method="POST")
    for request in SMUGGLING.values():
        converse(server, request.replace(HOST, HOST + f"Cookie: {good}\r\n".encode()))
    # Send it directly, like a web server that checks nothing.
    parameters = {**fastcgi.STATUS, "HTTP_COOKIE": good, "HTTP_USER_AGENT": "test"}
    for changed in ({"REMOTE_ADDR": "nowhere"}, {"CONTENT_LENGTH": "9"}, {"CONTENT_LENGTH": "x"},
                    {"REQUEST_METHOD": "POST", "CONTENT_LENGTH": "9", "CONTENT_TYPE": "multipart/form-data"}):
        fastcgi.ask(server.run / "responder.sock-0", {**parameters, **changed}, b"short")


@pytest.mark.parametrize("level", range(7))
def test_below_level_7_no_log_contains_a_session_identifier(make_server, work, level):
    server = make_server()
    server.environment["KESTAL_LOG_LEVEL"] = str(level)
    server.start()
    identifier = open_session(server).partition("=")[2]
    present(server, identifier)
    session_command(server.environment, "renew", identifier)
    assert identifier not in session_command(server.environment, "list")

    whole = server.sessions.read_bytes()
    server.sessions.write_bytes(whole[:-20])
    present(server, identifier)
    server.sessions.write_bytes(whole)
    os.kill(server.responder(), signal.SIGSEGV)
    wait_until(lambda: server.ask("/srv/status").status == 200, "the service is back")
    assert server.ask("/srv/x", [("Cookie", f"torusess={identifier}"), ("User-Agent", "test")]).json() == {
        "loginStatus": 1
    }

    if level >= 3:
        assert "nobody is logged in" in server.log.text()
        assert "session check failed" in server.log.text()
    assert "413" in server.server_messages()
    files = [file for file in work.rglob("*") if file.is_file() and not file.is_symlink()]
    assert {server.log.path, server.sessions, server.messages} <= {*files, server.log.path}
    for file in files:
        assert identifier.encode() not in file.read_bytes(), file


def test_at_level_7_one_line_contains_the_session_identifier(server):
    cookie = open_session(server)
    server.ask("/srv/status", [("Cookie", cookie), ("User-Agent", "test")])
    identifier = cookie.partition("=")[2]
    assert [message for message in server.log.messages() if identifier in message] == [
        "[KESTAL_CGI]:[DEBUG] - int GetLoginStatus(CgiHelper*, FCGX_Request&) - sessionId " + identifier
    ]


def test_the_default_log_level_is_below_7(make_server):
    server = make_server()
    server.environment["KESTAL_LOG_LEVEL"] = ""
    server.start()
    server.ask("/srv/status", [("Cookie", open_session(server)), ("User-Agent", "test")])
    assert ":[DEBUG] - " not in server.log.text()


def test_a_status_cannot_be_run_as_a_script(server):
    """A page of another site cannot use an answer that it makes a browser load, whatever it tries."""
    answer = server.ask("/srv/status", [("Sec-Fetch-Site", "cross-site"), ("Sec-Fetch-Dest", "script")])
    assert isinstance(json.loads(answer.body), dict)
    assert answer.headers["content-type"] == "application/json"
    assert answer.headers["x-content-type-options"] == "nosniff"
