"""Every program prints its version and the commit that it was built from; both are defined in one place."""

import os
import pathlib
import re
import shutil
import subprocess

import pytest

from support import paths

VERSION = re.search(r"project\(kestal VERSION (\S+)", (paths.ROOT / "CMakeLists.txt").read_text())[1]
TOLD = rf"{re.escape(VERSION)}( \([0-9a-f]{{12}}(-dirty)?\))?"
SCRIPT = paths.ROOT / "version" / "write_version.cmake"


def run(*command, **environment):
    done = subprocess.run(
        list(map(str, command)),
        env={**paths.CLEAN_ENVIRONMENT, **environment},
        capture_output=True,
        text=True,
        timeout=60,
        check=True,
    )
    return done.stdout


def programs():
    tools = [paths.BUILD / "tools" / name for name in ("sysintcli", "webui_cli", "msgbus_cli")]
    return [paths.SERVICE, *tools, paths.SIM, paths.BUILD / "conformance" / "kestal-conformance"]


@pytest.mark.parametrize("program", programs(), ids=lambda path: path.name)
def test_a_program_prints_the_version_of_the_build(program):
    told = run(program, "--version")
    assert re.fullmatch(rf"{re.escape(program.name)} {TOLD}\n", told)
    assert told.split(" ", 1)[1] == run(paths.SERVICE, "--version").split(" ", 1)[1]


def test_the_launcher_prints_the_version_of_the_service():
    told = run(paths.LAUNCHER, "--version", KESTAL_RESPONDER=str(paths.SERVICE))
    assert told == run(paths.SERVICE, "--version").replace("kestal.cgi", "kestal-server")


@pytest.mark.parametrize("page", sorted((paths.ROOT / "docs" / "man").iterdir()), ids=lambda path: path.name)
def test_a_man_page_contains_the_version_of_the_build(page):
    name = page.name.removesuffix(".scd")
    built = paths.BUILD / "man" / f"man{name[-1]}" / name
    told = run(paths.SERVICE, "--version").strip().removeprefix("kestal.cgi ")
    assert f'"kestal {told}"' in built.read_text()


@pytest.fixture
def tree(work):
    """A repository with a commit."""
    folder = work / "tree"
    folder.mkdir()
    git(folder, "init", "-q")
    (folder / "file").write_text("committed")
    git(folder, "add", "file")
    commit(folder)
    return folder


def git(folder, *command):
    identity = ["-c", "user.name=nobody", "-c", "user.email="]
    return run("git", *identity, "-C", folder, *command, HOME=str(folder)).strip()


def commit(folder):
    git(folder, "commit", "-q", "--allow-empty", "-m", "Something")


def write(folder, source, tool="git", **environment):
    """The version in the source file that the build generates for the tree in the folder."""
    run(
        "cmake", "-D", "version=1.2.3", "-D", f"git={tool}", "-D", f"folder={folder}", "-D", f"source={source}",
        "-D", f"file={source}.txt", "-P", SCRIPT, **environment,
    )
    version = re.search(r'return "(.*)";', source.read_text())[1]
    assert pathlib.Path(f"{source}.txt").read_text() == version
    return version


def test_the_version_contains_the_commit_that_is_checked_out(tree, work):
    assert write(tree, work / "version.cpp") == f"1.2.3 ({git(tree, 'rev-parse', 'HEAD')[:12]})"


def test_the_source_changes_with_the_commit_and_only_with_it(tree, work):
    source = work / "version.cpp"
    first = write(tree, source)
    written = source.stat().st_mtime_ns
    assert write(tree, source) == first and source.stat().st_mtime_ns == written
    commit(tree)
    git(tree, "commit", "-q", "--amend", "--allow-empty", "-m", "Something else")
    assert write(tree, source) != first and source.stat().st_mtime_ns != written


def test_the_version_marks_a_tree_that_differs_from_its_commit(tree, work):
    source = work / "version.cpp"
    clean = write(tree, source)
    (tree / "new").write_text("not part of the project yet")
    assert write(tree, source) == clean
    (tree / "file").write_text("changed")
    assert write(tree, source) == clean.replace(")", "-dirty)")
    git(tree, "add", "file")
    assert write(tree, source) == clean.replace(")", "-dirty)")
    (tree / "file").write_text("committed")
    git(tree, "add", "file")
    # Another time of change alone is no difference.
    os.utime(tree / "file", (0, 0))
    assert write(tree, source) == clean


@pytest.mark.parametrize("variable", ["GIT_DIR", "GIT_WORK_TREE", "GIT_INDEX_FILE"])
def test_variables_that_name_another_repository_are_ignored(tree, work, variable):
    other = work / "other"
    other.mkdir()
    git(other, "init", "-q")
    git(other, "commit", "-q", "--allow-empty", "-m", "Something else")
    leads = {"GIT_DIR": other / ".git", "GIT_WORK_TREE": other, "GIT_INDEX_FILE": other / ".git" / "index"}
    expected = write(tree, work / "version.cpp")
    assert write(tree, work / "version.cpp", **{variable: str(leads[variable])}) == expected


def test_without_its_own_repository_a_build_has_no_commit(tree, work):
    (tree / "inside").mkdir()
    assert write(tree / "inside", work / "version.cpp") == "1.2.3"
    (work / "outside").mkdir()
    assert write(work / "outside", work / "version.cpp") == "1.2.3"
    assert write(tree, work / "version.cpp", tool="") == "1.2.3"


def test_an_archive_of_a_commit_tells_the_commit(tree, work):
    """As tar has unpacked it, in no repository or inside another one."""
    (tree / "version").mkdir()
    shutil.copy(SCRIPT.with_name("commit"), tree / "version" / "commit")
    shutil.copy(paths.ROOT / ".gitattributes", tree)
    git(tree, "add", ".")
    commit(tree)
    expected = write(tree, work / "version.cpp")
    assert write(tree, work / "version.cpp", tool="") == "1.2.3"
    git(tree, "archive", f"--output={work}/archive.tar", "HEAD")
    for folder in (work / "unpacked", tree / "unpacked"):
        folder.mkdir()
        run("tar", "-xf", work / "archive.tar", "-C", folder)
        assert write(folder, work / "version.cpp") == expected
        assert write(folder, work / "version.cpp", tool="") == expected
