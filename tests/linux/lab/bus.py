"""A message bus in the role of the system bus, and the authority that grants everything on it."""

import importlib.util

import dbus
import dbus.bus

from lab.daemon import Daemon
from support.waiting import DEADLINE, wait_until

CONFIGURATION = """\
<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <listen>unix:path={socket}</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
    <allow user="*"/>
  </policy>
{policies}</busconfig>
"""
PROPERTIES = "org.freedesktop.DBus.Properties"


class Bus(Daemon):
    program = "dbus-daemon"

    def __init__(self, folder):
        super().__init__(folder, "bus")
        self.socket = folder / "bus"
        self.address = f"unix:path={self.socket}"
        self.connection = None
        #: Files that say who may call what, beyond that everybody may do everything.
        self.policies = []

    def command(self):
        configuration = self.folder / "bus.conf"
        policies = "".join(f"  <include>{path}</include>\n" for path in self.policies)
        configuration.write_text(CONFIGURATION.format(socket=self.socket, policies=policies))
        self.socket.unlink(missing_ok=True)
        return ["dbus-daemon", f"--config-file={configuration}", "--nofork"]

    def is_ready(self):
        try:
            self.connection = dbus.bus.BusConnection(self.address)
        except dbus.DBusException:
            return False
        return True

    def has(self, service):
        return self.connection.name_has_owner(service)

    def call(self, service, path, method, *arguments, timeout=DEADLINE):
        """Calls INTERFACE.METHOD, given with its interface."""
        interface, _, name = method.rpartition(".")
        thing = self.connection.get_object(service, path, introspect=False)
        return thing.get_dbus_method(name, interface)(*arguments, timeout=timeout)

    def property(self, service, path, interface, name):
        return self.call(service, path, f"{PROPERTIES}.Get", interface, name)

    def _end(self, number):
        if self.connection is not None:
            self.connection.close()
            self.connection = None
        super()._end(number)


class BusDaemon(Daemon):
    """A daemon that is there as soon as it has its name on the bus."""

    service = None

    def __init__(self, folder, name, bus, namespace=None):
        super().__init__(folder, name, namespace)
        self.bus = bus
        self.environment["DBUS_SYSTEM_BUS_ADDRESS"] = bus.address

    def is_ready(self):
        return self.bus.has(self.service)

    def call(self, path, method, *arguments, **options):
        return self.bus.call(self.service, path, method, *arguments, **options)

    def property(self, path, interface, name):
        return self.bus.property(self.service, path, interface, name)

    def wait_for(self, path, interface, name, value):
        """Waits until a property has a value."""

        def holds():
            try:
                return self.property(path, interface, name) == value
            except dbus.DBusException:
                return False

        wait_until(holds, f"{interface}.{name} of {path} is {value}")

    def _end(self, number):
        super()._end(number)
        # The bus may take a moment to notice.
        if self.bus.is_running() and self.bus.connection is not None:
            wait_until(lambda: not self.bus.has(self.service), f"{self.service} has left the bus")


class Mock(BusDaemon):
    """A daemon that dbusmock plays."""

    program = "dbusmock"
    template = None

    def is_installed(self):
        return importlib.util.find_spec(self.program) is not None

    def command(self):
        return ["/usr/bin/python3", "-m", self.program, "--system", "--template", self.template]


class Authority(Mock):
    """The polkit that lets everybody do everything."""

    service = "org.freedesktop.PolicyKit1"
    template = "polkitd"

    def __init__(self, folder, bus):
        super().__init__(folder, "polkit", bus)

    def wait(self):
        super().wait()
        path = "/org/freedesktop/PolicyKit1/Authority"
        wait_until(lambda: self._allow(path), "polkit grants everything")
        return self

    def _allow(self, path):
        try:
            self.call(path, "org.freedesktop.DBus.Mock.AllowUnknown", True)
        except dbus.DBusException:
            # The name is there before the object.
            return False
        return True
