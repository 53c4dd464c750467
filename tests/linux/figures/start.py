"""How long after the start of the service its first answer comes, and whether that one is whole."""

import json
import socket
import statistics
import subprocess
import time

from figures.boards import WHOLE, ON_A_BOARD, daemons, lab
from support import fastcgi

ROUNDS = 15


def first_answer(board, program):
    """Milliseconds, and the answer."""
    path = board.folder / "first"
    path.unlink(missing_ok=True)
    with socket.socket(socket.AF_UNIX, socket.SOCK_STREAM) as listener:
        listener.bind(str(path))
        listener.listen()
        begin = time.perf_counter()
        process = subprocess.Popen([program], stdin=listener, env=board.service.environment)
        try:
            answer = fastcgi.ask(path, fastcgi.STATUS)
            taken = (time.perf_counter() - begin) * 1000
            return taken, json.loads(answer.body)["statusData"]
        finally:
            process.kill()
            process.wait()


def measure(name, board):
    service = board.make_service()
    service.settings |= ON_A_BOARD
    service.environment.pop("KESTAL_LOG_LEVEL")
    service.write()
    samples = [first_answer(board, service.environment["KESTAL_RESPONDER"]) for _ in range(ROUNDS)]
    taken = [milliseconds for milliseconds, _ in samples]
    told = sum(WHOLE.items() <= answer.items() for _, answer in samples)
    print(f"{name:12} median {statistics.median(taken):.0f} ms, worst {max(taken):.0f} ms; "
          f"{told} of {ROUNDS} first answers tell what all daemons say", flush=True)


def show():
    with lab() as board:
        measure("no daemon", board)
    with daemons() as board:
        measure("all daemons", board)
