"""The service, built for a Linux board, on the daemons of the lab and behind the web server."""

import collections
import json
import os
import pathlib
import re
import shlex
import shutil
import socket

from lab import rights
from support import paths
from support.logs import times
from support.server import Server
from support.waiting import wait_until

SERVICE = pathlib.Path(os.environ.get("KESTAL_SERVICE", paths.BUILD / "tests" / "linux" / "programs" / "kestal.cgi"))


def write_program(script, lab, folder, command):
    """Writes a script that runs a command on the board: with its bus, in its network, and with a folder
    for its state, which it returns."""
    network = lab.network and lab.network.namespace
    enter = []
    if network:
        # /sys shows the interfaces of the network that it was mounted in.
        start = ["sh", "-c", 'mount -t sysfs sysfs /sys && exec "$@"', "sh"]
        enter = ["nsenter", f"--net=/proc/{os.getpid()}/fd/{network.file}", "unshare", "--mount", *start]
    state = folder / "state"
    state.mkdir(exist_ok=True)
    variables = {"DBUS_SYSTEM_BUS_ADDRESS": lab.bus.address, "STATE_DIRECTORY": str(state)}
    settings = "".join(f"export {name}={shlex.quote(value)}\n" for name, value in variables.items())
    script.write_text(f'#!/bin/sh\n{settings}exec {shlex.join([*enter, *command])} "$@"\n')
    script.chmod(0o755)
    return state


def _folder_of_user(folder):
    """Where the service's user may write."""
    own = folder / "own"
    own.mkdir()
    os.chown(own, rights.NUMBER, rights.NUMBER)
    return own


class Service(Server):
    def __init__(self, lab, page=False, as_user=False):
        """`page`: the web server serves the page, too. `as_user`: the service has a user of its own."""
        super().__init__(_folder_of_user(lab.folder) if as_user else lab.folder, "service")
        self.lab = lab
        self.program = SERVICE
        if as_user:
            self._use_copies()
        self.as_user = as_user
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
        command = [str(self.program)]
        state = write_program(script, self.lab, self.work, rights.as_user(command) if self.as_user else command)
        if self.as_user:
            os.chown(state, rights.NUMBER, rights.NUMBER)
        return script

    def _use_copies(self):
        """Of what the service reads, because its user cannot enter every folder that a build may be in."""
        self.program = self.work / SERVICE.name
        shutil.copy(SERVICE, self.program)
        for variable, folder in (("KESTAL_LOCALEDIR", paths.CATALOGUE), ("LOCPATH", paths.LOCALES)):
            copy = self.work / folder.name
            shutil.copytree(folder, copy, symlinks=True)
            self.environment[variable] = str(copy)

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
            wait_until(holds, "the status has changed")
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
            wait_until(holds, "the notifications have changed")
        except AssertionError:
            raise AssertionError(f"{shown}, not {types}") from None

    def says(self, *lines):
        """Waits until the binding has logged these lines, each once, and no others."""
        wait_until(lambda: set(self.said()) >= set(lines), f"the service has logged {lines}")
        assert self.said() == {line: 1 for line in lines}

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
