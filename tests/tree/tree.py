"""The files of this project: those that git tracks, and new files that it does not ignore."""

import functools
import pathlib
import subprocess

import pytest

ROOT = pathlib.Path(__file__).resolve().parents[2]


@functools.cache
def files():
    """Paths below ROOT, as texts. The tree may belong to another user, as in a container."""
    if not (ROOT / ".git").exists():
        pytest.skip("this is no git checkout, so nothing lists the project's files", allow_module_level=True)
    command = ["git", "-c", f"safe.directory={ROOT}", "-C", ROOT, "ls-files", "-co", "--exclude-standard", "-z"]
    listed = subprocess.run(command, check=True, capture_output=True, text=True, timeout=60).stdout
    return frozenset(name for name in listed.split("\0") if name and (ROOT / name).is_file())
