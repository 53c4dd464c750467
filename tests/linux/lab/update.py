"""RAUC with two slots that are files, and bundles for it; needs root."""

import subprocess

import dbus

from lab.bus import BusDaemon
from support import paths
from support.waiting import DEADLINE

INSTALLER = "de.pengutronix.rauc.Installer"
SLOT_SIZE = 1 << 20
CONFIGURATION = """\
[system]
compatible=Lab Box
bootloader=custom
bundle-formats=plain
mountprefix={folder}/mounts
[keyring]
path={folder}/certificate
[handlers]
bootloader-custom-backend={folder}/bootloader
[slot.rootfs.0]
device={folder}/slot0
type=raw
bootname=A
[slot.rootfs.1]
device={folder}/slot1
type=raw
bootname=B
"""
MANIFEST = """\
[update]
compatible={compatible}
version={version}
[bundle]
format=plain
[image.rootfs]
filename=rootfs.img
"""
# An installation can be held at the moment when the new slot is about to be the one to start from.
BOOTLOADER = """#!/bin/sh
cd "$(dirname "$0")"
case $1 in
    get-primary) cat primary ;;
    set-primary)
        while [ -e held ]; do sleep 0.05; done
        echo "$2" > primary
        ;;
    get-state) echo good ;;
esac
"""


class Update(BusDaemon):
    program = "rauc"
    service = "de.pengutronix.rauc"

    def __init__(self, folder, bus):
        super().__init__(folder, "rauc", bus)
        self.directory = folder / "rauc"
        #: That of the newest bundle.
        self.version = 1
        self.held = self.directory / "held"

    def command(self):
        if not self.directory.exists():
            self._prepare()
        # In its own view of the mounts, so that none is left when it is killed.
        service = [self.program, f"--conf={self.directory}/system.conf", "--override-boot-slot=A", "service"]
        return ["unshare", "--mount", *service]

    def _prepare(self):
        (self.directory / "mounts").mkdir(parents=True)
        self._write("system.conf", CONFIGURATION.format(folder=self.directory))
        self._write("bootloader", BOOTLOADER)
        (self.directory / "bootloader").chmod(0o755)
        self._write("primary", "A\n")
        for slot in ("slot0", "slot1"):
            self._write(slot, "\0" * SLOT_SIZE)
        self._run("openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-subj", "/CN=Lab",
                  "-keyout", "key", "-out", "certificate")

    def _write(self, name, text):
        (self.directory / name).write_text(text)

    def _run(self, *command):
        subprocess.run(command, cwd=self.directory, check=True, timeout=DEADLINE, capture_output=True,
                       env=paths.CLEAN_ENVIRONMENT)

    def bundle(self, compatible="Lab Box"):
        """Makes an update."""
        self.version += 1
        version = f"{self.version}.0"
        contents = self.directory / f"contents-{version}"
        contents.mkdir()
        (contents / "manifest.raucm").write_text(MANIFEST.format(version=version, compatible=compatible))
        (contents / "rootfs.img").write_bytes(b"\0" * SLOT_SIZE)
        made = self.directory / f"{version}.raucb"
        self._run("rauc", "--cert=certificate", "--key=key", "bundle", contents, made)
        return made

    def unfit_bundle(self):
        """Makes an update that cannot be installed."""
        return self.bundle("Another Box")

    def install(self, bundle):
        """Begins an installation, once the one before has ended, and returns at once."""
        # RAUC tells that an update is installed before it takes another one.
        self.wait_until_idle()
        self.call("/", f"{INSTALLER}.InstallBundle", str(bundle), dbus.Dictionary({}, signature="sv"))

    def hold(self):
        """Installations stand still before their end until they are let go."""
        self.held.touch()

    def let_go(self):
        self.held.unlink()

    def wait_until_idle(self):
        self.wait_for("/", INSTALLER, "Operation", "idle")
