// The small cards for parts of the device itself: battery, Wi-Fi, clients, memory card and so on.

import { integer, onOff, rows, table, text } from "./answer.js";
import { bytes, parseCount } from "./format.js";
import { t } from "./language.js";

const SOURCES = table({ ChargingSourceAC: "battery.charger", ChargingSourceUSB: "battery.usb" });

/** Charge in percent and whether it is being charged; null when there is no battery. */
export function battery(data) {
    const percent = integer(data, "statusBarBatteryPercent");
    if (percent === null || (text(data, "statusBarBatteryDetection") ?? "Present") !== "Present") {
        return null;
    }
    return { percent, charging: data.statusBarBatteryChargingState === "true" };
}

function chargeState({ percent, charging }, isPlugged, isLow) {
    // A full battery on external power is neither charged nor used.
    if ((charging || isPlugged) && percent >= 100) {
        return "battery.charged";
    }
    if (charging) {
        return "battery.charging";
    }
    if (isLow) {
        return "battery.low";
    }
    return isPlugged ? "battery.notCharging" : "battery.inUse";
}

export function batteryCard(data) {
    const detection = text(data, "statusBarBatteryDetection");
    const source = SOURCES.get(data.statusBarBatteryChargingSource) ?? null;
    const poweredBy = source === null ? null : t(source);
    const state = battery(data);
    const card = { id: "battery", title: t("battery.title") };
    if (state === null) {
        if (detection === null) {
            return null;
        }
        return {
            ...card,
            glyph: { kind: "battery", percent: null, charging: false },
            headline: t(detection === "Notpresent" ? "battery.none" : "battery.unrecognised"),
            tone: detection === "Notpresent" ? "plain" : "warning",
            rows: rows(["row.poweredBy", poweredBy]),
        };
    }
    const low = state.percent <= 20 && !state.charging;
    return {
        ...card,
        glyph: { kind: "battery", ...state },
        headline: t("value.percent", { percent: state.percent }),
        tone: low ? (state.percent <= 10 ? "alert" : "warning") : "plain",
        rows: rows(
            ["row.state", t(chargeState(state, source !== null, low))],
            ["row.poweredBy", poweredBy ?? (state.charging ? null : t("battery.itself"))],
        ),
    };
}

/** Wi-Fi clients and whether Wi-Fi is on, as far as the answer contains them. */
export function wifi(data) {
    return {
        on: integer(data, "statusBarWiFiEnabled"),
        clients: integer(data, "statusBarWiFiClientListSize"),
    };
}

/** All connected clients, by Wi-Fi and otherwise. */
export function clients(data) {
    return integer(data, "statusBarClientListSize");
}

const PORTS = table({
    connected: "port.connected",
    enabled: "port.enabled",
    disabled: "port.disabled",
});

function localRows(data) {
    const { on, clients: onWifi } = wifi(data);
    const most = integer(data, "statusBarMaxWiFiClientListSize");
    const guestsAllowed = integer(data, "statusBarGuestWifiEnabled");
    const guests = integer(data, "statusBarGuestClientListSize");
    const port = PORTS.get(data.statusBarEthernetPortEnabled);
    const ofMost =
        most === null ? String(onWifi) : t("value.partOf", { part: onWifi, whole: most });
    return rows(
        ["row.wifi", onOff(on)],
        ["row.onWifi", onWifi === null ? null : ofMost],
        ["row.guestWifi", onOff(guestsAllowed)],
        [
            "row.guests",
            guests === null || (guests === 0 && guestsAllowed !== 1) ? null : String(guests),
        ],
        ["row.ethernet", port === undefined ? null : t(port)],
    );
}

export function localCard(data) {
    const { on } = wifi(data);
    const all = clients(data);
    const card = { id: "local", glyph: { kind: "wifi" }, tone: "plain", rows: localRows(data) };
    // Every answer contains the port, even if the device provides nothing else; that is not enough.
    if (on === null && all === null) {
        return card.rows.length === 0 || data.statusBarEthernetPortEnabled === "disabled"
            ? null
            : { ...card, title: t("local.title"), headline: null };
    }
    const devices = all === 0 ? t("local.noDevices") : t("local.devices", { number: all ?? 0 });
    return {
        ...card,
        title: t("local.wifiTitle"),
        headline: all === null ? t(on === 1 ? "local.wifiOn" : "local.wifiOff") : devices,
    };
}

const SHARES = table({ SmbOn: "storage.shared", SmbOff: "storage.notShared" });

export function storageCard(data) {
    const state = text(data, "statusBarSdCardStatus");
    if (state === null) {
        return null;
    }
    const card = {
        id: "storage",
        title: t("storage.title"),
        glyph: { kind: "card" },
        tone: "plain",
    };
    if (state === "SdNotMounted") {
        return { ...card, headline: t("storage.none"), rows: [] };
    }
    const used = parseCount(data.statusBarSdCardUsedSpace);
    const free = parseCount(data.statusBarSdCardFreeSpace);
    const known = used !== null && free !== null && used + free > 0n;
    const sharing = SHARES.has(state) ? t(SHARES.get(state)) : state;
    const parts = known ? { part: bytes(used), whole: bytes(used + free) } : null;
    const isInUse = (integer(data, "statusBarSdCardInUse") ?? 0) !== 0;
    return {
        ...card,
        headline: free === null ? sharing : t("storage.free", { amount: bytes(free) }),
        share: known ? Number((used * 1000n) / (used + free)) / 1000 : null,
        rows: rows(
            ["row.used", known ? t("value.partOf", parts) : null],
            ["row.fileSharing", sharing],
            ["row.inUse", isInUse ? t("value.yes") : null],
        ),
    };
}

const FIXES = table({
    GpsOff: ["gps.off", "plain"],
    Searching: ["gps.searching", "busy"],
    GotFix: ["gps.found", "good"],
});

export function gpsCard(data) {
    const state = FIXES.get(data.statusBarGpsStatus);
    return state === undefined
        ? null
        : {
              id: "gps",
              title: t("gps.title"),
              glyph: { kind: "pin" },
              headline: t(state[0]),
              tone: state[1],
              rows: [],
          };
}

export function unreadMessages(data) {
    return integer(data, "statusBarSmsUnreadCount");
}

export function smsCard(data) {
    const unread = unreadMessages(data);
    return unread === null
        ? null
        : {
              id: "sms",
              title: t("sms.title"),
              glyph: { kind: "mail" },
              headline: unread === 0 ? t("sms.none") : t("sms.unread", { number: unread }),
              tone: "plain",
              rows: [],
          };
}

export function updateCard(data) {
    const status = integer(data, "StatusBarSoftwareUpdateStatus");
    if (status === null) {
        return null;
    }
    const card = {
        id: "update",
        title: t("update.title"),
        glyph: { kind: "update" },
        tone: "plain",
    };
    const version = text(data, "StatusBarSoftwareUpdateVersion");
    const fota = integer(data, "statusBarFotaInstallStatus");
    const installing = fota !== null && fota > 0 ? t("value.code", { code: fota }) : null;
    if (status === 0) {
        const details = rows(["row.installation", installing]);
        return { ...card, headline: t("update.none"), rows: details };
    }
    const minutes = integer(data, "StatusBarSoftwareUpdateInstallationDuration") ?? 0;
    const isWanted = integer(data, "StatusBarSoftwareUpdateUserInitiated") ?? 0;
    return {
        ...card,
        headline: version === null ? t("update.announced") : t("update.version", { version }),
        text: text(data, "StatusBarSoftwareUpdateCustomDesc"),
        rows: rows(
            ["row.takesAbout", minutes === 0 ? null : t("value.minutes", { minutes })],
            ["row.askedFor", isWanted !== 0 ? t("value.yes") : null],
            ["row.state", t("value.code", { code: status })],
            ["row.installation", installing],
        ),
    };
}
