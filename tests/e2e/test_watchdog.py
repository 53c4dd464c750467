"""The service sends keep-alives as long as the web server that started it runs."""

import os
import signal

from support import processes
from support.waiting import wait_until
from support.watchdog import Watchdog

NOTIFY = "virtual bool KeepAliveHandler::OnThreadNotify(unsigned int)"


def test_the_service_registers_under_its_name_and_reports_in_every_interval(make_responder, watchdog):
    responder = make_responder()
    responder.environment["NOTIFY_SOCKET"] = watchdog.path
    responder.device.set(getWatchdogInterval=1)
    responder.start()
    assert watchdog.next() == "READY=1\nSTATUS=kestal.cgi registered"
    assert [watchdog.next(), watchdog.next()] == ["WATCHDOG=1", "WATCHDOG=1"]
    responder.end()
    assert watchdog.waiting()[-1] == "STOPPING=1"


def test_without_a_service_manager_the_watchdog_shows_in_the_log(make_responder):
    responder = make_responder()
    responder.device.set(getWatchdogInterval=1)
    responder.start()
    responder.log.wait_for(f"{NOTIFY} - END returning 0")
    # Both threads may log at once.
    messages = [message for message in responder.log.messages() if "SystemServiceComponent" not in message]
    begin = messages.index(f"[KESTAL_CGI]:[DEBUG] - {NOTIFY} - BEGIN")
    assert messages[begin + 1 : begin + 4] == [
        f"[KESTAL_CGI]:[INFO] - {NOTIFY} - Watchdog timer event. lighttpd alive ( and kicking ). "
        "Sending keep alive message",
        "[BINDING]:[NOTICE] - watchdog: keep-alive from kestal.cgi",
        f"[KESTAL_CGI]:[DEBUG] - {NOTIFY} - END returning 0",
    ]


def test_requests_are_served_while_keep_alives_go_out(make_responder, watchdog):
    responder = make_responder()
    responder.environment["NOTIFY_SOCKET"] = watchdog.path
    responder.device.set(getWatchdogInterval=1)
    responder.start()
    watchdog.next()
    wait_until(lambda: responder.ask().status == 200 and watchdog.waiting(), "a keep-alive")


def test_keep_alives_are_sent_without_requests_too(make_responder, watchdog):
    responder = make_responder()
    responder.environment["NOTIFY_SOCKET"] = watchdog.path
    responder.device.set(getWatchdogInterval=1)
    responder.start()
    with responder.connect():
        watchdog.next()
        assert watchdog.next() == "WATCHDOG=1"


def test_a_watchdog_that_is_not_there_does_not_keep_the_service_from_working(make_responder, work):
    responder = make_responder()
    responder.environment["NOTIFY_SOCKET"] = str(work / "nobody.sock")
    responder.start()
    assert responder.ask().status == 200
    assert responder.end() == 0


def test_a_missing_watchdog_socket_is_logged_and_used_again_when_it_is_back(make_responder, work):
    responder = make_responder()
    responder.environment["NOTIFY_SOCKET"] = str(work / "coming-and-going.sock")
    responder.device.set(getWatchdogInterval=1)
    first = Watchdog(work / "coming-and-going.sock")
    responder.start()
    assert first.next().startswith("READY=1")
    first.close()
    (work / "coming-and-going.sock").unlink()
    responder.log.wait_for("[BINDING]:[ERROR] - watchdog: WATCHDOG=1 not delivered")
    assert responder.ask().status == 200

    second = Watchdog(work / "coming-and-going.sock")
    assert second.next() == "WATCHDOG=1"
    assert responder.end() == 0
    assert second.waiting()[-1] == "STOPPING=1"
    second.close()


def test_keep_alives_stop_silently_when_the_web_server_is_gone(make_server, watchdog):
    server = make_server()
    server.environment["NOTIFY_SOCKET"] = watchdog.path
    server.device.set(getWatchdogInterval=1)
    server.start()
    responder = server.responder()
    assert watchdog.next().startswith("READY=1")
    assert watchdog.next() == "WATCHDOG=1"

    os.kill(server.process.pid, signal.SIGKILL)
    server.process.wait()
    # One more keep-alive may just be being sent.
    rounds = server.log.count(f"{NOTIFY} - END")
    server.log.wait_for(f"{NOTIFY} - END", rounds + 1)
    watchdog.waiting()
    sent = server.log.count("Sending keep alive message")
    server.log.wait_for(f"{NOTIFY} - END", rounds + 3)

    assert watchdog.waiting() == []
    assert server.log.count("Sending keep alive message") == sent
    assert server.log.count("[ERROR]") == 0
    assert processes.is_alive(responder)
