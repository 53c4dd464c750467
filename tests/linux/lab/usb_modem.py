"""ModemManager that finds the emulated modem by itself, as a device on USB with a network interface."""

import subprocess

from lab.modem_manager import LAB, Modem, ModemManager
from support import paths

DEVICE = "/devices/platform/usb1/1-1"
VENDOR, PRODUCT = "1546", "110a"


def interface(number, driver, subsystem, name, node=""):
    """An interface of the device and what the kernel makes of it, as umockdev describes devices."""
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
{node}E: ID_VENDOR_ID={VENDOR}
E: ID_MODEL_ID={PRODUCT}
E: ID_MM_CANDIDATE=1
L: device=../../../1-1:1.{number}

"""


def description():
    device = f"""\
P: {DEVICE}
E: SUBSYSTEM=usb
E: DEVTYPE=usb_device
E: DRIVER=usb
E: PRODUCT={VENDOR}/{PRODUCT}/1
A: idVendor={VENDOR}
A: idProduct={PRODUCT}
L: driver=../../../../bus/usb/drivers/usb

"""
    for number in (0, 1):
        device += interface(number, "cdc_acm", "tty", f"ttyACM{number}", f"E: DEVNAME=/dev/ttyACM{number}\n")
    return device + interface(2, "cdc_ether", "net", "wwan0", "E: INTERFACE=wwan0\nE: IFINDEX=7\n")


class UsbModem(Modem):
    def command(self):
        return [*super().command(), "usb"]


class ScanningModemManager(ModemManager):
    program = "umockdev-run"

    def __init__(self, folder, bus, modem):
        super().__init__(folder, bus)
        self.modem = modem
        # umockdev keeps the made-up /sys and /dev there.
        self.environment["TMPDIR"] = str(folder)

    def command(self):
        library = self.folder / "terminal.so"
        subprocess.run(["cc", "-shared", "-fPIC", "-o", library, LAB / "terminal.c", "-ldl"], check=True, timeout=60,
                       env=paths.CLEAN_ENVIRONMENT)
        self.environment["LD_PRELOAD"] = str(library)
        devices = self.folder / "usb.umockdev"
        devices.write_text(description())
        links = " && ".join(
            f'ln -s "$(readlink {self.modem.directory}/tty{number})" "$UMOCKDEV_DIR/dev/ttyACM{number}"'
            for number in (0, 1)
        )
        return [self.program, "-d", devices, "--", "sh", "-c",
                f"mkdir -p $UMOCKDEV_DIR/dev && {links} && exec ModemManager --test-no-suspend-resume --debug"]

    def add(self, modem):
        return self.appeared()
