"""Measures, keeps the results as JSON, and prints them or puts them into the documentation.
scripts/bench builds what this needs and calls it."""

import argparse
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).parents[1]
BUILD = pathlib.Path(os.environ.get("KESTAL_BUILD", ROOT / "build" / "bench"))
DOCUMENT = ROOT / "docs" / "performance.md"
PLOT = ROOT / "docs" / "images" / "performance.svg"

os.environ["KESTAL_BUILD"] = str(BUILD)
sys.path.insert(0, str(ROOT / "tests" / "e2e"))

import in_process  # noqa: E402
import instructions  # noqa: E402
import plot  # noqa: E402
import report  # noqa: E402
import small_machine  # noqa: E402
import stack  # noqa: E402


def say(text):
    print(text, file=sys.stderr, flush=True)


def tree_of_build():
    """Which answer tree the build is linked with."""
    cache = (BUILD / "CMakeCache.txt").read_text()
    return re.search(r"^KESTAL_CTPP2:STRING=(.*)$", cache, re.MULTILINE)[1]


def results_file(tree):
    return ROOT / "build" / f"bench-results-{tree}.json"


def results_by_tree():
    """The last results for each answer tree that was measured."""
    files = {tree: results_file(tree) for tree in report.TREES}
    return {tree: json.loads(file.read_text()) for tree, file in files.items() if file.exists()}


def commit():
    described = subprocess.run(
        ["git", "-C", ROOT, "describe", "--always", "--dirty"], capture_output=True, text=True
    )
    return described.stdout.strip() or "unknown"


def program_size(work):
    stripped = work / "stripped"
    subprocess.run(["strip", "-o", stripped, BUILD / "service" / "kestal.cgi"], check=True)
    return stripped.stat().st_size


def measure(arguments):
    rounds, seconds = (2, 1) if arguments.quick else (arguments.rounds, arguments.seconds)
    work = pathlib.Path(tempfile.mkdtemp(prefix="kestal-bench-"))
    try:
        results = {
            "commit": commit(),
            "rounds": rounds,
            "seconds": seconds,
            "loadAverage": os.getloadavg(),
            "programBytes": program_size(work),
            "instructions": instructions.measure(work, BUILD, say),
            "inProcess": in_process.measure(BUILD, rounds, say),
            "stack": stack.measure(work, BUILD, rounds, seconds, not arguments.quick, say),
        }
    finally:
        shutil.rmtree(work)
    file = results_file(tree_of_build())
    file.write_text(json.dumps(results, indent=1))
    say(f"results: {file}")


def alone(part, *arguments):
    """Runs one part of the measurement; its results are not kept."""
    work = pathlib.Path(tempfile.mkdtemp(prefix="kestal-bench-"))
    try:
        return part.measure(work, BUILD, *arguments, say)
    finally:
        shutil.rmtree(work)


def document(results):
    """Replaces the text between the marks in the document, and the plot."""
    disturbed = report.without_figures(next(iter(results.values()))["stack"])
    if disturbed:
        sys.exit(f"not documented, because other processes ran: {', '.join(disturbed)}")
    text = DOCUMENT.read_text()
    marks = re.compile(r"(<!-- results -->\n).*?(<!-- end of results -->)", re.DOTALL)
    new, count = marks.subn(lambda found: f"{found[1]}\n{report.markdown(results)}\n{found[2]}", text)
    assert count == 1, "no marks in the document"
    DOCUMENT.write_text(new)
    PLOT.write_text(plot.svg(next(iter(results.values()))))


def main():
    parser = argparse.ArgumentParser(prog="scripts/bench", description="Measures the service.")
    parser.add_argument("--quick", action="store_true", help="a rough first look, a minute or two")
    parser.add_argument("--rounds", type=int, default=15, help="how often each is measured (15)")
    parser.add_argument("--seconds", type=int, default=2, help="how long each load of a round lasts (2)")
    parser.add_argument(
        "--instructions",
        nargs="?",
        const="",
        choices=["", "arm64", "armhf"],
        metavar="arm64 | armhf",
        help="only count instructions: a minute, on any machine; those of another processor in an emulator",
    )
    parser.add_argument(
        "--small",
        action="store_true",
        help="only what open pages cost, and the load on a quarter of a processor; needs root",
    )
    parser.add_argument(
        "--markdown", action="store_true", help="print the last results, measure nothing"
    )
    parser.add_argument(
        "--document",
        action="store_true",
        help="put the last results into docs/performance.md and its plot, measure nothing",
    )
    arguments = parser.parse_args()
    if arguments.instructions is not None:
        print(report.instructions_table({tree_of_build(): alone(instructions)}))
        return
    if arguments.small:
        print(report.small_machine_table(alone(small_machine, arguments.rounds, 30)))
        return
    if not arguments.markdown and not arguments.document:
        measure(arguments)
    results = results_by_tree()
    if arguments.document:
        document(results)
    else:
        print(report.markdown(results))


main()
