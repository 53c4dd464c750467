"""Every file has a licence: REUSE.toml assigns LICENSE to it."""

import re
import shutil
import subprocess

import pytest
import tree


def usable():
    """Whether there is a release of reuse that knows REUSE.toml."""
    if not shutil.which("reuse"):
        return False
    told = subprocess.run(["reuse", "--version"], check=True, capture_output=True, text=True, timeout=60).stdout
    return int(re.search(r"(\d+)\.", told)[1]) >= 4


@pytest.mark.skipif(not usable(), reason="reuse is missing or does not know REUSE.toml")
def test_every_file_has_a_licence():
    done = subprocess.run(
        ["reuse", "--root", tree.ROOT, "lint"], capture_output=True, text=True, timeout=300
    )
    assert done.returncode == 0, done.stdout + done.stderr


def test_the_licence_file_is_the_one_that_reuse_assigns():
    assert (tree.ROOT / "LICENSE").read_text() == (tree.ROOT / "LICENSES" / "MIT.txt").read_text()
    assert "the kestal authors" in (tree.ROOT / "LICENSE").read_text()
