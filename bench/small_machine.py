"""What the service can do on a small machine: what pages cost that are left open, and how many requests it
answers with a quarter of a processor."""

import contextlib
import http.client
import os
import pathlib
import statistics
import threading
import time

import measuring
from stack import ATTEMPTS, FOREIGN_LIMIT, Subject
from support import paths

# The page in demo/ asks as often.
PAGES = 10
PERIOD = 3
# In microseconds.
QUOTA, QUOTA_PERIOD = 25_000, 100_000
CONNECTIONS = 8
TARGETS = ["/srv/status", "/srv/notification"]


def keep_open(port, end):
    """One page: it asks over a connection of its own."""
    connection = http.client.HTTPConnection("127.0.0.1", port, timeout=20)
    while time.monotonic() < end:
        for target in TARGETS:
            connection.request("GET", target)
            answer = connection.getresponse()
            assert answer.status == 200 and answer.read()
        time.sleep(PERIOD)
    connection.close()


def open_pages(subject, seconds):
    """Milliseconds of processor time in a second, of the service and of the web server."""
    processes = {"service": subject.pid, "web server": subject.server.process.pid}
    before = {name: sum(measuring.processor_times(pid).values()) for name, pid in processes.items()}
    begin = time.monotonic()
    pages = [
        threading.Thread(target=keep_open, args=(subject.server.port, begin + seconds)) for _ in range(PAGES)
    ]
    for page in pages:
        page.start()
        time.sleep(PERIOD / PAGES)
    for page in pages:
        page.join()
    elapsed = time.monotonic() - begin
    return {
        name: (sum(measuring.processor_times(pid).values()) - before[name]) / 1e6 / elapsed
        for name, pid in processes.items()
    }


@contextlib.contextmanager
def quarter_of_a_processor(pids):
    """Gives the processes together a quarter of the first processor. Needs root."""
    for pid in pids:
        for task in pathlib.Path(f"/proc/{pid}/task").iterdir():
            os.sched_setaffinity(int(task.name), {0})
    root = pathlib.Path("/sys/fs/cgroup")
    old = (root / "cpu").is_dir()
    group = (root / "cpu" if old else root) / "kestal-bench"
    group.mkdir()
    try:
        if old:
            (group / "cpu.cfs_period_us").write_text(str(QUOTA_PERIOD))
            (group / "cpu.cfs_quota_us").write_text(str(QUOTA))
        else:
            (group / "cpu.max").write_text(f"{QUOTA} {QUOTA_PERIOD}")
        for pid in pids:
            (group / "cgroup.procs").write_text(str(pid))
        yield
    finally:
        for pid in pids:
            (group.parent / "cgroup.procs").write_text(str(pid))
        group.rmdir()


def undisturbed(subject):
    """What the service answers in two seconds; None if other processes disturb each attempt."""
    for _ in range(ATTEMPTS):
        sample = subject.load("/srv/status", CONNECTIONS, 2)
        if sample["foreign"] <= FOREIGN_LIMIT:
            return sample
    return None


def measure(work, build, rounds, seconds, say):
    load = os.getloadavg()
    subject = Subject(work, "small", build / "service" / "kestal.cgi", paths.DEFAULT_DEVICE)
    try:
        assert subject.server.ask("/srv/status").status == 200
        say(f"{PAGES} open pages, {seconds} seconds")
        pages = open_pages(subject, seconds)
        say(f"a quarter of a processor, {rounds} rounds")
        with quarter_of_a_processor([subject.pid, subject.server.process.pid]):
            samples = list(filter(None, (undisturbed(subject) for _ in range(rounds))))
    finally:
        subject.server.close()
    figures = ("requestsPerSecond", "p99", "foreign")
    quarter = {name: statistics.median(sample[name] for sample in samples) for name in figures} if samples else None
    return {"pages": pages, "quarter": quarter, "rounds": len(samples), "loadAverage": load}
