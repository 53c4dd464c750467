"""SWUpdate, which installs its updates into a file, and updates for it; needs root."""

import hashlib
import subprocess

from lab.daemon import Daemon
from support import paths
from support.waiting import DEADLINE

# All paths are those that SWUpdate sees; its sockets are always in /tmp.
IMAGE_SIZE = 1 << 16
REVISION = "1.0"
DESCRIPTION = """\
software = {{
    version = "{version}";
    hardware-compatibility: [ "{revision}" ];
    files: ( {{ filename = "rootfs.img"; path = "/tmp/installed"; sha256 = "{image}"; }} );
    scripts: ( {{ filename = "hold"; type = "preinstall"; sha256 = "{script}"; }} );
}}
"""
# An installation can be held before it begins to write.
HOLD = b"#!/bin/sh\nwhile [ -e /tmp/held ]; do sleep 0.05; done\n"


class SwUpdate(Daemon):
    program = "swupdate"

    def __init__(self, folder):
        super().__init__(folder, "swupdate")
        #: What it sees as /tmp.
        self.directory = folder / "swupdate"
        self.progress = self.directory / "swupdateprog"
        self.control = self.directory / "sockinstctrl"
        #: That of the newest update.
        self.version = 1
        self.held = self.directory / "held"
        self.installed = self.directory / "installed"

    def command(self):
        if not self.directory.exists():
            self._prepare()
        # Sockets of one that was killed would look ready.
        self.control.unlink(missing_ok=True)
        self.progress.unlink(missing_ok=True)
        start = ["sh", "-c", 'mount --bind "$0" /tmp && exec "$@"', self.directory]
        service = [self.program, "--hwrevision", f"lab:{REVISION}", "--key", "/tmp/certificate", "--loglevel", "5"]
        return ["unshare", "--mount", *start, *service]

    def is_ready(self):
        return self.control.exists() and self.progress.exists()

    def _prepare(self):
        self.directory.mkdir()
        self._run("openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-subj", "/CN=Lab",
                  "-addext", "extendedKeyUsage=emailProtection", "-keyout", "key", "-out", "certificate")

    def _run(self, *command, folder=None, **options):
        subprocess.run(command, cwd=folder or self.directory, check=True, timeout=DEADLINE, capture_output=True,
                       env=paths.CLEAN_ENVIRONMENT, **options)

    def bundle(self, revision=REVISION):
        """Makes an update."""
        self.version += 1
        version = f"{self.version}.0"
        contents = self.directory / f"contents-{version}"
        contents.mkdir()
        image = bytes([self.version]) * IMAGE_SIZE
        (contents / "rootfs.img").write_bytes(image)
        (contents / "hold").write_bytes(HOLD)
        (contents / "sw-description").write_text(DESCRIPTION.format(
            version=version, revision=revision, image=hashlib.sha256(image).hexdigest(),
            script=hashlib.sha256(HOLD).hexdigest()))
        self._run("openssl", "cms", "-sign", "-binary", "-nosmimecap", "-outform", "DER", "-in", "sw-description",
                  "-out", "sw-description.sig", "-signer", "../certificate", "-inkey", "../key", folder=contents)
        made = self.directory / f"{version}.swu"
        # The description is the first file, and its signature the second.
        names = b"sw-description\nsw-description.sig\nhold\nrootfs.img\n"
        self._run("busybox", "cpio", "-o", "-H", "newc", "-F", made, folder=contents, input=names)
        return made

    def unfit_bundle(self):
        """Makes an update that cannot be installed."""
        return self.bundle("another one")

    def install(self, bundle):
        """Begins an installation, once the one before has ended, and returns at once."""
        # SWUpdate tells that an update is installed before it takes another one. This is what its client says then.
        refused = 'swupdate-client "$0" 2>&1 | tee -a /dev/stderr | grep -q "swupdate_async_start returns"'
        with self.output.open("ab") as output:
            subprocess.Popen(
                ["setpriv", "--pdeathsig", "KILL", "--", "nsenter", f"--target={self.pid}", "--mount", "--root",
                 "sh", "-c", f"while {refused}; do sleep 0.1; done", f"/tmp/{bundle.name}"],
                stdin=subprocess.DEVNULL, stdout=output, stderr=output, env=self.environment,
            )

    def hold(self):
        """Installations stand still at their beginning until they are let go."""
        self.held.touch()

    def let_go(self):
        self.held.unlink()
