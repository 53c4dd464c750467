"""The file server: a real smbd, and what systemd says of its unit, which dbusmock plays."""

import json
import subprocess

import dbus

from lab import systemd
from lab.bus import Mock
from lab.daemon import Daemon
from support import paths
from support.ports import Port
from support.waiting import DEADLINE

CONFIGURATION = """\
[global]
server role = standalone server
disable netbios = yes
interfaces = 127.0.0.1
bind interfaces only = yes
smb ports = {port}
map to guest = Bad User
load printers = no
disable spoolss = yes
lock directory = {folder}
state directory = {folder}
cache directory = {folder}
private dir = {folder}
pid directory = {folder}
ncalrpc dir = {folder}/ncalrpc
log file = {folder}/log
[card]
path = {folder}/card
guest ok = yes
"""


class FileServer(Daemon):
    program = "smbd"

    def __init__(self, folder):
        super().__init__(folder, "smbd")
        self.directory = folder / "samba"
        self.configuration = folder / "smb.conf"
        self.claim = None

    def command(self):
        if self.claim is None:
            self.claim = Port()
            (self.directory / "card").mkdir(parents=True)
            self.configuration.write_text(CONFIGURATION.format(folder=self.directory, port=self.claim.number))
        return [self.program, "--foreground", "--no-process-group", "-s", self.configuration]

    def is_ready(self):
        ping = subprocess.run(["smbcontrol", "-s", self.configuration, "smbd", "ping"], env=paths.CLEAN_ENVIRONMENT,
                              capture_output=True, timeout=DEADLINE)
        return ping.stdout.startswith(b"PONG")

    def release(self):
        if self.claim is not None:
            self.claim.close()


class Sharing(Mock):
    """Starts and stops the file server, and says so in place of systemd."""

    service = systemd.BUS_NAME
    template = systemd.__file__

    def __init__(self, folder, bus, server):
        super().__init__(folder, "systemd", bus)
        self.server = server

    def command(self):
        return [*super().command(), "--parameters", json.dumps({"state": self._state()})]

    def share(self, active=True):
        if active:
            self.server.start()
        else:
            self.server.stop()
        self._tell(self._state())

    def crash(self):
        self.server.kill()
        self._tell("failed")

    def _state(self):
        return "active" if self.server.is_running() else "inactive"

    def _tell(self, state):
        self.call(systemd.UNIT, "org.freedesktop.DBus.Mock.UpdateProperties", systemd.UNIT_IFACE,
                  dbus.Dictionary({"ActiveState": state}, signature="sv"))
