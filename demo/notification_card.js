// The notifications. Their texts come in the language of the device.

import { glyphOf } from "./card.js";
import { element, isolated } from "./dom.js";
import { t } from "./language.js";
import { notificationNodes } from "./notification_text.js";

/** The most urgent one first. */
const SEVERITIES = ["critical", "alert", "warning", "info"];

function asText(value) {
    return typeof value === "string" ? value : "";
}

function urgency(notification) {
    const place = SEVERITIES.indexOf(notification?.severity);
    return place === -1 ? SEVERITIES.length : place;
}

/** The most urgent ones first, those of one severity in the order of the device. */
export function byUrgency(list) {
    return [...list].sort((one, other) => urgency(one) - urgency(other));
}

function notificationItem(notification) {
    const isKnown = urgency(notification) < SEVERITIES.length;
    const severity = isKnown ? notification.severity : null;
    const label = asText(notification?.label);
    const title = asText(notification?.title);
    return element(
        "li",
        { class: `notification ${severity ?? "none"}`, "data-id": asText(notification?.id) },
        element(
            "p",
            { class: "kind" },
            severity === null
                ? null
                : element("span", { class: "severity" }, t(`severity.${severity}`)),
            label === "" ? null : isolated(label),
        ),
        title === "" ? null : element("h3", { dir: "auto" }, title),
        element("p", { class: "text", dir: "auto" }, notificationNodes(asText(notification?.text))),
    );
}

export function notificationCard(list) {
    return [
        element(
            "h2",
            { id: "notifications-title" },
            glyphOf({ kind: "bell" }),
            t("notifications.title"),
            list.length === 0 ? null : element("span", { class: "badge" }, String(list.length)),
        ),
        list.length === 0
            ? // The list is also empty when the device could not read it.
              element("p", { class: "empty" }, t("notifications.none"))
            : element("ul", { class: "notifications" }, byUrgency(list).map(notificationItem)),
    ];
}
