"""The kernel's power supplies, a battery and a charger at USB, made up by umockdev.

usage: umockdev-wrapper python3 -m lab.power_supplies FOLDER

It is a process of its own, because umockdev sends the kernel's events only from a process that it is loaded into.
FOLDER/supplies leads to what UPower sees as /sys/class/power_supply, and FOLDER/root to all of its world. It takes
orders on FOLDER/control: in each connection one object of attributes by the name of the supply, null for one that is
removed, and answers when it has sent the events.
"""

import json
import pathlib
import socket
import sys

import gi

gi.require_version("UMockdev", "1.0")
from gi.repository import UMockdev

BATTERY, CHARGER = "battery", "usb"
# What of a supply never changes.
FIXED = {
    BATTERY: {"type": "Battery", "present": 1, "technology": "Li-ion", "voltage_now": 3_800_000,
              "energy_full": 10_000_000, "energy_full_design": 10_000_000},
    CHARGER: {"type": "USB", "usb_type": "SDP [DCP]"},
}


class Supplies:
    def __init__(self):
        self.testbed = UMockdev.Testbed.new()
        self.paths = {}

    def change(self, name, attributes):
        if attributes is None:
            path = self.paths.pop(name, None)
            if path is not None:
                self.testbed.uevent(path, "remove")
                self.testbed.remove_device(path)
        elif name in self.paths:
            for key, value in attributes.items():
                self.testbed.set_attribute(self.paths[name], key, str(value))
            self.testbed.uevent(self.paths[name], "change")
        else:
            listed = [str(word) for pair in {**FIXED[name], **attributes}.items() for word in pair]
            self.paths[name] = self.testbed.add_device("power_supply", name, None, listed, [])

    def serve(self, folder):
        root = pathlib.Path(self.testbed.get_root_dir())
        with socket.socket(socket.AF_UNIX, socket.SOCK_STREAM) as server:
            server.bind(str(folder / "control"))
            server.listen()
            # Whoever sees these may give orders.
            (folder / "root").symlink_to(root)
            (folder / "supplies").symlink_to(root / "sys" / "class" / "power_supply")
            while True:
                with server.accept()[0] as connection:
                    for name, attributes in json.loads(connection.makefile().readline()).items():
                        self.change(name, attributes)
                    connection.sendall(b"ok\n")


if __name__ == "__main__":
    Supplies().serve(pathlib.Path(sys.argv[1]))
