"""The service, built for a Linux board, on the daemons of the lab and behind the web server."""

import json
import os
import pathlib
import shlex

from support import paths
from support.server import Server

SERVICE = pathlib.Path(os.environ.get("KESTAL_SERVICE", paths.BUILD / "tests" / "linux" / "programs" / "kestal.cgi"))


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
        network = self.lab.network and self.lab.network.namespace
        # /sys shows the interfaces of the network that it was mounted in.
        start = ["sh", "-c", 'mount -t sysfs sysfs /sys && exec "$0"']
        enter = ["nsenter", f"--net=/proc/{os.getpid()}/fd/{network.file}", "unshare", "--mount", *start] if network else []
        script.write_text(
            f"#!/bin/sh\nDBUS_SYSTEM_BUS_ADDRESS={shlex.quote(self.lab.bus.address)}\n"
            f"export DBUS_SYSTEM_BUS_ADDRESS\nexec {shlex.join([*enter, str(SERVICE)])}\n"
        )
        script.chmod(0o755)
        return script

    def start(self):
        self.write()
        return super().start()

    def write(self):
        self.device.write(json.dumps({**self.answers, "linux": self.settings}, indent=2).encode())

    def notifications(self):
        return self.ask("/srv/notification").json()["notificationsList"]
