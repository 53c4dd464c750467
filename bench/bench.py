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
RESULTS = BUILD / "bench" / "results.json"
DOCUMENT = ROOT / "docs" / "performance.md"
PLOT = ROOT / "docs" / "images" / "performance.svg"

os.environ["KESTAL_BUILD"] = str(BUILD)
sys.path.insert(0, str(ROOT / "tests" / "e2e"))

import in_process  # noqa: E402
import instructions  # noqa: E402
import plot  # noqa: E402
import report  # noqa: E402
import stack  # noqa: E402


def say(text):
    print(text, file=sys.stderr, flush=True)


def program_size(work):
    stripped = work / "stripped"
    subprocess.run(["strip", "-o", stripped, BUILD / "service" / "kestal.cgi"], check=True)
    return stripped.stat().st_size


def measure(arguments):
    rounds, seconds = (2, 1) if arguments.quick else (arguments.rounds, 2)
    work = pathlib.Path(tempfile.mkdtemp(prefix="kestal-bench-"))
    try:
        results = {
            "programBytes": program_size(work),
            "instructions": instructions.measure(work, BUILD, say),
            "inProcess": in_process.measure(BUILD, rounds, say),
            "stack": stack.measure(work, BUILD, rounds, seconds, not arguments.quick, say),
        }
    finally:
        shutil.rmtree(work)
    RESULTS.write_text(json.dumps(results, indent=1))
    say(f"results: {RESULTS}")


def count():
    """Counts instructions only."""
    work = pathlib.Path(tempfile.mkdtemp(prefix="kestal-bench-"))
    try:
        return instructions.measure(work, BUILD, say)
    finally:
        shutil.rmtree(work)


def document(results):
    """Replaces the text between the marks in the document, and the plot."""
    text = DOCUMENT.read_text()
    marks = re.compile(r"(<!-- results -->\n).*?(<!-- end of results -->)", re.DOTALL)
    new, count = marks.subn(lambda found: f"{found[1]}\n{report.markdown(results)}\n{found[2]}", text)
    assert count == 1, "no marks in the document"
    DOCUMENT.write_text(new)
    PLOT.write_text(plot.svg(results))


def main():
    parser = argparse.ArgumentParser(prog="scripts/bench", description="Measures the service.")
    parser.add_argument("--quick", action="store_true", help="a rough first look, a minute or two")
    parser.add_argument("--rounds", type=int, default=7, help="how often each is measured (7)")
    parser.add_argument(
        "--instructions", action="store_true", help="only count instructions: a minute, on any machine"
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
    if arguments.instructions:
        print(report.instructions_table(count()))
        return
    if not arguments.markdown and not arguments.document:
        measure(arguments)
    results = json.loads(RESULTS.read_text())
    if arguments.document:
        document(results)
    else:
        print(report.markdown(results))


main()
