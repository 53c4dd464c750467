"""Notifications as a device publishes them on the message bus."""

CHANNEL = "zelt.ans.notifications"


def notification(snake="sms_received", **fields):
    return {
        "id": "smsReceived",
        "category": "messaging",
        "severity": "info",
        "labelId": "notification_category_messaging_label",
        "titleId": f"notification_{snake}_title",
        "textId": f"notification_{snake}_text",
        **fields,
    }
