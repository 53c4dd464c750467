"""Without git, such as in an unpacked source archive, the tests of the tree pass or say why they are skipped."""

import pathlib
import shutil
import subprocess
import sys

import pytest
import tree

HERE = pathlib.Path(__file__)
TESTS = sorted(path.name for path in HERE.parent.glob("test_*.py") if path != HERE)


@pytest.fixture(scope="module")
def archive(tmp_path_factory):
    folder = tmp_path_factory.mktemp("archive")
    for name in tree.files():
        (folder / name).parent.mkdir(parents=True, exist_ok=True)
        shutil.copyfile(tree.ROOT / name, folder / name)
    return folder


@pytest.mark.parametrize("test", TESTS)
def test_the_tests_of_an_archive_pass_or_are_skipped(archive, test):
    done = subprocess.run(
        [sys.executable, "-m", "pytest", "-p", "no:cacheprovider", "-q", "-rs", test],
        cwd=archive / HERE.parent.relative_to(tree.ROOT),
        capture_output=True,
        text=True,
        timeout=60,
    )
    assert done.returncode == 0 or (done.returncode == 5 and "SKIPPED" in done.stdout), done.stdout
