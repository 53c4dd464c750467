// Reading the status data set. A key that is absent, or empty, gives null, and what is null is not
// shown.

import { parseInteger } from "./format.js";
import { t } from "./language.js";

/** Values by the words of the answer. (An object would have names of its own, too.) */
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

/** Rows of a card by the names of their texts: those whose value is null fall away. */
export function rows(...pairs) {
    return pairs
        .filter(([, value]) => value !== null && value !== undefined)
        .map(([name, value]) => [t(name), value]);
}

export function onOff(value) {
    return value === null ? null : t(value !== 0 ? "value.on" : "value.off");
}
