"""UPower, which tells of one battery."""

import dbus

from lab.bus import Mock

DISPLAY = "/org/freedesktop/UPower/devices/DisplayDevice"
INTERFACE = "org.freedesktop.UPower.Device"
KIND_BATTERY = 2
STATES = {"charging": 1, "discharging": 2, "empty": 3, "full": 4}


class Power(Mock):
    service = "org.freedesktop.UPower"
    template = "upower"

    def __init__(self, folder, bus):
        super().__init__(folder, "upower", bus)

    def wait(self):
        super().wait()
        self.battery(80)
        return self

    def battery(self, percent, state="discharging"):
        if state not in STATES:
            raise ValueError(f"one of {', '.join(STATES)}")
        self._change(Type=dbus.UInt32(KIND_BATTERY), IsPresent=True,
                     Percentage=dbus.Double(percent), State=dbus.UInt32(STATES[state]))

    def remove_battery(self):
        self._change(IsPresent=False)

    def _change(self, **properties):
        self.call(DISPLAY, "org.freedesktop.DBus.Mock.UpdateProperties", INTERFACE,
                  dbus.Dictionary(properties, signature="sv"))
