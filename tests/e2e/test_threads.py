"""The keep-alive thread runs beside requests while other processes replace the device document. A normal
build shows that neither thread waits for the other; one with the thread sanitizer shows that they share no
unprotected data."""

import contextlib
import json
import os
import signal
import threading

import pytest

from support.load import Load
from support.waiting import wait_until

BATTERY = "getBatteryStatus"


class Writers:
    """Writers that replace the device document without pause until the with block ends, each with different
    values."""

    def __init__(self, device, count=2):
        self.device = device
        self.ended = False
        self.rounds = [0] * count
        self.threads = [threading.Thread(target=self._write, args=(number,)) for number in range(count)]

    def _write(self, number):
        document = self.device.document()
        new = self.device.path.with_name(f"{self.device.path.name}.{number}")
        while not self.ended:
            self.rounds[number] += 1
            document["sys"][BATTERY] |= {"chargePercent": 10 * number + self.rounds[number] % 10}
            new.write_text(json.dumps(document))
            os.replace(new, self.device.path)

    def __enter__(self):
        for thread in self.threads:
            thread.start()
        return self

    def __exit__(self, *_):
        self.ended = True
        for thread in self.threads:
            thread.join()


def reporting(make_responder, watchdog):
    responder = make_responder()
    responder.environment["NOTIFY_SOCKET"] = watchdog.path
    responder.device.set(getWatchdogInterval=1)
    responder.start()
    assert watchdog.next().startswith("READY=1")
    return responder


@pytest.mark.parametrize("signo", [signal.SIGTERM, signal.SIGUSR1], ids=["terminated", "ended"])
def test_requests_keep_alives_and_changes_of_the_device_go_on_side_by_side(make_responder, watchdog, signo):
    responder = reporting(make_responder, watchdog)
    before = responder.device.get(BATTERY)["chargePercent"]

    def shown():
        """The states of the battery in the answers so far."""
        return {
            json.loads(answer.body)["statusData"]["statusBarBatteryPercent"]
            for answer in load.answers
            if answer.complete
        }

    def all_have_worked():
        # The socket can hold only few messages, so read them.
        watchdog.waiting()
        return min(writers.rounds) > 20 and load.complete() > 20 and len(shown()) > 1

    with contextlib.ExitStack() as stack:
        writers = stack.enter_context(Writers(responder.device))
        load = stack.enter_context(Load(responder))
        assert [watchdog.next(), watchdog.next()] == ["WATCHDOG=1", "WATCHDOG=1"]
        wait_until(all_have_worked, "writers and clients have all worked")
        assert responder.end(signo) == 0
    assert watchdog.waiting()[-1] == "STOPPING=1"
    assert not load.cut_short()
    assert responder.log.count("[ERROR]") == 0
    assert shown() <= {str(percent) for percent in (*range(20), before)}
