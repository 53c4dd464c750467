"""The device starts, and serves who joins its Wi-Fi."""

PHONE = "02:00:00:00:01:00"


def test_the_unit_starts_with_the_box_and_is_ready(box, hotspot):
    # The unit is of the type "notify", so it is active only after the service's READY=1.
    assert box.property("Type") == "notify"
    assert box.property("UnitFileState") == "enabled"
    assert box.property("StatusErrno") == "0"
    assert hotspot.responder()


def test_no_other_unit_of_the_box_fails(box, hotspot):
    assert box.get("systemctl list-units --failed --plain --no-legend") == ""


def test_a_phone_joins_gets_a_lease_and_is_shown_as_a_client(box, phone):
    assert PHONE in box.get("hostapd_cli -p /run/hostapd list_sta")
    assert f"{PHONE} 192.168.8." in box.get("cat /var/lib/misc/dnsmasq.leases")
    phone.shows(statusBarWiFiEnabled=1, statusBarWiFiClientListSize="1")


def test_the_page_and_the_status_reach_the_phone(phone):
    page = phone.ask("/")
    assert "<html" in page.output, page
    status = phone.ask("/srv/status")
    assert '"statusBarBatteryPercent"' in status.output, status
