"""docs/threat-model.md names tests for all its claims, and each of these tests exists."""

import ast
import functools
import re

import pytest

from support import paths

DOCUMENT = paths.ROOT / "docs" / "threat-model.md"
REACH = "| Who | Reaches | Test |"
THREATS = "| Threat | What is done | Left to the integrator | Test |"
UNGUARDED = "none: the service does not defend itself against them"
REFERENCE = re.compile(r"`(?P<file>[\w.]+)::(?P<test>[^`]+)`")


def rows(header):
    """The rows of all tables of one kind, each as a list of its cells."""
    lines = iter(DOCUMENT.read_text().splitlines())
    for line in lines:
        if line == header:
            assert next(lines) == "|---" * header.count(" | ") + "|---|"
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
    return cpp_test(name, test)


def cpp_test(name, test):
    suite, _, case = test.partition(".")
    return re.search(rf"\bTEST(_F|_P)?\({re.escape(suite)},\s*{re.escape(case)}\)", source(name))


def is_skip(node):
    return "skip" in ast.unparse(node)


def may_be_skipped(name, test):
    """Whether the whole test is skipped in some builds."""
    if name.endswith(".cpp"):
        body = source(name)[cpp_test(name, test).end() :].partition("\nTEST")[0]
        return "GTEST_SKIP" in body
    if name.endswith(".js"):
        return False
    tree = ast.parse(source(name))
    marks = [node.value for node in tree.body if isinstance(node, ast.Assign) and "pytestmark" in ast.unparse(node)]
    (function,) = [node for node in tree.body if isinstance(node, ast.FunctionDef) and node.name == test]
    # A mark on a single parameter skips only that case, so only decorators count.
    decorators = [each.func if isinstance(each, ast.Call) else each for each in function.decorator_list]
    return any(map(is_skip, marks + decorators))


def check(tests):
    named = REFERENCE.findall(tests)
    assert named
    assert not REFERENCE.sub("", tests).strip(" ,"), "the cell contains something else than tests"
    for file, test in named:
        assert defines(file, test), f"{file} has no {test}"
    assert not all(may_be_skipped(*each) for each in named), "in some builds, all of these tests are skipped"


@pytest.mark.parametrize("row", rows(THREATS), ids=lambda row: row[0][:40])
def test_every_threat_names_tests_that_exist(row):
    threat, done, _, tests = row
    assert threat and done
    check(tests)


@pytest.mark.parametrize("row", rows(REACH), ids=lambda row: row[0][:40])
def test_whoever_does_not_reach_everything_has_tests_that_exist(row):
    who, reached, tests = row
    assert who and reached
    if tests != UNGUARDED:
        check(tests)


def test_tests_are_named_only_in_the_tables():
    named = [len(REFERENCE.findall(row[-1])) for header in (REACH, THREATS) for row in rows(header)]
    assert sum(named) > 30
    assert len(REFERENCE.findall(DOCUMENT.read_text())) == sum(named)


def test_a_test_that_does_not_exist_is_noticed():
    assert not defines("test_security.py", "test_nothing")
    assert not defines("test_security.py", "test_slow_clients")
    assert not defines("policy.test.js", "nothing")
    assert not defines("debug_log_test.cpp", "DebugLog.Nothing")
    with pytest.raises(ValueError):
        defines("test_nowhere.py", "test_nothing")


def test_a_row_whose_tests_may_all_be_skipped_is_noticed():
    assert may_be_skipped("test_hardening.py", "test_the_service_is_hardened")
    assert not may_be_skipped("test_hardening.py", "test_every_optimised_configuration_is_hardened")
    # A mark for the whole file.
    assert may_be_skipped(
        "test_allocation_failure.py", "test_a_service_is_started_again_when_libfcgi_gets_no_memory"
    )
    with pytest.raises(AssertionError):
        check("`test_hardening.py::test_the_service_is_hardened`")
