"""If there is no room for the debug log, only log lines get lost; the service keeps working."""

import contextlib
import gzip
import os
import resource
import subprocess

import pytest

from support import paths
from support.load import Load
from support.logs import Log, times
from support.waiting import DEADLINE, wait_until
from support.watchdog import Watchdog as Receiver


def is_right(answer):
    return answer.complete and answer.status == 200 and b'"statusData":{' in answer.body


def test_a_full_disk_loses_log_lines_but_no_answers(make_responder):
    responder = make_responder()
    responder.environment |= {"KESTAL_LOG": "/dev/full", "KESTAL_LOG_LEVEL": "6"}
    responder.start()
    with Load(responder) as load:
        wait_until(lambda: load.complete() > 200, "answers")
    assert all(is_right(answer) for answer in load.answers)
    assert responder.end() == 0


def test_a_log_at_its_size_limit_loses_lines_until_there_is_room(responder):
    """A write beyond the file size limit makes the kernel send a signal, which by default ends a process."""
    responder.ask()
    log = responder.log.path
    limit = log.stat().st_size + 1000
    resource.prlimit(responder.pid, resource.RLIMIT_FSIZE, (limit, limit))
    for _ in range(50):
        assert is_right(responder.ask())
    assert log.stat().st_size == limit

    os.truncate(log, 0)
    assert is_right(responder.ask())
    responder.log.wait_for("fastcgi_main_loop() - End KESTAL_CGI request")
    assert responder.log.count("[KESTAL_CGI]:[DEBUG] - int fastcgi_main_loop() - Starting KESTAL_CGI request") == 1


def test_a_removed_log_loses_only_log_lines(responder):
    responder.log.path.unlink()
    assert is_right(responder.ask())
    assert responder.end() == 0


def test_a_permanent_fault_is_logged_at_once_and_then_counted(make_responder, work):
    responder = make_responder()
    responder.environment |= {"KESTAL_LOG_LEVEL": "5", "KESTAL_SYSLOG": str(work / "syslog.sock")}
    responder.device.set(getGPSStatus={"error": 5}, getBatteryStatus={"error": 6})
    with contextlib.closing(Receiver(work / "syslog.sock")) as system_log:
        responder.start()
        for _ in range(39):
            assert is_right(responder.ask())
        assert responder.end() == 0
        for log in responder.log.messages(), system_log.waiting():
            for call in "sys_getGPSStatus", "sys_getBatteryStatus":
                counts = [times(line) for line in log if f"{call} failed" in line]
                assert counts[0] == 1
                assert sum(counts) == 40
                # One line for each minute that the test takes, and one at the end.
                assert len(counts) < 10


def test_the_shipped_rotation_keeps_every_line(responder, work):
    log = responder.log
    shipped = (paths.ROOT / "docs" / "kestal.logrotate").read_text()
    assert "/var/lib/kestal/debug.log" in shipped
    configuration = work / "logrotate.conf"
    configuration.write_text(shipped.replace("/var/lib/kestal/debug.log", str(log.path)))
    # The service ignores a configuration file that other users can write.
    configuration.chmod(0o600)
    rotate = ["/usr/sbin/logrotate", "--force", "--state", work / "state", configuration]
    written = []
    for number in range(3):
        assert is_right(responder.ask(f"/srv/status?{number}"))
        wait_until(lambda: log.count("End KESTAL_CGI request") == 1, "the end of the request")
        written.append(log.text())
        subprocess.run(rotate, check=True, timeout=DEADLINE)
        assert log.path.stat().st_size == 0
    assert responder.end() == 0
    assert log.count("Server Terminating") == 1
    kept = [Log(f"{log.path}.1").text()]
    kept += [gzip.decompress((work / f"{log.path.name}.{number}.gz").read_bytes()).decode() for number in (2, 3)]
    assert kept == written[::-1]
