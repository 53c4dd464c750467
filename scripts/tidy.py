#!/usr/bin/env python3
"""Runs clang-tidy over the sources of a configured build, as many at a time as there are processors.

usage: scripts/tidy.py CLANG_TIDY BUILD [--all]

A source that was clean is looked at again only when it, a project header it includes, its command, a
.clang-tidy above it or clang-tidy itself has changed. Exits with 3 when it found something in every
source that did not pass, and with 1 when clang-tidy failed in another way or could not be run.
"""

import concurrent.futures
import functools
import hashlib
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
FINDING = re.compile(r"(?m)^\S.*: (warning|error): .* \[[\w.,+-]+\]$")


@functools.cache
def digest(path):
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
            # Without the precompiled headers, which clang-tidy cannot read; each source includes all it needs.
            command = re.sub(r" -Winvalid-pch| (-Xclang )?-include(-pch)? (-Xclang )?\S*/cmake_pch\.\S+", "", entry["command"])
            chosen[source] = {**entry, "command": command}
    return chosen


def included_headers(build):
    """The project's headers that each object file was compiled from, as the compiler reported them."""
    listing = subprocess.run(["ninja", "-C", str(build), "-t", "deps"], capture_output=True, text=True, check=False)
    headers = {}
    for line in listing.stdout.splitlines():
        if line[:1].strip():
            name = line.split(": #deps")[0]
            headers[name] = [] if line.endswith("(VALID)") else None
        elif line.strip() and headers[name] is not None:
            path = os.path.normpath(os.path.join(build, line.strip()))
            if path.startswith(f"{ROOT}/") and "/cmake_pch." not in path:
                headers[name].append(path)
    return headers


def state(source, entry, headers, version):
    """A digest of all that decides what clang-tidy finds, or None where the headers are not known."""
    arguments = shlex.split(entry["command"])
    used = headers.get(arguments[arguments.index("-o") + 1])
    if used is None:
        return None
    above = [folder / ".clang-tidy" for folder in pathlib.Path(source).parents if folder.is_relative_to(ROOT)]
    files = {source, *used, *(str(file) for file in above if file.exists())}
    parts = [version, entry["command"], *(f"{file} {digest(file)}" for file in sorted(files))]
    return hashlib.sha256("\n".join(parts).encode()).hexdigest()


def known_clean(record):
    """What an earlier run found clean; nothing where its record is damaged."""
    try:
        known = json.loads(record.read_text())
    except (OSError, ValueError):
        return {}
    return known if isinstance(known, dict) else {}


def main(tidy, build, everything):
    build = pathlib.Path(build).resolve()
    version = subprocess.run([tidy, "--version"], capture_output=True, text=True, check=True).stdout
    folder = build / "clang-tidy"
    folder.mkdir(exist_ok=True)
    record = folder / "clean.json"
    known = {} if everything else known_clean(record)
    entries = commands(build)
    (folder / "compile_commands.json").write_text(json.dumps(list(entries.values()), indent=0))
    headers = included_headers(build)
    states = {source: state(source, entry, headers, version) for source, entry in entries.items()}
    clean = {source: now for source, now in states.items() if now and known.get(source) == now}
    # The largest sources first, so that no long one remains when the other processors are done.
    stale = sorted(entries.keys() - clean.keys(), key=os.path.getsize, reverse=True)

    def look(source):
        return subprocess.run(
            [tidy, "--quiet", "-p", str(folder), "--extra-arg=-Wno-unknown-warning-option", source],
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
            text=True,
            check=False,
        )

    def write_down():
        # Replaced in one step, so that an interrupted run leaves a complete record.
        new = folder / "clean.json.new"
        new.write_text(json.dumps(clean, indent=0))
        os.replace(new, record)

    found = failed = 0
    # At low priority: tests that run at the same time wait for answers with a deadline.
    os.nice(10)
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        runs = {pool.submit(look, source): source for source in stale}
        for run in concurrent.futures.as_completed(runs):
            source, done = runs[run], run.result()
            if done.returncode != 0:
                # Findings end it with status 1; a crash has another status, unreadable settings no findings.
                if done.returncode == 1 and FINDING.search(done.stdout):
                    found += 1
                else:
                    failed += 1
                    print(f"{tidy} failed on {source} with status {done.returncode}:", file=sys.stderr)
                print(done.stdout + done.stderr, end="", flush=True)
            elif states[source]:
                clean[source] = states[source]
                write_down()
    write_down()
    print(f"clang-tidy: {len(stale)} of {len(entries)} sources looked at, {found} with findings, {failed} failed")
    if failed:
        return 1
    return 3 if found else 0


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    sys.exit(main(sys.argv[1], sys.argv[2], "--all" in sys.argv[3:]))
