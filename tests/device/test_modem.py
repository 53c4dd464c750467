"""A modem at the USB port, which the kernel, udev, ModemManager and NetworkManager treat as any other."""


def test_the_modem_is_found_at_usb_and_its_network_is_shown(box, hotspot):
    hotspot.shows(statusBarSimStatus="Ready", statusBarNetwork="Lab Net", statusBarNetworkID="00101",
                  statusBarTechnology="LTE", statusBarSignalBars="5", statusBarConnectionState="Ready")
    assert "dummy_hcd" in box.get("mmcli -m any --output-keyvalue | grep generic.device ")


def test_the_user_connects_and_disconnects_from_the_phone(box, phone):
    phone.shows(statusBarConnectionState="Ready")
    phone.act("connect")
    phone.shows(statusBarConnectionState="Connected")
    assert "10.11.12.13/24" in box.get("ip -brief address show up")
    phone.act("disconnect")
    phone.shows(statusBarConnectionState="Ready")
    assert "10.11.12.13/24" not in box.get("ip -brief address show up")


def test_a_modem_that_is_pulled_out_and_put_in_is_shown_so(box, hotspot):
    hotspot.shows(statusBarNetwork="Lab Net")
    box.get("systemctl stop usb-modem")
    hotspot.shows(statusBarNetwork=None)
    box.get("systemctl start usb-modem")
    hotspot.shows(statusBarNetwork="Lab Net", statusBarSignalBars="5", statusBarConnectionState="Ready")
