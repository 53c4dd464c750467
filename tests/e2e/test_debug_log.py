"""A debug log that has no room loses lines and nothing else."""

import os
import resource

from support.load import Load
from support.waiting import wait_until


def is_right(answer):
    return answer.complete and answer.status == 200 and b'"statusData":{' in answer.body


def test_a_full_disk_under_the_log_does_not_touch_the_service(make_responder):
    responder = make_responder()
    responder.environment |= {"KESTAL_LOG": "/dev/full", "KESTAL_LOG_LEVEL": "6"}
    responder.start()
    with Load(responder) as load:
        wait_until(lambda: load.complete() > 200, "answers")
    assert all(is_right(answer) for answer in load.answers)
    assert responder.end() == 0


def test_a_log_at_its_size_limit_loses_lines_until_there_is_room(responder):
    """The kernel answers a write beyond the limit with a signal that ends a process."""
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


def test_a_log_that_is_gone_loses_lines_only(responder):
    responder.log.path.unlink()
    assert is_right(responder.ask())
    assert responder.end() == 0
