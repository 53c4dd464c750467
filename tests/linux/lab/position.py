"""gpsd, fed with sentences of a receiver that is not there."""

import contextlib
import json
import socket

from lab.daemon import Daemon
from support.ports import Port
from support.waiting import DEADLINE


def sentence(text):
    """A sentence of NMEA 0183 with its checksum."""
    checksum = 0
    for byte in text.encode():
        checksum ^= byte
    return f"${text}*{checksum:02X}\r\n".encode()


class Position(Daemon):
    program = "gpsd"

    def __init__(self, folder, namespace=None):
        super().__init__(folder, "gpsd", namespace)
        self.second = 0
        self.claims = [Port(), Port()]
        self.port, self.receiver = (claim.number for claim in self.claims)

    def release(self):
        for claim in self.claims:
            claim.close()

    def command(self):
        return [self.program, "-N", "-n", "-S", str(self.port), f"udp://127.0.0.1:{self.receiver}"]

    def _connect(self):
        connection = socket.socket()
        connection.settimeout(DEADLINE)
        connection.connect(("127.0.0.1", self.port))
        return connection

    def is_ready(self):
        with self.entered():
            try:
                self._connect().close()
            except OSError:
                return False
        return True

    def find(self):
        """A fix in three dimensions: two reports, because gpsd tells of one when the next begins."""
        for _ in range(2):
            clock = self._clock()
            self._send(f"GPGGA,{clock},5231.2000,N,01324.3000,E,1,08,0.9,34.0,M,46.9,M,,")
            self._send("GPGSA,A,3,01,02,03,04,05,06,07,08,,,,,1.5,0.9,1.2")
            self._send(f"GPRMC,{clock},A,5231.2000,N,01324.3000,E,0.0,0.0,221126,,")

    def lose(self):
        for _ in range(2):
            clock = self._clock()
            self._send(f"GPGGA,{clock},,,,,0,00,,,M,,M,,")
            self._send("GPGSA,A,1,,,,,,,,,,,,,,,")
            self._send(f"GPRMC,{clock},V,,,,,,,221126,,")

    def _clock(self):
        """The receiver tells each second only once."""
        self.second += 1
        return f"12{self.second // 60 % 60:02}{self.second % 60:02}.00"

    def _send(self, text):
        with self.entered(), socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as out:
            out.sendto(sentence(text), ("127.0.0.1", self.receiver))

    @contextlib.contextmanager
    def watch(self):
        """Yields the reports of positions (TPV) as they come."""
        with self.entered(), self._connect() as connection:
            connection.sendall(b'?WATCH={"enable":true,"json":true};\n')
            reports = (json.loads(line) for line in connection.makefile())
            # The receiver is opened only for somebody who watches; sentences before that are lost.
            next(report for report in reports if report["class"] == "WATCH")
            yield (report for report in reports if report["class"] == "TPV")
