"""Measures how long an honest client waits while another client attacks; see scripts/attack. Exits with 1 if
a request of the honest client gets no answer or if, with the firewall, an answer takes too long."""

import argparse
import pathlib
import shutil
import statistics
import sys
import tempfile
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "e2e"))

from support import namespaces, web
from support.attacks import KINDS, Attack
from support.server import Server

PORT = 8080
# Seconds between two requests of the honest client. Each has its own connection.
PAUSE = 0.05
# Seconds that an answer may take with the firewall: several times as long as on an idle machine.
LONGEST = 0.05


def arguments():
    parser = argparse.ArgumentParser(prog="scripts/attack", description=__doc__)
    parser.add_argument("--seconds", type=float, default=20.0, help="for each attack (default 20)")
    parser.add_argument("--without-firewall", action="store_true", help="without deploy/firewall.nft")
    return parser.parse_args()


def ask(address, seconds):
    """Returns the times of all answers and the number of requests without an answer."""
    times, failures = [], 0
    end = time.monotonic() + seconds
    while (begun := time.monotonic()) < end:
        try:
            right = web.ask(PORT, "/srv/status", address=address).status == 200
        except OSError:
            right = False
        if right:
            times.append(time.monotonic() - begun)
        else:
            failures += 1
        time.sleep(PAUSE)
    return times, failures


def row(*cells):
    print("|", " | ".join(cells), "|", flush=True)


def tell(name, times, failures, refused=""):
    median, worst = (f"{1000 * f(times):.1f}" if times else "" for f in (statistics.median, max))
    row(name, str(len(times)), str(failures), median, worst, refused)


def main():
    options = arguments()
    if not namespaces.may_be_made():
        sys.exit("scripts/attack: only root can make the networks that this needs")
    work = pathlib.Path(tempfile.mkdtemp(prefix="kestal-attack-"))
    network = namespaces.Network()
    if not options.without_firewall:
        network.protect()
    server = Server(work)
    server.port = PORT
    server.environment |= {"KESTAL_PORT": str(PORT), "KESTAL_ADDRESS": "0.0.0.0"}
    # A device logs at this level, too.
    server.environment["KESTAL_LOG_LEVEL"] = "5"
    attacked, asked = (addresses[0] for addresses in network.server_addresses)
    bad = []

    def judge(name, times, failures, refused=""):
        tell(name, times, failures, refused)
        if failures or not times or (max(times) > LONGEST and not options.without_firewall):
            bad.append(name)

    try:
        with network.server.entered():
            server.start()
        with network.clients[1].entered():
            ask(asked, 1)
            row("attack", "answers", "unanswered", "median ms", "worst ms", "refused of the attacker's connections")
            row("---", "---:", "---:", "---:", "---:", "---:")
            judge("none", *ask(asked, options.seconds))
            for kind in KINDS:
                with Attack(network.clients[0], attacked, PORT, kind) as attack:
                    result = ask(asked, options.seconds)
                    judge(f"{kind.connections} {kind.name}", *result, f"{attack.refused} of {attack.tried}")
    finally:
        server.close()
        network.close()
        shutil.rmtree(work)
    if bad:
        sys.exit(f"scripts/attack: missing or late answers during: {', '.join(bad)}")


if __name__ == "__main__":
    main()
