"""docs/threat-model.md names a test for every threat, and each of them exists."""

import functools
import re

import pytest

from support import paths

DOCUMENT = paths.ROOT / "docs" / "threat-model.md"
HEADER = "| Threat | What is done | Left to the integrator | Test |"
REFERENCE = re.compile(r"`(?P<file>[\w.]+)::(?P<test>[^`]+)`")


def threats():
    """The rows of the tables of threats, each as its cells."""
    lines = iter(DOCUMENT.read_text().splitlines())
    for line in lines:
        if line == HEADER:
            assert next(lines) == "|---|---|---|---|"
            while (row := next(lines, "")).startswith("|"):
                yield [cell.strip() for cell in row.strip("|").split(" |")]


@functools.cache
def source(name):
    (file,) = [path for path in (paths.ROOT / "tests").glob(f"**/{name}") if "node_modules" not in path.parts]
    return file.read_text()


def defines(name, test):
    if name.endswith(".py"):
        return re.search(rf"(?m)^def {re.escape(test)}\(", source(name))
    if name.endswith(".js"):
        return f'test("{test}"' in source(name)
    suite, _, case = test.partition(".")
    return re.search(rf"\bTEST(_F|_P)?\({re.escape(suite)},\s*{re.escape(case)}\)", source(name))


@pytest.mark.parametrize("row", threats(), ids=lambda row: row[0][:40])
def test_every_threat_names_tests_that_exist(row):
    threat, done, left, tests = row
    assert threat and done
    named = REFERENCE.findall(tests)
    assert named
    assert not REFERENCE.sub("", tests).strip(" ,"), "something else stands among the tests"
    for file, test in named:
        assert defines(file, test), f"{file} has no {test}"


def test_nothing_is_named_that_is_not_in_a_row():
    rows = sum(len(REFERENCE.findall(row[3])) for row in threats())
    assert rows > 30
    assert len(REFERENCE.findall(DOCUMENT.read_text())) == rows


def test_a_test_that_does_not_exist_is_noticed():
    assert not defines("test_security.py", "test_nothing")
    assert not defines("test_security.py", "test_slow_clients")
    assert not defines("policy.test.js", "nothing")
    assert not defines("debug_log_test.cpp", "DebugLog.Nothing")
    with pytest.raises(ValueError):
        defines("test_nowhere.py", "test_nothing")
