"""Which requests the shipped web server configuration lets through, and how the launcher checks its
settings."""

import contextlib
import json
import pathlib
import re
import shutil
import socket
import stat

import pytest

from support import paths, processes, web
from support.sessions import open_session
from support.waiting import DEADLINE, wait_until
from support.watchdog import Watchdog as Receiver


def is_there(address):
    """Whether this machine has an address."""
    with contextlib.suppress(OSError), socket.create_server((address, 0), family=family(address)):
        return True
    return False


def family(address):
    return socket.AF_INET6 if ":" in address else socket.AF_INET


def test_by_default_only_the_device_itself_reaches_the_web_server(server):
    assert "KESTAL_ADDRESS" not in server.environment
    assert processes.listens(server.process.pid) == {("127.0.0.1", server.port)}
    assert processes.listens(server.responder()) == set()


@pytest.mark.parametrize(
    ("address", "bound", "asked"),
    [
        ("127.0.0.2", "127.0.0.2", ["127.0.0.2"]),
        ("0.0.0.0", "0.0.0.0", ["127.0.0.1", "127.0.0.2"]),
        ("::1", "::1", ["::1"]),
        ("::", "::", ["::1"]),
        ("[::]", "::", ["::1"]),
    ],
)
def test_the_web_server_listens_at_the_given_address_with_the_same_access_rules(make_server, address, bound, asked):
    if not is_there(bound):
        pytest.skip(f"this machine has no address {bound}")
    page = "http://hotspot.lan"
    server = make_server()
    server.environment |= {"KESTAL_ADDRESS": address, "KESTAL_ORIGINS": page}
    # Do not wait here until it serves; the requests below do.
    server.process = server.launch()
    wait_until(server.is_up, "the web server has started")
    assert processes.listens(server.process.pid) == {(bound, server.port)}
    server.device.set(getCellularDataConnectionStatus=1)
    for own in asked:

        def ask(target, *headers, own=own):
            return server.ask(target, [("User-Agent", "test"), *headers], address=own)

        wait_until(lambda: ask("/srv/status").status == 200, "the service serves")
        # A client that connects to 127.0.0.2 has the address 127.0.0.1.
        session = ("Cookie", open_session(server, "::1" if own == "::1" else "127.0.0.1"))
        assert ask("/srv/status", session).json()["loginStatus"] == 1
        assert ask("/srv/status").json()["loginStatus"] == 0
        assert ask("/srv/status", ("Host", "example.com")).status == 403
        assert ask("/srv/disconnect", ("Origin", "http://example.com")).status == 403
        assert server.device.get("getCellularDataConnectionStatus") == 1
    own_page = [("Origin", page), ("Host", "hotspot.lan")]
    assert server.ask("/srv/disconnect", own_page, address=asked[0]).status == 200
    assert server.device.get("getCellularDataConnectionStatus") == 0


@pytest.mark.parametrize(
    "target",
    ["/", "/srv", "/srvx", "/status", "/x/srv/status", "/SRV/status", "/index.html", "/responder.sock-0",
     "/server.pid", "http://127.0.0.1/status", "/%2fsrv/status", "/favicon.ico"],
)
def test_nothing_but_srv_is_routed_to_the_service(server, target):
    assert server.ask(target).status in (400, 404)
    assert server.log.count("request received") == 0


@pytest.mark.parametrize("target", ["/srv/", "/srv/x/y", "/srv/status?x=1", "/%73rv/status", "/srv%2fstatus"])
def test_everything_below_srv_is_routed_to_the_service(server, target):
    answer = server.ask(target)
    assert answer.status == 200
    assert answer.json()["loginStatus"] == 0
    assert server.log.count(f"kestal.cgi {target} request received") == 1


@pytest.mark.parametrize(
    "target",
    ["/srv/../status", "/srv/./status", "/srv/connect/../status", "/srv/x/%2e%2e/status", "/srv//status",
     "/srv/a%00b", b"/srv/\x80\xff", b"/srv/\x01", "srv/status", ""],
)
def test_a_malformed_target_is_refused(server, target):
    assert server.ask(target).status == 400
    assert server.log.count("request received") == 0
    assert server.ask("/srv/status").status == 200


def test_answers_of_the_service_are_not_stored_or_guessed_at(server):
    for target in ("/srv/status", "/srv/x"):
        headers = server.ask(target).headers
        assert headers["cache-control"] == "no-store"
        assert headers["x-content-type-options"] == "nosniff"
        assert headers["content-type"] == "application/json"


def test_no_answer_contains_the_version_of_the_web_server(server):
    for target in ("/srv/status", "/nothing", "/srv//"):
        answer = server.ask(target)
        assert "server" not in answer.headers
        assert b"lighttpd" not in answer.body.lower()


def test_no_folder_is_listed(make_server, work):
    files = work / "files"
    (files / "folder").mkdir(parents=True)
    (files / "folder" / "secret.txt").write_text("x")
    server = make_server()
    server.environment["KESTAL_DOCUMENT_ROOT"] = str(files)
    server.start()
    for target in ("/", "/folder/"):
        answer = server.ask(target)
        assert answer.status in (403, 404)
        assert b"secret" not in answer.body
    (files / "index.html").write_text("hello")
    assert server.ask("/").body == b"hello"
    assert server.ask("/srv/status").status == 200


def test_a_page_loads_nothing_from_elsewhere_and_is_shown_in_no_other(make_server):
    server = make_server()
    server.environment["KESTAL_DOCUMENT_ROOT"] = str(paths.ROOT / "demo")
    server.start()
    for target in ("/", "/app.js", "/style.css", "/favicon.svg", "/nothing"):
        headers = server.ask(target).headers
        directives = dict(part.split(" ", 1) for part in headers["content-security-policy"].split("; "))
        assert directives.pop("default-src") == "'none'"
        assert {name for name, value in directives.items() if value == "'none'"} == {
            "base-uri", "form-action", "frame-ancestors"
        }
        assert {name for name, value in directives.items() if value == "'self'"} == {
            "script-src", "style-src", "img-src", "connect-src"
        }
        assert len(directives) == 7
        assert headers["x-content-type-options"] == "nosniff"
        # A stricter policy would hide from the access rules that a GET comes from our own page.
        assert headers["referrer-policy"] == "same-origin"


def test_a_large_body_is_refused(server):
    assert server.ask("/srv/status", method="POST", body=b"a" * 1025).status == 413
    headers = [("Content-Length", "99999999999")]
    assert server.ask("/srv/status", headers, method="POST").status == 413
    assert server.ask("/srv/status").status == 200


def test_a_large_head_is_refused(server):
    assert server.ask("/srv/" + "a" * 7000).status == 200
    assert server.ask("/srv/" + "a" * 9000).status == 431
    assert server.ask("/srv/status", [("X", "a" * 9000)]).status == 431
    assert server.ask("/srv/status").status == 200


def test_slow_clients_keep_nobody_waiting(server):
    clients = [web.connect(server.port) for _ in range(50)]
    for client in clients:
        client.sendall(b"GET /srv/sta")
    assert server.ask("/srv/status").status == 200
    for client in clients:
        client.close()


def test_the_run_directory_is_closed_to_other_users(server):
    assert stat.S_IMODE(server.run.stat().st_mode) == 0o700
    assert list(server.run.glob("responder.sock*"))


def test_an_existing_run_directory_is_closed_to_other_users(make_server):
    server = make_server()
    server.run.mkdir(mode=0o755)
    server.start()
    assert stat.S_IMODE(server.run.stat().st_mode) == 0o700


@pytest.mark.parametrize(("value", "chosen"), [(None, "libexec/locales"), ("", ""), ("/elsewhere", "/elsewhere")])
def test_the_service_uses_the_locales_beside_the_launcher_unless_others_are_chosen(make_server, work, value, chosen):
    server = make_server()
    installed = work / "libexec"
    (installed / "locales").mkdir(parents=True)
    server.environment["KESTAL_CONFIGURATION"] = str(paths.ROOT / "deploy" / "lighttpd.conf")
    server.launcher = pathlib.Path(shutil.copy(server.launcher, installed))
    server.environment.pop("LOCPATH", None)
    if value is not None:
        server.environment["LOCPATH"] = value
    server.start()
    assert processes.environment(server.responder())["LOCPATH"] == (str(work / chosen) if value is None else chosen)


@pytest.mark.parametrize("slashes", ["", "/", "//"])
@pytest.mark.parametrize("command", ["start", "sweep"])
def test_a_run_directory_that_is_a_link_is_refused(make_server, work, command, slashes):
    """With a link, whoever made it could choose the folder whose permissions change and files are removed."""
    server = make_server()
    folder = work / "folder"
    folder.mkdir(mode=0o755)
    (folder / "responder.sock-0").touch()
    server.run.symlink_to(folder)
    server.environment["KESTAL_RUN_DIRECTORY"] = f"{server.run}{slashes}"
    launcher = server.launch(command)
    assert launcher.wait(DEADLINE) == 1
    assert f"the run directory {server.run} is a symbolic link\n" in launcher.stderr.read().decode()
    launcher.stderr.close()
    assert stat.S_IMODE(folder.stat().st_mode) == 0o755
    assert [path.name for path in folder.iterdir()] == ["responder.sock-0"]


@pytest.mark.parametrize("name", ["mine.json", "@mine.json", "mine="])
def test_the_device_may_be_named_relative_to_the_callers_folder(make_server, work, monkeypatch, name):
    monkeypatch.chdir(work)
    server = make_server()
    server.device.path.rename(name)
    server.environment["KESTAL_DEVICE"] = name
    server.start()
    assert json.loads(server.ask("/srv/status").body)["statusData"]


@pytest.mark.parametrize("kind", ["relative", "absolute", "abstract"])
def test_the_system_log_may_be_named_in_each_way(make_server, work, monkeypatch, kind):
    monkeypatch.chdir(work)
    name = {"relative": "log.sock", "absolute": str(work / "log.sock"), "abstract": f"@{work}/log.sock"}[kind]
    system_log = Receiver(name.replace("@", "\0"))
    server = make_server()
    server.environment["KESTAL_SYSLOG"] = name
    server.device.set(getGPSStatus={"error": 5})
    server.start()
    assert server.ask("/srv/status").status == 200
    assert any("sys_getGPSStatus failed" in line for line in system_log.waiting())
    system_log.close()


def test_systemd_does_not_count_a_stop_with_open_connections_as_a_failure(server):
    unit = (paths.ROOT / "deploy" / "kestal.service.in").read_text()
    (expected,) = re.findall(r"(?m)^SuccessExitStatus=(\d+)$", unit)
    with web.connect(server.port) as client:
        client.sendall(b"GET /srv/sta")
        # After this answer the web server has accepted both connections.
        assert server.ask("/srv/status").status == 200
        server.process.terminate()
        assert server.process.wait(DEADLINE) == int(expected)


def test_the_service_may_be_in_a_folder_with_a_blank(make_server, work):
    folder = work / "a folder"
    folder.mkdir()
    server = make_server()
    (folder / "kestal.cgi").symlink_to(server.environment["KESTAL_RESPONDER"])
    server.environment["KESTAL_RESPONDER"] = str(folder / "kestal.cgi")
    assert server.start().ask("/srv/status").status == 200


@pytest.mark.parametrize(
    ("name", "value", "message"),
    [
        ("KESTAL_PORT", "http", "KESTAL_PORT is not a number: 'http'"),
        ("KESTAL_PORT", "-1", "KESTAL_PORT is not a number: '-1'"),
        ("KESTAL_PORT", "0", "KESTAL_PORT must lie between 1 and 65535: '0'"),
        ("KESTAL_PORT", "65536", "KESTAL_PORT must lie between 1 and 65535: '65536'"),
        ("KESTAL_PORT", "00080", "KESTAL_PORT must not begin with 0: '00080'"),
        ("KESTAL_TIMEOUT", "soon", "KESTAL_TIMEOUT is not a number: 'soon'"),
        ("KESTAL_TIMEOUT", "601", "KESTAL_TIMEOUT must lie between 1 and 600: '601'"),
        ("KESTAL_RESPONDER", "/nowhere/kestal.cgi", "no such program: /nowhere/kestal.cgi"),
        ("KESTAL_RESPONDER", "/tmp", "no such program: /tmp"),
        ("KESTAL_CONFIGURATION", "/nowhere", "no configuration: /nowhere"),
        ("KESTAL_DOCUMENT_ROOT", "/nowhere", "no folder of static files: /nowhere"),
        ("KESTAL_RUN_DIRECTORY", "/nowhere/run", "cannot make the run directory /nowhere/run"),
    ],
)
def test_the_launcher_refuses_invalid_settings(make_server, name, value, message):
    server = make_server()
    server.environment[name] = value
    launcher = server.launch()
    assert launcher.wait(DEADLINE) == 1
    assert f"kestal-server: {message}\n" in launcher.stderr.read().decode()
    launcher.stderr.close()


@pytest.mark.parametrize("name", ["a blank", "x" * 120])
def test_the_launcher_refuses_a_run_directory_with_an_unusable_name(make_server, work, name):
    server = make_server()
    server.environment["KESTAL_RUN_DIRECTORY"] = str(work / name)
    launcher = server.launch()
    assert launcher.wait(DEADLINE) == 1
    assert "the name of the run directory" in launcher.stderr.read().decode()
    launcher.stderr.close()


def test_the_launcher_refuses_an_unknown_command(make_server):
    launcher = make_server().launch("stop")
    assert launcher.wait(DEADLINE) == 1
    assert "unknown command 'stop'" in launcher.stderr.read().decode()
    launcher.stderr.close()
