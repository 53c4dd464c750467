"""What systemd says of the file server, whose unit is started and stopped by hand here."""

import dbus

from lab.bus import Mock

UNIT = "/org/freedesktop/systemd1/unit/smbd_2eservice"
INTERFACE = "org.freedesktop.systemd1.Unit"


class Sharing(Mock):
    service = "org.freedesktop.systemd1"
    template = "systemd"

    def __init__(self, folder, bus):
        super().__init__(folder, "systemd", bus)

    def wait(self):
        super().wait()
        state = dbus.Dictionary({"Id": "smbd.service", "LoadState": "loaded", "ActiveState": "inactive"},
                                signature="sv")
        # The template names objects of units otherwise than systemd does.
        self.call("/org/freedesktop/systemd1", "org.freedesktop.DBus.Mock.AddObject", UNIT, INTERFACE, state,
                  dbus.Array([], signature="(ssss)"))
        return self

    def share(self, active=True):
        state = dbus.Dictionary({"ActiveState": "active" if active else "inactive"}, signature="sv")
        self.call(UNIT, "org.freedesktop.DBus.Mock.UpdateProperties", INTERFACE, state)
