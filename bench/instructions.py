"""Counts the instructions of one request. The count does not depend on what else the machine does."""

import contextlib
import json
import os
import re
import signal
import time

from stack import Subject
from support import paths

REQUESTS = 50
# Name, target, device document, language.
ANSWERS = [
    ("status", "/srv/status", "default.json", "en_US"),
    ("notification, 2 records", "/srv/notification", "default.json", "en_US"),
    ("notification, 25 records of all types", "/srv/notification", "all-notifications.json", "en_US"),
    ("the same in German", "/srv/notification", "all-notifications.json", "de"),
    ("the same in Japanese", "/srv/notification", "all-notifications.json", "ja"),
]


def device(work, document, language):
    content = json.loads((paths.DEVICES / document).read_text())
    content["webui"]["i18nSettings"]["language"] = language
    path = work / f"{language}-{document}"
    path.write_text(json.dumps(content))
    return path


def end(pid):
    """Ends the process. valgrind can lose a signal that comes just before the process waits."""
    with contextlib.suppress(ProcessLookupError):
        while True:
            os.kill(pid, signal.SIGTERM)
            time.sleep(0.2)


def of_process(work, name, program, document, target, requests):
    """The instructions of a process from its start to its end, and its answer to each request."""
    # The web server starts a process that has ended again, so each process has a file of its own.
    script = work / f"{name}.cgi"
    script.write_text(
        "#!/bin/sh\n"
        f"exec valgrind --tool=callgrind --callgrind-out-file='{work}/{name}.%p' '{program}' 2> /dev/null\n"
    )
    script.chmod(0o755)
    subject = Subject(work, name, script, document)
    try:
        answers = {subject.server.ask(target).body for _ in range(requests)}
        end(subject.pid)
    finally:
        subject.server.close()
    (answer,) = answers
    counted = (work / f"{name}.{subject.pid}").read_text()
    return int(re.search(r"^totals: (\d+)", counted, re.MULTILINE)[1]), answer


def of_request(work, name, program, document, target):
    """The instructions of one request: what a process executes for more requests than another, divided by
    their number. Also returns the answer."""
    few, answer = of_process(work, f"{name}-few", program, document, target, REQUESTS)
    many, _ = of_process(work, f"{name}-many", program, document, target, 2 * REQUESTS)
    return round((many - few) / REQUESTS), answer


def measure(work, build, say):
    """Instructions of one request of the service and of the floor, by the name of the answer."""
    say("instructions")
    documents = [device(work, document, language) for _, _, document, language in ANSWERS]
    # For a moment, the service reads files again that have just been written.
    time.sleep(3)
    results = {}
    for number, (name, target, _, _) in enumerate(ANSWERS):
        service, answer = of_request(
            work, f"s{number}", build / "service" / "kestal.cgi", documents[number], target
        )
        body = work / f"body{number}"
        body.write_bytes(answer)
        floor, _ = of_request(work, f"f{number}", build / "bench" / "kestal-bench-floor", body, target)
        results[name] = {"service": service, "floor": floor, "bytes": len(answer)}
    return results
