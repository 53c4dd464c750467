"""Measures the cost of the operations and their parts in process, and compares JSON libraries."""

import json
import os
import subprocess

# The setting for the allocator in the shipped configuration.
ALLOCATOR = {"GLIBC_TUNABLES": "glibc.malloc.tcache_count=127"}


def measure(build, rounds, say):
    """Returns processor time per iteration in nanoseconds, one figure per round, and allocations."""
    say(f"in process, {rounds} rounds")
    program = build / "bench" / "kestal-bench"
    # The names in the order of the report; the benchmarks run in random order.
    names = subprocess.run(
        [program, "--benchmark_list_tests"], check=True, stdout=subprocess.PIPE, text=True
    ).stdout.splitlines()
    command = [
        program,
        "--benchmark_format=json",
        f"--benchmark_repetitions={rounds}",
        "--benchmark_enable_random_interleaving=true",
        "--benchmark_min_time=0.1",
    ]
    output = subprocess.run(
        command,
        check=True,
        stdout=subprocess.PIPE,
        stderr=subprocess.DEVNULL,
        env={**os.environ, **ALLOCATOR},
    ).stdout
    units = {"ns": 1, "us": 1e3, "ms": 1e6}
    results = {name: {"nanoseconds": []} for name in names}
    for run in json.loads(output)["benchmarks"]:
        if run["run_type"] == "iteration":
            result = results[run["run_name"]]
            result["nanoseconds"].append(run["cpu_time"] * units[run["time_unit"]])
            if "allocations" in run:
                result["allocations"] = round(run["allocations"])
    return results
