"""The network of the board: a bridge with Ethernet and Wi-Fi, and the phones and computers on it."""

import os
import socket
import subprocess
import time

from support import paths
from support.namespaces import Namespace
from support.waiting import DEADLINE, wait_until

BRIDGE = "br0"
ETHERNET = "eth0"
CABLE = "cable"
WIFI = "wlan0"
GUESTS = "guest0"
USB = "usb0"
MODEM = "wwan0"
ADDRESS = "192.168.8.1"
# A frame for nobody, of a protocol for experiments.
FRAME = bytes.fromhex("ffffffffffff 020000000099 88b5")
LONGEST_FRAME = 1500


class Network:
    """Interfaces in a namespace of their own; needs root."""

    def __init__(self, folder):
        self.namespace = Namespace()
        # In a folder of its own, as on a board: what else happens in it wakes the service up.
        self.leases = folder / "leases" / "dnsmasq.leases"
        self.leases.parent.mkdir()
        self.leases.touch()
        #: A machine of its own at the other end of the cable.
        self.computer = Namespace()
        self.run("ip", "link", "add", BRIDGE, "type", "bridge")
        self.run("ip", "link", "add", ETHERNET, "type", "veth", "peer", "name", CABLE,
                 "netns", f"/proc/{os.getpid()}/fd/{self.computer.file}")
        self.computer.run("ip", "link", "set", CABLE, "addrgenmode", "none")
        self.run("ip", "link", "set", ETHERNET, "master", BRIDGE, "up")
        for name, other in ((WIFI, "air"), (GUESTS, "guestair"), (USB, "gadget"), (MODEM, "tower")):
            # Nobody is at the other end, so it must not speak by itself.
            self.run("ip", "link", "add", name, "type", "veth", "peer", "name", other)
            self.run("ip", "link", "set", other, "addrgenmode", "none")
            self.run("ip", "link", "set", name, "up")
            if name not in (USB, MODEM):
                self.run("ip", "link", "set", name, "master", BRIDGE)
            self.run("ip", "link", "set", other, "up")
        self.run("ip", "address", "add", f"{ADDRESS}/24", "dev", BRIDGE)
        self.run("ip", "link", "set", BRIDGE, "up")

    def run(self, *command):
        self.namespace.run(*command)

    def plug(self):
        """The cable of the Ethernet port is put in."""
        self.computer.run("ip", "link", "set", CABLE, "up")

    def unplug(self):
        self.computer.run("ip", "link", "set", CABLE, "down")

    def ask_for_address(self, name):
        """The computer asks by DHCP, until it gets an answer."""
        with self.computer.entered():
            subprocess.run(
                ["busybox", "udhcpc", "-i", CABLE, "-f", "-q", "-n", "-t", "20", "-T", "1", "-s", "/bin/true",
                 "-x", f"hostname:{name}"],
                check=True, timeout=DEADLINE, env=paths.CLEAN_ENVIRONMENT, capture_output=True,
            )

    def lease(self, mac, address, name="*", seconds=3600):
        """Writes a lease as dnsmasq does: the whole file anew, with the new one at its end."""
        kept = [line for line in self.leases.read_text().splitlines() if line.split()[1] != mac]
        kept.append(f"{int(time.time()) + seconds} {mac} {address} {name} 01:{mac}")
        self.leases.write_text("\n".join(kept) + "\n")
        self.run("ip", "neigh", "replace", address, "lladdr", mac, "dev", BRIDGE, "nud", "reachable")

    def forget(self, mac):
        lines = self.leases.read_text().splitlines()
        gone = [line.split()[2] for line in lines if line.split()[1] == mac]
        self.leases.write_text("".join(line + "\n" for line in lines if line.split()[1] != mac))
        for address in gone:
            self.run("ip", "neigh", "del", address, "dev", BRIDGE)

    def attach(self, mac, interface=ETHERNET):
        """The bridge has seen this address on one of its ports."""
        command = ["bridge", "fdb", "replace", mac, "dev", interface, "master", "dynamic"]
        # A port learns once the kernel has noticed its carrier, which it does on its own time.
        wait_until(lambda: self._succeeds(command), "the port learns")

    def detach(self, mac, interface=ETHERNET):
        self.run("bridge", "fdb", "del", mac, "dev", interface, "master")

    def separate(self, interface):
        """The interface is no port of the bridge any more."""
        self.run("ip", "link", "set", interface, "nomaster")

    def see(self, mac, address, interface, state="reachable"):
        """What the kernel has found out of a device at an interface that is no port of a bridge."""
        self.run("ip", "neigh", "replace", address, "lladdr", mac, "dev", interface, "nud", state)

    def carry(self, sent, received):
        """So many bytes pass the modem's interface."""
        with self.namespace.entered():
            for interface, count in ((MODEM, sent), ("tower", received)):
                with socket.socket(socket.AF_PACKET, socket.SOCK_RAW) as connection:
                    connection.bind((interface, 0))
                    while count > 0:
                        # What is left is not shorter than a frame may be.
                        size = count if count <= LONGEST_FRAME else min(LONGEST_FRAME, count - len(FRAME))
                        connection.send(FRAME.ljust(size, b"\0"))
                        count -= size

    def _succeeds(self, command):
        with self.namespace.entered():
            return subprocess.run(command, timeout=DEADLINE, env=paths.CLEAN_ENVIRONMENT).returncode == 0

    def batch(self, program, commands):
        """Many commands of ip or bridge at once."""
        with self.namespace.entered():
            subprocess.run([program, "-batch", "-"], input="\n".join(commands) + "\n", text=True, check=True,
                           timeout=DEADLINE, env=paths.CLEAN_ENVIRONMENT)

    def capture(self, *command):
        with self.namespace.entered():
            return subprocess.run(command, check=True, timeout=DEADLINE, env=paths.CLEAN_ENVIRONMENT,
                                  capture_output=True, text=True).stdout

    def close(self):
        self.namespace.close()
        self.computer.close()
