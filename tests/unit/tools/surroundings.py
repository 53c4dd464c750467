"""Where the things under test are; CTest passes them."""

import os
import pathlib
import subprocess

ROOT = pathlib.Path(os.environ["KESTAL_ROOT"])
TOOLS = pathlib.Path(os.environ["KESTAL_TOOLS"])
MAN_PAGES = pathlib.Path(os.environ["KESTAL_MAN_PAGES"])
DEFAULT_DEVICE = ROOT / "devices" / "default.json"

NAMES = ("sysintcli", "sysinicli", "webui_cli", "msgbus_cli")


def environment(device=DEFAULT_DEVICE):
    return {"PATH": f"{TOOLS}:/usr/bin:/bin", "KESTAL_DEVICE": str(device), "LC_ALL": "C.UTF-8"}


def run(*command, device=DEFAULT_DEVICE, **options):
    """Runs a tool on a simulated device; the outcome's texts are bytes."""
    return subprocess.run(
        [TOOLS / command[0], *command[1:]],
        env=environment(device),
        stdin=subprocess.DEVNULL,
        timeout=60,
        **{"capture_output": True, **options},
    )


def commands(tool):
    return run(tool, "--commands", check=True).stdout.decode().split()
