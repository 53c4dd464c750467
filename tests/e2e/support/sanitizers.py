"""Reports of the sanitizers in a sanitized build, which scripts/sanitize makes."""

import re

from support import paths

# Handlers do here what handlers may not: signals that end the service are let in only while it waits,
# and for fatal ones there is a deadline.
REPORT = re.compile(r"SUMMARY: \w+Sanitizer: (?!signal-unsafe call)|: runtime error: ")
# Else these would change the exit status. (The web server hands no such variables on.)
OPTIONS = {"TSAN_OPTIONS": "report_signal_unsafe=0"} if paths.SANITIZERS == "thread" else {}


def check(folder):
    """Fails when a process that wrote into the folder has been reported."""
    if not paths.SANITIZERS:
        return
    for file in folder.rglob("*"):
        if file.suffix == ".messages" or file.name == "stderr":
            text = file.read_text(errors="replace")
            assert not REPORT.search(text), text
