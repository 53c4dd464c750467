"""Calls of the device that are slow, hang, or fail only now and then."""

import concurrent.futures
import contextlib
import signal
import subprocess
import time

import pytest

from support import fastcgi, paths, processes
from support.program import service_with
from support.waiting import DEADLINE, wait_until

STUCK = 75
STATUS = "statusBarConnectionState"
TERMINATED = "KESTAL_CGI Server Terminating"

needs_signals = pytest.mark.skipif(
    "thread" in paths.SANITIZERS, reason="the thread sanitizer delays signals until the call returns"
)


def sim(server, *arguments):
    command = [str(paths.SIM), "--device", str(server.device.path), *arguments]
    return subprocess.run(command, check=True, capture_output=True, text=True, timeout=DEADLINE).stdout


@contextlib.contextmanager
def asking(server, target):
    """Sends a request in the background; gives what becomes its answer."""
    with concurrent.futures.ThreadPoolExecutor(1) as pool:
        yield pool.submit(server.ask, target)


@pytest.fixture
def impatient(make_server, work):
    """A web server that waits two seconds for an answer; the service's deadline is far off."""
    server = make_server()
    server.environment["KESTAL_TIMEOUT"] = "2"
    server.environment["KESTAL_RESPONDER"] = str(service_with(work / "patient", KESTAL_TIMEOUT=600))
    return server.start()


def test_a_call_that_hangs_gives_504_and_goes_on_when_it_is_healed(impatient):
    service = impatient.responder()
    sim(impatient, "fail", "getGPSStatus", "--hang")
    assert impatient.ask("/srv/status").status == 504
    sim(impatient, "heal", "getGPSStatus")
    wait_until(lambda: impatient.ask("/srv/status").status == 200, "the service answers")
    # It has not been started anew.
    assert impatient.responder() == service


@needs_signals
def test_a_call_that_hangs_on_ends_the_service_at_its_deadline(make_responder):
    responder = make_responder()
    responder.environment["KESTAL_TIMEOUT"] = "1"
    responder.start()
    sim(responder, "fail", "cellularDataConnect", "--hang")
    with responder.connect() as connection:
        connection.send(fastcgi.request({**fastcgi.STATUS, "REQUEST_URI": "/srv/connect"}))
        assert responder.process.wait(DEADLINE) == STUCK
    assert responder.log.count("is stuck: request (connect)") == 1


def test_a_delayed_call_delays_its_answer(server):
    quick = server.ask("/srv/status").body
    sim(server, "fail", "getGPSStatus", "--delay", "1s")
    begin = time.monotonic()
    assert server.ask("/srv/status").body == quick
    assert time.monotonic() - begin >= 1


def test_a_call_fails_three_times_and_then_answers(server):
    key = "statusBarBatteryPercent"
    charge = server.status()[key]
    sim(server, "fail", "getBatteryStatus", "5", "--times", "3")
    # A tool counts for itself, and so does a change of something else.
    sim(server, "set", "sys.getSMSUnreadCount", "3")
    tool = [str(paths.BUILD / "tools" / "sysintcli"), "getBatteryStatus"]
    for _ in range(5):
        environment = {**server.environment, "KESTAL_LOG_LEVEL": "0"}
        assert subprocess.run(tool, env=environment, capture_output=True, timeout=DEADLINE, check=False).returncode == 1
    assert [server.status().get(key) for _ in range(5)] == [None, None, None, charge, charge]
    # The same fault again begins anew, although no request has come while the call was healed.
    sim(server, "heal", "getBatteryStatus")
    sim(server, "fail", "getBatteryStatus", "5", "--times", "1")
    assert [server.status().get(key) for _ in range(2)] == [None, charge]


def test_a_probability_with_a_seed_gives_the_same_sequence_in_each_run(make_responder):
    def run(name):
        responder = make_responder(name)
        sim(responder, "fail", "getBatteryStatus", "5", "--probability", "0.5", "--seed", "7")
        responder.start()
        answers = [b'"statusBarBatteryPercent":"84"' in responder.ask().body for _ in range(16)]
        assert responder.end() == 0
        return answers

    first = run("first")
    assert run("second") == first
    assert set(first) == {True, False}


def test_a_connection_that_takes_its_time_passes_through_connecting(server):
    server.device.set(getCellularDataConnectionStatus=0)
    sim(server, "set", "cellularDataConnect.takes", "3")
    assert server.ask("/srv/connect").status == 200
    assert server.status()[STATUS] == "Connecting"
    assert '"next": 2' in sim(server, "show", "getCellularDataConnectionStatus")
    wait_until(lambda: server.status()[STATUS] == "Connected", "the device is connected")
    assert sim(server, "show", "getCellularDataConnectionStatus") == "2\n"


def test_a_disconnection_that_takes_its_time_passes_through_disconnecting(server):
    sim(server, "set", "cellularDataDisconnect.takes", "3")
    assert server.status()[STATUS] == "Connected"
    assert server.ask("/srv/disconnect").status == 200
    assert server.status()[STATUS] == "Disconnecting"
    wait_until(lambda: server.status()[STATUS] == "Ready", "the device is disconnected")


def test_a_termination_ends_a_hang_and_the_service(make_responder):
    responder = make_responder().start()
    sim(responder, "fail", "cellularDataConnect", "--hang")
    with responder.connect() as connection:
        connection.send(fastcgi.request({**fastcgi.STATUS, "REQUEST_URI": "/srv/connect"}))
        responder.log.wait_for("InitializeSysinterface() - END")
        assert responder.end(signal.SIGTERM) == 0
    # The call has failed, and the request has been finished in the usual way.
    assert responder.log.count("API failed returning [9008]") > 0
    assert responder.log.count("End KESTAL_CGI request") == 1
    assert responder.log.count(TERMINATED) == 1


def test_the_web_server_stops_while_a_call_hangs(server):
    service = server.responder()
    sim(server, "fail", "getGPSStatus", "--hang")
    begun = server.log.count("InitializeSysinterface() - END")
    with asking(server, "/srv/status"):
        server.log.wait_for("InitializeSysinterface() - END", begun + 1)
        server.stop()
    wait_until(lambda: not processes.is_alive(service), "the service has ended")
    assert server.log.count(TERMINATED) == 1
