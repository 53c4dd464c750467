"""Waits for a condition rather than for a fixed time."""

import time

DEADLINE = 60.0


def wait_until(condition, what, deadline=DEADLINE):
    """Returns the first true value of condition(); fails when there is none within the deadline."""
    end = time.monotonic() + deadline
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > end:
            raise AssertionError(f"not within {deadline} s: {what}")
        time.sleep(0.005)
