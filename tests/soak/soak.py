"""Sends many requests of all kinds to web server and service, checks the answers and measures whether the
processes grow; see scripts/soak."""

import argparse
import collections
import json
import os
import pathlib
import shutil
import signal
import sys
import tempfile
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "e2e"))

import growth
import kills
import memory
import mix
import report
from client import Clients
from device import Changes
from support import paths, processes
from support.memory import Memory, held
from support.server import Server
from support.sessions import open_session
from support.waiting import wait_until

YEAR = 365 * 24 * 3600
SAMPLES = 400
LOG_LIMIT = 16 << 20
# Seconds that a warm-up may take, in addition to the pauses between the states of the device.
WARM_UP = 120
# Series of requests at most, until one shows no growth.
SERIES = 3


def arguments():
    parser = argparse.ArgumentParser(prog="scripts/soak", description=__doc__)
    parser.add_argument("--requests", type=int, help="number of requests (default 100000)")
    parser.add_argument("--seconds", type=float, help="duration, instead of a number of requests; with --long at most")
    parser.add_argument("--warm-up", type=int, default=5000, help="requests before the measurement (default 5000)")
    parser.add_argument("--processes", type=int, default=1, help="number of client processes (default 1)")
    parser.add_argument("--connections", type=int, default=8, help="connections of each process (default 8)")
    parser.add_argument(
        "--changes", type=float, default=0.02, help="seconds between two states of the device; 0: no changes"
    )
    parser.add_argument("--tolerance", type=int, default=16, help="pages by which a process may grow (default 16)")
    parser.add_argument("--seed", type=int, default=1, help="of the random order of requests (default 1)")
    parser.add_argument("--kill", type=int, metavar="N", help="only kill the service N times under load")
    parser.add_argument(
        "--outage", type=float, default=5.0, help="seconds for which requests may fail after a kill (default 5)"
    )
    parser.add_argument(
        "--long",
        action="store_true",
        help="judge growth by memory and blocks of memory at rest, between legs of the requests (default 10000000)"
        " and after web servers were killed",
    )
    parser.add_argument("--legs", type=int, default=100, help="into which --long divides the requests (default 100)")
    parser.add_argument(
        "--web-servers", type=int, default=100, help="that --long kills after the requests (default 100)"
    )
    parser.add_argument("--json", type=pathlib.Path, metavar="FILE", help="also write the report to this file")
    options = parser.parse_args()
    if options.requests is None:
        options.requests = 10_000_000 if options.long else 10**12 if options.seconds else 100_000
    return options


class Soak:
    def __init__(self, server, options):
        self.server = server
        self.options = options
        self.samples = {}
        self.find_processes()
        agent = ("--idle", str(YEAR))
        self.kinds = mix.kinds(
            open_session(server, "127.0.0.1", mix.AGENT, *agent),
            open_session(server, "192.168.1.5", mix.AGENT, *agent),
        )

    def find_processes(self):
        self.pids = {"service": self.server.responder(), "web server": self.server.process.pid}

    def clients(self, requests, seed):
        options = self.options
        return Clients(self.server.port, self.kinds, requests, options.processes, options.connections, seed)

    def holdings(self):
        return {name: memory.holdings(pid) for name, pid in self.pids.items()}

    def at_rest(self):
        """Returns what the processes hold after they have noticed that all clients have disconnected."""

        def idle():
            return not any(processes.connections(pid) for pid in self.pids.values())

        # The first answer shows that the web server has noticed all earlier clients, the second one that the
        # service has noticed all that the web server has sent on their behalf.
        for _ in range(2):
            self.server.ask("/srv/status")
            wait_until(idle, "web server and service are idle")
        return self.holdings()

    def blocks(self):
        """Returns the number of blocks that the service holds after some requests; None if they are not counted."""
        if "KESTAL_SOAK_MEMORY" not in os.environ:
            return None
        for _ in range(3):
            for target in ("/srv/status", "/srv/notification"):
                self.server.ask(target)
        self.at_rest()
        # The connection is closed before what the answer was made from is freed.
        wait_until(lambda: not processes.runs(self.pids["service"]), "the service waits")
        file = pathlib.Path(os.environ["KESTAL_SOAK_MEMORY"])
        before, now = None, held(file)
        while before != now:
            time.sleep(0.05)
            before, now = now, held(file)
        return now

    def keep_log_short(self):
        """Empties a long log, like a log rotation that truncates the file."""
        log = self.server.log.path
        if log.exists() and log.stat().st_size > LOG_LIMIT:
            os.truncate(log, 0)

    def warm_up(self, changes):
        """Sends requests until the device has been in all its states, and returns the results."""
        clients = self.clients(10**12, self.options.seed + 1000)
        wait_until(
            lambda: (changes.rounds > 0 and clients.count() >= self.options.warm_up)
            or clients.are_done()
            or not self.is_same(),
            "the device has been through all its states",
            WARM_UP + 2 * changes.interval * len(changes.states),
        )
        clients.stop()
        return clients.results()

    def warmed_up(self):
        """Puts the device into all its states under load; returns the problems."""
        with Changes(self.server.device, self.options.changes) as warm_up:
            _, problems, _ = self.warm_up(warm_up)
        if not self.is_same():
            sys.exit("the service has ended during the warm-up")
        for problem in warm_up.problems:
            problems[problem] += 1
        return problems

    def run(self):
        problems = self.warmed_up()
        # A leak goes on in each series. Other growth ends, such as that of the C library, which keeps memory
        # for each text that appears for the first time.
        for _ in range(SERIES):
            result = self.measure(problems)
            problems = collections.Counter(result.problems)
            if not result.growth() or result.restarted:
                break
        return result

    def measure(self, problems_before):
        """The report on one series of requests."""
        options = self.options
        self.samples = {name: [] for name in self.pids}
        blocks = self.blocks()
        start = self.at_rest()
        begin = time.monotonic()
        with Changes(self.server.device, options.changes) as changes:
            clients = self.clients(options.requests, options.seed)
            end = begin + options.seconds if options.seconds else float("inf")
            # The first and the last sample are taken before and after all requests, even in a short run.
            self.sample(0)
            interval = 0.01
            while not clients.are_done():
                time.sleep(interval)
                self.sample(clients.count())
                if len(self.samples["service"]) > SAMPLES:
                    # Take samples less often, so that a long run does not have more of them than a short one.
                    for samples in self.samples.values():
                        del samples[1::2]
                    interval *= 2
                self.keep_log_short()
                if time.monotonic() > end or not self.is_same():
                    clients.stop()
            self.sample(clients.count())
            seconds = time.monotonic() - begin
            requests, problems, slowest = clients.results()
        after = self.at_rest() if self.is_same() else None
        new_blocks = self.blocks() - blocks if after and blocks is not None else None
        problems += problems_before
        for problem in changes.problems:
            problems[problem] += 1
        return report.Report(
            requests=dict(requests.most_common()),
            problems=dict(problems),
            seconds=seconds,
            slowest=slowest,
            changes=changes.count,
            commands=changes.commands.total(),
            restarted=not self.is_same(),
            start=start,
            end=after or start,
            samples=self.samples,
            new_blocks=new_blocks,
            tolerance=options.tolerance,
            server_messages=len(self.server.server_messages().splitlines()),
        )

    def is_same(self):
        return self.server.process.poll() is None and processes.is_alive(self.pids["service"])

    def sample(self, count):
        try:
            for name, held in self.holdings().items():
                self.samples[name].append((count, held.own))
        except OSError:
            # The service has died; the clients report that, too.
            pass


def start(server):
    server.process = server.launch()
    wait_until(server.is_up, "the web server has started")
    wait_until(lambda: server.ask("/srv/status").status == 200, "the service serves")


def count_blocks(folder):
    """Has the service count its blocks of memory."""
    memory = Memory(folder)
    os.environ["KESTAL_SOAK_RESPONDER"] = str(memory.program())
    os.environ["KESTAL_SOAK_MEMORY"] = str(memory.path)


def measure(server, options):
    if options.kill:
        return kills.run(server, options.kill, options.outage)
    soak = Soak(server, options)
    return growth.run(soak, start, options) if options.long else soak.run()


def main():
    options = arguments()
    # Handle these signals even if the caller ignores them, so that the web server ends together with the soak.
    for signo in (signal.SIGINT, signal.SIGTERM):
        signal.signal(signo, signal.default_int_handler)
    folder = pathlib.Path(tempfile.mkdtemp(prefix="kestal-soak-"))
    server = Server(folder)
    server.environment["KESTAL_LOG_LEVEL"] = "5"
    if options.long and "KESTAL_SOAK_MEMORY" not in os.environ:
        count_blocks(folder)
    # The tests of the soak itself replace the service by another program.
    if "KESTAL_SOAK_RESPONDER" in os.environ:
        server.environment["KESTAL_RESPONDER"] = os.environ["KESTAL_SOAK_RESPONDER"]
    try:
        start(server)
        result = measure(server, options)
        failures = result.failures()
        print(result.text())
        print("\n".join(f"FAILED: {failure}" for failure in failures) or "good")
        if options.json:
            data = {"good": not failures, "failures": failures, **result.data()}
            options.json.write_text(json.dumps(data, indent=2) + "\n")
        return 1 if failures else 0
    finally:
        server.close()
        if "KESTAL_KEEP" in os.environ:
            print(f"kept: {folder}")
        else:
            shutil.rmtree(folder)


if __name__ == "__main__":
    sys.exit(main())
