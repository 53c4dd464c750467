"""Requests without pause, and what a process uses meanwhile."""

import json
import pathlib
import subprocess

REPORT = pathlib.Path(__file__).with_name("report.lua")


def processor_times(pid):
    """Processor time of each thread of a process in nanoseconds, by the number of the thread."""
    return {
        int(task.name): int((task / "schedstat").read_text().split()[0])
        for task in pathlib.Path(f"/proc/{pid}/task").iterdir()
    }


def memory(pid):
    """Proportional set size in KiB."""
    for line in pathlib.Path(f"/proc/{pid}/smaps_rollup").read_text().splitlines():
        if line.startswith("Pss:"):
            return int(line.split()[1])
    raise AssertionError("no Pss")


def send(pid, port, target, connections, seconds):
    """Sends requests to the web server of a responder; returns their number, rate, latencies in
    microseconds, and processor time per request, once of the process and once of all but its main thread."""
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
        "background": sum(time for thread, time in used.items() if thread != pid) / 1000 / requests,
    }
