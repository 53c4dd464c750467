"""Separate networks for a server and its clients. They end with the process and need root."""

import contextlib
import ctypes
import ipaddress
import os
import pathlib
import struct
import subprocess

from support import paths
from support.waiting import DEADLINE

CLONE_NEWNET = 0x40000000
OWN = "/proc/thread-self/ns/net"
FIREWALL = paths.ROOT / "deploy" / "firewall.nft"

_libc = ctypes.CDLL(None, use_errno=True)


def _check(result):
    if result != 0:
        error = ctypes.get_errno()
        raise OSError(error, os.strerror(error))


class Namespace:
    """A network namespace. While the calling thread has entered it, the sockets that the thread makes and
    the processes that it starts belong to it."""

    def __init__(self):
        own = os.open(OWN, os.O_RDONLY)
        try:
            _check(_libc.unshare(CLONE_NEWNET))
            self.file = os.open(OWN, os.O_RDONLY)
            _check(_libc.setns(own, CLONE_NEWNET))
        finally:
            os.close(own)
        self.run("ip", "link", "set", "lo", "up")

    @contextlib.contextmanager
    def entered(self):
        own = os.open(OWN, os.O_RDONLY)
        try:
            _check(_libc.setns(self.file, CLONE_NEWNET))
            yield
        finally:
            _check(_libc.setns(own, CLONE_NEWNET))
            os.close(own)

    def run(self, *command):
        with self.entered():
            subprocess.run(command, check=True, timeout=DEADLINE, env=paths.CLEAN_ENVIRONMENT)

    def close(self):
        os.close(self.file)


class Network:
    """A server and two clients, each connected to it by a separate virtual cable and with two addresses.
    `addresses` are those of the clients; under `server_addresses` they reach the server."""

    def __init__(self):
        self.server = Namespace()
        self.clients = [Namespace(), Namespace()]
        self.addresses = []
        self.server_addresses = []
        for number, client in enumerate(self.clients):
            cable = f"client{number}"
            end = f"/proc/{os.getpid()}/fd/{client.file}"
            self.server.run(
                "ip", "link", "add", cable, "type", "veth", "peer", "name", "uplink", "netns", end
            )
            nets = (f"10.77.{number}.", f"fd77:0:0:{number}::")
            self.server_addresses.append([net + "1" for net in nets])
            self.addresses.append([net + host for net in nets for host in ("2", "3")])
            self._address(self.server, cable, self.server_addresses[-1])
            self._address(client, "uplink", self.addresses[-1])

    @staticmethod
    def _address(namespace, device, addresses):
        for address in addresses:
            # nodad: no check for duplicate addresses, which would take a second.
            options = ("/64", "nodad") if ":" in address else ("/24",)
            namespace.run("ip", "address", "add", address + options[0], "dev", device, *options[1:])
        namespace.run("ip", "link", "set", device, "up")

    def protect(self):
        """Loads the shipped firewall rules."""
        self.server.run("nft", "-f", str(FIREWALL))

    def established(self, client):
        """How many connections of a client the server has that neither side has closed."""
        with self.server.entered():
            rows = [
                row.split()
                for table in ("tcp", "tcp6")
                for row in pathlib.Path(f"/proc/thread-self/net/{table}").read_text().splitlines()[1:]
            ]
        local = {encoded(address) for address in self.server_addresses[client]}
        return sum(row[1].partition(":")[0] in local and row[3] == "01" for row in rows)

    def close(self):
        for namespace in (self.server, *self.clients):
            namespace.close()


def encoded(address):
    """An address as in the kernel's tables: 32-bit words in the byte order of the processor."""
    packed = ipaddress.ip_address(address).packed
    return "".join(f"{word:08X}" for word in struct.unpack(f"={len(packed) // 4}I", packed))


def may_be_made():
    """Whether this user may make network namespaces."""
    try:
        Namespace().close()
    except PermissionError:
        return False
    return True
