"""The arithmetic of scripts/soak --long: slopes, their errors, and what counts as growth."""

import pathlib
import sys

TESTS = pathlib.Path(__file__).resolve().parents[1]
sys.path += [str(TESTS / "soak"), str(TESTS / "e2e")]

import growth


def series(figures, limit=0):
    return growth.Series("heap", "KiB per million requests", limit, list(enumerate(figures)))


def test_slope_of_a_line_has_no_error():
    slope, error = series([10, 12, 14, 16]).slope()
    assert (round(slope, 9), round(error, 9)) == (2, 0)


def test_error_is_the_standard_error_of_the_slope():
    # Residuals of 1 and -1: their squares make 4, the places spread by 5, and two degrees of freedom remain.
    slope, error = series([1, 1, 3, 3]).slope()
    assert round(slope, 9) == 0.8
    assert round(error, 6) == round((0.8 / 2 / 5) ** 0.5, 6)


def test_figures_that_go_up_and_down_do_not_grow():
    assert not series([5, 9, 4, 8, 5, 9, 4, 8]).grows()


def test_steady_growth_counts_from_the_limit_on():
    assert series(range(100, 110), limit=8).grows()
    assert not series(range(100, 110), limit=10).grows()
    assert not series(range(110, 100, -1)).grows()


def test_growth_that_ends_in_the_first_half_does_not_count():
    assert not series([100, 120, 140, 140, 140, 140], limit=8).grows()
    assert series([100, 100, 100, 120, 140, 160], limit=8).grows()


def test_only_a_missing_web_server_is_an_outage():
    assert growth.is_outage("status: [Errno 111] Connection refused")
    assert growth.is_outage("status: the connection ended before the answer")
    assert not growth.is_outage("status: no JSON: Expecting value")
    assert not growth.is_outage("connect: status 500")
