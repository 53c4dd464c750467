"""ModemManager that finds the emulated modem by itself, as a device on USB with a network interface."""

import subprocess

from lab.modem_manager import LAB, Modem, ModemManager
from support import paths
from support.waiting import DEADLINE

DEVICE = "/devices/platform/usb1/1-1"


def device(vendor, product):
    """A device on USB, as umockdev describes devices."""
    return f"""\
P: {DEVICE}
E: SUBSYSTEM=usb
E: DEVTYPE=usb_device
E: DRIVER=usb
E: PRODUCT={vendor}/{product}/1
A: idVendor={vendor}
A: idProduct={product}
L: driver=../../../../bus/usb/drivers/usb

"""


def interface(ids, number, driver, subsystem, name, node=""):
    """An interface of the device and what the kernel makes of it."""
    vendor, product = ids
    own = f"{DEVICE}/1-1:1.{number}"
    return f"""\
P: {own}
E: SUBSYSTEM=usb
E: DEVTYPE=usb_interface
E: DRIVER={driver}
L: driver=../../../../../bus/usb/drivers/{driver}
A: bInterfaceNumber=0{number}

P: {own}/{subsystem}/{name}
E: SUBSYSTEM={subsystem}
{node}E: ID_VENDOR_ID={vendor}
E: ID_MODEL_ID={product}
E: ID_MM_CANDIDATE=1
L: device=../../../1-1:1.{number}

"""


class UsbModem(Modem):
    ids = ("1546", "110a")
    #: Its ports, and the terminals that they are here.
    nodes = {"ttyACM0": "tty0", "ttyACM1": "tty1"}

    def command(self):
        return [*super().command(), "usb"]

    def description(self):
        serial = [interface(self.ids, number, "cdc_acm", "tty", name, f"E: DEVNAME=/dev/{name}\n")
                  for number, name in enumerate(self.nodes)]
        net = interface(self.ids, 2, "cdc_ether", "net", "wwan0", "E: INTERFACE=wwan0\nE: IFINDEX=7\n")
        return device(*self.ids) + "".join(serial) + net


class ScanningModemManager(ModemManager):
    program = "umockdev-run"

    def __init__(self, folder, bus, modem, namespace=None):
        super().__init__(folder, bus, namespace)
        self.modem = modem
        # umockdev keeps the made-up /sys and /dev there.
        self.environment["TMPDIR"] = str(folder)

    def command(self):
        library = self.folder / "terminal.so"
        subprocess.run(["cc", "-shared", "-fPIC", "-o", library, LAB / "terminal.c", "-ldl"], check=True,
                       timeout=DEADLINE, env=paths.CLEAN_ENVIRONMENT)
        self.environment["LD_PRELOAD"] = str(library)
        devices = self.folder / "usb.umockdev"
        devices.write_text(self.modem.description())
        links = " && ".join(
            f'ln -s "$(readlink {self.modem.directory}/{terminal})" "$UMOCKDEV_DIR/dev/{node}"'
            for node, terminal in self.modem.nodes.items()
        )
        return [self.program, "-d", devices, "--", "sh", "-c",
                f"mkdir -p $UMOCKDEV_DIR/dev && {links} && exec ModemManager --test-no-suspend-resume --debug"]

    def add(self, modem):
        return self.appeared()
