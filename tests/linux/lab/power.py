"""UPower, with power supplies that the kernel does not have."""

import importlib.util
import json
import pathlib
import socket

from lab.bus import BusDaemon
from lab.daemon import Daemon
from support.waiting import DEADLINE

TESTS = pathlib.Path(__file__).resolve().parents[1]
DISPLAY = "/org/freedesktop/UPower/devices/DisplayDevice"
INTERFACE = "org.freedesktop.UPower.Device"
CAPACITY = 10_000_000
# What the kernel says of the battery, and whether the charger is plugged in.
STATES = {"charging": ("Charging", 1), "discharging": ("Discharging", 0), "full": ("Full", 1)}


class PowerSupplies(Daemon):
    """See lab.power_supplies."""

    program = "umockdev-wrapper"

    def __init__(self, folder):
        super().__init__(folder, "power-supplies")
        self.directory = folder / "power"
        self.control = self.directory / "control"
        self.environment.update(PYTHONPATH=str(TESTS), PYTHONDONTWRITEBYTECODE="1", TMPDIR=str(self.directory))

    @property
    def folder_of_supplies(self):
        return self.directory / "supplies"

    def is_installed(self):
        return super().is_installed() and importlib.util.find_spec("gi") is not None

    def command(self):
        self.directory.mkdir()
        return [self.program, "/usr/bin/python3", "-m", "lab.power_supplies", self.directory]

    def is_ready(self):
        return self.folder_of_supplies.is_symlink()

    def change(self, **supplies):
        with socket.socket(socket.AF_UNIX, socket.SOCK_STREAM) as connection:
            connection.settimeout(DEADLINE)
            connection.connect(str(self.control))
            connection.sendall(json.dumps(supplies).encode() + b"\n")
            assert connection.makefile().readline() == "ok\n", self.output.read_text()


class Power(BusDaemon):
    program = "/usr/libexec/upowerd"
    service = "org.freedesktop.UPower"

    def __init__(self, folder, bus, supplies):
        super().__init__(folder, "upower", bus)
        self.supplies = supplies

    def command(self):
        history = self.folder / "upower-history"
        history.mkdir(exist_ok=True)
        self.environment.update(
            UMOCKDEV_DIR=str((self.supplies.directory / "root").resolve()),
            LD_PRELOAD="libumockdev-preload.so.0",
            UPOWER_HISTORY_DIR=str(history),
        )
        return [self.program, "--debug"]

    def battery(self, percent, state="discharging"):
        """What the kernel says of the battery and the charger; UPower tells it a moment later."""
        if state not in STATES or not 0 <= percent <= 100:
            raise ValueError(f"0 to 100 percent and one of {', '.join(STATES)}")
        status, online = STATES[state]
        self.supplies.change(
            usb={"online": online},
            battery={"present": 1, "status": status, "capacity": int(percent), "energy_now": int(percent * CAPACITY / 100)},
        )

    def take_out_battery(self):
        """Its slot stays."""
        self.supplies.change(battery={"present": 0, "status": "Unknown"})

    def remove_battery(self):
        """The battery goes, and so does its slot."""
        self.supplies.change(battery=None)

    def percentage(self):
        """What UPower tells."""
        return self.property(DISPLAY, INTERFACE, "Percentage")

    def wait_for_percentage(self, percent):
        """Waits until UPower tells it."""
        self.wait_for(DISPLAY, INTERFACE, "Percentage", percent)
