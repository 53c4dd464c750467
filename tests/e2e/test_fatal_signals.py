"""SIGSEGV, SIGABRT and SIGILL lead to a backtrace in the log and the signal's number as exit status."""

import ctypes
import os
import pathlib
import re
import signal

import pytest

from support import paths
from support.load import Load
from support.waiting import DEADLINE, wait_until

FATAL = [signal.SIGSEGV, signal.SIGABRT, signal.SIGILL]
LIBC = ctypes.CDLL(None, use_errno=True)
NOTIFIED = "virtual bool KeepAliveHandler::OnThreadNotify(unsigned int) - END"
one_other_thread = pytest.mark.skipif("thread" in paths.SANITIZERS, reason="the sanitizer adds a thread")
FRAME = re.compile(r"\[KESTAL_CGI\]:\[ERROR\] - 0x[0-9a-f]+ : .+")


def send(responder, thread, signo):
    assert LIBC.tgkill(responder.pid, thread, signo) == 0, os.strerror(ctypes.get_errno())


def keep_alive_thread(responder):
    """Id of the service's other thread."""
    threads = [int(task.name) for task in pathlib.Path(f"/proc/{responder.pid}/task").iterdir()]
    assert len(threads) == 2
    return next(thread for thread in threads if thread != responder.pid)


def assert_backtrace(messages, signo):
    received = f"[KESTAL_CGI]:[ERROR] - kestal.cgi received signal: {int(signo)}, backtrace:"
    assert messages.count(received) == 1
    rest = messages[messages.index(received) + 1 :]
    frames = [message for message in rest if FRAME.fullmatch(message)]
    assert frames == rest[: len(frames)]
    assert 1 <= len(frames) <= 48


@pytest.mark.parametrize("signo", FATAL)
def test_a_fatal_signal_leaves_a_backtrace(responder, signo):
    responder.ask()
    assert responder.end(signo) == signo
    assert_backtrace(responder.log.messages(), signo)
    assert responder.log.count("Server Terminating") == 0


@pytest.mark.parametrize("signo", FATAL)
def test_a_fatal_signal_does_not_unregister(make_responder, watchdog, signo):
    responder = make_responder()
    responder.environment["NOTIFY_SOCKET"] = watchdog.path
    responder.start()
    assert responder.end(signo) == signo
    assert [message.partition("\n")[0] for message in watchdog.waiting()] == ["READY=1"]


def test_a_backtrace_is_logged_at_the_usual_level(make_responder):
    responder = make_responder()
    responder.environment["KESTAL_LOG_LEVEL"] = "3"
    responder.start()
    assert responder.end(signal.SIGSEGV) == signal.SIGSEGV
    assert_backtrace(responder.log.messages(), signal.SIGSEGV)


@pytest.mark.skipif(bool(paths.SANITIZERS), reason="sanitizers take locks in signal handlers")
@pytest.mark.parametrize("signo", FATAL)
def test_a_fatal_signal_ends_a_busy_service_too(make_responder, signo):
    """The signal may arrive anywhere: in the allocator, while a line is logged, in the keep-alive thread."""
    for number in range(15):
        responder = make_responder()
        responder.log.path.unlink(missing_ok=True)
        responder.device.set(getWatchdogInterval=1)
        responder.start()
        with Load(responder) as load:
            wait_until(lambda: len(load.answers) > number % 5, "answers")
            assert responder.end(signo) == signo
        assert responder.log.count(f"kestal.cgi received signal: {int(signo)}, backtrace:") == 1


def test_with_two_fatal_signals_the_exit_status_is_one_of_them(responder):
    responder.process.send_signal(signal.SIGSEGV)
    responder.process.send_signal(signal.SIGABRT)
    assert responder.process.wait(DEADLINE) in (signal.SIGSEGV, signal.SIGABRT)


def test_with_a_fatal_signal_and_a_termination_at_once_the_exit_status_is_that_of_one_of_them(make_responder):
    for _ in range(20):
        responder = make_responder().start()
        responder.process.send_signal(signal.SIGTERM)
        responder.process.send_signal(signal.SIGSEGV)
        assert responder.process.wait(DEADLINE) in (0, signal.SIGSEGV)


@one_other_thread
@pytest.mark.parametrize("signo", FATAL)
def test_a_fatal_signal_in_either_thread_leaves_a_backtrace(make_responder, signo):
    for thread in (lambda responder: responder.pid, keep_alive_thread):
        responder = make_responder()
        responder.log.path.unlink(missing_ok=True)
        responder.start()
        send(responder, thread(responder), signo)
        assert responder.process.wait(DEADLINE) == signo
        assert_backtrace(responder.log.messages(), signo)


@one_other_thread
@pytest.mark.parametrize("signo", FATAL)
def test_a_fatal_signal_in_the_keep_alive_thread_does_the_same_after_its_first_round(make_responder, signo):
    """By then the service has a separate stack for signal handlers."""
    responder = make_responder()
    responder.device.set(getWatchdogInterval=1)
    responder.start()
    responder.log.wait_for(NOTIFIED)
    send(responder, keep_alive_thread(responder), signo)
    assert responder.process.wait(DEADLINE) == signo
    assert_backtrace(responder.log.messages(), signo)


@pytest.mark.skipif(bool(paths.SANITIZERS), reason="sanitizers take locks in signal handlers")
@pytest.mark.parametrize("signo", FATAL)
def test_a_fatal_signal_in_either_thread_ends_a_busy_service(make_responder, signo):
    for number in range(8):
        responder = make_responder()
        responder.log.path.unlink(missing_ok=True)
        responder.start()
        thread = keep_alive_thread(responder) if number % 2 else responder.pid
        with Load(responder) as load:
            wait_until(lambda: len(load.answers) > number, "answers")
            send(responder, thread, signo)
            assert responder.process.wait(DEADLINE) == signo
        assert responder.log.count(f"kestal.cgi received signal: {int(signo)}, backtrace:") == 1
        # A half-written answer must not look complete.
        assert all(answer.status == 200 and answer.body.endswith(b"}") for answer in load.answers if answer.complete)
