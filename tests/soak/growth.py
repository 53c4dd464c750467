"""Measures whether anything grows over many requests. Between legs of the requests, web server and service rest and
the device is as at the start, so that their memory can be compared to the last block. Then web servers are killed
under load, and the next ones are compared."""

import collections
import contextlib
import dataclasses
import os
import pathlib
import signal
import statistics
import subprocess
import sys
import time

from device import Changes
from support.memory import forget, held_bytes
from support.waiting import DEADLINE, wait_until

# A slope is growth if it is so many times its standard error, in the second half of the series, too, and makes more
# than the limit over the whole series.
ERRORS = 3
# The limits in KiB and blocks. Other processes change the PSS, because they share libraries; the heap takes long to
# settle; and the C library keeps a text that it looks up for the first time.
PSS, OWN, BLOCKS, SIZE = 512, 64, 10, 2
# Requests that a web server answers before it is killed, and seconds in which it must.
REQUESTS_OF_A_SERVER, PATIENCE = 500, 60


@dataclasses.dataclass
class Series:
    """A figure at rest, again and again."""

    name: str
    unit: str
    limit: float
    samples: list = dataclasses.field(default_factory=list)
    """Pairs of the number of requests in millions, or of web servers in hundreds, and the figure."""

    def slope(self, begin=0):
        """The slope of the line with the least squares, and its standard error."""
        samples = self.samples[begin:]
        if len(samples) < 3:
            return 0.0, 0.0
        counts, figures = zip(*samples)
        slope, intercept = statistics.linear_regression(counts, figures)
        errors = sum((figure - slope * count - intercept) ** 2 for count, figure in samples)
        spread = sum((count - statistics.fmean(counts)) ** 2 for count in counts)
        return slope, (errors / (len(counts) - 2) / spread) ** 0.5

    def later(self):
        """The same of the second half. A leak goes on there; a heap that settles no longer grows."""
        return self.slope(len(self.samples) // 2)

    def grows(self):
        slope, _ = self.slope()
        rises = all(slope > ERRORS * error for slope, error in (self.slope(), self.later()))
        return rises and slope * (self.samples[-1][0] - self.samples[0][0]) > self.limit

    def text(self):
        slope, error = self.slope()
        later, later_error = self.later()
        return (
            f"{self.name}: slope {slope:+.2f} +/- {error:.2f} {self.unit}"
            f" ({self.samples[0][1]:,.0f} at the start, {self.samples[-1][1]:,.0f} at the end;"
            f" second half {later:+.2f} +/- {later_error:.2f})"
        )


def processes_of(folder):
    """How many processes have been started with a variable that names the folder."""
    found = 0
    for environment in pathlib.Path("/proc").glob("[0-9]*/environ"):
        # The process may end in the meantime.
        with contextlib.suppress(OSError):
            found += str(folder).encode() in environment.read_bytes()
    return found


class Table:
    """The series of one part of the measurement."""

    def __init__(self, per):
        self.per = per
        self.series = {}

    def add(self, count, soak):
        blocks = soak.blocks()
        size = held_bytes(pathlib.Path(os.environ["KESTAL_SOAK_MEMORY"])) / 1024
        figures = {
            "service: blocks of memory": (blocks, "blocks", BLOCKS),
            "service: their size": (size, "KiB", SIZE),
        }
        for name, held in soak.holdings().items():
            figures[f"{name}: PSS"] = (held.pss / 1024, "KiB", PSS)
            figures[f"{name}: own memory"] = (held.own / 1024, "KiB", OWN)
            figures[f"{name}: descriptors"] = (held.descriptors, "descriptors", 0)
            figures[f"{name}: threads"] = (held.threads, "threads", 0)
        run = soak.server.run
        figures["files in the run directory"] = (len(list(run.iterdir())), "files", 0)
        figures["processes"] = (processes_of(soak.server.work), "processes", 0)
        for name, (figure, unit, limit) in figures.items():
            series = self.series.setdefault(name, Series(name, f"{unit} per {self.per}", limit))
            series.samples.append((count, figure))
        shown = ", ".join(f"{name} {figure:,.0f}" for name, (figure, *_) in list(figures.items())[:4])
        print(f"after {count:.3f} {self.per}: {shown}", file=sys.stderr, flush=True)


class Report:
    def __init__(self, tables):
        self.tables = tables
        self.requests = collections.Counter()
        self.problems = collections.Counter()
        self.changes = collections.Counter()
        self.kills = 0
        self.seconds = 0.0
        self.restarted = False

    def count(self, clients, changes):
        requests, problems, _ = clients.results()
        self.requests += requests
        self.changes += collections.Counter({"states of the device": changes.count}) + changes.commands
        self.problems += collections.Counter(changes.problems)
        return problems

    def failures(self):
        found = [f"{count} x {problem}" for problem, count in self.problems.items()]
        if self.restarted:
            found.append("the service or the web server has ended meanwhile")
        for table in self.tables:
            found += [f"grows: {series.text()}" for series in table.series.values() if series.grows()]
        return found

    def data(self):
        return {
            "requests": self.requests.total(),
            "requestsByKind": dict(self.requests.most_common()),
            "changes": dict(self.changes),
            "killedWebServers": self.kills,
            "seconds": round(self.seconds, 3),
            "series": {
                table.per: {
                    name: {"slope": series.slope()[0], "error": series.slope()[1], "samples": series.samples}
                    for name, series in table.series.items()
                }
                for table in self.tables
            },
        }

    def text(self):
        lines = [f"{self.requests.total():,} requests in {self.seconds:.0f} s, {self.kills} web servers killed"]
        lines += [f"  {count:>10,} {kind}" for kind, count in self.requests.most_common()]
        lines += [f"  {count:>10,} {kind}" for kind, count in self.changes.items()]
        for table in self.tables:
            lines += [series.text() for series in table.series.values()]
        return "\n".join(lines)


def is_outage(problem):
    """Whether a client without a web server may have this problem."""
    return "[Errno " in problem or "the connection ended before the answer" in problem


def leg(soak, requests, seed, report):
    with Changes(soak.server.device, soak.options.changes) as changes:
        clients = soak.clients(requests, seed)
        while not clients.are_done():
            time.sleep(0.1)
            soak.keep_log_short()
            if not soak.is_same():
                report.restarted = True
                clients.stop()
        report.problems += report.count(clients, changes)


def kill_web_server(soak, start, seed, report):
    """Kills the web server under load and starts the next one, at first without load."""
    server = soak.server
    with Changes(server.device, soak.options.changes) as changes:
        clients = soak.clients(10**12, seed)
        wait_until(lambda: clients.count() > REQUESTS_OF_A_SERVER, "answers before the kill", PATIENCE)
        os.kill(server.process.pid, signal.SIGKILL)
        server.process.wait()
        clients.stop()
        problems = report.count(clients, changes)
    report.problems += collections.Counter({text: n for text, n in problems.items() if not is_outage(text)})
    subprocess.run([str(server.launcher), "sweep"], env=server.environment, check=True, timeout=DEADLINE)
    forget(pathlib.Path(os.environ["KESTAL_SOAK_MEMORY"]))
    start(server)
    soak.find_processes()
    report.kills += 1


def run(soak, start, options):
    """Sends the requests, then kills web servers; start(server) starts one and waits until it serves."""
    begin = time.monotonic()
    requests, servers = Table("million requests"), Table("hundred killed web servers")
    report = Report([requests, servers])
    report.problems += soak.warmed_up()
    share = options.requests // options.legs
    # The first leg belongs to the warm-up: only then each text has been looked up.
    for number in range(options.legs):
        leg(soak, share, options.seed + number * options.processes, report)
        if report.restarted:
            break
        requests.add((number + 1) * share / 1e6, soak)
        if options.seconds and time.monotonic() - begin > options.seconds:
            break
    for number in range(0 if report.restarted else options.web_servers):
        kill_web_server(soak, start, options.seed + number, report)
        servers.add((number + 1) / 100, soak)
    report.seconds = time.monotonic() - begin
    return report
