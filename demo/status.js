// What the status data set means: from the keys of the answer to what the cards show. A key that is
// absent, or empty, gives null, and what is null is not shown. No part of the page is touched here.

import { bytes, count, duration, parseCount, parseInteger } from "./format.js";

/** Values by the words of the answer. (An object would have names of its own, too.) */
function table(values) {
    return new Map(Object.entries(values));
}

function text(data, key) {
    const value = data[key];
    return typeof value === "string" && value.trim() !== "" && value !== "-" ? value : null;
}

function integer(data, key) {
    return parseInteger(data[key]);
}

/** Rows of a card: those whose value is null fall away. */
function rows(...pairs) {
    return pairs.filter(([, value]) => value !== null && value !== undefined);
}

function onOff(value) {
    if (value === null) {
        return null;
    }
    return value !== 0 ? "On" : "Off";
}

const STATES = table({
    Connected: ["Connected", "good", "disconnect"],
    Dormant: ["Connected, idle", "good", "disconnect"],
    Ready: ["Not connected", "plain", "connect"],
    Connecting: ["Connecting …", "busy", "disconnect"],
    Disconnecting: ["Disconnecting …", "busy", "connect"],
    "Activation in progress": ["Being activated …", "busy", "disconnect"],
    Unactivated: ["Not activated", "warning", null],
    Initializing: ["Starting up …", "busy", null],
    Searching: ["Searching for a network …", "busy", null],
    "No Service": ["No service", "warning", null],
    "Account restricted (PCO 2)": ["Account restricted", "warning", "disconnect"],
    "Account restricted (PCO 2) Disconnected": [
        "Account restricted, not connected",
        "warning",
        "connect",
    ],
    "Account out of credit (PCO 3)": ["Account out of credit", "alert", null],
    "Account not active (PCO 5)": ["Account not active", "alert", null],
});

const SIM_STATES = table({
    Ready: ["Ready", "good"],
    "Not Found": ["No SIM card", "warning"],
    "SIM Locked": ["Locked to another network", "alert"],
    "SIM Restricted": ["Restricted", "alert"],
    "SIM Error": ["Cannot be read", "alert"],
    "PUK Locked": ["Locked, waits for its PUK", "alert"],
    "PIN Locked": ["Locked, waits for its PIN", "warning"],
});

function simState(value) {
    const [label, tone] = SIM_STATES.get(value) ?? [value, "plain"];
    return { label, tone };
}

function secondIsActive(data) {
    return integer(data, "statusBarActiveSimSlot") === 2;
}

function roaming(data) {
    const value = text(data, "statusBarRoaming");
    return value === "None" ? null : value;
}

/** Network and data connection; null when nothing is known of them. */
export function connection(data) {
    const second = secondIsActive(data);
    const name = text(data, second ? "statusBarSim2Network" : "statusBarNetwork");
    const raw = text(data, second ? "statusBarSim2ConnectionState" : "statusBarConnectionState");
    const airplane = text(data, "statusBarAirplaneMode") === "AirplaneModeOn";
    if (raw === null && name === null && !airplane && text(data, "statusBarNetworkID") === null) {
        return null;
    }
    const sim = SIM_STATES.get(raw);
    let [label, tone, action] =
        STATES.get(raw) ?? (sim ? [`SIM card: ${sim[0]}`, sim[1], null] : [raw, "plain", null]);
    if (airplane) {
        [label, tone, action] = ["Airplane mode", "warning", null];
    }
    // An account that the carrier has stopped may hold a data call nevertheless.
    const beneath = STATES.get(text(data, "pcoInitiatedConnectionStatus"));
    action ??= airplane ? null : (beneath?.[2] ?? null);

    const simRaw = text(data, second ? "statusBarSim2Status" : "statusBarSimStatus");
    const blocked = simRaw !== null && simRaw !== "Ready" && SIM_STATES.has(simRaw);
    const held = text(data, "statusBarConnectionDuration");
    const since = action === "disconnect" && held !== null && held !== "0" ? duration(held) : null;
    const manual = integer(data, "statusBarMnsInUse");
    const scanning = integer(data, "statusBarMnsScan") === 1;
    const selection = manual === null ? null : manual !== 0 ? "Manual" : "Automatic";
    return {
        name,
        label: label ?? "State unknown",
        tone,
        action,
        airplane,
        note: blocked && !airplane ? `SIM card: ${simState(simRaw).label}` : null,
        technology: technology(data),
        bars: bars(data),
        rows: rows(
            ["Connected for", since],
            ["Roaming", roaming(data)],
            ["Network ID", text(data, "statusBarNetworkID")],
            ["Network choice", scanning ? "Searching …" : selection],
            ["Preferred", text(data, "statusBarPreferredTechnology")],
            ["Mobile data", onOff(integer(data, "statusBarMobileDataEnabled"))],
        ),
    };
}

/** Technology of the SIM in use. For one request after a change of SIM, it is told of the other. */
export function technology(data) {
    const value = text(data, "statusBarTechnology") ?? text(data, "statusBarSim2Technology");
    return value === "None" ? null : value;
}

/** Bars of the SIM in use, with the same reserve. */
export function bars(data) {
    return integer(data, "statusBarSignalBars") ?? integer(data, "statusBarSim2SignalBars");
}

/** Counters of the data connection; null when they are not told. */
export function traffic(data) {
    const received = parseCount(data.statusBarBytesReceived);
    const sent = parseCount(data.statusBarBytesTransmitted);
    if (received === null || sent === null) {
        return null;
    }
    return { received, sent, total: parseCount(data.statusBarBytesTotal) };
}

function signalCard(data) {
    const strength = bars(data);
    if (strength === null) {
        return null;
    }
    const technologyName = technology(data);
    const decibels = (key) => (integer(data, key) === null ? null : `${integer(data, key)} dB`);
    const details =
        technologyName === null
            ? []
            : rows(
                  ["Technology", technologyName],
                  ["Band", text(data, "statusBarBand")],
                  ["Bandwidth", text(data, "statusBarBandwidth")],
                  ["SNR", decibels("statusBarSNR")],
                  ["SINR", decibels("statusBarSINR")],
                  ["Cell", text(data, "statusBarPCI")],
                  ["Femtocell", text(data, "statusBarFemtoCellStatus") === "1" ? "Yes" : null],
              );
    return {
        id: "signal",
        title: "Signal",
        glyph: { kind: "signal", bars: strength },
        headline: strength === 0 ? "No signal" : `${strength} of 5 bars`,
        tone: strength === 0 ? "warning" : "plain",
        rows: details,
    };
}

function simRows(state, code, blocked) {
    return rows(
        ["Carrier block", blocked === "1" ? "Blocked by the carrier" : null],
        ["Reject code", code === "0" ? null : code],
    );
}

function simCard(data) {
    const first = text(data, "statusBarSimStatus");
    const firstRows = simRows(
        first,
        text(data, "statusBarSimMMCode"),
        text(data, "statusBarSimCarrierBlockedStatus"),
    );
    if (data.isDualSimSupported !== 1) {
        if (first === null) {
            return null;
        }
        const state = simState(first);
        return {
            id: "sim",
            title: "SIM card",
            glyph: { kind: "sim" },
            headline: state.label,
            tone: state.tone,
            rows: firstRows,
        };
    }
    const second = text(data, "statusBarSim2Status");
    const active = integer(data, "statusBarActiveSimSlot");
    const slots = [
        [1, first, text(data, "statusBarNetwork"), firstRows],
        [
            2,
            second,
            text(data, "statusBarSim2Network"),
            simRows(
                second,
                text(data, "statusBarSim2MMCode"),
                text(data, "statusBarSim2CarrierBlockedStatus"),
            ),
        ],
    ];
    const parts = slots
        .filter(([, state]) => state !== null)
        .map(([number, state, network, details]) => ({
            title: `SIM ${number}`,
            badge: number === active ? "In use" : null,
            ...{ headline: simState(state).label, tone: simState(state).tone },
            rows: [...rows(["Network", network]), ...details],
        }));
    return parts.length === 0
        ? null
        : { id: "sim", title: "SIM cards", glyph: { kind: "sim" }, parts };
}

const SOURCES = table({ ChargingSourceAC: "Charger", ChargingSourceUSB: "USB" });

/** Charge in percent and whether it is being charged; null when there is no battery. */
export function battery(data) {
    const percent = integer(data, "statusBarBatteryPercent");
    if (percent === null || (text(data, "statusBarBatteryDetection") ?? "Present") !== "Present") {
        return null;
    }
    return { percent, charging: data.statusBarBatteryChargingState === "true" };
}

function batteryCard(data) {
    const detection = text(data, "statusBarBatteryDetection");
    const source = SOURCES.get(data.statusBarBatteryChargingSource) ?? null;
    const state = battery(data);
    if (state === null) {
        if (detection === null) {
            return null;
        }
        return {
            id: "battery",
            title: "Battery",
            glyph: { kind: "battery", percent: null, charging: false },
            headline: detection === "Notpresent" ? "No battery" : "Not recognised",
            tone: detection === "Notpresent" ? "plain" : "warning",
            rows: rows(["Powered by", source]),
        };
    }
    const low = state.percent <= 20 && !state.charging;
    const rest = source === null ? "On battery" : "Not charging";
    // A full battery is not charged any more, but not used either.
    const full = (state.charging || source !== null) && state.percent >= 100;
    return {
        id: "battery",
        title: "Battery",
        glyph: { kind: "battery", ...state },
        headline: `${state.percent}%`,
        tone: low ? (state.percent <= 10 ? "alert" : "warning") : "plain",
        rows: rows(
            ["State", full ? "Charged" : state.charging ? "Charging" : low ? "Low" : rest],
            ["Powered by", source ?? (state.charging ? null : "Battery")],
        ),
    };
}

/** Wi-Fi clients and whether Wi-Fi is on, as far as they are told. */
export function wifi(data) {
    return {
        on: integer(data, "statusBarWiFiEnabled"),
        clients: integer(data, "statusBarWiFiClientListSize"),
    };
}

const PORTS = table({ connected: "Connected", enabled: "On, nothing connected", disabled: "Off" });

function localCard(data) {
    const { on, clients } = wifi(data);
    const all = integer(data, "statusBarClientListSize");
    const most = integer(data, "statusBarMaxWiFiClientListSize");
    const guestsAllowed = integer(data, "statusBarGuestWifiEnabled");
    const guests = integer(data, "statusBarGuestClientListSize");
    const onWifi =
        clients === null ? null : most === null ? String(clients) : `${clients} of ${most}`;
    const details = rows(
        ["Wi-Fi", onOff(on)],
        ["On Wi-Fi", onWifi],
        ["Guest Wi-Fi", onOff(guestsAllowed)],
        [
            "Guests",
            guests === null || (guests === 0 && guestsAllowed !== 1) ? null : String(guests),
        ],
        ["Ethernet", PORTS.get(data.statusBarEthernetPortEnabled) ?? null],
    );
    // The port alone is told by every device, also by one of which nothing is known.
    if (on === null && all === null) {
        return details.length === 0 || data.statusBarEthernetPortEnabled === "disabled"
            ? null
            : {
                  id: "local",
                  title: "Local network",
                  glyph: { kind: "wifi" },
                  headline: null,
                  tone: "plain",
                  rows: details,
              };
    }
    return {
        id: "local",
        title: "Wi-Fi and devices",
        glyph: { kind: "wifi" },
        headline:
            all === null
                ? `Wi-Fi ${on === 1 ? "on" : "off"}`
                : all === 0
                  ? "No devices"
                  : count(all, "device", "devices"),
        tone: "plain",
        rows: details,
    };
}

const CARDS = table({ SmbOn: "Shared", SmbOff: "Not shared" });

function storageCard(data) {
    const state = text(data, "statusBarSdCardStatus");
    if (state === null) {
        return null;
    }
    const card = { id: "storage", title: "Memory card", glyph: { kind: "card" }, tone: "plain" };
    if (state === "SdNotMounted") {
        return { ...card, headline: "No memory card", rows: [] };
    }
    const used = parseCount(data.statusBarSdCardUsedSpace);
    const free = parseCount(data.statusBarSdCardFreeSpace);
    const known = used !== null && free !== null && used + free > 0n;
    return {
        ...card,
        headline: free === null ? (CARDS.get(state) ?? state) : `${bytes(free)} free`,
        share: known ? Number((used * 1000n) / (used + free)) / 1000 : null,
        rows: rows(
            ["Used", known ? `${bytes(used)} of ${bytes(used + free)}` : null],
            ["File sharing", CARDS.get(state) ?? state],
            ["In use", (integer(data, "statusBarSdCardInUse") ?? 0) !== 0 ? "Yes" : null],
        ),
    };
}

const FIXES = table({
    GpsOff: ["Off", "plain"],
    Searching: ["Searching for satellites …", "busy"],
    GotFix: ["Position found", "good"],
});

function gpsCard(data) {
    const state = FIXES.get(data.statusBarGpsStatus);
    return state === undefined
        ? null
        : {
              id: "gps",
              title: "GPS",
              glyph: { kind: "pin" },
              headline: state[0],
              tone: state[1],
              rows: [],
          };
}

function smsCard(data) {
    const unread = integer(data, "statusBarSmsUnreadCount");
    return unread === null
        ? null
        : {
              id: "sms",
              title: "Messages",
              glyph: { kind: "mail" },
              headline:
                  unread === 0
                      ? "No unread messages"
                      : count(unread, "unread message", "unread messages"),
              tone: "plain",
              rows: [],
          };
}

function updateCard(data) {
    const status = integer(data, "StatusBarSoftwareUpdateStatus");
    if (status === null) {
        return null;
    }
    const card = {
        id: "update",
        title: "Software update",
        glyph: { kind: "update" },
        tone: "plain",
    };
    const version = text(data, "StatusBarSoftwareUpdateVersion");
    const fota = integer(data, "statusBarFotaInstallStatus");
    const installing = fota !== null && fota > 0 ? `Code ${fota}` : null;
    if (status === 0) {
        return { ...card, headline: "No update", rows: rows(["Installation", installing]) };
    }
    const minutes = integer(data, "StatusBarSoftwareUpdateInstallationDuration");
    return {
        ...card,
        headline: version === null ? "Update announced" : `Version ${version}`,
        text: text(data, "StatusBarSoftwareUpdateCustomDesc"),
        rows: rows(
            ["Takes about", minutes === null || minutes === 0 ? null : `${minutes} min`],
            [
                "Asked for by you",
                integer(data, "StatusBarSoftwareUpdateUserInitiated") ? "Yes" : null,
            ],
            ["State", `Code ${status}`],
            ["Installation", installing],
        ),
    };
}

/** The small cards, in the order of the page; those of which nothing is told are left out. */
export function smallCards(data) {
    const readers = [
        signalCard,
        simCard,
        batteryCard,
        localCard,
        storageCard,
        gpsCard,
        smsCard,
        updateCard,
    ];
    return readers.map((read) => read(data)).filter((card) => card !== null);
}

/** What stands in the status bar: glyph, short text, and what a screen reader says. */
export function statusItems(data) {
    const items = [];
    const strength = bars(data);
    const add = (id, glyph, short, spoken) => items.push({ id, glyph, short, spoken });
    if (text(data, "statusBarAirplaneMode") === "AirplaneModeOn") {
        add("airplane", { kind: "plane" }, "", "Airplane mode");
    } else if (strength !== null) {
        const name = technology(data) ?? "";
        add("signal", { kind: "signal", bars: strength }, name, `Signal ${strength} of 5 bars`);
    }
    const abroad = roaming(data);
    if (abroad !== null) {
        add("roaming", { kind: "roaming" }, "Roaming", abroad);
    }
    const { on, clients } = wifi(data);
    if (on === 1) {
        add(
            "wifi",
            { kind: "wifi" },
            clients === null ? "" : String(clients),
            clients === null ? "Wi-Fi on" : "devices on Wi-Fi",
        );
    }
    const unread = integer(data, "statusBarSmsUnreadCount");
    if (unread !== null && unread > 0) {
        add("sms", { kind: "mail" }, String(unread), "unread messages");
    }
    if (data.statusBarNotificationFlag === "1") {
        add("bell", { kind: "bell" }, "", "There are notifications");
    }
    if (data.statusBarGpsStatus === "GotFix") {
        add("gps", { kind: "pin" }, "", "GPS position found");
    }
    const state = battery(data);
    if (state !== null) {
        add(
            "battery",
            { kind: "battery", ...state },
            `${state.percent}%`,
            state.charging ? "battery, charging" : "battery",
        );
    }
    return items;
}

/** Texts of the answer that are in the language of the user. */
export function translatedTexts(data, notifications) {
    const keys = [
        "statusBarPreferredTechnology",
        "statusBarBandwidth",
        "StatusBarSoftwareUpdateCustomDesc",
    ];
    const texts = keys.map((key) => data[key]);
    for (const notification of notifications ?? []) {
        texts.push(notification?.title, notification?.text, notification?.label);
    }
    return texts.filter((value) => typeof value === "string");
}
