// Numbers formatted for people.

import { formatNumber, t, unitNames } from "./language.js";

const LARGEST_POWER = 6;

/** The best unit for an amount of bytes: its name and its size. */
export function unitOf(amount) {
    let power = 0;
    // 999.5 and more would be written as 1000.
    while (power < LARGEST_POWER && amount >= 999.5 * 1000 ** power) {
        power += 1;
    }
    return { name: unitNames()[power], size: 1000 ** power };
}

/** An amount of bytes in the given unit: "734 MB". */
export function inUnit(amount, unit) {
    const shown = amount / unit.size;
    return t("amount.inUnit", {
        number: shown >= 1000 ? Math.round(shown) : formatNumber(shown),
        unit: unit.name,
    });
}

/** An amount of bytes, decimal units, three digits: "734 MB". */
export function bytes(amount) {
    const value = Number(amount);
    return inUnit(value, unitOf(value));
}

/** Bytes per second: "1.2 MB/s". */
export function rate(perSecond) {
    return t("amount.rate", { amount: bytes(Math.round(perSecond)) });
}

/** Seconds as a duration in its two largest units: "1 h 30 min". */
export function duration(seconds) {
    const value = Number(seconds);
    const parts = {
        days: Math.floor(value / 86400),
        hours: Math.floor(value / 3600) % 24,
        minutes: Math.floor(value / 60) % 60,
        seconds: value % 60,
    };
    const largest = ["days", "hours", "minutes"].find((part) => parts[part] > 0);
    return t(`time.${largest ?? "seconds"}`, parts);
}

/** A decimal text of the answer as a number of any size; null for everything else. */
export function parseCount(text) {
    return /^\d{1,20}$/.test(text ?? "") ? BigInt(text) : null;
}

/** An integer, which the answer may have as a number or as a text; null for everything else. */
export function parseInteger(value) {
    return /^-?\d{1,10}$/.test(String(value ?? "")) ? Number(value) : null;
}
