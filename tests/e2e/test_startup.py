"""What the service does before its first request, and when it cannot get one."""

import os
import re
import signal
import socket
import subprocess

import pytest

from support import paths
from support.waiting import DEADLINE

DEBUG = "[KESTAL_CGI]:[DEBUG] - "
VERSION = subprocess.run([paths.SERVICE, "--version"], check=True, capture_output=True, text=True, timeout=60).stdout
VERSION_LINE = f"[BINDING]:[NOTICE] - {VERSION.strip()}"


def test_the_start_is_logged_before_the_first_request(make_responder):
    responder = make_responder().start()
    responder.log.wait_for("SystemServiceComponent::SystemServiceComponent() - END")
    messages = responder.log.messages()
    assert messages[0] == VERSION_LINE
    assert messages.count(VERSION_LINE) == 1
    assert re.fullmatch(
        r"\[KESTAL_CGI\]:\[NOTICE\] - KESTAL_CGI Process Start with pthread ID:\d+, "
        rf"process ID:{responder.pid}\.",
        messages[1],
    )
    assert "[BINDING]:[NOTICE] - watchdog: kestal.cgi registered" in messages


@pytest.mark.parametrize("first", ["/usr/bin/kestal.cgi", "kestal.cgi", "./kestal.cgi", "//x//kestal.cgi"])
def test_the_program_name_is_the_base_name_of_the_first_argument(make_responder, first):
    responder = make_responder().start([first])
    responder.ask("/srv/x")
    messages = responder.log.messages()
    assert "[BINDING]:[NOTICE] - watchdog: kestal.cgi registered" in messages
    assert (
        "[KESTAL_CGI]:[INFO] - int get_service_api(FCGX_ParamArray) - kestal.cgi /srv/x request received"
        in messages
    )


def test_further_arguments_are_not_read(make_responder):
    responder = make_responder().start(["kestal.cgi", "--help", "\x01", ""])
    assert responder.ask().status == 200


def test_the_level_of_the_log_is_5_when_none_is_set(make_responder):
    responder = make_responder()
    responder.environment["KESTAL_LOG_LEVEL"] = ""
    responder.start()
    assert responder.end(signal.SIGUSR1) == 0
    messages = responder.log.messages()
    assert messages[0] == VERSION_LINE
    assert messages[1].startswith("[KESTAL_CGI]:[NOTICE] - KESTAL_CGI Process Start with pthread ID:")
    assert messages[2:] == [
        "[BINDING]:[NOTICE] - watchdog: kestal.cgi registered",
        "[BINDING]:[NOTICE] - watchdog: kestal.cgi unregistered",
        "[KESTAL_CGI]:[NOTICE] - KESTAL_CGI Server Terminating.",
    ]


def test_the_log_goes_to_standard_error_when_no_file_is_named(make_responder):
    responder = make_responder()
    del responder.environment["KESTAL_LOG"]
    responder.environment["KESTAL_LOG_LEVEL"] = "5"
    responder.start()
    responder.end()
    assert "Process Start with pthread ID" in (responder.work / "stderr").read_text()


STANDARD_INPUTS = {
    "nothing": "< /dev/null",
    "a file": '< "$KESTAL_DEVICE"',
    "closed": "<&-",
    "a terminal's end": "0< /dev/ptmx",
}


@pytest.mark.parametrize("redirection", STANDARD_INPUTS.values(), ids=STANDARD_INPUTS.keys())
def test_without_a_socket_the_service_ends_by_itself(make_responder, redirection):
    responder = make_responder()
    assert_ends_by_itself(responder, ["/bin/sh", "-c", f'exec "$0" {redirection}', str(paths.SERVICE)])


SOCKETS = {
    "half of a pair": (socket.AF_UNIX, socket.SOCK_STREAM),
    "half of a pair of datagrams": (socket.AF_UNIX, socket.SOCK_DGRAM),
    "UDP": (socket.AF_INET, socket.SOCK_DGRAM),
    "TCP": (socket.AF_INET, socket.SOCK_STREAM),
}


@pytest.mark.parametrize(("family", "kind"), SOCKETS.values(), ids=SOCKETS.keys())
def test_with_a_socket_that_does_not_listen_the_service_ends_by_itself(make_responder, family, kind):
    # The peer stays connected and sends nothing.
    pair = socket.socketpair(family, kind) if family == socket.AF_UNIX else (socket.socket(family, kind),)
    assert_ends_by_itself(make_responder(), [str(paths.SERVICE)], stdin=pair[0])
    for end in pair:
        end.close()


def test_with_closed_descriptors_no_connection_gets_their_numbers(make_server, work):
    """A log line to standard error would go out in front of the answer."""
    program = work / "kestal.cgi"
    program.write_text(f'#!/bin/sh\nexec "{paths.SERVICE}" >&- 2>&-\n')
    program.chmod(0o755)
    server = make_server()
    server.environment |= {"KESTAL_RESPONDER": str(program), "KESTAL_LOG_LEVEL": "6"}
    del server.environment["KESTAL_LOG"]
    server.start()
    assert server.status()["statusBarSimStatus"] == "Ready"
    for number in (1, 2):
        assert os.readlink(f"/proc/{server.responder()}/fd/{number}") == "/dev/null"


def assert_ends_by_itself(responder, command, **arguments):
    run = subprocess.run(
        command, env=responder.environment, stderr=subprocess.DEVNULL, timeout=DEADLINE, **arguments
    )
    assert run.returncode == 0
    messages = responder.log.messages()
    assert f"{DEBUG}int fastcgi_main_loop() END returning 0" in messages
    assert "[BINDING]:[NOTICE] - watchdog: kestal.cgi unregistered" in messages
    assert "[KESTAL_CGI]:[NOTICE] - KESTAL_CGI Server Terminating." in messages
