"""scripts/lint tells what is badly formed and never passes without having looked."""

import shutil
import subprocess

import pytest

from support import paths

GOOD_SOURCE = "int main() { return 0; }\n"
GOOD_SCRIPT = "#!/bin/sh\necho fine\n"


@pytest.fixture
def lint(work):
    """A source tree of two files, whose names a played git lists; clang-format tells a played release."""
    tree = work / "tree"
    (tree / "scripts").mkdir(parents=True)
    shutil.copy(paths.ROOT / "scripts" / "lint", tree / "scripts")
    git = work / "bin" / "git"
    git.parent.mkdir()

    def run(listing="echo main.cpp; echo script", source=GOOD_SOURCE, script=GOOD_SCRIPT, release=14):
        (tree / "main.cpp").write_text(source)
        (tree / "script").write_text(script)
        git.write_text(f"#!/bin/sh\n{listing}\n")
        git.chmod(0o755)
        formatter = git.parent / "clang-format-14"
        formatter.write_text(
            f'#!/bin/sh\n[ "$1" != --version ] || exec echo "version {release}.0.6"\nexec clang-format "$@"\n'
        )
        formatter.chmod(0o755)
        environment = {"PATH": f"{git.parent}:{paths.CLEAN_ENVIRONMENT['PATH']}"}
        return subprocess.run(
            [str(tree / "scripts" / "lint"), "--form"], env=environment, capture_output=True, text=True, timeout=60
        )

    return run


def test_a_well_formed_tree_passes(lint):
    done = lint()
    assert done.returncode == 0, done.stdout + done.stderr


def test_what_is_badly_formed_is_told(lint):
    done = lint(source="int  main(){return 0;}\n")
    assert done.returncode == 1
    assert "main.cpp:1" in done.stderr
    done = lint(script="#!/bin/sh\necho $1\n")
    assert done.returncode == 1
    assert "SC2086" in done.stdout


def test_what_another_release_finds_is_told_and_fails_nothing(lint):
    done = lint(source="int  main(){return 0;}\n", release=19)
    assert done.returncode == 0
    assert "main.cpp:1" in done.stderr
    assert "the findings of clang-format-14 count for nothing here" in done.stderr


@pytest.mark.parametrize(
    ("listing", "message"),
    [
        ("echo main.cpp; echo script; exit 128", "git cannot list the files"),
        ("exit 128", "git cannot list the files"),
        ("exit 0", "git lists no files"),
        ("echo gone.cpp", "git lists no files"),
        ("echo script", "git lists no C++ files"),
        ("echo main.cpp", "git lists no shell scripts"),
    ],
)
def test_a_listing_that_cannot_be_is_told(lint, listing, message):
    done = lint(listing)
    assert done.returncode == 1
    assert done.stderr == f"scripts/lint: {message}\n"


def test_a_missing_git_is_told(lint):
    done = lint("exec no-such-program")
    assert done.returncode == 1
    assert "scripts/lint: git cannot list the files\n" in done.stderr
