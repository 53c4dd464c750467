"""scripts/lint tells what is badly formed, and clang-tidy looks only at what it does not know to be clean."""

import json
import shutil
import subprocess

import pytest

from support import paths

LINT = paths.ROOT / "scripts" / "lint"


@pytest.fixture
def tree(work):
    """A source tree of two files that git tracks."""
    tree = work / "tree"
    (tree / "scripts").mkdir(parents=True)
    for name in ("lint", "tidy.py"):
        shutil.copy(paths.ROOT / "scripts" / name, tree / "scripts")
    (tree / "main.cpp").write_text("int main() { return 0; }\n")
    (tree / "script").write_text("#!/bin/sh\necho fine\n")
    subprocess.run(["git", "init", "-q", tree], check=True, timeout=20)
    return tree


def run(*command, path=None):
    environment = dict(paths.CLEAN_ENVIRONMENT)
    if path:
        environment["PATH"] = f"{path}:{environment['PATH']}"
    return subprocess.run(command, env=environment, capture_output=True, text=True, timeout=60)


def test_a_well_formed_tree_passes(tree):
    done = run(tree / "scripts" / "lint", "--form")
    assert done.returncode == 0, done.stdout + done.stderr


def play_release(work, version, rest):
    """The folder of a clang-format that is found as that of the reference release and tells version."""
    reference = LINT.read_text().split("\nreference=")[1].split("\n")[0]
    played = work / "bin" / f"clang-format-{reference}"
    played.parent.mkdir()
    played.write_text(
        f'#!/bin/sh\n[ "$1" = --version ] && echo "clang-format version {version or reference}.0.0" && exit\n{rest}\n'
    )
    played.chmod(0o755)
    return played.parent


def test_what_is_badly_formed_is_told(tree, work):
    (tree / "main.cpp").write_text("int  main(){return 0;}\n")
    (tree / "script").write_text("#!/bin/sh\necho $1\n")
    # This machine's may be of another release.
    done = run(tree / "scripts" / "lint", "--form", path=play_release(work, "", 'exec clang-format "$@"'))
    assert done.returncode == 1
    assert "main.cpp:1" in done.stderr
    assert "SC2086" in done.stdout


def test_a_tree_without_git_does_not_pass(tree):
    shutil.rmtree(tree / ".git")
    done = run(tree / "scripts" / "lint", "--form")
    assert done.returncode == 1
    assert "scripts/lint: git cannot list the files\n" in done.stderr


def test_what_only_another_release_finds_is_told_and_fails_nothing(tree, work):
    done = run(tree / "scripts" / "lint", "--form", path=play_release(work, 999, "exit 1"))
    assert done.returncode == 0, done.stdout + done.stderr
    assert "count for nothing here: the reference is release" in done.stderr


@pytest.fixture
def tidy(tree, work):
    """Runs clang-tidy, played, over a.cpp and b.cpp of a build; returns its exit status and what was looked at."""
    build = tree / "build"
    build.mkdir()
    for name in ("a", "b"):
        (tree / f"{name}.cpp").write_text("\n")
    (tree / "a.h").write_text("\n")
    commands = [
        {"directory": str(build), "file": str(tree / f"{name}.cpp"), "command": f"c++ -o {name}.o -c ../{name}.cpp"}
        for name in ("a", "b")
    ]
    (build / "compile_commands.json").write_text(json.dumps(commands))
    tools = work / "bin"
    tools.mkdir()
    looked_at = work / "looked-at"
    played = {
        "clang-tidy": f'''[ "$1" = --version ] && echo "version $VERSION" && exit
for file do :; done
basename "$file" >> {looked_at}
! grep -H bad "$file"''',
        "ninja": "printf 'a.o: #deps 1, deps mtime 1 (VALID)\\n    ../a.h\\n\\nb.o: #deps 0, deps mtime 1 (VALID)\\n'",
    }
    for name, script in played.items():
        (tools / name).write_text(f"#!/bin/sh\n{script}\n")
        (tools / name).chmod(0o755)

    def look(*options, version="1"):
        looked_at.write_text("")
        done = subprocess.run(
            [tree / "scripts" / "tidy.py", "clang-tidy", build, *options],
            env={"PATH": f"{tools}:{paths.CLEAN_ENVIRONMENT['PATH']}", "VERSION": version},
            capture_output=True,
            text=True,
            timeout=60,
        )
        return done.returncode, sorted(looked_at.read_text().split())

    return look


def test_clang_tidy_looks_again_at_what_changed(tidy, tree):
    assert tidy() == (0, ["a.cpp", "b.cpp"])
    assert tidy() == (0, [])
    (tree / "b.cpp").write_text("int b;\n")
    assert tidy() == (0, ["b.cpp"])
    (tree / "a.h").write_text("int a;\n")
    assert tidy() == (0, ["a.cpp"])
    (tree / ".clang-tidy").write_text("Checks: '*'\n")
    assert tidy() == (0, ["a.cpp", "b.cpp"])
    assert tidy(version="2") == (0, ["a.cpp", "b.cpp"])
    assert tidy("--all", version="2") == (0, ["a.cpp", "b.cpp"])


def test_clang_tidy_tells_a_finding_until_it_is_gone(tidy, tree):
    (tree / "a.cpp").write_text("bad\n")
    assert tidy() == (1, ["a.cpp", "b.cpp"])
    assert tidy() == (1, ["a.cpp"])
    (tree / "a.cpp").write_text("good\n")
    assert tidy() == (0, ["a.cpp"])
