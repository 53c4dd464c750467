"""The SBOM of a package says for each file where it comes from and under which licence."""

import json
import os
import subprocess

import tree

# Stands in for apt-cache, because this machine may have other versions, or none.
APT_CACHE = """#!/bin/sh
for name; do :; done
case $name in
    libfcgi0*) source=libfcgi ;;
    libutfcpp-dev) source=utfcpp ;;
    nlohmann-json3-dev) source=nlohmann-json3 ;;
    locales) source=glibc ;;
esac
printf 'Package: %s\\nVersion: 1.0\\nSource: %s\\n' "$name" "$source"
"""
LOCALE = "./usr/libexec/kestal/locales/de_DE/LC_MESSAGES/SYS_LC_MESSAGES"
PROGRAM = "./usr/libexec/kestal/kestal.cgi"
SETTINGS = "./etc/kestal/environment"
OTHERS_LICENCE = "./usr/share/doc/kestal/libutfcpp-dev.copyright"
CONTENTS = {LOCALE: b"\x11\x11\x03 ", PROGRAM: b"\x7fELF", SETTINGS: b"# Settings", OTHERS_LICENCE: b"BSL"}


def sbom_of(folder, contents):
    for name, content in contents.items():
        path = folder / "kestal" / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)
    control = folder / "kestal" / "DEBIAN" / "control"
    control.parent.mkdir()
    control.write_text("Package: kestal\nVersion: 1.2.3\nArchitecture: amd64\nMaintainer: nobody\n"
                       "Description: none\nDepends: libfcgi0t64 (>= 2.4)\n")
    packages = folder / "packages"
    packages.mkdir()
    subprocess.run(["dpkg-deb", "--root-owner-group", "-b", folder / "kestal", packages / "kestal.deb"], check=True,
                   capture_output=True, timeout=60)
    apt_cache = folder / "programs" / "apt-cache"
    apt_cache.parent.mkdir()
    apt_cache.write_text(APT_CACHE)
    apt_cache.chmod(0o755)
    subprocess.run(["/usr/bin/python3", tree.ROOT / "deploy" / "debian" / "sbom.py", packages], check=True, timeout=60,
                   env={"PATH": f"{apt_cache.parent}:{os.environ['PATH']}", "SOURCE_DATE_EPOCH": "0"})
    return json.loads((packages / "kestal.spdx.json").read_text())


def test_each_file_has_the_licence_of_where_it_comes_from(tmp_path):
    sbom = sbom_of(tmp_path, CONTENTS)
    assert {entry["fileName"]: (entry["licenseConcluded"], entry["copyrightText"]) for entry in sbom["files"]} == {
        LOCALE: ("LGPL-2.1-or-later", "NOASSERTION"),
        PROGRAM: ("BSL-1.0 AND MIT", "2026 the kestal authors"),
        SETTINGS: ("MIT", "2026 the kestal authors"),
        OTHERS_LICENCE: ("NOASSERTION", "NOASSERTION"),
    }


def test_a_package_has_the_licences_of_all_that_is_in_it(tmp_path):
    sbom = sbom_of(tmp_path, CONTENTS)
    names = {package["SPDXID"]: package["name"] for package in sbom["packages"]}
    names |= {entry["SPDXID"]: entry["fileName"] for entry in sbom["files"]}
    relations = {(names.get(relation["spdxElementId"]), relation["relationshipType"],
                  names[relation["relatedSpdxElement"]]) for relation in sbom["relationships"]}
    assert relations >= {(LOCALE, "GENERATED_FROM", "locales"), ("kestal", "STATIC_LINK", "libutfcpp-dev"),
                         ("kestal", "DEPENDS_ON", "libfcgi0t64"), ("kestal", "CONTAINS", SETTINGS)}
    assert sbom["packages"][0]["licenseConcluded"] == "BSL-1.0 AND LGPL-2.1-or-later AND MIT"


def test_a_package_without_locales_does_not_name_them(tmp_path):
    sbom = sbom_of(tmp_path, {PROGRAM: b"\x7fELF"})
    assert "locales" not in {package["name"] for package in sbom["packages"]}
    assert sbom["packages"][0]["licenseConcluded"] == "BSL-1.0 AND MIT"
