"""The emulated MBIM modem as a process.

usage: python3 -m lab.mbim FOLDER

It takes MBIM messages on the terminal that FOLDER/tty0 leads to, and orders on FOLDER/control, one a line with words
that NUL separates, each answered by "ok" or "error: WHY". FOLDER/log tells of each message.
"""

import asyncio
import os
import pathlib
import sys
import tty

from lab.mbim import messages, orders
from lab.mbim.modem import Modem
from lab.orders import obey

LARGEST = 4096


class Emulator:
    def __init__(self, folder):
        self.folder = folder
        self.log = (folder / "log").open("w", buffering=1)
        self.modem = Modem(self.indicate)
        self.received = b""
        self.is_open = False
        # The terminal stays open here, so that it outlasts each program that uses it.
        self.port, self.terminal = os.openpty()
        tty.setraw(self.terminal)

    def indicate(self, service, number, octets):
        if self.is_open:
            self.log.write(f"< indication {service} {number} {octets.hex()}\n")
            os.write(self.port, messages.indication(service, number, octets))

    def read(self):
        self.received += os.read(self.port, LARGEST)
        taken, self.received = messages.split(self.received)
        for kind, transaction, body in taken:
            os.write(self.port, self._answer(kind, transaction, body))

    def _answer(self, kind, transaction, body):
        if kind != messages.COMMAND:
            self.is_open = kind == messages.OPEN
            self.log.write("> open\n" if self.is_open else "> close\n")
            return messages.done(messages.OPEN_DONE if self.is_open else messages.CLOSE_DONE, transaction)
        service, number, sets, octets = messages.taken_apart(body)
        status, result = self.modem.answer(service, number, sets, octets)
        self.log.write(f"> {'set' if sets else 'query'} {service} {number} {octets.hex()}\n< {status} {result.hex()}\n")
        return messages.answer(transaction, service, number, status, result)

    async def control(self, reader, writer):
        while line := await reader.readline():
            words = line.decode().rstrip("\n").split("\0")
            self.log.write(f"order {' '.join(words)}\n")
            writer.write((obey(orders.ORDERS, self.modem, words) + "\n").encode())
            await writer.drain()
        writer.close()

    async def run(self):
        link = self.folder / "tty0"
        link.unlink(missing_ok=True)
        link.symlink_to(os.ttyname(self.terminal))
        asyncio.get_running_loop().add_reader(self.port, self.read)
        server = await asyncio.start_unix_server(self.control, self.folder / "control")
        await server.serve_forever()


asyncio.run(Emulator(pathlib.Path(sys.argv[1])).run())
