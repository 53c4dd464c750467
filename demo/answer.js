// Reads the status data set. An absent or empty key gives null, and null values are not shown.

import { parseInteger } from "./format.js";
import { t } from "./language.js";

/** A map from words of the answer to values. (A plain object would also have inherited names.) */
export function table(values) {
    return new Map(Object.entries(values));
}

export function text(data, key) {
    const value = data[key];
    return typeof value === "string" && value.trim() !== "" && value !== "-" ? value : null;
}

export function integer(data, key) {
    return parseInteger(data[key]);
}

/** Rows of a card, from pairs of text name and value; rows whose value is null are left out. */
export function rows(...pairs) {
    return pairs
        .filter(([, value]) => value !== null && value !== undefined)
        .map(([name, value]) => [t(name), value]);
}

export function onOff(value) {
    return value === null ? null : t(value !== 0 ? "value.on" : "value.off");
}
