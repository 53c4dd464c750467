// The small cards about the mobile network: signal and SIM.

import { integer, rows, text } from "./answer.js";
import { t } from "./language.js";
import { bars, simState, technology } from "./network.js";

export function signalCard(data) {
    const strength = bars(data);
    if (strength === null) {
        return null;
    }
    const technologyName = technology(data);
    const decibels = (key) => (integer(data, key) === null ? null : `${integer(data, key)} dB`);
    const femtocell = text(data, "statusBarFemtoCellStatus") === "1";
    const details =
        technologyName === null
            ? []
            : [
                  ...rows(
                      ["row.technology", technologyName],
                      ["row.band", text(data, "statusBarBand")],
                      ["row.bandwidth", text(data, "statusBarBandwidth")],
                  ),
                  // Names that are the same in every language.
                  ...[
                      ["SNR", decibels("statusBarSNR")],
                      ["SINR", decibels("statusBarSINR")],
                  ].filter(([, value]) => value !== null),
                  ...rows(
                      ["row.cell", text(data, "statusBarPCI")],
                      ["row.femtocell", femtocell ? t("value.yes") : null],
                  ),
              ];
    return {
        id: "signal",
        title: t("signal.title"),
        glyph: { kind: "signal", bars: strength },
        headline: strength === 0 ? t("signal.none") : t("signal.bars", { number: strength }),
        tone: strength === 0 ? "warning" : "plain",
        rows: details,
    };
}

function simRows(code, blocked) {
    return rows(
        ["row.carrierBlock", blocked === "1" ? t("value.blocked") : null],
        ["row.rejectCode", code === "0" ? null : code],
    );
}

/** The values of a SIM slot; the keys of the first slot have no number. */
function slot(data, number) {
    const name = (key) => text(data, `statusBarSim${number === 2 ? "2" : ""}${key}`);
    return {
        number,
        state: name("Status"),
        network: text(data, number === 2 ? "statusBarSim2Network" : "statusBarNetwork"),
        rows: simRows(name("MMCode"), name("CarrierBlockedStatus")),
    };
}

export function simCard(data) {
    const card = { id: "sim", glyph: { kind: "sim" } };
    if (data.isDualSimSupported !== 1) {
        const { state, rows: details } = slot(data, 1);
        return state === null
            ? null
            : {
                  ...card,
                  title: t("sim.title"),
                  headline: simState(state).label,
                  tone: simState(state).tone,
                  rows: details,
              };
    }
    const active = integer(data, "statusBarActiveSimSlot");
    const parts = [slot(data, 1), slot(data, 2)]
        .filter(({ state }) => state !== null)
        .map(({ number, state, network, rows: details }) => ({
            title: t("sim.slot", { number }),
            badge: number === active ? t("sim.inUse") : null,
            headline: simState(state).label,
            tone: simState(state).tone,
            rows: [...rows(["row.network", network]), ...details],
        }));
    return parts.length === 0 ? null : { ...card, title: t("sim.titleOfSeveral"), parts };
}
