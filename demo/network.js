// The values for network, data connection and traffic in the status data set. This module does not
// change the page.

import { integer, onOff, rows, table, text } from "./answer.js";
import { duration, parseCount } from "./format.js";
import { t } from "./language.js";

/** Text, tone, what the button does, and whether data can flow. */
const STATES = table({
    Connected: ["state.connected", "good", "disconnect", true],
    Dormant: ["state.idle", "good", "disconnect", true],
    Ready: ["state.ready", "plain", "connect", false],
    Connecting: ["state.connecting", "busy", "disconnect", false],
    Disconnecting: ["state.disconnecting", "busy", "connect", true],
    "Activation in progress": ["state.activating", "busy", "disconnect", true],
    Unactivated: ["state.unactivated", "warning", null, false],
    Initializing: ["state.starting", "busy", null, false],
    Searching: ["state.searching", "busy", null, false],
    "No Service": ["state.noService", "warning", null, false],
    "Account restricted (PCO 2)": ["state.restricted", "warning", "disconnect", true],
    "Account restricted (PCO 2) Disconnected": ["state.restrictedOff", "warning", "connect", false],
    "Account out of credit (PCO 3)": ["state.noCredit", "alert", null, false],
    "Account not active (PCO 5)": ["state.inactive", "alert", null, false],
});

const SIM_STATES = table({
    Ready: ["sim.ready", "good"],
    "Not Found": ["sim.missing", "warning"],
    "SIM Locked": ["sim.otherNetwork", "alert"],
    "SIM Restricted": ["sim.restricted", "alert"],
    "SIM Error": ["sim.unreadable", "alert"],
    "PUK Locked": ["sim.puk", "alert"],
    "PIN Locked": ["sim.pin", "warning"],
});

/** The state of a SIM: label and tone. A word that this page does not know is shown unchanged. */
export function simState(word) {
    const known = SIM_STATES.get(word);
    return known === undefined
        ? { label: word, tone: "plain" }
        : { label: t(known[0]), tone: known[1] };
}

function simSentence(word) {
    return t("state.sim", { state: simState(word).label });
}

const ROAMING = table({
    Domestic: "value.domestic",
    International: "value.international",
    // The network asks for a flashing indicator; the answer has no other value for roaming then.
    Flash: "value.yes",
});

export function roaming(data) {
    const value = text(data, "statusBarRoaming");
    if (value === null || value === "None") {
        return null;
    }
    return ROAMING.has(value) ? t(ROAMING.get(value)) : value;
}

/** Technology of the SIM in use. After a change, the first answer still has the other SIM's. */
export function technology(data) {
    const value = text(data, "statusBarTechnology") ?? text(data, "statusBarSim2Technology");
    return value === "None" ? null : value;
}

/** Signal bars of the SIM in use, with the same limitation. */
export function bars(data) {
    return integer(data, "statusBarSignalBars") ?? integer(data, "statusBarSim2SignalBars");
}

/** A value of the SIM in use, for which the answer has one key for each SIM. */
function inUse(data, first, second) {
    return text(data, integer(data, "statusBarActiveSimSlot") === 2 ? second : first);
}

export function isInAirplaneMode(data) {
    return text(data, "statusBarAirplaneMode") === "AirplaneModeOn";
}

/** Label, tone, what the button does, and whether data can flow. */
function stateOf(data, raw) {
    if (isInAirplaneMode(data)) {
        return { label: t("state.airplane"), tone: "warning", action: null, flows: false };
    }
    const known = STATES.get(raw);
    // There may be a data call even though the carrier has stopped the account.
    const beneath = STATES.get(text(data, "pcoInitiatedConnectionStatus"));
    if (known !== undefined) {
        return {
            label: t(known[0]),
            tone: known[1],
            action: known[2] ?? beneath?.[2] ?? null,
            flows: known[3] || (beneath?.[3] ?? false),
        };
    }
    return {
        ...(SIM_STATES.has(raw)
            ? { label: simSentence(raw), tone: simState(raw).tone, flows: false }
            : { label: raw ?? t("state.unknown"), tone: "plain", flows: true }),
        action: beneath?.[2] ?? null,
    };
}

function details(data, isConnected) {
    const held = text(data, "statusBarConnectionDuration");
    const manual = integer(data, "statusBarMnsInUse");
    const scanning = integer(data, "statusBarMnsScan") === 1;
    const selection = manual === null ? null : manual !== 0 ? "value.manual" : "value.automatic";
    const choice = scanning ? "value.searching" : selection;
    return rows(
        ["row.connectedFor", isConnected && held !== null && held !== "0" ? duration(held) : null],
        ["row.roaming", roaming(data)],
        ["row.networkId", text(data, "statusBarNetworkID")],
        ["row.networkChoice", choice === null ? null : t(choice)],
        ["row.preferred", text(data, "statusBarPreferredTechnology")],
        ["row.mobileData", onOff(integer(data, "statusBarMobileDataEnabled"))],
    );
}

/** Network and data connection; null if the answer has no values for them. */
export function connection(data) {
    const name = inUse(data, "statusBarNetwork", "statusBarSim2Network");
    const raw = inUse(data, "statusBarConnectionState", "statusBarSim2ConnectionState");
    const airplane = isInAirplaneMode(data);
    if (raw === null && name === null && !airplane && text(data, "statusBarNetworkID") === null) {
        return null;
    }
    const state = stateOf(data, raw);
    const sim = inUse(data, "statusBarSimStatus", "statusBarSim2Status");
    const blocked = sim !== null && sim !== "Ready" && SIM_STATES.has(sim);
    return {
        ...state,
        name,
        airplane,
        note: blocked && !airplane ? simSentence(sim) : null,
        technology: technology(data),
        bars: bars(data),
        rows: details(data, state.action === "disconnect"),
    };
}

/** Counters of the data connection; null if the answer does not have them. */
export function traffic(data) {
    const received = parseCount(data.statusBarBytesReceived);
    const sent = parseCount(data.statusBarBytesTransmitted);
    if (received === null || sent === null) {
        return null;
    }
    return {
        received,
        sent,
        total: parseCount(data.statusBarBytesTotal),
        // Without a connection no rate is shown, even if the counters change.
        flows: connection(data)?.flows ?? true,
    };
}
