"""The emulated modem as a process.

usage: python3 -m lab.modem FOLDER [usb | TERMINAL TERMINAL]

It takes AT commands on the sockets FOLDER/at0 and FOLDER/at1, or, as a modem on USB, on the terminals that
FOLDER/tty0 and FOLDER/tty1 lead to, and has a network interface then; or on the terminals that are named, such as
those of a USB gadget. It takes orders on FOLDER/control, one a line with words that NUL separates, each answered by
"ok" or "error: WHY". FOLDER/log has all that was said on the ports.
"""

import asyncio
import os
import pathlib
import sys
import tty

from lab.modem import orders
from lab.modem.commands import OF_CONNECTIONS, answer
from lab.modem.modem import Modem
from lab.orders import obey


class Port:
    """One AT port. While a data call is on it, it takes no commands."""

    def __init__(self, emulator, name):
        self.emulator = emulator
        self.name = name
        self.writer = None
        self.has_data = False

    async def serve(self, reader, writer):
        self.writer = writer
        self.has_data = False
        try:
            while line := await reader.readuntil(b"\r"):
                await self._take(line.decode("latin-1").strip())
        except (asyncio.IncompleteReadError, ConnectionError):
            pass
        finally:
            if self.writer is writer:
                self.writer = None
            writer.close()

    async def _take(self, line):
        if not line.upper().startswith("AT"):
            self.emulator.note(self.name, "ignored", line)
            return
        self.emulator.note(self.name, ">", line)
        self.has_data = False
        while self.emulator.modem.is_held and OF_CONNECTIONS.match(line[2:]):
            await asyncio.sleep(0.005)
        lines = answer(self.emulator.modem, line[2:])
        self.has_data = lines[-1].startswith("CONNECT")
        self.send(*lines)

    def send(self, *lines):
        if self.writer is None:
            return
        for line in lines:
            self.emulator.note(self.name, "<", line)
            self.writer.write(f"\r\n{line}\r\n".encode())


def open_terminal(path):
    own = os.open(path, os.O_RDWR | os.O_NOCTTY)
    tty.setraw(own)
    return own


class Emulator:
    def __init__(self, folder):
        self.folder = folder
        self.log = (folder / "log").open("w", buffering=1)
        self.ports = [Port(self, name) for name in ("at0", "at1")]
        self.serving = []
        self.modem = Modem(self.report)

    def note(self, port, sign, line):
        self.log.write(f"{port} {sign} {line}\n")

    def report(self, line):
        """Sends an unsolicited line to each port that takes commands."""
        for port in self.ports:
            if not port.has_data:
                port.send(line)

    async def control(self, reader, writer):
        while line := await reader.readline():
            words = line.decode().rstrip("\n").split("\0")
            self.note("control", ">", " ".join(words))
            writer.write((obey(orders.ORDERS, self.modem, words) + "\n").encode())
            await writer.drain()
        writer.close()

    def make_terminal(self, number):
        own, terminal = os.openpty()
        # Raw, so that the terminal does not send commands back as an echo.
        tty.setraw(terminal)
        link = self.folder / f"tty{number}"
        link.unlink(missing_ok=True)
        link.symlink_to(os.ttyname(terminal))
        return own

    async def take_commands(self, port, own):
        loop = asyncio.get_running_loop()
        reader = asyncio.StreamReader()
        await loop.connect_read_pipe(lambda: asyncio.StreamReaderProtocol(reader), os.fdopen(own, "rb", 0))
        writer = (await loop.connect_write_pipe(asyncio.Protocol, os.fdopen(os.dup(own), "wb", 0)))[0]
        self.serving.append(asyncio.create_task(port.serve(reader, writer)))

    async def run(self, terminals):
        for number, port in enumerate(self.ports):
            if not terminals:
                await asyncio.start_unix_server(port.serve, self.folder / port.name)
            elif terminals == ["usb"]:
                await self.take_commands(port, self.make_terminal(number))
            else:
                await self.take_commands(port, open_terminal(terminals[number]))
        # Who sees the socket can connect: it gets its name when it listens.
        unnamed = self.folder / "control.new"
        unnamed.unlink(missing_ok=True)
        server = await asyncio.start_unix_server(self.control, unnamed)
        unnamed.rename(self.folder / "control")
        await server.serve_forever()


asyncio.run(Emulator(pathlib.Path(sys.argv[1])).run(sys.argv[2:]))
