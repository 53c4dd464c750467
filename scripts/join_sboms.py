#!/usr/bin/python3
"""Writes one SBOM of a release: its source archive, its packages, and what each of these has taken in and needs.

usage: join_sboms.py VERSION FOLDER   the folder has kestal-VERSION.tar.gz and the packages' SBOMs, *.spdx.json;
                                      it gets kestal-VERSION.spdx.json (SPDX 2.3)

The files in the packages stay in the packages' own SBOMs; what a file was made from, its package was made from.
"""

import hashlib
import json
import os
import pathlib
import re
import sys
import time


def identifier(*parts):
    return "SPDXRef-Package-" + re.sub(r"[^A-Za-z0-9.-]", "-", "-".join(parts))


def source(version, archive):
    digest = hashlib.sha256(archive.read_bytes()).hexdigest()
    return {
        "SPDXID": identifier("source", version),
        "name": "kestal",
        "versionInfo": version,
        "packageFileName": archive.name,
        "supplier": "Organization: the kestal authors",
        "downloadLocation": "NOASSERTION",
        "filesAnalyzed": False,
        "checksums": [{"algorithm": "SHA256", "checksumValue": digest}],
        "licenseConcluded": "MIT",
        "licenseDeclared": "MIT",
        "copyrightText": "2026 the kestal authors",
    }


def joined(package):
    """A package of an SBOM, as it stands in the joint one: one entry for each file, or version of something else."""
    name = package.get("packageFileName", f"{package['name']}-{package['versionInfo']}")
    kept = {key: value for key, value in package.items() if key != "packageVerificationCode"}
    return {**kept, "SPDXID": identifier(name), "filesAnalyzed": False}


def ours(document):
    return next(package for package in document["packages"] if "packageFileName" in package)


def join(version, folder):
    documents = [json.loads(path.read_text()) for path in sorted(folder.glob("*.spdx.json"))]
    archive = source(version, folder / f"kestal-{version}.tar.gz")
    # A package that needs another of ours names its version alone; the file is the one of the same architecture.
    built = {}
    for document in documents:
        package = ours(document)
        built[package["name"], package["versionInfo"], architecture(package)] = joined(package)
    packages = {archive["SPDXID"]: archive}
    relations = {("SPDXRef-DOCUMENT", "DESCRIBES", archive["SPDXID"])}
    for document in documents:
        own = ours(document)
        names = {"SPDXRef-DOCUMENT": "SPDXRef-DOCUMENT"}
        for package in document["packages"]:
            key = package["name"], package["versionInfo"]
            entry = built.get((*key, architecture(own))) or built.get((*key, "all")) or joined(package)
            names[package["SPDXID"]] = entry["SPDXID"]
            packages[entry["SPDXID"]] = entry
        relations.add((names[own["SPDXID"]], "GENERATED_FROM", archive["SPDXID"]))
        elements = names | {file["SPDXID"]: names[own["SPDXID"]] for file in document["files"]}
        relations |= {
            (elements[told["spdxElementId"]], told["relationshipType"], names[told["relatedSpdxElement"]])
            for told in document["relationships"]
            if told["relatedSpdxElement"] in names
        }
    created = time.strftime("%Y-%m-%dT%H:%M:%SZ", time.gmtime(int(os.environ["SOURCE_DATE_EPOCH"])))
    digest = archive["checksums"][0]["checksumValue"]
    return {
        "spdxVersion": "SPDX-2.3",
        "dataLicense": "CC0-1.0",
        "SPDXID": "SPDXRef-DOCUMENT",
        "name": f"kestal-{version}",
        "documentNamespace": f"https://kestal.invalid/spdx/kestal-{version}-{digest}",
        "creationInfo": {"created": created, "creators": ["Organization: the kestal authors"]},
        "packages": list(packages.values()),
        "relationships": [
            {"spdxElementId": one, "relationshipType": kind, "relatedSpdxElement": other}
            for one, kind, other in sorted(relations)
        ],
    }


def architecture(package):
    return package["packageFileName"].removesuffix(".deb").rpartition("_")[2]


def main(version, folder):
    folder = pathlib.Path(folder)
    (folder / f"kestal-{version}.spdx.json").write_text(json.dumps(join(version, folder), indent=1) + "\n")


main(*sys.argv[1:])
