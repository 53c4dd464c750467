"""Whether memory, threads or descriptors grow while many requests are answered and SIM cards are swapped.
A swap takes some seconds, because ModemManager asks the modem anew each time."""

import threading

import measuring
from figures.boards import simulated, whole
from support import processes

REQUESTS = 1_000_000
SWAPS = 100
CONNECTIONS = 8
SECONDS_OF_A_SWAP = 8


class Swaps:
    """SIM cards that are taken out and put in, as fast as ModemManager follows."""

    def __init__(self, board):
        self.board = board
        self.count = 0
        self.thread = threading.Thread(target=self._run)

    def _run(self):
        board = self.board
        while self.count < SWAPS:
            board.modem.order("sim", "out")
            board.path = board.modem_manager.appeared(before=board.path)
            board.modem.order("sim", "in")
            board.path = board.modem_manager.appeared(before=board.path)
            self.count += 1


def state(pid):
    return {
        "PSS in KiB": measuring.memory(pid),
        "threads": len(measuring.processor_times(pid)),
        "descriptors": processes.descriptors(pid),
    }


def show():
    with simulated() as simulator:
        pid = simulator.responder()
        answered = measuring.send(pid, simulator.port, "/srv/status", CONNECTIONS, 10)["requests"]
        print(f"simulator after {answered} requests: {state(pid)}", flush=True)
    with whole() as board:
        service = board.service
        pid = service.responder()

        def load(seconds):
            return measuring.send(pid, service.port, "/srv/status", CONNECTIONS, seconds)["requests"]

        swaps = Swaps(board)
        answered = load(10)
        print(f"after {answered} requests: {state(pid)}", flush=True)
        swaps.thread.start()
        turns = 0
        while answered < REQUESTS or swaps.thread.is_alive():
            answered += load(1)
            # Meanwhile, ModemManager gets to know the other card.
            swaps.thread.join(SECONDS_OF_A_SWAP)
            turns += 1
            if turns % 10 == 0:
                print(f"after {answered} requests, {swaps.count} swaps: {state(pid)}", flush=True)
        print(f"after {answered} requests, {swaps.count} swaps: {state(pid)}", flush=True)
        swaps.thread.join()
        board.modem_manager.wait_until_known(board.path)
        board.modem_manager.enable(board.path)
        service.shows(statusBarSimStatus="Ready", statusBarConnectionState="Ready")
        assert service.responder() == pid
