"""The list of notifications as the client gets it: texts in the language of the device, links, and the
effect of any block on the message bus."""

import json

import pytest

from support import paths
from support.notifications import CHANNEL, notification

COUNT_ONE = "01000000"
# Length of a record.
RECORD = 464

NO_LOCALE = "the machine has no locale {}: texts stay in the language before it, or untranslated"
LOGIN = " You may be asked to log in."


def publish(service, block):
    """Puts a block on the bus: a list of notifications, bytes or an error."""
    service.device.change(msgbus={CHANNEL: block})


def notifications(service):
    answer = service.ask("/srv/notification")
    # The answer is valid UTF-8 and contains the login status besides the list.
    whole = json.loads(answer.body.decode("utf-8"))
    assert list(whole) == ["loginStatus", "notificationsList"]
    return whole["notificationsList"]


def use(service, name):
    """Replaces the device by a shipped one."""
    service.device.write((paths.DEVICES / name).read_bytes())


UNREAD = {
    "en_US": ("Messages", "New message", "Unread messages: 3. ", "View messages."),
    "de_DE": ("Nachrichten", "Neue Nachricht", "Ungelesene Nachrichten: 3. ", "Nachrichten ansehen."),
    "fr_FR": ("Messages", "Nouveau message", "Messages non lus\u00a0: 3. ", "Voir les messages."),
    "es_ES": ("Mensajes", "Mensaje nuevo", "Mensajes sin leer: 3. ", "Ver los mensajes."),
    "ja_JP": ("メッセージ", "新着メッセージ", "未読メッセージ：3件。", "メッセージを表示。"),
    "ar_EG": ("الرسائل", "رسالة جديدة", "الرسائل غير المقروءة: 3. ", "عرض الرسائل."),
}


def unread(language):
    label, title, text, link = UNREAD[language]
    return {
        "id": "smsReceived",
        "category": "messaging",
        "severity": "info",
        "title": title,
        "text": f'{text}<a href="/messages">{link}</a>',
        "label": label,
    }


@pytest.mark.parametrize("language", UNREAD)
def test_a_notification_is_in_the_language_of_the_device(server, language):
    server.device.set(getSMSUnreadCount=3)
    server.device.speak(language)
    publish(server, [notification("sms_received")])
    assert notifications(server) == [unread(language)]
    # The text is in the answer as UTF-8, without escapes.
    assert UNREAD[language][1].encode() in server.ask("/srv/notification").body


def test_the_language_changes_from_one_request_to_the_next(responder):
    responder.device.set(getSMSUnreadCount=3)
    publish(responder, [notification("sms_received")])
    for language in ("ja_JP", "en_US", "ar_EG", "de_DE", "en_US"):
        responder.device.speak(language)
        assert notifications(responder) == [unread(language)]


def test_a_language_that_the_device_does_not_know_changes_nothing(responder):
    responder.device.set(getSMSUnreadCount=3)
    publish(responder, [notification("sms_received")])
    responder.device.speak("fr_FR")
    assert notifications(responder) == [unread("fr_FR")]
    responder.device.speak("tlh_AQ")
    for _ in range(2):
        assert notifications(responder) == [unread("fr_FR")]
    assert responder.log.count(NO_LOCALE.format("tlh_AQ")) == 1
    responder.device.speak("de_DE")
    assert notifications(responder) == [unread("de_DE")]
    responder.device.speak("tlh_FR")
    assert notifications(responder) == [unread("de_DE")]
    assert responder.log.count(NO_LOCALE.format("tlh_FR")) == 1
    assert responder.log.count(NO_LOCALE.partition("{}")[0]) == 2


def test_on_a_machine_without_locales_texts_are_ids_and_the_log_says_why(make_responder, work):
    responder = make_responder()
    responder.environment["LOCPATH"] = str(work)
    responder.start()
    publish(responder, [notification("sms_received")])
    for language in ("en_US", "de_DE"):
        responder.device.speak(language)
        (told,) = notifications(responder)
        assert (told["title"], told["label"]) == (
            "notification_sms_received_title",
            "notification_category_messaging_label",
        )
        assert responder.log.count(NO_LOCALE.format(language)) == 1


def test_language_settings_that_fail_give_english(responder):
    responder.device.set(getSMSUnreadCount=3)
    publish(responder, [notification("sms_received")])
    responder.device.speak("fr_FR")
    assert notifications(responder) == [unread("fr_FR")]
    responder.device.change(webui={"i18nSettings": {"error": 5}})
    assert notifications(responder) == [unread("en_US")]


def test_texts_of_the_status_are_in_the_language_of_the_device(responder):
    responder.device.set(getEnabledRadioTechnologies=31)
    for language, text in (("en_US", "Global"), ("fr_FR", "Mondial"), ("ar_EG", "عالمي")):
        responder.device.speak(language)
        status = json.loads(responder.ask("/srv/status").body)["statusData"]
        assert status["statusBarPreferredTechnology"] == text


@pytest.mark.parametrize("language", UNREAD)
def test_an_empty_id_gives_an_empty_text(responder, language):
    responder.device.speak(language)
    publish(responder, [{"id": "roamingDomestic"}])
    assert notifications(responder) == [
        {"id": "roamingDomestic", "category": "", "severity": "info", "title": "", "text": "", "label": ""}
    ]


def test_an_id_without_a_translation_is_shown_itself(responder):
    publish(responder, [notification("of_tomorrow", id="tomorrow", labelId="x", severity=7)])
    assert notifications(responder) == [
        {
            "id": "tomorrow",
            "category": "messaging",
            "severity": "",
            "title": "notification_of_tomorrow_title",
            "text": "notification_of_tomorrow_text",
            "label": "x",
        }
    ]


def link(address, text, extra=""):
    return f'<a href="{address}">{text}</a>{extra}'


VIEW_DEVICES = link("/devices", "View Connected Devices.")
VIEW_USAGE = link("/usage", "View Data Usage.")
UNLOCK = link("/settings/sim", "Unlock the SIM.", LOGIN)
ACCOUNT = link("/account", "Click here.", LOGIN)
ENDS = [
    ("dataOff", link("/settings/cellular", "Turn it on.")),
    ("deviceJoinWiFi", VIEW_DEVICES),
    ("deviceJoinUSB", VIEW_DEVICES),
    ("deviceJoinEthernet", VIEW_DEVICES),
    ("deviceLeave", VIEW_DEVICES),
    ("smsReceived", link("/messages", "View messages.")),
    ("data90", VIEW_USAGE),
    ("data100", VIEW_USAGE),
    ("roamingDomestic", ""),
    ("roamingInternational", ""),
    ("uiccLaunchBrowser", link("https://activation.example", "Go to https://activation.example.")),
    ("simPINLocked", UNLOCK),
    ("simPUKLocked", UNLOCK),
    ("simNonQKT", link("/settings/cellular", "Set the APN.", LOGIN)),
    ("noService", link("/settings/cellular", "Change the network preference.", LOGIN)),
    ("softwareUpdate", link("/about/update", "Install now.", LOGIN)),
    ("softwareUpdateSuccess", ""),
    ("softwareUpdateFailure", ""),
    ("PCO3", ACCOUNT),
    ("PCO5", ACCOUNT),
    ("gpioPin1StateChangeToLow", ""),
    ("gpioPin1StateChangeToHigh", ""),
    ("gpioPin2StateChangeToLow", ""),
    ("gpioPin2StateChangeToHigh", ""),
]


def test_each_type_has_its_link_and_what_is_not_active_is_not_listed(responder):
    use(responder, "all-notifications.json")
    published = responder.device.document()["msgbus"][CHANNEL]
    assert [one.get("active", True) for one in published].count(False) == 1
    listed = notifications(responder)
    assert [one["id"] for one in listed] == [kind for kind, _ in ENDS]
    for one, (_, end) in zip(listed, ENDS, strict=True):
        before, opening, rest = one["text"].partition("<a ")
        assert opening + rest == end
        # The link follows a complete sentence.
        assert before.endswith(". ")


def test_with_several_sims_a_locked_one_links_to_the_page_of_all_sims(responder):
    use(responder, "all-notifications.json")
    responder.device.set(getMultiSimEnabled=1)
    texts = {one["id"]: one["text"] for one in notifications(responder)}
    for kind in ("simPINLocked", "simPUKLocked"):
        assert texts[kind].endswith(link("/settings/sims", "Unlock the SIM.", LOGIN))


@pytest.mark.parametrize(
    ("settings", "text"),
    [
        ({"name": "Door", "highState": "Open"}, "Door Open. "),
        ({"name": "Door"}, "Door has changed to high. "),
        ({"highState": "Open"}, "GPIO pin 2 has changed to Open. "),
        ({}, "GPIO pin 2 has changed to high. "),
        ({"error": 3}, ". "),
    ],
)
def test_the_text_of_a_gpio_pin_has_the_names_that_the_user_gave(responder, settings, text):
    responder.device.set(getGpioPin2CustomSettings=settings)
    publish(responder, [notification("gpio_pin2", id="gpioPin2StateChangeToHigh", textId="notification_gpio_message_text")])
    (one,) = notifications(responder)
    assert (one["title"], one["text"]) == ("GPIO pin 2", text)


def test_the_message_about_an_update_comes_from_the_carrier_in_the_language_of_the_device(responder):
    use(responder, "software-update-5.json")
    messages = responder.device.document()["webui"]["softwareUpdateCustomMsgs"]
    links = {
        "en_US": ("Install now.", LOGIN),
        "de_DE": ("Jetzt installieren.", " Möglicherweise müssen Sie sich anmelden."),
        "ja_JP": ("今すぐインストール。", "ログインが必要な場合があります。"),
    }
    for language in ("en_US", "ja_JP", "de_DE", "en_US"):
        responder.device.speak(language)
        (one,) = notifications(responder)
        # The carrier's text is shown as it is.
        assert one["text"] == messages[language]["description"] + link("/about/update", *links[language])


@pytest.mark.parametrize(
    ("block", "announced"),
    [
        ({"bytes": "01"}, 0),
        ({"bytes": "010000"}, 0),
        ({"bytes": COUNT_ONE}, 1),
        ({"bytes": COUNT_ONE + "41" * (RECORD - 1)}, 1),
        ({"bytes": "ffffffff"}, -1),
        ({"bytes": "00000080" + "41" * RECORD}, -(2**31)),
        ({"bytes": "ffffff7f"}, 2**31 - 1),
        ({"bytes": "00000000" + "41" * RECORD}, 0),
        ([], 0),
    ],
    ids=lambda value: str(value)[:30],
)
def test_a_block_without_a_whole_record_gives_an_empty_list(responder, block, announced):
    publish(responder, block)
    assert notifications(responder) == []
    assert responder.log.count(f" - [{announced}] notifications received on msgbus") == 1


def test_a_record_that_is_cut_off_ends_the_list(responder):
    """A record that is cut off is not shown."""
    whole = bytearray(RECORD)
    whole[20:24] = b"data"
    whole[444] = 1
    publish(responder, {"bytes": (b"\x03\0\0\0" + bytes(whole) * 2 + bytes(whole)[:450]).hex()})
    assert [one["id"] for one in notifications(responder)] == ["data", "data"]
    assert responder.log.count(" - [3] notifications received on msgbus") == 1
    malformed = (
        "malformed notification list, [3] announced, [2] received in [1382] bytes. "
        f"Try msgbus_cli MsgBusGet {CHANNEL}"
    )
    assert responder.log.count(malformed) == 1


@pytest.mark.parametrize("block", [{"bytes": ""}, {"error": 4}, {"error": 5}, None], ids=str)
def test_a_bus_that_cannot_be_read_gives_an_empty_list_and_is_logged(responder, block):
    if block is not None:
        publish(responder, block)
    else:
        document = responder.device.document()
        document["msgbus"] = {}
        responder.device.write(json.dumps(document).encode())
    assert notifications(responder) == []
    message = f"msgbus failed to read notification data. Try msgbus_cli MsgBusGet {CHANNEL}"
    assert responder.log.count(message) == 1
    assert responder.ask("/srv/status").complete


def test_before_any_language_is_known_the_ids_are_shown(responder):
    responder.device.speak("tlh_AQ")
    publish(responder, [notification("sms_received")])
    (one,) = notifications(responder)
    assert one["title"] == "notification_sms_received_title"
