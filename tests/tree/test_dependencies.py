"""docs/dependencies.md lists exactly the packages that scripts/setup and the tests of the page install."""

import json
import re

import tree


def installed():
    setup = (tree.ROOT / "scripts" / "setup").read_text()
    packages = set(" ".join(re.findall(r"(?m)^\w+_packages='([^']*)'$", setup)).split())
    packages |= set(re.findall(r'_packages="\$\w+_packages (\S+)"', setup))
    (programs,) = re.findall(r"(?m)^test_programs='([^']*)'$", setup)
    packages |= {program.partition("=")[2] for program in programs.split()}
    return packages | set(json.loads((tree.ROOT / "tests/browser/package.json").read_text())["devDependencies"])


def test_exactly_the_installed_packages_are_listed():
    page = (tree.ROOT / "docs" / "dependencies.md").read_text()
    rows = re.findall(r"(?m)^\| (`.*?) \| ([^|]+) \| ([^|]+) \|$", page)
    explained = [name for cell, _, _ in rows for name in re.findall(r"`([^`]+)`", cell)]
    assert len(explained) == len(set(explained))
    assert set(explained) == installed()
