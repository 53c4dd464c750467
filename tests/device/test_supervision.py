"""systemd watches over the service."""

# Seconds; the unit has 150. The service reports after a third of it.
SHORT = 9


def test_the_service_reports_to_the_watchdog(box, hotspot):
    assert box.property("WatchdogUSec") == "2min 30s"
    hotspot.change_unit("short", f"WatchdogSec={SHORT}")
    try:
        first = int(box.property("WatchdogTimestampMonotonic"))
        responder = hotspot.responder()
        box.wait(lambda: int(box.property("WatchdogTimestampMonotonic")) > first, "the service has reported")
        # The very same service, not one that has been started again and is ready.
        assert hotspot.responder() == responder
    finally:
        hotspot.restore_unit("short")


def test_a_service_that_hangs_is_killed_and_started_again(box, hotspot):
    hotspot.change_unit("short", f"WatchdogSec={SHORT}")
    try:
        hung = hotspot.responder()
        box.get(f"kill -STOP {hung}")
        box.wait(lambda: hotspot.responder() not in ("", hung), "another service runs")
        hotspot.wait_until_ready()
        assert "Watchdog timeout" in box.get("journalctl -b -u kestal -o cat _PID=1 -n 50")
        hotspot.shows(statusBarNetwork="Lab Net")
    finally:
        hotspot.restore_unit("short")


def test_five_failed_starts_do_not_end_it_for_good(box, hotspot):
    program = "/usr/libexec/kestal/kestal.cgi"
    box.get(f"mv {program} {program}.away")
    try:
        box.run("systemctl restart kestal")
        # systemd gives a unit up after five starts in ten seconds unless the unit says otherwise.
        box.wait(lambda: hotspot.restarts() > 6, "it has been started again and again")
        assert box.property("ActiveState") == "activating"
    finally:
        box.get(f"mv {program}.away {program}")
    hotspot.wait_until_ready()
    hotspot.shows(statusBarNetwork="Lab Net")
