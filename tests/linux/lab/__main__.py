"""The lab as a command: scripts/lab starts it, scripts/lab ORDER gives an order to it, scripts/lab scenarios plays
what can happen to a board on one of its own."""

import os
import pathlib
import signal
import socket
import sys
import tempfile

from lab import play, scenarios
from lab.board import Lab
from lab.service import SERVICE
from support.namespaces import may_be_made

PREFIX = "kestal-lab."
CONTROL = "orders"


def fail(text):
    sys.exit(f"scripts/lab: {text}")


def folder_of_lab():
    """The folder of the lab to give orders to: KESTAL_LAB, or that of the only one that runs."""
    if "KESTAL_LAB" in os.environ:
        return pathlib.Path(os.environ["KESTAL_LAB"])
    found = [path.parent for path in pathlib.Path(tempfile.gettempdir()).glob(f"{PREFIX}*/{CONTROL}")]
    if len(found) != 1:
        fail("no lab is running" if not found else "several labs are running; KESTAL_LAB=FOLDER chooses one")
    return found[0]


def give(words):
    with socket.socket(socket.AF_UNIX, socket.SOCK_STREAM) as connection:
        try:
            connection.connect(str(folder_of_lab() / CONTROL))
        except OSError as error:
            fail(f"the lab does not answer: {error}")
        connection.sendall("\0".join(words).encode() + b"\n")
        answer = connection.makefile().read()
    if answer.startswith("error: "):
        fail(answer.removeprefix("error: ").strip())
    print(answer, end="")


def serve(lab):
    """Carries orders out, one after the other, until a signal comes."""
    path = lab.folder / CONTROL
    with socket.socket(socket.AF_UNIX, socket.SOCK_STREAM) as server:
        server.bind(str(path))
        server.listen()
        while True:
            with server.accept()[0] as connection:
                connection.settimeout(5)
                try:
                    words = connection.makefile().readline().rstrip("\n").split("\0")
                    connection.sendall(play.obey(lab, words).encode())
                except OSError as error:
                    print(f"scripts/lab: an order was lost: {error}", file=sys.stderr)


def introduce(lab):
    print(f"The lab is in {lab.folder}. Its daemons:\n")
    for daemon in play.daemons(lab).values():
        print(f"  {daemon.name:18} process {daemon.pid}")
    if lab.network is None:
        print("\nWithout Wi-Fi and Ethernet: networks need root.")
    if lab.service is None:
        print(f"\nWithout the service: {SERVICE} has not been built.")
    else:
        print(f"\nThe page of the box:\n\n  http://127.0.0.1:{lab.service.port}/")
        print("\nWhat the service has been told by each source:\n")
        print(f"  KESTAL_SOURCES={lab.service.sources} {SERVICE.parents[1] / 'tools' / 'kestal-sources'} list")
    print("\nTo ask the daemons themselves:\n")
    print(f"  export DBUS_SYSTEM_BUS_ADDRESS={lab.bus.address}")
    print("  mmcli -m any\n  busctl tree org.freedesktop.ModemManager1")
    if lab.network is not None:
        print(f"  hostapd_cli -p {lab.wifi.directory} -i {lab.wifi.interface} status")
        print(f"  nsenter --net=/proc/{os.getpid()}/fd/{lab.network.namespace.file} ip address")
    print(f"\nTo change something:\n\n{play.help(lab)}\nCtrl-C stops it.", flush=True)


def start(lab):
    """Starts all daemons."""
    if os.environ.get("KESTAL_LAB_MODEM") == "mbim":
        if not may_be_made():
            fail("the modem with MBIM needs root")
        lab.start_mbim_modem()
    else:
        lab.start_modem(on_usb=True)
    lab.start_power()
    lab.start_sharing()
    if may_be_made():
        lab.start_network()
        lab.start_network_manager()
        lab.start_update()
        lab.start_swupdate()
    lab.start_position()


def wait_for_orders(lab):
    # As on a board, for people who let a daemon hang.
    lab.silence = 10
    start(lab)
    if SERVICE.exists():
        lab.start_service(page=True)
    introduce(lab)
    serve(lab)


def play_scenarios(lab, names):
    if not set(names) <= set(scenarios.SCENARIOS):
        fail(f"usage: scripts/lab scenarios [{'|'.join(scenarios.SCENARIOS)}]...")
    if not may_be_made():
        fail("the scenarios need root, as networks do")
    if "KESTAL_LAB_MODEM" in os.environ:
        fail("the scenarios are those of the modem with AT commands")
    # One of them waits for a daemon that hangs.
    lab.silence = 4
    start(lab)
    # At the log level of a device.
    lab.make_service().environment.pop("KESTAL_LOG_LEVEL")
    # Short, because a step waits until the same notification of an earlier one has ended; yet a step on a machine that
    # does much else has to see its own.
    lab.service.settings["clientNotificationSeconds"] = 15
    lab.service.start()
    lab.service.shows(statusBarConnectionState="Ready", statusBarBatteryPercent="80", statusBarWiFiEnabled=1,
                      statusBarGpsStatus="Searching")
    try:
        figures = scenarios.play_all(lab, names or scenarios.SCENARIOS)
    except (AssertionError, scenarios.Unexpected) as error:
        fail(error)
    print(f"\n{scenarios.summary(figures)}")


def interrupted(*_):
    raise KeyboardInterrupt


def run(body):
    """Makes a lab, and ends it after `body(lab)` or a signal."""
    for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        signal.signal(number, interrupted)
    with tempfile.TemporaryDirectory(prefix=PREFIX) as folder:
        lab = Lab(pathlib.Path(folder), fail)
        try:
            body(lab)
        except KeyboardInterrupt:
            print("\nscripts/lab: stopping")
        finally:
            # Whoever presses Ctrl-C again does not keep the daemons from ending.
            for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
                signal.signal(number, signal.SIG_IGN)
            lab.close()


if sys.argv[1:2] == ["scenarios"]:
    sys.stdout.reconfigure(line_buffering=True)
    run(lambda lab: play_scenarios(lab, sys.argv[2:]))
elif len(sys.argv) > 1:
    give(sys.argv[1:])
else:
    run(wait_for_orders)
