"""What a status costs on a board beside a simulated device that answers the same, and whether a daemon that
hangs delays answers. Rounds of all subjects follow each other, so that other load affects all of them."""

import contextlib
import json
import statistics

import measuring
from figures.boards import Unrest, simulated, whole
from support import paths

ROUNDS = 15
CONNECTIONS = 8
SECONDS = 2


def spread(values):
    return f"{statistics.median(values):.2f} ({min(values):.2f} to {max(values):.2f})"


def ratio(samples, key, one, other):
    """Of each round, one subject's figure in those of another."""
    return spread([a[key] / b[key] for a, b in zip(samples[one], samples[other])])


@contextlib.contextmanager
def hanging(daemon):
    daemon.hang()
    try:
        yield
    finally:
        daemon.resume()


def show():
    document = json.loads(paths.DEFAULT_DEVICE.read_text())
    with simulated() as simulator, whole(document) as same, whole() as own:
        assert simulator.ask("/srv/status").body == same.service.ask("/srv/status").body
        print(f"bytes of the answer: {len(simulator.ask('/srv/status').body)}; of what the board's own daemons tell: "
              f"{len(own.service.ask('/srv/status').body)}")
        subjects = {
            "simulator": (simulator, lambda: contextlib.nullcontext()),
            "simulator beside a busy board": (simulator, lambda: Unrest(same)),
            "quiet": (same.service, lambda: contextlib.nullcontext()),
            "busy": (same.service, lambda: Unrest(same)),
            "own, quiet": (own.service, lambda: contextlib.nullcontext()),
            "own, busy": (own.service, lambda: Unrest(own)),
            "own, ModemManager stopped": (own.service, lambda: hanging(own.modem_manager)),
        }
        samples = {name: [] for name in subjects}
        for _ in range(ROUNDS):
            for name, (server, around) in subjects.items():
                with around():
                    samples[name].append(
                        measuring.send(server.responder(), server.port, "/srv/status", CONNECTIONS, SECONDS)
                    )
        print(f"{ROUNDS} rounds of {SECONDS} s, {CONNECTIONS} connections")
        print("board                          processor us   of it the board's thread   p99 us   p50 us")
        for name, results in samples.items():
            median = {key: statistics.median(each[key] for each in results) for key in results[0]}
            print(f"{name:30} {median['processor']:12.2f} {median['background']:26.2f} "
                  f"{median['p99']:8.0f} {median['p50']:8.0f}")
        print("\nprocessor time of a status, in those of the simulator:")
        for name in ("quiet", "busy", "own, quiet", "own, busy"):
            print(f"  {name:24} {ratio(samples, 'processor', name, 'simulator')}")
        print("p99 while ModemManager is stopped, in those while it runs:")
        print(f"  {'':24} {ratio(samples, 'p99', 'own, ModemManager stopped', 'own, quiet')}")
