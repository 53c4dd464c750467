"""The arithmetic of scripts/bench: ratios to the floor, load of other processes, rows without figures."""

import os
import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "bench"))

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
