"""How long after a daemon's own word the answer shows it. The answer is asked for again and again, so that
each figure is too long by the time of one request at most."""

import statistics
import sys
import time

from figures.boards import whole

MODEM_NETWORK = "org.freedesktop.ModemManager1.Modem.Modem3gpp"
REPETITIONS = 50
TOO_LATE = 30.0


def changes(lab):
    """For each source: its name, a key of the status, and two states to go to and fro between. A state is
    the value that is to be shown, and a function that returns when the daemon has told it."""

    def registered(state, number):
        def change():
            lab.modem.order("register", state)
            lab.modem_manager.wait_for(lab.path, MODEM_NETWORK, "RegistrationState", number)

        return change

    def located(send, found):
        def change():
            with lab.position.watch() as reports:
                send()
                while (next(reports)["mode"] == 3) != found:
                    pass

        return change

    def charged(percent):
        lab.power.battery(percent)
        lab.power.wait_for_percentage(percent)

    phones = []

    def join():
        # Each time another one: hostapd keeps one that has left for a while.
        phones.append(f"02:00:00:00:00:{len(phones):02x}")
        lab.wifi.join(phones[-1])

    yield "modem", "statusBarConnectionState", ("No Service", registered("denied", 3)), ("Ready", registered("home", 1))
    yield ("battery", "statusBarBatteryPercent", ("9", lambda: charged(9)), ("80", lambda: charged(80)))
    yield "Wi-Fi", "statusBarWiFiClientListSize", ("1", join), ("0", lambda: lab.wifi.leave(phones[-1]))
    yield ("Ethernet", "statusBarEthernetPortEnabled", ("connected", lab.network.plug),
           ("enabled", lab.network.unplug))
    yield "position", "statusBarGpsStatus", ("GotFix", located(lab.position.find, True)), (
        "Searching", located(lab.position.lose, False))


def measure(lab, key, states):
    """Milliseconds of each change."""
    taken = []
    for number in range(REPETITIONS):
        value, change = states[number % 2]
        change()
        begin = time.monotonic()
        while lab.service.status().get(key) != value:
            if time.monotonic() - begin > TOO_LATE:
                sys.exit(f"{key} does not become {value}")
        taken.append(1000 * (time.monotonic() - begin))
    return taken


def show():
    with whole() as lab:
        print(f"{REPETITIONS} changes each")
        print("source      median ms   worst ms")
        for name, key, *states in changes(lab):
            taken = measure(lab, key, states)
            print(f"{name:10} {statistics.median(taken):10.1f} {max(taken):10.1f}", flush=True)
