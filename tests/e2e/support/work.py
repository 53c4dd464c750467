"""The folder of a test, and what is shown of it when the test fails. Each conftest.py imports both names."""

import os
import pathlib
import shutil
import tempfile

import pytest

from support import sanitizers

# What the programs of a test write, in its folder and in those of parts of it.
LOGS = ("*.log", "*.messages", "*.output", "stderr", "*/log", "own/*.log")


@pytest.fixture
def work():
    """A folder for one test. Its name is short, because the length of a socket's path is limited."""
    folder = pathlib.Path(tempfile.mkdtemp(prefix="kestal-test-"))
    yield folder
    sanitizers.check(folder)
    if "KESTAL_KEEP" in os.environ:
        print(f"kept: {folder}")
    else:
        shutil.rmtree(folder)


@pytest.hookimpl(hookwrapper=True)
def pytest_runtest_makereport(item):
    """Shows the ends of the logs of a failed test."""
    report = (yield).get_result()
    folder = item.funcargs.get("work")
    if report.failed and folder is not None and folder.exists():
        for file in sorted({file for pattern in LOGS for file in folder.glob(pattern) if file.is_file()}):
            lines = file.read_text(errors="replace").splitlines()[-60:]
            report.sections.append((f"end of {file.relative_to(folder)}", "\n".join(lines)))
