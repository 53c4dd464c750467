"""Sizes, memory and start of the packages, for scripts/package.

usage: figures.py measure FOLDER RELEASE ARCHITECTURE [EMULATOR]
       figures.py document FOLDER PAGE

The first measures the packages in FOLDER, for another architecture in the emulator, and writes FOLDER/figures.json.
The second puts all FOLDER/*/figures.json into PAGE, whose rows of other packages stay.
"""

import json
import os
import pathlib
import re
import socket
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).parents[2]
sys.path[:0] = [str(ROOT / "bench"), str(ROOT / "tests" / "e2e")]

import measuring  # noqa: E402
import report  # noqa: E402
from stack import time_to_first_answer  # noqa: E402
from support import fastcgi  # noqa: E402

ROUNDS = 21
ON_A_BOARD = ["kestal", "kestal-page", "kestal-tools"]
TRIPLETS = {"amd64": "x86_64-linux-gnu", "arm64": "aarch64-linux-gnu", "armhf": "arm-linux-gnueabihf"}


def output(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True, timeout=120).stdout


def environment(work):
    """As a service has it on a board that has no daemons."""
    return {
        "PATH": os.environ["PATH"],
        "KESTAL_DEVICE": str(work / "etc" / "kestal" / "device.json"),
        "KESTAL_LOG": str(work / "log"),
        "KESTAL_LOCALEDIR": str(work / "usr" / "share" / "locale"),
    }


def pss_after_first_answer(work, command):
    path = work / "memory.sock"
    with socket.socket(socket.AF_UNIX, socket.SOCK_STREAM) as listener:
        listener.bind(str(path))
        listener.listen()
        process = subprocess.Popen(command, stdin=listener, env=environment(work))
        try:
            answer = fastcgi.ask(path, fastcgi.STATUS)
            assert b'"statusData"' in answer.body, answer
            return measuring.memory(process.pid)
        finally:
            process.kill()
            process.wait()


def measure(folder, release, architecture, *emulator):
    folder = pathlib.Path(folder)
    packages = {output("dpkg-deb", "-f", deb, "Package").strip(): deb for deb in folder.glob("*.deb")}
    with tempfile.TemporaryDirectory() as name:
        work = pathlib.Path(name)
        for package in ON_A_BOARD:
            subprocess.run(["dpkg-deb", "-x", packages[package], work], check=True, timeout=120)
        print(output(*emulator, work / "usr" / "bin" / "sysintcli", "--version").strip())
        program = work / "usr" / "libexec" / "kestal" / "kestal.cgi"
        bare = work / "bare"
        compiler = f"{TRIPLETS[architecture]}-g++"
        source = ROOT / "bench" / "responders" / "bare.cpp"
        output(compiler, "-std=c++20", "-O2", f"-I{ROOT}", "-o", bare, source, "-lfcgi")
        body = work / "body"
        body.write_text('{"statusData":{}}')
        times = {"service": [], "bare": []}
        for _ in range(ROUNDS):
            times["service"].append(
                time_to_first_answer(work / "one.sock", [*emulator, program], environment(work))
            )
            times["bare"].append(
                time_to_first_answer(work / "one.sock", [*emulator, bare], {"KESTAL_DEVICE": str(body)})
            )
        figures = {
            "release": release,
            "architecture": architecture,
            "emulated": bool(emulator),
            "packageBytes": packages["kestal"].stat().st_size,
            "boardBytes": sum(packages[package].stat().st_size for package in ON_A_BOARD),
            "installedKiB": sum(
                int(output("dpkg-deb", "-f", packages[package], "Installed-Size")) for package in ON_A_BOARD
            ),
            "programBytes": program.stat().st_size,
            # What an emulator needs cannot be told from what the service needs.
            "pssKiB": None if emulator else pss_after_first_answer(work, [program]),
            "firstAnswerMilliseconds": times,
        }
    (folder / "figures.json").write_text(json.dumps(figures, indent=1) + "\n")


def built_from(folder):
    """The commit, or the release, of the packages in a folder."""
    version = next(folder.glob("*.changes")).name.split("_")[1]
    return re.sub(r"\+deb\d+$", "", re.sub(r"^.*~git[\d.]*\.(\w{7}).*", r"\1", version))


def row(figures, version):
    times = figures["firstAnswerMilliseconds"]
    ratios = [service / bare for service, bare in zip(times["service"], times["bare"])]
    return [
        f"Debian {figures['release']}, {figures['architecture']}",
        version,
        f"{figures['packageBytes'] / 1024:,.0f}",
        f"{figures['boardBytes'] / 1024:,.0f}",
        f"{figures['installedKiB']:,}",
        f"{figures['programBytes'] / 1024:,.0f}",
        "" if figures["pssKiB"] is None else f"{figures['pssKiB']:,}",
        report.spread(ratios, 1),
        "qemu-user" if figures["emulated"] else f"native, {report.middle(times['service']):.1f} ms",
    ]


def document(folder, page):
    path = pathlib.Path(page)
    text = path.read_text()
    marked = re.search(r"(?s)(?<=<!-- packages -->\n).*?(?=<!-- end of packages -->)", text)
    assert marked, f"no marks in {page}"
    kept = re.findall(r"(?m)^\| (Debian \d+, \w+) *\|(.*)\|$", marked[0])
    rows = {name: [name, *(cell.strip() for cell in cells.split("|"))] for name, cells in kept}
    for file in pathlib.Path(folder).glob("*/figures.json"):
        new = row(json.loads(file.read_text()), built_from(file.parent))
        rows[new[0]] = new
    # The newest release first.
    rows = sorted(rows.values(), key=lambda cells: (-int(re.search(r"\d+", cells[0])[0]), cells[0]))
    head = [
        *("release", "built from", "`kestal`", "all three", "installed", "program", "PSS"),
        *("first answer, in bares", "ran on"),
    ]
    path.write_text(f"{text[: marked.start()]}\n{report.table(head, rows)}\n\n{text[marked.end() :]}")


{"measure": measure, "document": document}[sys.argv[1]](*sys.argv[2:])
