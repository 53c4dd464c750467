"""Calls of the device that do not return.

A device that is told to connect changes its document, for which it waits until nobody else does. Who
holds that lock and does not let go makes the call hang for good.
"""

import contextlib
import fcntl
import os
import re
import signal
import subprocess

import pytest

from support import fastcgi, paths, processes
from support.logs import times
from support.waiting import DEADLINE, wait_until
from support.watchdog import Watchdog as Receiver

STUCK = 75
CONNECT = {**fastcgi.STATUS, "REQUEST_URI": "/srv/connect"}
FRAME = re.compile(r"\[KESTAL_CGI\]:\[ERROR\] - 0x[0-9a-f]+ : (?P<file>[^(]+)\((?P<symbol>[^)]*)\) .+")

needs_signals = pytest.mark.skipif(
    "thread" in paths.SANITIZERS, reason="the thread sanitizer delays signals until the call returns"
)


def message(step):
    return f"[KESTAL_CGI]:[ERROR] - kestal.cgi is stuck: request ({step}) has not ended within 3000 ms, backtrace:"


@contextlib.contextmanager
def changes_hang(device):
    directory = os.open(device.path.parent, os.O_RDONLY)
    fcntl.flock(directory, fcntl.LOCK_EX)
    try:
        yield
    finally:
        os.close(directory)


@pytest.fixture
def impatient(make_responder):
    """A service whose web server waits only one second for an answer."""
    responder = make_responder()
    responder.environment["KESTAL_TIMEOUT"] = "1"
    return responder.start()


def functions(frames):
    """Names of the service's own functions that the frames of a backtrace belong to."""
    addresses = [FRAME.fullmatch(frame) for frame in frames]
    assert all(addresses), frames
    own = [match["symbol"] for match in addresses if match["file"] == str(paths.SERVICE)]
    # If a frame names an exported symbol, its offset is relative to the symbol and not to the file.
    offsets = [symbol for symbol in own if symbol.startswith("+0x")]
    names = [symbol.partition("+")[0] for symbol in own if not symbol.startswith("+0x")]
    command = ["addr2line", "-f", "-C", "-i", "-e", str(paths.SERVICE), *offsets]
    return names + subprocess.run(command, check=True, capture_output=True, text=True).stdout.splitlines()[::2]


@needs_signals
def test_a_request_that_hangs_is_named_with_all_its_frames_and_ends_the_process(impatient):
    with changes_hang(impatient.device), impatient.connect() as connection:
        connection.send(fastcgi.request(CONNECT))
        assert impatient.process.wait(DEADLINE) == STUCK
    messages = impatient.log.messages()
    frames = messages[messages.index(message("connect")) + 1 :]
    assert 4 < len(frames) <= 48
    found = functions(frames)
    order = ["sys_cellularDataConnect", "SystemServiceComponent::Dispatch", "fastcgi_main_loop", "main"]
    places = [next(i for i, name in enumerate(found) if name.split("(")[0] == wanted) for wanted in order]
    assert places == sorted(places)
    # The service stays registered, so that the watchdog notices if nobody starts it again.
    assert impatient.log.count("unregistered") == 0


@needs_signals
def test_held_back_failures_are_logged_before_the_frames_of_a_hang(make_responder, work):
    responder = make_responder()
    responder.environment |= {
        "KESTAL_LOG_LEVEL": "5",
        "KESTAL_SYSLOG": str(work / "syslog.sock"),
        "KESTAL_TIMEOUT": "1",
    }
    responder.device.set(getGPSStatus={"error": 5})
    with contextlib.closing(Receiver(work / "syslog.sock")) as system_log:
        responder.start()
        for _ in range(4):
            assert responder.ask().status == 200
        with changes_hang(responder.device), responder.connect() as connection:
            connection.send(fastcgi.request(CONNECT))
            assert responder.process.wait(DEADLINE) == STUCK
        for log in responder.log.messages(), system_log.waiting():
            reason = next(i for i, line in enumerate(log) if message("connect") in line)
            failures = [i for i, line in enumerate(log) if "sys_getGPSStatus failed" in line]
            assert sum(times(log[i]) for i in failures) == 5
            assert failures[-1] == reason - 1


@needs_signals
def test_a_termination_of_a_service_that_hangs_does_not_keep_it_alive(impatient):
    with changes_hang(impatient.device), impatient.connect() as connection:
        connection.send(fastcgi.request(CONNECT))
        impatient.log.wait_for("InitializeSysinterface() - END")
        assert impatient.end(signal.SIGTERM) == STUCK
    assert impatient.log.messages().count(message("connect")) == 1


@needs_signals
def test_a_peer_that_does_not_finish_its_request_blocks_the_service_only_until_the_deadline(impatient):
    with impatient.connect() as connection:
        connection.send(fastcgi.request(fastcgi.STATUS)[:30])
        assert impatient.process.wait(DEADLINE) == STUCK
    assert impatient.log.messages().count(message("receipt")) == 1


@needs_signals
def test_the_web_server_starts_a_service_again_that_hangs(make_server):
    server = make_server()
    server.environment["KESTAL_TIMEOUT"] = "1"
    server.start()
    stuck = server.responder()
    with changes_hang(server.device):
        assert server.ask("/srv/connect").status == 504
        # The service ends after three times as long as the web server waits.
        server.log.wait_for(message("connect"))
        wait_until(lambda: not processes.is_alive(stuck), "the service that hangs has ended")
        # The same call of the device still hangs; all other requests are answered.
        wait_until(lambda: server.ask("/srv/status").status == 200, "the service is back")
    assert server.responder() != stuck
    wait_until(lambda: server.ask("/srv/connect").status == 200, "a call of the device returns")


def test_service_and_launcher_have_the_same_default_limit(server):
    told = processes.environment(server.responder())["KESTAL_TIMEOUT"]
    source = (paths.ROOT / "service" / "operation_deadline.cpp").read_text()
    assert re.search(r"kDefaultTimeoutSeconds = (\d+);", source)[1] == told
