"""The service works on when the system log is absent, hangs or is restarted."""

import signal
import socket

import pytest

from support.watchdog import Watchdog as Receiver

FAILED = "sys_getGPSStatus failed"
FILLER = "filler"


@pytest.fixture
def logging_responder(make_responder, work):
    """A service on a device with a failing call, which is reported to the system log each time."""
    responder = make_responder()
    responder.environment["KESTAL_SYSLOG"] = str(work / "syslog.sock")
    responder.device.set(getGPSStatus={"error": 5})
    return responder


@pytest.fixture
def system_log(work):
    log = Receiver(work / "syslog.sock")
    yield log
    log.close()


def fill(log):
    """Fills the log's socket until no message fits, whatever the system's limit is. Each message comes from
    a new socket, as those of the service do: a single socket might reach its own limit first."""
    while True:
        with socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM) as sender:
            sender.setblocking(False)
            try:
                sender.sendto(FILLER.encode(), log.path)
            except BlockingIOError:
                return


def is_right(answer):
    return answer.complete and answer.status == 200 and b'"statusData":{' in answer.body


def test_the_system_log_gets_the_lines_of_failures(logging_responder, system_log):
    responder = logging_responder.start()
    assert is_right(responder.ask())
    lines = [line for line in system_log.waiting() if FAILED in line]
    assert len(lines) == 1
    assert lines[0].startswith(f"<138>kestal.cgi[{responder.pid}]: [KESTAL_CGI]:[ERROR] - ")


def test_without_a_system_log_the_service_works(logging_responder):
    responder = logging_responder.start()
    for _ in range(20):
        assert is_right(responder.ask())
    assert responder.end() == 0


def test_a_system_log_that_hangs_keeps_nobody_waiting(logging_responder, system_log):
    responder = logging_responder.start()
    before = responder.log.count(FAILED)
    fill(system_log)
    for _ in range(20):
        assert is_right(responder.ask())
    assert responder.log.count(FAILED) - before == 20
    assert not [line for line in system_log.waiting() if FAILED in line]
    # The service logs again as soon as there is room.
    assert is_right(responder.ask())
    assert len([line for line in system_log.waiting() if FAILED in line]) == 1


@pytest.mark.parametrize("signo", [signal.SIGTERM, signal.SIGSEGV])
def test_a_system_log_that_hangs_does_not_hold_up_the_end(logging_responder, system_log, signo):
    responder = logging_responder.start()
    system_log.waiting()
    fill(system_log)
    assert is_right(responder.ask())
    assert responder.end(signo) == (0 if signo == signal.SIGTERM else signo)
    assert responder.log.count("Server Terminating") == (1 if signo == signal.SIGTERM else 0)
    assert set(system_log.waiting()) == {FILLER}


def test_a_system_log_that_is_started_again_gets_the_next_lines(logging_responder, work):
    responder = logging_responder.start()
    first = Receiver(work / "syslog.sock")
    responder.ask()
    assert any(FAILED in line for line in first.waiting())
    first.close()
    assert is_right(responder.ask())
    (work / "syslog.sock").unlink()
    assert is_right(responder.ask())
    second = Receiver(work / "syslog.sock")
    responder.ask()
    assert len([line for line in second.waiting() if FAILED in line]) == 1
    second.close()
