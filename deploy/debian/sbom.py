"""Writes an SBOM for each package: what is in it, what it has taken in, what it needs, and under which licences.

usage: sbom.py FOLDER   the folder of the .deb files; NAME.deb gets NAME.spdx.json (SPDX 2.3)

apt tells which versions of other packages there are.
"""

import hashlib
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import time

# By source package, without the number that is part of some names.
LICENCES = {
    "libcgicc": "LGPL-3.0-or-later",
    "cli": "BSD-3-Clause",
    "curl": "curl",
    "gcc": "GPL-3.0-or-later WITH GCC-exception-3.1",
    "glibc": "LGPL-2.1-or-later",
    "kestal": "MIT",
    "libfcgi": "OML",
    "libmd": "BSD-3-Clause",
    "lighttpd": "BSD-3-Clause",
    "nlohmann-json": "MIT",
    "systemd": "LGPL-2.1-or-later",
    "utfcpp": "BSL-1.0",
}
# Headers whose code becomes a part of the programs of a package, by the build's package of these headers.
TAKEN_IN = {
    "kestal": ["libutfcpp-dev", "nlohmann-json3-dev"],
    "kestal-tools": ["libutfcpp-dev", "nlohmann-json3-dev", "libcli11-dev"],
    "kestal-simulator": ["libutfcpp-dev", "nlohmann-json3-dev", "libcli11-dev"],
    "kestal-dev": ["libutfcpp-dev", "nlohmann-json3-dev", "libcli11-dev"],
    "kestal-page": [],
}
# Files that localedef has made of the sources in this package.
LOCALES = "locales"
LOCALE_FILE = "SYS_LC_MESSAGES"


def output(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True, timeout=60).stdout


def field(deb, name):
    return output("dpkg-deb", "-f", str(deb), name).strip()


def identifier(name):
    return "SPDXRef-" + re.sub(r"[^A-Za-z0-9.-]", "-", name)


def licence_of(source):
    name = re.sub(r"-?[0-9]+(-cross.*)?$", "", source)
    try:
        return LICENCES[name]
    except KeyError:
        raise SystemExit(f"sbom.py: the licence of {source} is not known") from None


def of_debian(name, architecture=""):
    """The package of Debian that apt knows here; headers without code are there once for all architectures."""
    told = output("apt-cache", "show", "--no-all-versions", name + architecture)
    version = re.search(r"(?m)^Version: (\S+)", told)[1]
    source = (re.search(r"(?m)^Source: (\S+)", told) or [None, name])[1]
    return {
        "SPDXID": identifier(f"Package-{name}"),
        "name": name,
        "versionInfo": version,
        "supplier": "Organization: Debian",
        "sourceInfo": f"built by Debian from its source package {source}",
        "downloadLocation": "NOASSERTION",
        "filesAnalyzed": False,
        "licenseConcluded": "NOASSERTION",
        "licenseDeclared": licence_of(source),
        "copyrightText": "NOASSERTION",
    }


def compiled(content):
    """A program, or an archive of objects."""
    return content.startswith((b"\x7fELF", b"!<arch>"))


def files_in(deb, folder, licence_of_programs, licence_of_locales):
    subprocess.run(["dpkg-deb", "-x", deb, folder], check=True, timeout=60)
    found = []
    for path in sorted(pathlib.Path(folder).rglob("*")):
        if path.is_symlink() or not path.is_file():
            continue
        content = path.read_bytes()
        name = "./" + str(path.relative_to(folder))
        licence, author = "MIT", "2026 the kestal authors"
        if compiled(content):
            licence = licence_of_programs
        elif path.name == LOCALE_FILE:
            licence, author = licence_of_locales, "NOASSERTION"
        elif path.suffix == ".copyright":
            # The licence of another work.
            licence = author = "NOASSERTION"
        found.append(
            {
                "SPDXID": identifier(f"File-{hashlib.sha1(name.encode()).hexdigest()}"),
                "fileName": name,
                "checksums": [
                    {"algorithm": "SHA1", "checksumValue": hashlib.sha1(content).hexdigest()},
                    {"algorithm": "SHA256", "checksumValue": hashlib.sha256(content).hexdigest()},
                ],
                "licenseConcluded": licence,
                "copyrightText": author,
            }
        )
    return found


def needed(deb):
    """Names of the packages that it depends on; of alternatives, the first."""
    parts = [part for part in field(deb, "Depends").split(",") if part.strip()]
    return sorted({re.split(r"[ :(|]", part.strip())[0] for part in parts})


def document(deb):
    name, architecture = field(deb, "Package"), ":" + field(deb, "Architecture")
    siblings = [sibling for sibling in needed(deb) if sibling.startswith("kestal")]
    others = [other for other in needed(deb) if other not in siblings]
    packages = {other: of_debian(other, architecture) for other in others}
    packages |= {taken: of_debian(taken) for taken in TAKEN_IN[name]}
    licences = {"MIT", *(packages[taken]["licenseDeclared"] for taken in TAKEN_IN[name])}
    locales = of_debian(LOCALES)
    with tempfile.TemporaryDirectory() as folder:
        files = files_in(deb, folder, " AND ".join(sorted(licences)), locales["licenseDeclared"])
    made_of_locales = [entry for entry in files if entry["fileName"].endswith(f"/{LOCALE_FILE}")]
    if made_of_locales:
        packages[LOCALES] = locales
        licences.add(locales["licenseDeclared"])
    sums = sorted(entry["checksums"][0]["checksumValue"] for entry in files)
    digest = hashlib.sha256(deb.read_bytes()).hexdigest()
    ours = {
        "SPDXID": identifier(f"Package-{name}"),
        "name": name,
        "versionInfo": field(deb, "Version"),
        "packageFileName": deb.name,
        "supplier": "Organization: the kestal authors",
        "downloadLocation": "NOASSERTION",
        "filesAnalyzed": True,
        "packageVerificationCode": {
            "packageVerificationCodeValue": hashlib.sha1("".join(sums).encode()).hexdigest()
        },
        "checksums": [{"algorithm": "SHA256", "checksumValue": digest}],
        "licenseConcluded": " AND ".join(sorted(licences)),
        "licenseDeclared": "MIT",
        "copyrightText": "2026 the kestal authors",
    }
    relations = [("SPDXRef-DOCUMENT", "DESCRIBES", ours["SPDXID"])]
    relations += [(ours["SPDXID"], "CONTAINS", entry["SPDXID"]) for entry in files]
    relations += [(ours["SPDXID"], "DEPENDS_ON", packages[other]["SPDXID"]) for other in others]
    relations += [(ours["SPDXID"], "STATIC_LINK", packages[other]["SPDXID"]) for other in TAKEN_IN[name]]
    relations += [(entry["SPDXID"], "GENERATED_FROM", locales["SPDXID"]) for entry in made_of_locales]
    for sibling in siblings:
        packages[sibling] = {
            "SPDXID": identifier(f"Package-{sibling}"),
            "name": sibling,
            "versionInfo": field(deb, "Version"),
            "supplier": "Organization: the kestal authors",
            "downloadLocation": "NOASSERTION",
            "filesAnalyzed": False,
            "licenseConcluded": "MIT",
            "licenseDeclared": "MIT",
            "copyrightText": "2026 the kestal authors",
        }
        relations.append((ours["SPDXID"], "DEPENDS_ON", packages[sibling]["SPDXID"]))
    created = time.strftime("%Y-%m-%dT%H:%M:%SZ", time.gmtime(int(os.environ["SOURCE_DATE_EPOCH"])))
    return {
        "spdxVersion": "SPDX-2.3",
        "dataLicense": "CC0-1.0",
        "SPDXID": "SPDXRef-DOCUMENT",
        "name": deb.stem,
        "documentNamespace": f"https://kestal.invalid/spdx/{deb.stem}-{digest}",
        "creationInfo": {"created": created, "creators": ["Organization: the kestal authors"]},
        "packages": [ours, *packages.values()],
        "files": files,
        "relationships": [
            {"spdxElementId": one, "relationshipType": kind, "relatedSpdxElement": other}
            for one, kind, other in relations
        ],
    }


def main(folder):
    for deb in sorted(pathlib.Path(folder).glob("*.deb")):
        if "-dbgsym" in deb.name:
            continue
        deb.with_suffix(".spdx.json").write_text(json.dumps(document(deb), indent=1) + "\n")


main(*sys.argv[1:])
