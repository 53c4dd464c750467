"""kestal-sim watch: shows the calls of the platform while requests make them."""

import os
import pty
import re
import signal
import subprocess
import threading

import pytest

from support import paths
from support.waiting import wait_until

STATUS = {"SCRIPT_NAME": "/srv/status"}


class Watcher:
    """A running `kestal-sim watch`; `text` is what it has printed, without the times of calls."""

    def __init__(self, peer):
        self.socket = peer.device.path.with_name(peer.device.path.name + ".watch")
        self.process = subprocess.Popen(
            [str(paths.SIM), "watch"],
            env={**paths.CLEAN_ENVIRONMENT, **peer.environment},
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
            text=True,
        )
        self.lines = []
        self.told = self.process.stderr.readline()
        threading.Thread(target=self._read, daemon=True).start()

    def _read(self):
        for line in self.process.stdout:
            self.lines.append(re.sub(r"^ +\d+\.\d{3} ms  ", "  ", line.rstrip("\n")))

    def wait_for(self, line):
        wait_until(lambda: line in self.lines, f"{line} is shown")

    def end(self, signo=signal.SIGINT):
        self.process.send_signal(signo)
        return self.process.wait(20)


@pytest.fixture
def watch(work):
    watchers = []

    def make(peer):
        watchers.append(Watcher(peer))
        return watchers[-1]

    yield make
    for watcher in watchers:
        watcher.process.kill()
        watcher.process.wait()


def sim(peer, *arguments):
    command = [str(paths.SIM), *arguments]
    return subprocess.run(
        command, env={**paths.CLEAN_ENVIRONMENT, **peer.environment}, capture_output=True, text=True, timeout=20
    )


def test_the_calls_of_a_request_are_shown_with_names_and_failures(responder, watch):
    responder.device.write(
        b'{"sys": {"getWebUICarrierEnabled": 1, "getSIMStatus": "ready", "getGPSStatus": {"error": 5},'
        b' "getSDCardInfo": {"error": "error_no_sd_card"}, "getGPSCarrierEnabled": 1, "getSambaCarrierEnabled": 1,'
        b' "getBatteryStatus": {"chargePercent": 84, "detection": "present"},'
        b' "getConnectedDeviceList": [{"connectionKind": "wifi"}, {"connectionKind": "wired_a"}]},'
        b' "webui": {"i18nSettings": {"language": "en_US"}}}'
    )
    watcher = watch(responder)
    responder.ask(**STATUS)
    watcher.wait_for("  sys_sdkShutdown: done")
    head = [f"kestal.cgi[{responder.pid}] GET /srv/status", "  sys_sdkInitialize: done"]
    assert watcher.lines[:2] == head
    for line in (
        "  sys_getWebUICarrierEnabled: 1",
        "  webui_get_i18n_settings: en_US",
        "  sys_getSIMStatus: ready",
        "  sys_getGPSStatus: fails: 5",
        "  sys_getSDCardInfo: fails: error_no_sd_card (2001)",
        "  sys_getBatteryStatus: chargePercent=84 chargingState=0 detection=present chargingSource=none",
        "  sys_getConnectedDeviceList: needs a buffer",
        "  sys_getConnectedDeviceList: 2 entries: wifi, wired_a",
        "  sys_getModemMnsInfo: fails: not_answered (9001)",
        "  MsgbusHandler::GetData zelt.ans.notifications: fails: not_answered (9001)",
    ):
        assert line in watcher.lines
    wait_until(lambda: watcher.lines[-1].endswith(" calls"), "the number of calls")
    assert watcher.lines[-1] == f"  all {len(watcher.lines) - 2} calls"


def test_answers_and_log_are_the_same_while_somebody_watches(make_responder, watch):
    def answer_and_log(watched):
        peer = make_responder("watched" if watched else "alone").start()
        peer.device.set(getSMSUnreadCount=4)
        if watched:
            watcher = watch(peer)
        body = peer.ask(**STATUS).body
        if watched:
            watcher.wait_for("  sys_sdkShutdown: done")
        peer.stop()
        # Without times, process ids and addresses of threads.
        return body, re.sub(r"^\S+ |\[\d+\]|\bID:\d+|\d{4,}", "", peer.log.text(), flags=re.MULTILINE)

    assert answer_and_log(True) == answer_and_log(False)


def test_a_call_that_hangs_is_shown_while_it_hangs(server, watch):
    watcher = watch(server)
    sim(server, "fail", "getGPSStatus", "--hang")
    asking = threading.Thread(target=server.ask, args=("/srv/status",))
    asking.start()
    watcher.wait_for(" " * 14 + "sys.getGPSStatus hangs ...")
    assert "  sys_getGPSStatus: got_fix" not in watcher.lines
    sim(server, "heal", "getGPSStatus")
    watcher.wait_for("  sys_getGPSStatus: got_fix")
    asking.join()
    assert f"kestal.cgi[{server.responder()}] GET /srv/status" in watcher.lines


def test_a_watcher_that_does_not_read_costs_only_its_lines(responder, watch):
    watcher = watch(responder)
    responder.ask(**STATUS)
    watcher.wait_for("  sys_sdkShutdown: done")
    watcher.process.send_signal(signal.SIGSTOP)
    bodies = {responder.ask(**STATUS).body for _ in range(200)}
    assert len(bodies) == 1
    watcher.process.send_signal(signal.SIGCONT)
    # What has been left out is told before the next call that is shown.
    wait_until(
        lambda: responder.ask(**STATUS).complete
        and any(re.fullmatch(r" +\d+ calls not shown", line) for line in watcher.lines),
        "the number of missing calls",
    )


@pytest.mark.parametrize("signo", [signal.SIGINT, signal.SIGTERM, signal.SIGHUP])
def test_a_signal_ends_it_and_removes_its_socket(responder, watch, signo):
    watcher = watch(responder)
    assert watcher.socket.stat().st_mode & 0o777 == 0o600
    assert watcher.end(signo) == 0
    assert not watcher.socket.exists()
    assert responder.ask().complete


def test_the_service_survives_a_watcher_that_is_killed_and_the_next_one_takes_its_place(responder, watch):
    first = watch(responder)
    responder.ask(**STATUS)
    first.wait_for("  sys_sdkShutdown: done")
    first.end(signal.SIGKILL)
    assert first.socket.exists()
    assert responder.ask(**STATUS).complete
    second = watch(responder)
    assert responder.ask(**STATUS).complete
    second.wait_for("  sys_sdkShutdown: done")


def test_there_is_one_watcher_at_a_time(responder, watch):
    first = watch(responder)
    run = sim(responder, "watch")
    assert (run.returncode, run.stdout) == (1, "")
    assert run.stderr == f"kestal-sim: {first.socket}: somebody is already watching these calls\n"
    responder.ask(**STATUS)
    first.wait_for("  sys_sdkShutdown: done")


def test_calls_of_tools_are_shown_too(responder, watch):
    watcher = watch(responder)
    tool = subprocess.Popen(
        [str(paths.BUILD / "tools" / "sysintcli"), "getSIMStatus"],
        env={**paths.CLEAN_ENVIRONMENT, **responder.environment},
        stdout=subprocess.DEVNULL,
    )
    assert tool.wait(20) == 0
    watcher.wait_for("  sys_sdkShutdown: done")
    assert watcher.lines[0] == f"sysintcli[{tool.pid}]"


def test_it_ends_when_nobody_reads_its_output(responder):
    socket = responder.device.path.with_name(responder.device.path.name + ".watch")
    controller, terminal = pty.openpty()
    watcher = subprocess.Popen(
        f"'{paths.SIM}' watch | head -n 1",
        shell=True,
        env={**paths.CLEAN_ENVIRONMENT, **responder.environment},
        stdout=subprocess.PIPE,
        stderr=terminal,
        text=True,
    )
    wait_until(socket.exists, "somebody watches")
    wait_until(lambda: responder.ask(**STATUS).complete and not socket.exists(), "nobody watches")
    assert watcher.communicate(timeout=20)[0] == f"kestal.cgi[{responder.pid}] GET /srv/status\n"
    os.close(controller)
    os.close(terminal)


@pytest.mark.parametrize(
    ("device", "message"),
    [
        ("missing.json", "missing.json: No such file or directory"),
        ("x" * 120 + ".json", "too long for the name of a socket, which has at most 107 bytes"),
    ],
)
def test_a_device_that_cannot_be_watched_is_refused(work, device, message):
    if device != "missing.json":
        (work / device).write_text("{}")
    run = subprocess.run(
        [str(paths.SIM), "--device", str(work / device), "watch"], capture_output=True, text=True, timeout=20
    )
    assert run.returncode == 1
    assert run.stderr.startswith("kestal-sim: ") and message in run.stderr
    assert run.stderr.count("\n") == 1
    assert list(work.glob("*.watch")) == []
