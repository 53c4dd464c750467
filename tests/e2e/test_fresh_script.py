"""Scripts that need root say so before they do anything. (CI tests that scripts/fresh works.)"""

import subprocess

import pytest

from support import paths
from support.waiting import DEADLINE

FRESH = paths.ROOT / "scripts" / "fresh"
USAGE = "usage: scripts/fresh 12 | 13 [run | test [ARGUMENT...]]\n"


@pytest.fixture
def fresh(work):
    """scripts/fresh, run by somebody who is not root."""
    (work / "id").write_text("#!/bin/sh\necho 1000\n")
    (work / "id").chmod(0o755)

    def run(*arguments, script=FRESH):
        done = subprocess.run(
            [str(script), *arguments],
            env={**paths.CLEAN_ENVIRONMENT, "PATH": f"{work}:{paths.CLEAN_ENVIRONMENT['PATH']}"},
            capture_output=True,
            text=True,
            timeout=DEADLINE,
        )
        return done.returncode, done.stdout, done.stderr

    return run


@pytest.mark.parametrize("arguments", [[], ["11"], ["trixie"], ["13", "build"], ["12", "run", "more"]])
def test_unknown_arguments_print_the_usage(fresh, arguments):
    assert fresh(*arguments) == (2, "", USAGE)


@pytest.mark.parametrize("arguments", [["13"], ["12", "run"], ["12", "test", "-R", "routing"]])
def test_without_root_it_says_why_root_is_needed(fresh, arguments):
    status, output, errors = fresh(*arguments)
    assert (status, output) == (1, "")
    assert errors.startswith("scripts/fresh: this needs root, for mmdebstrap, chroot and mounts")


def test_an_attack_needs_root_too(fresh):
    status, output, errors = fresh("--seconds", "1", script=paths.ROOT / "scripts" / "attack")
    assert (status, output) == (1, "")
    assert errors.startswith("scripts/attack: this needs root, to make networks")
