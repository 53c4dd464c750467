"""Reports of the sanitizers in a build with sanitizers (scripts/sanitize)."""

import re

from support import paths

# The service's signal handlers call functions that are not safe in handlers; that is intended. Signals
# that end the service are delivered only while it waits, and the handler of fatal ones has a deadline.
REPORT = re.compile(r"SUMMARY: \w+Sanitizer: (?!signal-unsafe call)|: runtime error: ")
# Otherwise such reports would change the exit status. (The web server does not pass these options on.)
OPTIONS = {"TSAN_OPTIONS": "report_signal_unsafe=0"} if paths.SANITIZERS == "thread" else {}


def check(folder):
    """Fails if a sanitizer has reported a process that wrote into the folder."""
    if not paths.SANITIZERS:
        return
    for file in folder.rglob("*"):
        if file.suffix == ".messages" or file.name == "stderr":
            text = file.read_text(errors="replace")
            assert not REPORT.search(text), text
