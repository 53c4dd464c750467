"""The service, built for a Linux board, on the daemons of the lab and behind the web server."""

import collections
import json
import os
import pathlib
import re
import shlex
import socket

from support import paths
from support.logs import times
from support.server import Server
from support.waiting import wait_until

# Seconds until an answer has to show what a daemon has told, on a machine that does much else.
DEADLINE = 15.0

SERVICE = pathlib.Path(os.environ.get("KESTAL_SERVICE", paths.BUILD / "tests" / "linux" / "programs" / "kestal.cgi"))


def write_program(script, lab, program):
    """Writes a script that runs a program on the board: with its bus, its state and in its network."""
    network = lab.network and lab.network.namespace
    enter = []
    if network:
        # /sys shows the interfaces of the network that it was mounted in.
        start = ["sh", "-c", 'mount -t sysfs sysfs /sys && exec "$0" "$@"']
        enter = ["nsenter", f"--net=/proc/{os.getpid()}/fd/{network.file}", "unshare", "--mount", *start]
    state = lab.folder / "state"
    state.mkdir(exist_ok=True)
    variables = {"DBUS_SYSTEM_BUS_ADDRESS": lab.bus.address, "STATE_DIRECTORY": str(state)}
    settings = "".join(f"export {name}={shlex.quote(value)}\n" for name, value in variables.items())
    script.write_text(f'#!/bin/sh\n{settings}exec {shlex.join([*enter, str(program)])} "$@"\n')
    script.chmod(0o755)


class Service(Server):
    def __init__(self, lab, page=False):
        """`page`: the web server serves the page, too."""
        super().__init__(lab.folder, "service")
        self.lab = lab
        self.settings = lab.settings()
        #: What the document says in place of the daemons.
        self.answers = {}
        self.environment["KESTAL_RESPONDER"] = str(self._responder())
        self.sources = self.work / "sources"
        self.environment["KESTAL_SOURCES"] = str(self.sources)
        if page:
            self.environment["KESTAL_DOCUMENT_ROOT"] = str(paths.ROOT / "demo")

    def _responder(self):
        """The web server hands few variables on, and is in another network than the board."""
        script = self.work / "responder"
        write_program(script, self.lab, SERVICE)
        return script

    def start(self):
        self.write()
        return super().start()

    def write(self):
        self.device.write(json.dumps({**self.answers, "linux": self.settings}, indent=2).encode())

    def shows(self, *without, **values):
        """Waits until the status has these values, and none of the keys in `without`."""
        shown = {}

        def holds():
            nonlocal shown
            shown = self.status()
            return values.items() <= shown.items() and not set(without) & set(shown)

        try:
            wait_until(holds, "the status has changed", DEADLINE)
        except AssertionError:
            raise AssertionError(f"{ {key: shown.get(key) for key in (*without, *values)} }, not {values}") from None

    def notifies(self, *types):
        """Waits until the notifications are these, in any order."""
        shown = []

        def holds():
            nonlocal shown
            shown = [each["id"] for each in self.ask("/srv/notification").json()["notificationsList"]]
            return sorted(shown) == sorted(types)

        try:
            wait_until(holds, "the notifications have changed", DEADLINE)
        except AssertionError:
            raise AssertionError(f"{shown}, not {types}") from None

    def act(self, name):
        assert self.ask(f"/srv/{name}").json() == {"loginStatus": 0}

    def told(self, source):
        """What a source has told the service, as kestal-sources shows it."""
        with socket.socket(socket.AF_UNIX, socket.SOCK_STREAM) as connection:
            connection.connect(str(self.sources))
            report = json.loads(connection.makefile().read())
        return next(each["said"] for each in report if each["name"] == source)

    def said(self):
        """What the binding has logged, how often."""
        counts = collections.Counter()
        for message in self.log.messages():
            match = re.match(r"\[LINUX\]:\[(?!DEBUG)\w+\] - (.*)", message)
            if match:
                counts[match[1]] += times(message)
        return counts
