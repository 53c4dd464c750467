"""Changes the device continually while clients send requests."""

import collections
import contextlib
import fcntl
import itertools
import json
import os
import subprocess
import threading

from support import paths

LANGUAGES = ["en_US", "de_DE", "fr_FR", "es_ES", "ja_JP", "ar_EG"]

def another_sim(number):
    """The commands that take the SIM out and put in one that the device has never seen."""
    return [
        ["set", "sys.getSIMStatus", "not_found"],
        ["set", "sys.getSubscriberInfo", json.dumps({"identity": f"31048{number:010}"})],
        ["set", "sys.getSIMCarrierGID", json.dumps({"0": [number % 256, 17], "1": [186]})],
        ["set", "sys.getSIMStatus", "ready"],
    ]


# The changes that kestal-sim makes, in turn, as functions of a number that is new each time.
COMMANDS = {
    "document edits": lambda number: [["set", "sys.getBatteryStatus.chargePercent", str(number % 100)]],
    "failing calls": lambda number: [["fail", "sys.getGPSStatus", "5"], ["heal", "sys.getGPSStatus"]],
    "notifications": lambda number: [["notify", "smsReceived"], ["notify", "--clear"]],
    "language changes": lambda number: [["set", "webui.i18nSettings.language", LANGUAGES[number % len(LANGUAGES)]]],
    "SIM swaps": another_sim,
}
NUMBERS = itertools.count()
COMMAND_EVERY = 40
# Seconds without a change after each round. After so long, the service stops to read the unchanged document,
# which the soak must cover, too.
REST = 3.0


@contextlib.contextmanager
def locked(folder):
    descriptor = os.open(folder, os.O_RDONLY)
    try:
        fcntl.flock(descriptor, fcntl.LOCK_EX)
        yield
    finally:
        # Closing the file would not release the lock if a client process, forked in the meantime, has it open.
        fcntl.flock(descriptor, fcntl.LOCK_UN)
        os.close(descriptor)


def encode(document):
    return json.dumps(document, indent=2).encode()


def states():
    """Returns each shipped device in each language, and the default device with each call failing. Some of
    these documents are replaced by damaged ones, at which the service keeps the last good state."""
    documents = []
    devices = [json.loads(path.read_text()) for path in sorted(paths.DEVICES.glob("*.json"))]
    for language in LANGUAGES:
        for device in devices:
            device["webui"]["i18nSettings"] = {"language": language}
            documents.append(encode(device))
    default = paths.DEFAULT_DEVICE.read_text()
    for group in ("sys", "webui", "msgbus"):
        for call in json.loads(default)[group]:
            # If this call fails, there are no answers.
            if call != "getWebUICarrierEnabled":
                device = json.loads(default)
                device[group][call] = {"error": 5}
                documents.append(encode(device))
    for number in range(3, len(documents), 7):
        whole = documents[number]
        documents[number] = [whole[: len(whole) // 2], b"", whole.replace(b"{", b"[", 3), b"\xff" * 99][number % 4]
    return documents


class Changes:
    """Puts the device into all its states, again and again, a new one after each interval in seconds. If the
    interval is 0, the device does not change."""

    def __init__(self, device, interval):
        self.device = device
        self.original = device.path.read_bytes()
        self.interval = interval
        self.states = states()
        self.count = 0
        self.rounds = 0
        self.commands = collections.Counter()
        """The changes that kestal-sim has made, by kind."""
        self.problems = []
        self.ended = threading.Event()
        self.thread = threading.Thread(target=self._run)

    def __enter__(self):
        self.thread.start()
        return self

    def __exit__(self, *_):
        self.ended.set()
        self.thread.join()
        self._write(self.original)

    def _run(self):
        if self.interval == 0:
            self.rounds = 1
            return
        kinds = itertools.cycle(COMMANDS)
        while True:
            for state in self.states:
                if self.ended.wait(self.interval):
                    return
                self._write(state)
                self.count += 1
                if self.count % COMMAND_EVERY == 0:
                    self._write(self.original)
                    kind = next(kinds)
                    for command in COMMANDS[kind](next(NUMBERS)):
                        self._command(command)
                    self.commands[kind] += 1
            self.rounds += 1
            if self.ended.wait(REST):
                return

    def _write(self, document):
        """Takes the lock that actions of the service take, too. Without it, an action that has read the
        previous state would write that state back."""
        with locked(self.device.path.parent):
            self.device.write(document)

    def _command(self, arguments):
        environment = {**paths.CLEAN_ENVIRONMENT, "KESTAL_DEVICE": str(self.device.path)}
        run = subprocess.run([str(paths.SIM), *arguments], env=environment, capture_output=True, text=True)
        if run.returncode != 0:
            self.problems.append(f"kestal-sim {' '.join(arguments)}: {run.stderr.strip()}")
