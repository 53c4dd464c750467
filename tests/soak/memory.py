"""Measures the memory, descriptors and threads of a process, and the growth of its memory."""

import dataclasses
import os
import pathlib
import statistics

from support import processes

PAGE = os.sysconf("SC_PAGE_SIZE")


@dataclasses.dataclass
class Holdings:
    pss: int
    own: int
    """Bytes of anonymous memory, including what is swapped out. Unlike pss, it does not change when other
    processes start or end."""
    descriptors: int
    threads: int


def holdings(pid):
    process = pathlib.Path(f"/proc/{pid}")
    rollup = {}
    for line in (process / "smaps_rollup").read_text().splitlines()[1:]:
        key, value, _ = line.split()
        rollup[key] = int(value) * 1024
    return Holdings(
        pss=rollup["Pss:"],
        own=rollup["Anonymous:"] + rollup["Swap:"],
        descriptors=processes.descriptors(pid),
        threads=len(list((process / "task").iterdir())),
    )


def slope(samples):
    """Returns the growth in bytes per thousand requests, from samples of (requests, bytes). It is the median of
    the slopes of all pairs: a single step does not change it, but repeated steps do."""
    slopes = [
        1000 * (later[1] - earlier[1]) / (later[0] - earlier[0])
        for index, earlier in enumerate(samples)
        for later in samples[index + 1 :]
        if later[0] > earlier[0]
    ]
    return statistics.median(slopes) if slopes else 0.0


def resolution(samples):
    """Returns the smallest slope that can be measured: one page over all requests."""
    requests = samples[-1][0] - samples[0][0] if samples else 0
    return 1000 * PAGE / requests if requests else 0.0
