"""Web UI sessions, opened as the login page of the web UI would."""

import subprocess

from support import paths
from support.waiting import DEADLINE


def session_command(environment, *arguments):
    """Runs kestal-sim session; returns what it prints."""
    run = subprocess.run(
        [str(paths.SIM), "session", *arguments],
        env={**paths.CLEAN_ENVIRONMENT, **environment},
        capture_output=True,
        text=True,
        timeout=DEADLINE,
    )
    assert run.returncode == 0, run.stderr
    return run.stdout.strip()


def open_session(peer, address="127.0.0.1", agent="test", *options):
    """Opens a session on the device of a Server or Responder; returns the cookie."""
    return session_command(
        peer.environment, "open", "--address", address, "--user-agent", agent, *options
    )
