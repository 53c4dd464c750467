#!/usr/bin/env python3
"""Runs clang-tidy over the sources of a configured build, as many at a time as there are processors.

usage: scripts/tidy.py CLANG_TIDY BUILD [--all]

A source that was clean is looked at again only when it, a project header it includes, its command, a
.clang-tidy above it or clang-tidy itself has changed. Exits with 3 when it found something in every
source that did not pass, and with 1 when clang-tidy failed in another way or could not be run.
"""

import collections
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

import together

ROOT = pathlib.Path(__file__).resolve().parent.parent
# With larger groups, one processor would work alone at the end.
GROUP = 32
FINDING = re.compile(r"(?m)^\S.*: (warning|error): .* \[[\w.,+-]+\]$")


@functools.cache
def digest(path):
    try:
        return hashlib.sha256(pathlib.Path(path).read_bytes()).hexdigest()
    except OSError:
        return "missing"


def commands(build):
    """Returns one compile command for each source. Sources that are compiled twice, with and without
    sanitizers, are checked once."""
    chosen = {}
    for entry in json.loads((build / "compile_commands.json").read_text()):
        source = os.path.normpath(os.path.join(entry["directory"], entry["file"]))
        inside = source.startswith(f"{ROOT}/") and not source.startswith(f"{build}/")
        if inside and (source not in chosen or "-fsanitize=" in chosen[source]["command"]):
            # Remove the precompiled headers, which clang-tidy cannot read; each source includes all it needs.
            command = re.sub(r" -Winvalid-pch| (-Xclang )?-include(-pch)? (-Xclang )?\S*/cmake_pch\.\S+", "", entry["command"])
            chosen[source] = {**entry, "command": command}
    return chosen


def read_files(build):
    """The files that each object file was compiled from, as the compiler reported them."""
    listing = subprocess.run(["ninja", "-C", str(build), "-t", "deps"], capture_output=True, text=True, check=False)
    files = {}
    for line in listing.stdout.splitlines():
        if line[:1].strip():
            name = line.split(": #deps")[0]
            files[name] = [] if line.endswith("(VALID)") else None
        elif line.strip() and files[name] is not None:
            files[name].append(os.path.normpath(os.path.join(build, line.strip())))
    return files


@functools.cache
def size(path):
    try:
        return os.path.getsize(path)
    except OSError:
        return 0


def settings(source):
    """The names of the .clang-tidy files above a source."""
    above = [folder / ".clang-tidy" for folder in pathlib.Path(source).parents if folder.is_relative_to(ROOT)]
    return tuple(str(file) for file in above if file.exists())


def object_of(entry):
    arguments = shlex.split(entry["command"])
    return arguments[arguments.index("-o") + 1]


def state(source, entry, read, version):
    """Returns a digest of everything that clang-tidy's findings depend on, or None if the files that were
    read are not known."""
    if read is None:
        return None
    used = (path for path in read if path.startswith(f"{ROOT}/") and "/cmake_pch." not in path)
    files = {source, *used, *settings(source)}
    parts = [version, entry["command"], *(f"{file} {digest(file)}" for file in sorted(files))]
    return hashlib.sha256("\n".join(parts).encode()).hexdigest()


def known_clean(record):
    """Returns the sources that an earlier run found clean; none if its record is damaged."""
    try:
        known = json.loads(record.read_text())
    except (OSError, ValueError):
        return {}
    return known if isinstance(known, dict) else {}


def arguments(entry):
    """The command without the names of its source and of its object file: the macros and folders of headers
    that it names, and the rest."""
    kept = shlex.split(entry["command"])
    for option in ("-o", "-c"):
        at = kept.index(option)
        del kept[at : at + 2]
    named = [each for each in kept if each.startswith(("-D", "-I"))]
    return named, [each for each in kept if each not in named]


def groups(stale, entries, weights):
    """Groups sources that can be checked with the same settings and one command, the largest group first.
    Sources of several targets differ in the macros and folders of headers; they get those of all of them,
    unless one macro has several values. Sources that read the most come first, so that the largest libraries
    are in few groups. CLI11 has groups of its own: one check searches all of a group for uses of each of its
    functions."""
    values = collections.defaultdict(set)
    for entry in entries.values():
        for each in arguments(entry)[0]:
            values[each.split("=")[0]].add(each)
    alike = collections.defaultdict(list)
    for source in sorted(stale, key=lambda source: (-weights[source], source)):
        named, rest = arguments(entries[source])
        apart = [each for each in named if len(values[each.split("=")[0]]) > 1]
        command_line = "#include <CLI/" in pathlib.Path(source).read_text()
        alike[settings(source), tuple(rest), tuple(apart), command_line].append(source)
    parts = [part for found in alike.values() for part in together.groups(found, GROUP)]
    return sorted(parts, key=lambda part: sum(map(os.path.getsize, part)), reverse=True)


class Tidy:
    """Runs clang-tidy on a group as if it were one source that includes them all. clang-tidy spends nearly
    all its time on the headers of libraries, which it then reads only once for the group."""

    def __init__(self, tidy, folder, entries):
        self.tidy = tidy
        self.folder = folder
        self.entries = entries
        (folder / "compile_commands.json").write_text(json.dumps(list(entries.values()), indent=0))

    def run(self, folder, source):
        return subprocess.run(
            [self.tidy, "--quiet", "-p", str(folder), "--extra-arg=-Wno-unknown-warning-option", source],
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
            text=True,
            check=False,
        )

    def run_group(self, sources):
        place = pathlib.Path(os.path.commonpath(map(os.path.dirname, sources))).relative_to(ROOT)
        folder = self.folder / "groups" / place
        folder.mkdir(parents=True, exist_ok=True)
        # clang-tidy takes its settings from the folders above a source. The settings in the root also apply
        # to the combined source, so they need not be copied. Settings that are the same for all sources are
        # above their common folder, too.
        for each in (place, *place.parents)[:-1]:
            original = ROOT / each / ".clang-tidy"
            copy = self.folder / "groups" / each / ".clang-tidy"
            if original.exists():
                copy.write_text(original.read_text())
            else:
                copy.unlink(missing_ok=True)
        # The analyzer checks the sources that a file includes only if the file's name begins like this.
        name = "UnifiedSource" + hashlib.sha256("\n".join(sources).encode()).hexdigest()[:16]
        source = folder / f"{name}.cpp"
        source.write_text("".join(f'#include "{each}"  // NOLINT\n' for each in sources))
        first = self.entries[sources[0]]
        named = dict.fromkeys(each for one in sources for each in arguments(self.entries[one])[0])
        command = [*arguments(first)[1], *named, "-o", f"{name}.o", "-c", str(source)]
        entry = {"directory": first["directory"], "file": str(source), "arguments": command}
        (folder / name).mkdir(exist_ok=True)
        (folder / name / "compile_commands.json").write_text(json.dumps([entry]))
        return self.run(folder / name, str(source))

    def look(self, sources):
        """Returns the result for each source. If a group has findings, its sources are checked again one by
        one, because a finding may only come from two sources that define the same name."""
        runs = {}
        rest = list(sources)
        while len(rest) > 1:
            group = self.run_group(rest)
            if group.returncode == 0:
                return {**runs, **dict.fromkeys(rest, group)}
            named = [source for source in rest if re.search(f"(?m)^{re.escape(source)}:", group.stdout)] or rest
            runs.update((source, self.run(self.folder, source)) for source in named)
            rest = [source for source in rest if source not in named]
        runs.update((source, self.run(self.folder, source)) for source in rest)
        return runs


def main(tidy, build, everything):
    build = pathlib.Path(build).resolve()
    version = subprocess.run([tidy, "--version"], capture_output=True, text=True, check=True).stdout
    folder = build / "clang-tidy"
    folder.mkdir(exist_ok=True)
    record = folder / "clean.json"
    known = {} if everything else known_clean(record)
    entries = commands(build)
    files = read_files(build)
    read = {source: files.get(object_of(entry)) for source, entry in entries.items()}
    weights = {source: sum(map(size, paths or ())) for source, paths in read.items()}
    states = {source: state(source, entry, read[source], version) for source, entry in entries.items()}
    clean = {source: now for source, now in states.items() if now and known.get(source) == now}
    tidying = Tidy(tidy, folder, entries)
    stale = entries.keys() - clean.keys()

    def write_down():
        # Replaced in one step, so that an interrupted run leaves a complete record.
        new = folder / "clean.json.new"
        new.write_text(json.dumps(clean, indent=0))
        os.replace(new, record)

    found = failed = 0
    # At low priority: tests that run at the same time wait for answers with a deadline.
    os.nice(10)
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        runs = [pool.submit(tidying.look, sources) for sources in groups(stale, entries, weights)]
        for run in concurrent.futures.as_completed(runs):
            for source, done in run.result().items():
                if done.returncode == 0:
                    if states[source]:
                        clean[source] = states[source]
                    continue
                # With findings, the status is 1. After a crash it is another one, and with unreadable
                # settings there are no findings.
                if done.returncode == 1 and FINDING.search(done.stdout):
                    found += 1
                else:
                    failed += 1
                    print(f"{tidy} failed on {source} with status {done.returncode}:", file=sys.stderr)
                print(done.stdout + done.stderr, end="", flush=True)
            write_down()
    write_down()
    print(f"clang-tidy: {len(stale)} of {len(entries)} sources checked, {found} with findings, {failed} failed")
    if failed:
        return 1
    return 3 if found else 0


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    sys.exit(main(sys.argv[1], sys.argv[2], "--all" in sys.argv[3:]))
