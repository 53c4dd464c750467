"""scripts/package gives the packages the version of the commit, and puts the figures of all of them into one table."""

import json
import os
import shutil
import subprocess

import pytest
import tree

# Stands in for scripts/fresh, which makes clean Debians: tells what it is called with, and leaves a package.
FRESH = """#!/bin/sh
folder=$(dirname "$0")/../build
mkdir -p "$folder"
echo "$*" >> "$folder/calls"
mkdir -p "$KESTAL_FRESH_ROOT/root/packages/$4"
touch "$KESTAL_FRESH_ROOT/root/packages/$4/kestal.deb"
"""
TIME = "2026-01-31T12:34:56+0000"
SECONDS = "1769862896"


def git(folder, *command):
    identity = ["-c", "user.name=nobody", "-c", "user.email=", "-c", "commit.gpgsign=false"]
    return subprocess.run(
        ["git", *identity, "-C", folder, *command],
        env={"PATH": os.environ["PATH"], "HOME": str(folder), "GIT_COMMITTER_DATE": TIME},
        check=True, capture_output=True, text=True, timeout=60).stdout.strip()


@pytest.fixture
def made(tmp_path):
    """A small repository with the script."""
    (tmp_path / "scripts").mkdir()
    shutil.copy(tree.ROOT / "scripts" / "package", tmp_path / "scripts")
    (tmp_path / "scripts" / "fresh").write_text(FRESH)
    for name in ("package", "fresh"):
        (tmp_path / "scripts" / name).chmod(0o755)
    (tmp_path / "CMakeLists.txt").write_text("project(kestal VERSION 1.2.3 LANGUAGES CXX)\n")
    git(tmp_path, "init", "-q")
    git(tmp_path, "add", ".")
    git(tmp_path, "commit", "-q", "-m", "Something")
    return tmp_path


def package(folder, *arguments, **environment):
    """The calls of scripts/fresh."""
    environment = {"PATH": os.environ["PATH"], "HOME": str(folder), "TMPDIR": str(folder), **environment}
    done = subprocess.run([folder / "scripts" / "package", *arguments], env=environment, capture_output=True, text=True,
                          timeout=60)
    assert done.returncode == 0, done
    return (folder / "build" / "calls").read_text().splitlines()


# With this variable, git takes a tree for that of another user, as in a container.
@pytest.mark.parametrize("owner", [{}, {"GIT_TEST_ASSUME_DIFFERENT_OWNER": "1"}], ids=["own", "others"])
def test_a_commit_that_is_no_release_has_its_time_and_name_in_the_version(made, owner):
    name = git(made, "rev-parse", "--short=12", "HEAD")
    calls = package(made, "12", "amd64", **owner)
    assert calls[0] == f"12 deploy/debian/build 12 amd64 1.2.3~git20260131.123456.{name}+deb12 {SECONDS} 2"
    assert (made / "build" / "packages" / "12-amd64" / "kestal.deb").exists()


def test_a_release_has_the_version_of_its_tag(made):
    git(made, "tag", "-a", "-m", "1.2.3", "v1.2.3")
    calls = package(made, "--once", "13", "armhf")
    assert calls == [f"13 deploy/debian/build 13 armhf 1.2.3+deb13 {SECONDS} 1"]


# Of the packages, by release of Debian.
VERSIONS = {"12": "1.2.3", "13": "1.2.3~git20260131.123456.12345abcdef0"}


def test_the_table_has_a_row_for_each_release_and_architecture(tmp_path):
    """Also for those whose packages are not here, which it had before."""
    for release, architecture, size in (("12", "amd64", 1), ("13", "armhf", 3), ("13", "amd64", 2)):
        figures = {
            "release": release, "architecture": architecture, "emulated": architecture != "amd64",
            "packageBytes": size * 1024, "boardBytes": 4096, "installedKiB": 5, "programBytes": 6144,
            "pssKiB": 7 if architecture == "amd64" else None,
            "firstAnswerMilliseconds": {"service": [8.0, 9.0, 8.5], "bare": [4.0, 4.5, 4.25]},
        }
        folder = tmp_path / f"{release}-{architecture}"
        folder.mkdir()
        (folder / "figures.json").write_text(json.dumps(figures))
        (folder / f"kestal_{VERSIONS[release]}+deb{release}_{architecture}.changes").touch()
    page = tmp_path / "page.md"
    page.write_text("| Debian 11, amd64 | not a row |\n<!-- packages -->\nold\n| Debian 12, amd64 | old |\n"
                    "| Debian 12, arm64 | 1.2.0 | 9 | | | | 8 | | |\n<!-- end of packages -->\nafter\n")
    figures_program = tree.ROOT / "deploy" / "debian" / "figures.py"
    subprocess.run(["/usr/bin/python3", figures_program, "document", tmp_path, page], check=True, timeout=60,
                   env={"PATH": os.environ["PATH"], "PYTHONDONTWRITEBYTECODE": "1"})
    lines = page.read_text().splitlines()
    rows = [[cell.strip() for cell in line.split("|")[1:-1]] for line in lines if line.startswith("| Debian")]
    assert [row[:3] + row[6:7] for row in rows[1:]] == [
        ["Debian 13, amd64", "12345ab", "2", "7"], ["Debian 13, armhf", "12345ab", "3", ""],
        ["Debian 12, amd64", "1.2.3", "1", "7"], ["Debian 12, arm64", "1.2.0", "9", "8"]]
    assert rows[2][7:] == ["2.0 (2.0 to 2.0)", "qemu-user"]
    assert (lines[0], lines[-1], "old" in lines) == ("| Debian 11, amd64 | not a row |", "after", False)
