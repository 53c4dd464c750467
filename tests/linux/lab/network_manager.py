"""NetworkManager in the network of the board, with a profile for the modem; needs root."""

import contextlib

import dbus

from lab.bus import BusDaemon, Mock
from support.waiting import wait_until

MANAGER = "/org/freedesktop/NetworkManager"
SETTINGS = f"{MANAGER}/Settings"
INTERFACE = "org.freedesktop.NetworkManager"
ACTIVE = f"{INTERFACE}.Connection.Active"
DEVICE = f"{INTERFACE}.Device"
ACTIVATING, ACTIVATED, DEACTIVATING = 1, 2, 3
KIND_MODEM, DISCONNECTED = 8, 30
PROFILE = "Lab carrier"
CONFIGURATION = """\
[main]
plugins=keyfile
no-auto-default=*
dns=none
rc-manager=unmanaged
hostname-mode=none

[keyfile]
path={profiles}
unmanaged-devices=*,except:type:gsm

[connectivity]
enabled=false
"""
KEYFILE = """\
[connection]
id={name}
uuid=5a6ad1d4-4d10-4a0f-9a3c-7b1fbb9f2b01
type=gsm
autoconnect=false

[gsm]
apn=internet

[ipv4]
method=auto

[ipv6]
method=disabled
"""


class NetworkManager(BusDaemon):
    program = "NetworkManager"
    service = "org.freedesktop.NetworkManager"

    def __init__(self, folder, bus, network):
        super().__init__(folder, "networkmanager", bus, network.namespace)
        self.directory = folder / "networkmanager"

    def command(self):
        profiles = self.directory / "profiles"
        profiles.mkdir(parents=True, exist_ok=True)
        profile = profiles / "modem.nmconnection"
        profile.write_text(KEYFILE.format(name=PROFILE))
        profile.chmod(0o600)
        configuration = self.directory / "NetworkManager.conf"
        configuration.write_text(CONFIGURATION.format(profiles=profiles))
        empty = self.directory / "empty"
        empty.mkdir(exist_ok=True)
        # With /sys that cannot be written to, it does not wait for udev. The rest is its own, too: what it
        # keeps while it runs and between two runs.
        start = ('mount -t sysfs -o ro sysfs /sys && mount -t tmpfs tmpfs /run && mount -t tmpfs tmpfs /var/lib && '
                 'mkdir /var/lib/NetworkManager && exec "$@"')
        users = self.folder / "passwd"
        if users.exists():
            # It wants the names of those who call it; see lab.rights.
            start = f"mount --bind {users} /etc/passwd && {start}"
        return ["unshare", "--mount", "sh", "-c", start, "sh", self.program, "--no-daemon",
                f"--config={configuration}", f"--config-dir={empty}", f"--system-config-dir={empty}",
                f"--intern-config={self.directory}/intern.conf", f"--state-file={self.directory}/state"]

    def wait_for_modem(self):
        """Waits until it has a modem that it can connect."""
        wait_until(self._modem_can_be_used, "NetworkManager can connect the modem")

    def _modem_can_be_used(self):
        try:
            devices = self.call(MANAGER, f"{INTERFACE}.GetDevices")
            return any(
                self.property(each, DEVICE, "DeviceType") == KIND_MODEM
                and self.property(each, DEVICE, "State") >= DISCONNECTED
                for each in devices
            )
        except dbus.DBusException:
            # Some device has gone in the meantime.
            return False

    def connections(self):
        """The states of all connections that are there or being made, by the names of their profiles."""
        found = {}
        for path in self.property(MANAGER, INTERFACE, "ActiveConnections"):
            # One that has ended in the meantime is none.
            with contextlib.suppress(dbus.DBusException):
                found[str(self.property(path, ACTIVE, "Id"))] = int(self.property(path, ACTIVE, "State"))
        return found


class SlowNetworkManager(Mock):
    """As the real one begins: for a while it has its name and not yet its objects."""

    service = NetworkManager.service

    def __init__(self, folder, bus):
        super().__init__(folder, "networkmanager", bus)

    def command(self):
        return ["/usr/bin/python3", "-m", self.program, "--system", "--is-object-manager", self.service, MANAGER,
                "org.freedesktop.Lab"]

    def has_been_asked(self):
        return f"GetAll {MANAGER}" in self.output.read_text()

    def go_on(self):
        """Its objects appear, and with them a profile for modems."""
        profile = dbus.ObjectPath(f"{SETTINGS}/1")
        self._add(profile, f"{INTERFACE}.Settings.Connection", {},
                  [("GetSettings", "", "a{sa{sv}}", 'ret = {"connection": {"id": "Lab", "type": "gsm"}}')])
        self._add(SETTINGS, f"{INTERFACE}.Settings", {"Connections": dbus.Array([profile], signature="o")}, [])

    def _add(self, path, interface, properties, methods):
        told = dbus.Dictionary(properties, signature="sv")
        self.call(MANAGER, "org.freedesktop.DBus.Mock.AddObject", path, interface, told,
                  dbus.Array(methods, signature="(ssss)"))
        added = [dbus.ObjectPath(path), dbus.Dictionary({interface: told}, signature="sa{sv}")]
        self.call(MANAGER, "org.freedesktop.DBus.Mock.EmitSignal", "org.freedesktop.DBus.ObjectManager",
                  "InterfacesAdded", "oa{sa{sv}}", dbus.Array(added, signature="v"))
