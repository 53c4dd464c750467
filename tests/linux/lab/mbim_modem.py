"""ModemManager that finds an emulated MBIM modem with two SIM slots by itself; needs root."""

import sys

from lab.mbim import orders
from lab.modem_manager import Modem
from lab.usb_modem import ScanningModemManager, device, interface
from support.namespaces import Namespace


class MbimModem(Modem):
    """The emulated modem; see lab.mbim."""

    orders = orders
    # Of a maker that no plugin of ModemManager knows, so that it follows the standard.
    ids = ("1d6b", "0104")
    nodes = {"cdc-wdm0": "tty0"}

    def command(self):
        (self.directory / "control").unlink(missing_ok=True)
        return [sys.executable, "-m", "lab.mbim", self.directory]

    def description(self):
        control = interface(self.ids, 0, "cdc_mbim", "usbmisc", "cdc-wdm0", "E: DEVNAME=/dev/cdc-wdm0\n")
        net = interface(self.ids, 1, "cdc_mbim", "net", "wwan0", "E: INTERFACE=wwan0\nE: IFINDEX=7\n")
        return device(*self.ids) + control + net


class MbimModemManager(ScanningModemManager):
    def __init__(self, folder, bus, modem):
        # ModemManager starts a program that shares the port, mbim-proxy. It is reached by a name that there is once
        # in a network, and outlives ModemManager.
        super().__init__(folder, bus, modem, Namespace())

    def command(self):
        return ["unshare", "--pid", "--fork", "--kill-child", "--mount-proc", *super().command()]

    def release(self):
        self.namespace.close()
