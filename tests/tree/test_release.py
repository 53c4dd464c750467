"""scripts/release makes a release only of a clean tree at its tag, and the same one each time."""

import hashlib
import json
import os
import shutil
import subprocess
import tarfile

import pytest
import tree

CHANGES = "- Something new.\n\n- Something mended."
CHANGELOG = f"# Changelog\n\n## 1.2.3, 2026-01-31\n\n{CHANGES}\n\n## 1.2.2, 2026-01-01\n\n- Something old.\n"
# Stands in for scripts/package: a package of this architecture, and one for all, which needs the first.
PACKAGE = """#!/usr/bin/python3
import json, pathlib, sys
release, architecture = sys.argv[1:]
folder = pathlib.Path(__file__).parents[1] / "build" / "packages" / f"{release}-{architecture}"
folder.mkdir(parents=True)
libc = {"SPDXID": "SPDXRef-Package-libc6", "name": "libc6", "versionInfo": release}
def write(name, kind, needs):
    file = f"{name}_1.2.3+deb{release}_{kind}.deb"
    (folder / file).write_text(architecture if pathlib.Path("differ").exists() else "the same")
    own = {"SPDXID": "SPDXRef-Package-own", "name": name, "versionInfo": f"1.2.3+deb{release}",
           "packageFileName": file, "filesAnalyzed": True, "packageVerificationCode": {}}
    relations = [("SPDXRef-DOCUMENT", "DESCRIBES", own), (own, "CONTAINS", "SPDXRef-File-1")]
    relations += [(own, "DEPENDS_ON", other) for other in needs]
    relations += [("SPDXRef-File-1", "GENERATED_FROM", other) for other in needs if other["name"] == "libc6"]
    identifier = lambda element: element if isinstance(element, str) else element["SPDXID"]
    relations = [{"spdxElementId": identifier(one), "relationshipType": kind, "relatedSpdxElement": identifier(other)}
                 for one, kind, other in relations]
    document = {"packages": [own, *needs], "files": [{"SPDXID": "SPDXRef-File-1"}], "relationships": relations}
    (folder / file.replace(".deb", ".spdx.json")).write_text(json.dumps(document))
page = {"SPDXID": "SPDXRef-Package-page", "name": "kestal-page", "versionInfo": f"1.2.3+deb{release}"}
write("kestal", architecture, [libc, page])
write("kestal-page", "all", [])
(folder / f"kestal_1.2.3_{architecture}.buildinfo").touch()
(folder / "lintian.txt").touch()
"""


def git(folder, *command):
    identity = ["-c", "user.name=nobody", "-c", "user.email=", "-c", "commit.gpgsign=false"]
    environment = {"PATH": os.environ["PATH"], "HOME": str(folder)}
    subprocess.run(["git", *identity, "-C", folder, *command], env=environment, check=True, timeout=60)


def commit(folder):
    git(folder, "add", ".")
    git(folder, "commit", "-q", "--allow-empty", "-m", "Something")


@pytest.fixture
def made(tmp_path):
    """A small repository at the tag of a release."""
    folder = tmp_path / "made"
    (folder / "scripts").mkdir(parents=True)
    for name in ("release", "join_sboms.py"):
        shutil.copy(tree.ROOT / "scripts" / name, folder / "scripts")
    (folder / "scripts" / "package").write_text(PACKAGE)
    for name in ("release", "package"):
        (folder / "scripts" / name).chmod(0o755)
    (folder / ".gitignore").write_text("build/\n")
    (folder / "CMakeLists.txt").write_text("project(kestal VERSION 1.2.3 LANGUAGES CXX)\n")
    (folder / "CHANGELOG.md").write_text(CHANGELOG)
    git(folder, "init", "-q")
    commit(folder)
    git(folder, "tag", "-a", "-m", "1.2.3", "v1.2.3")
    return folder


def release(folder, *arguments, umask=0o022):
    done = subprocess.run(
        [folder / "scripts" / "release", *arguments],
        cwd=folder,
        env={"PATH": os.environ["PATH"], "HOME": str(folder)},
        capture_output=True,
        text=True,
        timeout=60,
        umask=umask,
    )
    return done.returncode, done.stderr


def results(folder):
    return {path.name: path.read_bytes() for path in (folder / "build" / "releases" / "1.2.3").iterdir()}


def refused(folder, why, tag="v1.2.3"):
    assert release(folder, tag, "none") == (1, f"scripts/release: {why}\n")
    assert not (folder / "build" / "releases").exists()


@pytest.mark.parametrize("arguments", [[], ["1.2.3"], ["v1.2"], ["v01.2.3"], ["v1.2.3", "13"], ["v1.2.3", "none", "x"]])
def test_other_arguments_print_the_usage(made, arguments):
    status, told = release(made, *arguments)
    assert status == 2 and told.startswith("usage: scripts/release vX.Y.Z") and told.count("\n") == 1


def test_a_tag_that_is_not_there_is_refused(made):
    refused(made, "there is no tag v1.2.4", "v1.2.4")


def test_a_branch_with_the_name_of_a_tag_is_refused(made):
    git(made, "branch", "v1.2.4")
    refused(made, "there is no tag v1.2.4", "v1.2.4")


@pytest.mark.parametrize("name", ["CHANGELOG.md", "new"])
def test_a_tree_with_changes_is_refused(made, name):
    with open(made / name, "a") as file:
        file.write("changed\n")
    refused(made, "the tree is not clean: see git status")


def test_a_tree_at_another_commit_is_refused(made):
    commit(made)
    refused(made, "the tree is not at the tag: git checkout v1.2.3")


def test_a_tag_that_differs_from_the_version_is_refused(made):
    git(made, "tag", "v1.2.4")
    refused(made, "the tag is v1.2.4, but the version in CMakeLists.txt is 1.2.3", "v1.2.4")


@pytest.mark.parametrize(
    "heading", ["## 1.2.3, not released yet", "## 1.2.30, 2026-01-31", "## 1x2.3, 2026-01-31", "## 1.2.3"]
)
def test_a_version_without_a_section_of_the_changelog_is_refused(made, heading):
    (made / "CHANGELOG.md").write_text(CHANGELOG.replace("## 1.2.3, 2026-01-31", heading))
    commit(made)
    git(made, "tag", "-f", "v1.2.3")
    refused(made, "CHANGELOG.md has no heading '## 1.2.3, YYYY-MM-DD'")


def test_a_version_with_an_empty_section_of_the_changelog_is_refused(made):
    (made / "CHANGELOG.md").write_text(CHANGELOG.replace(CHANGES, ""))
    commit(made)
    git(made, "tag", "-f", "v1.2.3")
    refused(made, "the section of 1.2.3 in CHANGELOG.md is empty")


def test_a_release_without_packages_has_the_tagged_files_and_what_has_changed(made, tmp_path):
    assert release(made, "v1.2.3", "none") == (0, "")
    found = results(made)
    assert set(found) == {"SHA256SUMS", "changes.md", "kestal-1.2.3.spdx.json", "kestal-1.2.3.tar.gz"}
    assert found["changes.md"].decode() == CHANGES + "\n"
    for line in found["SHA256SUMS"].decode().splitlines():
        digest, name = line.split()
        assert hashlib.sha256(found.pop(name)).hexdigest() == digest
    assert set(found) == {"SHA256SUMS"}
    with tarfile.open(made / "build" / "releases" / "1.2.3" / "kestal-1.2.3.tar.gz") as archive:
        names = {member.name for member in archive if member.isfile()}
        assert {f"kestal-1.2.3/{name}" for name in ("CMakeLists.txt", "CHANGELOG.md", "scripts/release")} <= names
        assert archive.getmember("kestal-1.2.3/scripts/release").mode == 0o775 & ~0o022
    assert not [name for name in names if "/.git/" in name or "/build/" in name]


def test_a_tag_makes_the_same_files_again_on_another_machine(made, tmp_path):
    assert release(made, "v1.2.3", "none") == (0, "")
    other = tmp_path / "another" / "folder"
    git(tmp_path, "clone", "-q", made, other)
    git(other, "config", "tar.umask", "user")
    git(other, "config", "core.abbrev", "20")
    assert release(other, "v1.2.3", "none", umask=0o077) == (0, "")
    assert results(other) == results(made)
    # The time in gzip's head, which would be that of this run.
    assert results(made)["kestal-1.2.3.tar.gz"][4:8] == bytes(4)


def test_a_release_has_the_packages_and_one_sbom_of_all(made):
    assert release(made, "v1.2.3", "13-amd64", "13-arm64", "12-amd64") == (0, "")
    found = results(made)
    debs = {name for name in found if name.endswith(".deb")}
    assert debs == {
        "kestal_1.2.3+deb13_amd64.deb",
        "kestal_1.2.3+deb13_arm64.deb",
        "kestal_1.2.3+deb12_amd64.deb",
        "kestal-page_1.2.3+deb13_all.deb",
        "kestal-page_1.2.3+deb12_all.deb",
    }
    assert {name.replace(".deb", ".spdx.json") for name in debs} < set(found)
    sbom = json.loads(found["kestal-1.2.3.spdx.json"])
    packages = {entry["SPDXID"]: entry for entry in sbom["packages"]}
    assert len(packages) == len(sbom["packages"])
    titles = {key: entry.get("packageFileName", f"{entry['name']} {entry['versionInfo']}")
              for key, entry in packages.items()} | {"SPDXRef-DOCUMENT": "all"}
    relations = {
        (titles[told["spdxElementId"]], told["relationshipType"], titles[told["relatedSpdxElement"]])
        for told in sbom["relationships"]
    }
    expected = {("all", "DESCRIBES", "kestal-1.2.3.tar.gz")}
    for deb in debs:
        expected |= {("all", "DESCRIBES", deb), (deb, "GENERATED_FROM", "kestal-1.2.3.tar.gz")}
    for number, kind in (("13", "amd64"), ("13", "arm64"), ("12", "amd64")):
        own = f"kestal_1.2.3+deb{number}_{kind}.deb"
        expected |= {(own, "DEPENDS_ON", f"libc6 {number}"), (own, "GENERATED_FROM", f"libc6 {number}"),
                     (own, "DEPENDS_ON", f"kestal-page_1.2.3+deb{number}_all.deb")}
    assert relations == expected
    assert not any("packageVerificationCode" in entry or entry.get("filesAnalyzed") for entry in packages.values())


def test_packages_for_all_architectures_must_not_depend_on_the_architecture(made):
    (made / ".gitignore").write_text("build/\ndiffer\n")
    (made / "differ").touch()
    commit(made)
    git(made, "tag", "-f", "v1.2.3")
    status, told = release(made, "v1.2.3", "13-amd64", "13-arm64")
    assert status == 1
    assert "kestal-page_1.2.3+deb13_all.deb of 13-arm64 differs from that of another architecture" in told
    assert not (made / "build" / "releases" / "1.2.3").exists()
