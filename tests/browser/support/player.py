"""Plays a scenario event by event; the test starts each event.

kestal-sim reports each event on its error stream before it makes the event's changes. Here that stream
is a pipe with room for one message: until the test reads it, kestal-sim waits with the next event,
however late that is. Only the ramps between two events depend on the clock.
"""

import fcntl
import os
import select
import subprocess

from support import paths

# Slow enough to see the steps of a ramp; the longest pause of a scenario takes a second or two.
SPEED = "100"
PATIENCE = 60
ONE_PAGE = 1


class Player:
    """A running scenario. Its first event happens at once."""

    def __init__(self, scenario, environment):
        # O_DIRECT makes each read return one message.
        self.messages, theirs = os.pipe2(os.O_DIRECT | os.O_CLOEXEC)
        fcntl.fcntl(theirs, fcntl.F_SETPIPE_SZ, ONE_PAGE)
        self.process = subprocess.Popen(
            [str(paths.SIM), "play", "--speed", SPEED, str(paths.SCENARIOS / scenario)],
            stdin=subprocess.DEVNULL,
            stderr=theirs,
            env=environment,
            start_new_session=True,
        )
        os.close(theirs)

    def proceed(self):
        """Reads the message about the last event, so that the next one happens. Returns the message."""
        if not select.select([self.messages], [], [], PATIENCE)[0]:
            raise TimeoutError("no further event happens")
        return os.read(self.messages, select.PIPE_BUF).decode()

    def end(self):
        """Waits until kestal-sim has ended. Returns its exit code."""
        if rest := self.proceed():
            raise RuntimeError(f"not at the end: {rest}")
        return self.process.wait(PATIENCE)

    def close(self):
        # Closing the pipe ends kestal-sim at any point of the scenario, because nobody reads its output.
        os.close(self.messages)
        self.process.wait(PATIENCE)
