"""What a board costs while nobody asks: how often the service wakes up, its memory, threads and descriptors."""

import pathlib
import time

import measuring
from figures.boards import empty, simulated, whole
from support import processes

MINUTES = 4


def switches(pid):
    """How often the threads of a process have been given a processor."""
    lines = [
        line
        for task in pathlib.Path(f"/proc/{pid}/task").iterdir()
        for line in (task / "status").read_text().splitlines()
    ]
    return sum(int(line.split()[1]) for line in lines if "ctxt_switches" in line)


class Watch:
    """Counts how often a process has been given a processor, and in how many moments of a tenth of a second
    that was: what comes at once wakes the machine up once."""

    def __init__(self, pid):
        self.pid = pid
        self.first = self.last = switches(pid)
        self.moments = 0

    def look(self):
        now = switches(self.pid)
        self.moments += now != self.last
        self.last = now


def show():
    with simulated() as simulator, empty() as no_daemons, whole() as board:
        subjects = {"simulator": simulator, "no daemons": no_daemons.service, "all daemons": board.service}
        for server in subjects.values():
            for _ in range(1000):
                server.status()
        # What the requests have begun comes to its end.
        time.sleep(5)
        watches = {name: Watch(server.responder()) for name, server in subjects.items()}
        end = time.monotonic() + 60 * MINUTES
        while time.monotonic() < end:
            time.sleep(0.1)
            for watch in watches.values():
                watch.look()
        print(f"in {MINUTES} minutes          wake-ups a minute   switches a minute   PSS KiB   threads   descriptors")
        for name, watch in watches.items():
            print(f"{name:20} {watch.moments / MINUTES:18.2f} {(watch.last - watch.first) / MINUTES:19.2f} "
                  f"{measuring.memory(watch.pid):9} {len(measuring.processor_times(watch.pid)):9} "
                  f"{processes.descriptors(watch.pid):13}")
