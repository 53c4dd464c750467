"""ModemManager with the emulated modem."""

import pathlib
import socket
import sys

import dbus

from lab.bus import BusDaemon
from lab.daemon import Daemon
from lab.modem import orders
from support.waiting import DEADLINE, wait_until

LAB = pathlib.Path(__file__).resolve().parent
MANAGER = "/org/freedesktop/ModemManager1"
MODEM = "org.freedesktop.ModemManager1.Modem"
STATE_FAILED, STATE_LOCKED, STATE_DISABLED, STATE_REGISTERED, STATE_CONNECTED = -1, 2, 3, 8, 11


class Modem(Daemon):
    """The emulated modem; see lab.modem."""

    program = "python3"
    #: What it can be told.
    orders = orders

    def __init__(self, folder, name="modem"):
        super().__init__(folder, name)
        self.directory = folder / name
        self.directory.mkdir(exist_ok=True)
        self.environment.update(PYTHONPATH=str(LAB.parent), PYTHONDONTWRITEBYTECODE="1")

    @property
    def ports(self):
        return [str(self.directory / name) for name in ("at0", "at1")]

    def command(self):
        (self.directory / "control").unlink(missing_ok=True)
        return [sys.executable, "-m", "lab.modem", self.directory]

    def is_ready(self):
        # The socket is there a moment before it takes connections.
        with socket.socket(socket.AF_UNIX, socket.SOCK_STREAM) as connection:
            return connection.connect_ex(str(self.directory / "control")) == 0

    def order(self, *words):
        """Gives one of its orders."""
        with socket.socket(socket.AF_UNIX, socket.SOCK_STREAM) as connection:
            connection.settimeout(DEADLINE)
            connection.connect(str(self.directory / "control"))
            connection.sendall("\0".join(map(str, words)).encode() + b"\n")
            answer = connection.makefile().readline().strip()
        if answer != "ok":
            raise ValueError(answer.removeprefix("error: "))


class ModemManager(BusDaemon):
    program = "ModemManager"
    service = "org.freedesktop.ModemManager1"
    #: How it finds modems: not by itself, but as its test interface is told.
    options = ("--test-enable", "--no-auto-scan")

    def __init__(self, folder, bus, namespace=None):
        super().__init__(folder, "modemmanager", bus, namespace)

    def command(self):
        return [self.program, *self.options, "--test-no-suspend-resume", "--debug"]

    def add(self, modem):
        """Makes the modem known; returns its path."""
        self.call(MANAGER, "org.freedesktop.ModemManager1.Test.SetProfile", "lab", "u-blox", modem.ports)
        return self.appeared()

    def appeared(self, before=None):
        """Waits until there is a modem under another path than before; returns it."""

        def other():
            return next((path for path in self.modems() if path != before), None)

        return wait_until(other, "there is a modem")

    def modems(self):
        """The states of all modems by their paths."""
        try:
            objects = self.call(MANAGER, "org.freedesktop.DBus.ObjectManager.GetManagedObjects")
        except dbus.DBusException:
            return {}
        return {str(path): int(all_of[MODEM]["State"]) for path, all_of in objects.items() if MODEM in all_of}

    def state(self, path):
        return self.modems().get(path)

    def wait_until_known(self, path):
        """Waits until ModemManager has asked the modem all that it wants to know."""
        def is_known():
            # NetworkManager may enable it at once.
            state = self.state(path)
            return state is not None and (state == STATE_FAILED or state >= STATE_LOCKED)

        wait_until(is_known, "the modem is known")

    def enable(self, path):
        self.call(path, f"{MODEM}.Enable", True)
        self.wait_for(path, MODEM, "State", STATE_REGISTERED)

    def connect(self, path, **properties):
        properties = {"apn": "internet", **properties}
        return self.call(path, f"{MODEM}.Simple.Connect", dbus.Dictionary(properties, signature="sv"))

    def disconnect(self, path):
        self.call(path, f"{MODEM}.Simple.Disconnect", dbus.ObjectPath("/"))
