"""The arithmetic of scripts/bench: ratios to the floor, load of other processes, rows without figures."""

import os
import pathlib
import subprocess
import sys
import types

import pytest

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path[:0] = [str(ROOT / "bench"), str(ROOT / "tests" / "e2e")]

import instructions
import measuring
import report


def operation(service, floor):
    def samples(rates):
        return [
            {"requests": 9, "requestsPerSecond": rate, "p50": 1, "p99": 2, "processor": 3.0, "foreign": 0.01}
            for rate in rates
        ]

    kinds = {"service": service, "floor": floor, "bare": floor, "file": floor}
    return {"name": "status", "samples": {"8": {kind: samples(rates) for kind, rates in kinds.items()}}}


def test_ratio_is_the_median_of_the_ratios_within_a_round():
    # The ratio of the medians would be 2/3.
    assert report.of_floor(operation([10, 20, 90], [100, 10, 30]), 8, "requestsPerSecond") == 2
    assert report.of_floor(operation([10, 20, 90], [10, 40, 10]), 8, "requestsPerSecond") == 1


def test_row_that_was_always_disturbed_has_no_figure():
    row = operation([1], [1])
    assert report.of_floor(row, 32, "p99") is None
    assert report.target_cell(None, 1.2, "most") == "refused"
    assert "status: refused" in report.stack_table({"operations": [row]}, 32)


def test_each_answer_tree_has_a_column():
    counted = {"status": {"service": 70_000, "floor": 35_000, "bytes": 2000}}
    head, _, row = report.instructions_table({"compat": counted, "system": counted}).splitlines()
    assert head.split(" | ")[1:4] == ["our answer tree", "installed CTPP2", "the floor's"]
    assert row.replace(" ", "").split("|")[2:6] == ["70,000", "70,000", "35,000", "2.00"]


def test_quarter_of_a_processor_has_no_figure_if_other_processes_always_ran():
    measured = {"pages": {"service": 0.6, "web server": 0.7}, "quarter": None, "rounds": 0, "loadAverage": (9, 8, 7)}
    text = report.small_machine_table(measured)
    assert "busy for 1.3 milliseconds a second" in text
    assert "| refused, other processes ran |" in text


def test_target_is_kept_on_the_right_side_of_its_limit():
    assert report.target_cell(0.91, 0.9, "least") == "0.91"
    assert report.target_cell(0.89, 0.9, "least") == "0.89 (missed)"
    assert report.target_cell(70_000, 70_000, "most") == "70,000"
    assert report.target_cell(70_001, 70_000, "most") == "70,001 (missed)"


def test_foreign_load_is_what_the_measurement_did_not_use_itself():
    assert measuring.foreign_load((10.0, 100.0), (14.0, 110.0), 3.0) == 0.1
    assert measuring.foreign_load((10.0, 100.0), (13.0, 110.0), 3.5) == 0


def test_own_time_of_a_process_grows_while_it_computes():
    before = measuring.own_seconds(os.getpid())
    busy, elapsed = measuring.machine_times()
    while measuring.own_seconds(os.getpid()) < before + 0.02:
        pass
    assert measuring.machine_times()[1] > elapsed
    assert measuring.machine_times()[0] > busy


def emulator(folder, single):
    """A build for another processor, with an emulator that knows the option `single` and logs three instructions."""
    program = folder / "emulator"
    program.write_text(
        "#!/bin/sh\n"
        f'[ "$1" != --help ] || {{ echo "{single}"; exit; }}\n'
        f'[ "$1 $2 $3" = "-L /target {single}" ] || exit 1\n'
        'while [ "$1" != -D ]; do shift; done\n'
        'printf "Trace 0\\nTrace 0\\nother\\nTrace 0\\n" > "$2"\n'
    )
    program.chmod(0o755)
    (folder / "CMakeCache.txt").write_text(
        f"KESTAL_EMULATOR_PROGRAM:FILEPATH={program}\nKESTAL_TARGET_ROOT:PATH=/target\n"
    )


@pytest.mark.parametrize("single", ["-singlestep", "-one-insn-per-tb"])
def test_instructions_for_another_processor_are_what_the_emulator_logs(tmp_path, single):
    emulator(tmp_path, single)
    counter = instructions.tool(tmp_path)(tmp_path, "counted", "program")
    subprocess.run(["sh", "-c", counter.command], check=True)
    ended = types.SimpleNamespace(server=types.SimpleNamespace(stop=lambda: None))
    assert counter.end(ended) == 3
    counter.close()


def test_instructions_for_this_processor_are_counted_without_an_emulator(tmp_path):
    (tmp_path / "CMakeCache.txt").write_text("KESTAL_CTPP2:STRING=compat\n")
    assert instructions.tool(tmp_path) is instructions.Callgrind


def test_instructions_of_a_request_are_what_twice_as_many_take_more(tmp_path, monkeypatch):
    class Counting:
        REQUESTS = 5

    monkeypatch.setattr(
        instructions,
        "of_process",
        lambda work, name, counter, document, target, requests: (1000 + 7 * requests, b"answer"),
    )
    counted = instructions.of_request(tmp_path, "s", lambda *_: Counting, "program", "document", "/srv/status")
    assert counted == (7, b"answer")
