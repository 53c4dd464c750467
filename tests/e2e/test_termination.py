"""SIGTERM, and the normal end of the loop."""

import os
import signal
import statistics
import time

from support import fastcgi, processes
from support.load import Load
from support.waiting import DEADLINE, wait_until

DEBUG = "[KESTAL_CGI]:[DEBUG] - "
TERMINATION = [
    f"{DEBUG}int KeepAliveHandler::Shutdown() - BEGIN",
    f"{DEBUG}int KeepAliveHandler::Shutdown() - Unregistering kestal.cgi with watchdog",
    "[BINDING]:[NOTICE] - watchdog: kestal.cgi unregistered",
    f"{DEBUG}int KeepAliveHandler::Shutdown() - END returning 0",
    f"{DEBUG}KESTAL_CGI Server Terminating",
]
ROUNDS = 200


def test_a_termination_unregisters_and_ends_with_status_0(responder):
    responder.log.wait_for("SystemServiceComponent::SystemServiceComponent() - END")
    before = len(responder.log.messages())
    assert responder.end(signal.SIGTERM) == 0
    assert responder.log.messages()[before:] == TERMINATION


def test_a_termination_after_requests_logs_the_same(responder):
    for uri in ("/srv/status", "/srv/connect"):
        responder.ask(uri)
    responder.log.wait_for("End KESTAL_CGI request", 2)
    before = len(responder.log.messages())
    assert responder.end(signal.SIGTERM) == 0
    messages = responder.log.messages()[before:]
    assert messages[: len(TERMINATION)] == TERMINATION
    assert responder.log.count("Server Terminating") == 1


def test_a_termination_reaches_the_watchdog(make_responder, watchdog):
    responder = make_responder()
    responder.environment["NOTIFY_SOCKET"] = watchdog.path
    responder.start()
    responder.end(signal.SIGTERM)
    assert [message.partition("\n")[0] for message in watchdog.waiting()] == ["READY=1", "STOPPING=1"]


def test_several_terminations_have_the_effect_of_one(responder):
    for _ in range(20):
        responder.process.send_signal(signal.SIGTERM)
    assert responder.process.wait(DEADLINE) == 0
    assert responder.log.count("Server Terminating") == 1


def test_a_termination_during_a_request_waits_for_its_answer(responder):
    with responder.connect() as connection:
        whole = fastcgi.request(fastcgi.STATUS)
        connection.send(whole[:30])
        wait_until(lambda: processes.accepted(responder.pid, responder.socket), "the request is accepted")
        responder.process.send_signal(signal.SIGTERM)
        wait_until(lambda: is_pending(responder.pid, signal.SIGTERM), "the signal is pending")
        connection.send(whole[30:])
        assert connection.receive().body.startswith(b'{"loginStatus":0,"statusData":{')
    assert responder.process.wait(DEADLINE) == 0


def is_pending(pid, signo):
    return bool(int(processes.field(pid, "ShdPnd"), 16) & 1 << (signo - 1))


def test_a_termination_ends_a_service_whose_peer_keeps_its_connection(responder):
    with responder.connect() as connection:
        connection.send(fastcgi.request(fastcgi.STATUS, flags=fastcgi.KEEP_CONNECTION))
        assert connection.receive().complete
        assert responder.end(signal.SIGTERM) == 0


def test_terminations_under_load_cut_no_request_short(make_responder, watchdog):
    """Terminates two hundred processes, each while four callers send requests without pause."""
    starting = "fastcgi_main_loop() - Starting KESTAL_CGI request"
    times = []
    for number in range(ROUNDS):
        responder = make_responder()
        responder.log.path.unlink(missing_ok=True)
        responder.environment["NOTIFY_SOCKET"] = watchdog.path
        responder.start()
        with Load(responder) as load:
            wait_until(lambda: load.answers, "an answer")
            # Send the signal at another moment each time.
            wait_until(lambda: len(load.answers) > number % 7, "answers")
            begin = time.monotonic()
            responder.process.send_signal(signal.SIGTERM)
            begun = responder.log.text().count(starting)
            assert responder.process.wait(DEADLINE) == 0
            times.append(time.monotonic() - begin)
        assert not load.cut_short()
        log = responder.log
        served = log.count("fastcgi_main_loop() - End KESTAL_CGI request")
        assert load.complete() == served == log.count(starting)
        # At most one request was accepted before the signal and is still answered.
        assert served <= begun + 1
        assert log.messages().count(f"{DEBUG}KESTAL_CGI Server Terminating") == 1
        assert log.count("Server Terminating") == 1
        assert [message.partition("\n")[0] for message in watchdog.waiting()] == ["READY=1", "STOPPING=1"]
    # A busy machine may delay some rounds by a second, but not half of them.
    assert statistics.median(times) < 1.0


def test_the_normal_end_shuts_down_in_reverse_order(responder):
    responder.ask()
    responder.log.wait_for("End KESTAL_CGI request")
    before = len(responder.log.messages())
    assert responder.end(signal.SIGUSR1) == 0
    messages = responder.log.messages()[before:]
    end = messages.index(f"{DEBUG}int fastcgi_main_loop() END returning 0")
    assert messages[end + 1 : end + 5] == TERMINATION[:-1]
    assert messages[end + 5] == "[KESTAL_CGI]:[NOTICE] - KESTAL_CGI Server Terminating."
    assert responder.log.count("Server Terminating") == 1


def test_the_normal_end_under_load_cuts_no_request_short(make_responder):
    for _ in range(20):
        responder = make_responder()
        responder.log.path.unlink(missing_ok=True)
        responder.start()
        with Load(responder) as load:
            wait_until(lambda: load.answers, "an answer")
            assert responder.end(signal.SIGUSR1) == 0
        assert not load.cut_short()
        assert load.complete() == responder.log.count("fastcgi_main_loop() - End KESTAL_CGI request")


def test_other_signals_have_their_default_effect(make_responder):
    for signo in (signal.SIGINT, signal.SIGHUP, signal.SIGKILL):
        responder = make_responder().start()
        os.kill(responder.pid, signo)
        assert responder.process.wait(DEADLINE) == -signo


def test_a_broken_pipe_does_not_end_the_service(responder):
    # libfcgi ignores the signal once it has started, possibly after the log line that the test waits for.
    assert responder.ask().status == 200
    responder.process.send_signal(signal.SIGPIPE)
    assert responder.ask().status == 200
