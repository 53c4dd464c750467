"""Counts the instructions of one request. The count does not depend on what else the machine does."""

import contextlib
import json
import os
import re
import shlex
import signal
import subprocess
import time
import urllib.request

from stack import Subject
from support import paths

# Name, target, device document, language.
ANSWERS = [
    ("status", "/srv/status", "default.json", "en_US"),
    ("notification, 2 records", "/srv/notification", "default.json", "en_US"),
    ("notification, 25 records of all types", "/srv/notification", "all-notifications.json", "en_US"),
    ("the same in German", "/srv/notification", "all-notifications.json", "de"),
    ("the same in Japanese", "/srv/notification", "all-notifications.json", "ja"),
]
# Those that are counted for another processor, too: an emulator is slow.
EMULATED = ("status", "notification, 25 records of all types")

# Seconds.
PATIENCE = 600


class Callgrind:
    """Counts the instructions that a process for this machine's processor executes."""

    REQUESTS = 50

    def __init__(self, work, name, program):
        # The web server starts a process that has ended again, so each process has a file of its own.
        self.file = f"{work}/{name}."
        self.command = (
            f"exec valgrind --tool=callgrind --callgrind-out-file='{self.file}%p' '{program}' 2> /dev/null"
        )

    def end(self, subject):
        """Ends the process and returns the count."""
        # valgrind can lose a signal that comes just before the process waits.
        with contextlib.suppress(ProcessLookupError):
            while True:
                os.kill(subject.pid, signal.SIGTERM)
                time.sleep(0.2)
        with open(f"{self.file}{subject.pid}") as counted:
            return int(re.search(r"^totals: (\d+)", counted.read(), re.MULTILINE)[1])

    def close(self):
        pass


class Emulator:
    """Counts the instructions that a process for another processor executes. The emulator logs each block of
    instructions that it executes; here, a block is one instruction."""

    REQUESTS = 20

    def __init__(self, work, name, program, emulator, root):
        log = work / f"{name}.log"
        os.mkfifo(log)
        usage = subprocess.run([emulator, "--help"], capture_output=True, text=True).stdout
        single = "-one-insn-per-tb" if "-one-insn-per-tb" in usage else "-singlestep"
        self.command = shlex.join(
            ["exec", emulator, "-L", root, single, "-d", "exec,nochain", "-D", str(log), str(program)]
        )
        self.lines = subprocess.Popen(["grep", "-c", "^Trace", log], stdout=subprocess.PIPE)

    def end(self, subject):
        """Ends the process with its web server and returns the count."""
        subject.server.stop()
        return int(self.lines.communicate()[0])

    def close(self):
        self.lines.kill()
        self.lines.wait()
        self.lines.stdout.close()


def tool(build):
    """What counts the instructions of the programs of a build, as a function of a folder, a name and the program."""
    cache = dict(re.findall(r"^(KESTAL_\w+):\w+=(.*)$", (build / "CMakeCache.txt").read_text(), re.MULTILINE))
    emulator = cache.get("KESTAL_EMULATOR_PROGRAM")
    if emulator is None:
        return Callgrind
    return lambda work, name, program: Emulator(work, name, program, emulator, cache["KESTAL_TARGET_ROOT"])


def device(work, document, language):
    content = json.loads((paths.DEVICES / document).read_text())
    content["webui"]["i18nSettings"]["language"] = language
    path = work / f"{language}-{document}"
    path.write_text(json.dumps(content))
    return path


def ask(port, target):
    """The body of an answer, however long an emulator takes for it."""
    with urllib.request.urlopen(f"http://127.0.0.1:{port}{target}", timeout=PATIENCE) as answer:
        return answer.read()


def of_process(work, name, counter, document, target, requests):
    """The instructions of a process from its start to its end, and its answer to each request."""
    script = work / f"{name}.cgi"
    script.write_text(f"#!/bin/sh\n{counter.command}\n")
    script.chmod(0o755)
    try:
        subject = Subject(work, name, script, document, KESTAL_TIMEOUT=str(PATIENCE))
        try:
            answers = {ask(subject.server.port, target) for _ in range(requests)}
            count = counter.end(subject)
        finally:
            subject.server.close()
    finally:
        counter.close()
    (answer,) = answers
    return count, answer


def of_request(work, name, counting, program, document, target):
    """The instructions of one request: what a process executes for more requests than another, divided by
    their number. Also returns the answer."""

    def times(factor):
        label = f"{name}-{factor}"
        counter = counting(work, label, program)
        return of_process(work, label, counter, document, target, factor * counter.REQUESTS), counter.REQUESTS

    (few, answer), requests = times(1)
    (many, _), _ = times(2)
    return round((many - few) / requests), answer


def measure(work, build, say):
    """Instructions of one request of the service and of the floor, by the name of the answer."""
    counting = tool(build)
    say(f"instructions, {'callgrind' if counting is Callgrind else 'emulator'}")
    answers = [each for each in ANSWERS if counting is Callgrind or each[0] in EMULATED]
    documents = [device(work, document, language) for _, _, document, language in answers]
    # For a moment, the service reads files again that have just been written.
    time.sleep(3)
    results = {}
    for number, (name, target, _, _) in enumerate(answers):
        service, answer = of_request(
            work, f"s{number}", counting, build / "service" / "kestal.cgi", documents[number], target
        )
        body = work / f"body{number}"
        body.write_bytes(answer)
        floor, _ = of_request(
            work, f"f{number}", counting, build / "bench" / "kestal-bench-floor", body, target
        )
        results[name] = {"service": service, "floor": floor, "bytes": len(answer)}
    return results
