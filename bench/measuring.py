"""Requests without pause, and what a process uses meanwhile."""

import json
import os
import pathlib
import resource
import subprocess

REPORT = pathlib.Path(__file__).with_name("report.lua")


def processor_times(pid):
    """Processor time of each thread of a process in nanoseconds, by the number of the thread."""
    return {
        int(task.name): int((task / "schedstat").read_text().split()[0])
        for task in pathlib.Path(f"/proc/{pid}/task").iterdir()
    }


def machine_times():
    """Seconds that all processors together have been busy since the start of the machine, those that a host
    withheld included, and all seconds."""
    user, nice, system, idle, waiting, irq, softirq, stolen = (
        int(ticks) / os.sysconf("SC_CLK_TCK")
        for ticks in pathlib.Path("/proc/stat").read_text().splitlines()[0].split()[1:9]
    )
    busy = user + nice + system + irq + softirq + stolen
    return busy, busy + idle + waiting


def own_seconds(pid):
    """Processor time of a responder, of the web server that is its parent, and of the programs that sent
    requests and have ended."""
    parent = int(pathlib.Path(f"/proc/{pid}/stat").read_text().rpartition(")")[2].split()[1])
    ended = resource.getrusage(resource.RUSAGE_CHILDREN)
    running = sum(sum(processor_times(process).values()) for process in (pid, parent))
    return running / 1e9 + ended.ru_utime + ended.ru_stime


def foreign_load(before, after, own):
    """The part of the machine's time that processes took which do not belong to the measurement."""
    busy, elapsed = (end - begin for begin, end in zip(before, after))
    return max(busy - own, 0) / elapsed


def memory(pid):
    """Proportional set size in KiB."""
    for line in pathlib.Path(f"/proc/{pid}/smaps_rollup").read_text().splitlines():
        if line.startswith("Pss:"):
            return int(line.split()[1])
    raise AssertionError("no Pss")


def send(pid, port, target, connections, seconds):
    """Sends requests to the web server of a responder; returns their number, rate, latencies in
    microseconds, processor time per request, once of the process and once of all but its main thread, and
    the foreign load meanwhile."""
    machine, own = machine_times(), own_seconds(pid)
    before = processor_times(pid)
    command = ["wrk", "-t1", f"-c{connections}", f"-d{seconds}", "-s", str(REPORT)]
    output = subprocess.run(
        [*command, f"http://127.0.0.1:{port}{target}"], check=True, capture_output=True, text=True
    ).stdout
    report = json.loads(output.splitlines()[-1])
    assert report["errors"] == 0, report
    requests = report["requests"]
    used = {thread: time - before.get(thread, 0) for thread, time in processor_times(pid).items()}
    return {
        "requests": requests,
        "requestsPerSecond": requests * 1e6 / report["microseconds"],
        "p50": report["p50"],
        "p99": report["p99"],
        "processor": sum(used.values()) / 1000 / requests,
        "foreign": foreign_load(machine, machine_times(), own_seconds(pid) - own),
        "background": sum(time for thread, time in used.items() if thread != pid) / 1000 / requests,
    }
