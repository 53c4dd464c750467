#!/usr/bin/env python3
"""Runs clang-tidy over the sources of a configured build, as many at a time as there are processors.

usage: scripts/tidy.py CLANG_TIDY BUILD [--all]

A source that was clean is looked at again only when it, a project header it includes, its command, a
.clang-tidy above it or clang-tidy itself has changed. Exits with 1 when something was found.
"""

import concurrent.futures
import functools
import hashlib
import json
import os
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent


@functools.lru_cache(maxsize=None)
def content(path):
    try:
        return hashlib.sha256(pathlib.Path(path).read_bytes()).hexdigest()
    except OSError:
        return "missing"


def commands(build):
    """One command for each source. A sanitized twin compiles the same text as the plain target."""
    chosen = {}
    for entry in json.loads((build / "compile_commands.json").read_text()):
        source = os.path.normpath(os.path.join(entry["directory"], entry["file"]))
        inside = source.startswith(f"{ROOT}/") and not source.startswith(f"{build}/")
        if inside and (source not in chosen or "-fsanitize=" in chosen[source]["command"]):
            chosen[source] = entry
    return chosen


def included_headers(build):
    """The project's headers that each object file was compiled from, as the compiler reported them."""
    listing = subprocess.run(
        ["ninja", "-C", str(build), "-t", "deps"], capture_output=True, text=True, check=False
    ).stdout
    headers = {}
    for line in listing.splitlines():
        if line[:1].strip():
            name = line.split(": #deps")[0]
            headers[name] = None if line.endswith("(STALE)") else []
        elif line.strip() and headers.get(name) is not None:
            path = os.path.normpath(os.path.join(build, line.strip()))
            if path.startswith(f"{ROOT}/"):
                headers[name].append(path)
    return headers


def state(source, entry, headers, version):
    """A digest of all that decides what clang-tidy finds, or None where it is not known."""
    used = headers.get(entry.get("output"))
    if used is None:
        return None
    parents = [folder / ".clang-tidy" for folder in pathlib.Path(source).parents]
    configuration = [str(file) for file in parents if file.is_relative_to(ROOT) and file.exists()]
    parts = [version, entry["command"]]
    parts += [f"{file} {content(file)}" for file in sorted({source, *used, *configuration})]
    return hashlib.sha256("\n".join(parts).encode()).hexdigest()


def main(tidy, build, everything):
    build = pathlib.Path(build).resolve()
    version = subprocess.run([tidy, "--version"], capture_output=True, text=True, check=True).stdout
    record = build / "clang-tidy-clean.json"
    known = json.loads(record.read_text()) if record.exists() and not everything else {}
    headers = included_headers(build)
    sources = commands(build)
    states = {source: state(source, entry, headers, version) for source, entry in sources.items()}
    stale = [source for source in sources if states[source] is None or known.get(source) != states[source]]
    # The longest first, so that no processor waits for a last long one.
    stale.sort(key=lambda source: len(headers.get(sources[source].get("output")) or []), reverse=True)

    def look(source):
        return source, subprocess.run(
            [tidy, "--quiet", "-p", str(build), "--extra-arg=-Wno-unknown-warning-option", source],
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
            text=True,
            check=False,
        )

    clean = {source: digest for source, digest in states.items() if source not in stale}
    found = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for source, done in pool.map(look, stale):
            if done.returncode == 0:
                if states[source]:
                    clean[source] = states[source]
            else:
                found += 1
                print(done.stdout + done.stderr, end="", flush=True)
    record.write_text(json.dumps(clean, indent=0))
    print(f"clang-tidy: {len(stale)} of {len(sources)} sources looked at, {found} with findings")
    return 1 if found else 0


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    sys.exit(main(sys.argv[1], sys.argv[2], "--all" in sys.argv[3:]))
