// The meaning of the status data set: converts the keys of the answer to the models that the page
// shows. This module does not change the page.

import { integer } from "./answer.js";
import {
    battery,
    batteryCard,
    clients,
    gpsCard,
    localCard,
    smsCard,
    storageCard,
    unreadMessages,
    updateCard,
    wifi,
} from "./device_cards.js";
import { t } from "./language.js";
import { signalCard, simCard } from "./mobile_cards.js";
import { bars, connection, isInAirplaneMode, roaming, technology, traffic } from "./network.js";

/** The parts that every hotspot has, by the names of their texts. */
const PARTS = [
    ["network.title", connection],
    ["traffic.title", traffic],
    ["signal.title", bars],
    ["sim.title", simCard],
    ["battery.title", batteryCard],
    ["local.clients", clients],
];

/** Parts that a hotspot may have. Without a value, the page cannot know whether this one has it. */
const MORE_PARTS = [
    ["row.wifi", (data) => wifi(data).on],
    ["storage.title", storageCard],
    ["gps.title", gpsCard],
    ["sms.title", smsCard],
    // If this call fails, the answer is the same as without an update.
    ["update.title", (data) => integer(data, "StatusBarSoftwareUpdateStatus") || null],
];

function toldOf(parts, data) {
    return parts.filter(([, read]) => read(data) !== null).map(([name]) => name);
}

/**
 * Names of the texts for the parts that are missing in the answer although every hotspot has them,
 * or an earlier answer had them.
 * @param before names of the parts that were in earlier answers
 */
export function untold(data, before = new Set()) {
    const told = [...toldOf(PARTS, data), ...toldOf(MORE_PARTS, data)];
    const all = [...PARTS, ...MORE_PARTS].map(([name]) => name);
    if (told.length === 0) {
        return { nothing: true, told, missing: [...all, "notifications.title"] };
    }
    const expected = new Set([...PARTS.map(([name]) => name), ...before]);
    // That an update is no longer in the answer only means that it has ended.
    expected.delete("update.title");
    return {
        nothing: false,
        told,
        missing: all.filter((name) => expected.has(name) && !told.includes(name)),
    };
}

/** The small cards, in the order of the page; cards without any value are left out. */
export function smallCards(data) {
    const cards = [
        signalCard,
        simCard,
        batteryCard,
        localCard,
        storageCard,
        gpsCard,
        smsCard,
        updateCard,
    ];
    return untold(data).nothing
        ? []
        : cards.map((read) => read(data)).filter((card) => card !== null);
}

/** The items of the status bar: glyph, short text, and text for screen readers. */
export function statusItems(data) {
    const items = [];
    const strength = bars(data);
    const add = (id, glyph, short, spoken) => items.push({ id, glyph, short, spoken });
    if (isInAirplaneMode(data)) {
        add("airplane", { kind: "plane" }, "", t("state.airplane"));
    } else if (strength !== null) {
        const spoken = t("signal.spoken", { number: strength });
        add("signal", { kind: "signal", bars: strength }, technology(data) ?? "", spoken);
    }
    const abroad = roaming(data);
    if (abroad !== null) {
        add("roaming", { kind: "roaming" }, t("row.roaming"), abroad);
    }
    const { on, clients: onWifi } = wifi(data);
    if (on === 1 && onWifi === null) {
        add("wifi", { kind: "wifi" }, "", t("local.wifiOn"));
    } else if (on === 1) {
        add("wifi", { kind: "wifi" }, String(onWifi), t("local.spoken", { number: onWifi }));
    }
    const unread = unreadMessages(data);
    if (unread !== null && unread > 0) {
        add("sms", { kind: "mail" }, String(unread), t("sms.spoken", { number: unread }));
    }
    if (data.statusBarNotificationFlag === "1") {
        add("bell", { kind: "bell" }, "", t("notifications.spoken"));
    }
    if (data.statusBarGpsStatus === "GotFix") {
        add("gps", { kind: "pin" }, "", t("gps.spoken"));
    }
    const state = battery(data);
    if (state !== null) {
        add(
            "battery",
            { kind: "battery", ...state },
            t("value.percent", { percent: state.percent }),
            t(state.charging ? "battery.spokenCharging" : "battery.spoken"),
        );
    }
    return items;
}
