"""The debug log of a service: one line per message, which begins with time and process."""

import pathlib
import re

from support.waiting import DEADLINE, wait_until

# Logged when the service reacts to SIGTERM and is about to serve requests.
IN_LOOP = "int fastcgi_main_loop() BEGIN"

LINE = re.compile(
    r"^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z kestal\.cgi\[(?P<pid>\d+)\] (?P<message>.*)$", re.DOTALL
)


def times(message):
    """How often a message has occurred: once, unless a note in the line tells another number."""
    note = re.search(r" \[(\d+) times(?:, last \d+ s ago)?\]", message)
    return 1 if note is None else int(note[1])


class Log:
    def __init__(self, path):
        self.path = pathlib.Path(path)

    def text(self):
        return self.path.read_text(errors="replace") if self.path.exists() else ""

    def messages(self):
        """Every line without time and process; fails if a line has another format."""
        messages = []
        for line in self.text().splitlines():
            match = LINE.match(line)
            assert match, f"not a log line: {line!r}"
            messages.append(match["message"])
        return messages

    def count(self, text):
        return sum(text in message for message in self.messages())

    def wait_for(self, text, count=1, deadline=DEADLINE):
        wait_until(lambda: self.text().count(text) >= count, f"{text!r} in the log", deadline)
