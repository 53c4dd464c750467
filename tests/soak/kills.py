"""Kills the service under load, again and again, and reports what its clients notice."""

import collections
import dataclasses
import os
import signal
import statistics
import threading
import time

from support import load, processes
from support.waiting import wait_until

CLIENTS = 4
# Seconds between an answer and a client's next request.
PAUSE = 0.005
# Seconds without a failure after which an outage counts as over: if the web server could not connect to the
# service, it tries again only once a second.
CALM = 2.5
NO_ANSWER = "no answer"


@dataclasses.dataclass
class Kill:
    failures: dict
    seconds: float
    """Seconds from the signal to the end of the last failed request; 0 if none failed."""


class Clients(load.Callers):
    """Send requests until they are stopped, with a pause after each so that the number of failures is small."""

    def __init__(self, server, outage):
        super().__init__(CLIENTS)
        self.server = server
        self.outage = outage
        self.lock = threading.Lock()
        self.failures = []
        self.successes = collections.Counter()
        self.last_failure = 0.0
        self.last_success = 0.0
        """When the last successful request began."""

    def call(self):
        begin = time.monotonic()
        try:
            answer = self.server.ask("/srv/status")
            failure = None if answer.status == 200 else f"status {answer.status}"
        except (OSError, IndexError) as error:
            failure = f"{NO_ANSWER}: {error}"
        if time.monotonic() - begin > self.outage:
            failure = f"{NO_ANSWER} within {self.outage} s"
        with self.lock:
            if failure:
                self.failures.append(failure)
                self.last_failure = time.monotonic()
            else:
                self.successes[answer.body] += 1
                self.last_success = max(self.last_success, begin)
        time.sleep(PAUSE)

    def total(self):
        with self.lock:
            return sum(self.successes.values())

    def take_failures(self):
        with self.lock:
            failures, self.failures = self.failures, []
        return dict(collections.Counter(failures))


@dataclasses.dataclass
class Report:
    kills: list
    answers: int
    different: int
    """Number of different answers; there must be only one, because the device does not change."""
    outage: float
    """Seconds for which requests may fail after a kill."""

    def failures(self):
        """Returns all that is wrong. Requests that are in progress at a kill may fail."""
        found = []
        if self.different != 1:
            found.append(f"{self.different} different answers")
        for kill in self.kills:
            found += [f"{count} x {failure}" for failure, count in kill.failures.items() if NO_ANSWER in failure]
            if kill.seconds > self.outage:
                found.append(f"failed requests for {kill.seconds:.1f} s")
        return found

    def data(self):
        return {
            "kills": [dataclasses.asdict(kill) for kill in self.kills],
            "answers": self.answers,
            "differentAnswers": self.different,
        }

    def text(self):
        lines = [
            f"{kill.seconds:6.3f} s {sum(kill.failures.values()):5} failed  {kill.failures or ''}"
            for kill in self.kills
        ]
        times = sorted(kill.seconds for kill in self.kills)
        short = sum(seconds < 0.1 for seconds in times)
        counts = sorted(sum(kill.failures.values()) for kill in self.kills)
        lines += [
            f"{len(times)} kills, {self.answers} right answers, {self.different} different ones",
            f"outage: {times[0]:.3f} to {times[-1]:.3f} s, median {statistics.median(times):.3f} s;"
            f" {short} shorter than 0.1 s",
            f"failed requests: {counts[0]} to {counts[-1]}, median {statistics.median(counts):.0f}",
        ]
        return "\n".join(lines)


def run(server, count, outage):
    kills = []
    with Clients(server, outage) as callers:
        for _ in range(count):
            enough = callers.total() + 100
            wait_until(lambda: callers.total() > enough, "answers before the kill", 60)
            callers.take_failures()
            dead = server.responder()
            begin = time.monotonic()
            callers.last_failure = begin
            os.kill(dead, signal.SIGKILL)
            wait_until(lambda: not processes.is_alive(dead), "the service is dead")
            gone = time.monotonic()
            wait_until(
                lambda: time.monotonic() - callers.last_failure > CALM and callers.last_success > gone,
                "the service is back",
                60,
            )
            kills.append(Kill(callers.take_failures(), callers.last_failure - begin))
    return Report(kills, callers.total(), len(callers.successes), outage)
