"""Rights as on a board: the service's user, the real polkitd, and what the bus lets whom call; needs root."""

import pathlib
import shutil

from lab.bus import Bus, BusDaemon
from support import paths

DEPLOY = paths.ROOT / "deploy" / "linux"
#: The user of the service. No user of this machine should have its number.
USER, NUMBER = "kestal", 61999
STOCK_POLICIES = [
    pathlib.Path(folder, f"org.freedesktop.{daemon}.conf")
    for daemon in ("ModemManager1", "NetworkManager")
    for folder in ("/etc/dbus-1/system.d", "/usr/share/dbus-1/system.d")
]
# Here polkitd looks for rules.
RULES = pathlib.Path("/usr/share/polkit-1/rules.d")
OWNERS_RULES = pathlib.Path("/etc/polkit-1/rules.d")


def with_user(folder, command, mounts=()):
    """A command that knows the service's user, as does a board where it is installed. `mounts` are files or folders,
    each with the one that it is seen in place of."""
    users = folder / "passwd"
    if not users.exists():
        lines = pathlib.Path("/etc/passwd").read_text()
        users.write_text(f"{lines}{USER}:x:{NUMBER}:{NUMBER}::/nonexistent:/usr/sbin/nologin\n")
    places = [(users, "/etc/passwd"), *mounts]
    steps = " && ".join(f"mount --bind '{source}' '{destination}'" for source, destination in places)
    return ["unshare", "--mount", "sh", "-c", f'{steps} && exec "$@"', "sh", *command]


def as_user(command):
    return ["setpriv", f"--reuid={NUMBER}", f"--regid={NUMBER}", "--clear-groups", "--", *command]


class GuardedBus(Bus):
    """The bus with the daemons' own policies and that of the service."""

    def __init__(self, folder):
        super().__init__(folder)
        # polkitd and the service are other users.
        folder.chmod(0o711)
        self.policies = [*(path for path in STOCK_POLICIES if path.exists()), DEPLOY / "bus.conf"]

    def command(self):
        return with_user(self.folder, super().command())


class Polkit(BusDaemon):
    """The real polkitd. The only rules are those in `rules`."""

    program = "/usr/lib/polkit-1/polkitd"
    service = "org.freedesktop.PolicyKit1"

    def __init__(self, folder, bus):
        super().__init__(folder, "polkitd", bus)
        self.rules = folder / "rules"
        self.rules.mkdir()
        self.no_rules = folder / "no-rules"
        self.no_rules.mkdir()

    def install_rule(self):
        """As the installation of the service does."""
        shutil.copy(DEPLOY / "49-kestal.rules", self.rules)

    def command(self):
        mounts = [(self.rules, RULES)]
        if OWNERS_RULES.exists():
            mounts.append((self.no_rules, OWNERS_RULES))
        return with_user(self.folder, [self.program], mounts)
