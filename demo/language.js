// The language of the page: its texts, numbers and times. Texts from the device are in the device's
// language and are not handled here. This module does not change the page.

import ar from "./texts/ar.js";
import de from "./texts/de.js";
import en from "./texts/en.js";
import es from "./texts/es.js";
import fr from "./texts/fr.js";
import ja from "./texts/ja.js";

export const CATALOGUES = { en, de, fr, es, ja, ar };

/** The languages on offer, each with its own name for itself. */
export const LANGUAGES = {
    en: "English",
    de: "Deutsch",
    fr: "Français",
    es: "Español",
    ja: "日本語",
    ar: "العربية",
};

const RIGHT_TO_LEFT = new Set(["ar"]);

let current;

/** Sets the language, one of LANGUAGES, of all later texts, numbers and times. */
export function setLanguage(code) {
    // Latin digits, because the device's texts use them and appear beside these numbers.
    const locale = `${code}-u-nu-latn`;
    current = {
        code,
        texts: CATALOGUES[code],
        plural: new Intl.PluralRules(locale),
        number: new Intl.NumberFormat(locale, { maximumSignificantDigits: 3, useGrouping: false }),
        clock: new Intl.DateTimeFormat(locale, {
            hour: "2-digit",
            minute: "2-digit",
            second: "2-digit",
            hourCycle: "h23",
        }),
    };
}

setLanguage("en");

export function language() {
    return current.code;
}

export function direction() {
    return RIGHT_TO_LEFT.has(current.code) ? "rtl" : "ltr";
}

/** The first of the user's languages, such as "de-AT", that the page supports, or English. */
export function bestLanguage(wanted) {
    const codes = wanted.map((each) => each.toLowerCase().split("-")[0]);
    return codes.find((code) => Object.hasOwn(LANGUAGES, code)) ?? "en";
}

/** The text of a name, with values filled in. values.number selects one of several plural forms. */
export function t(name, values = {}) {
    const found = current.texts[name];
    const form = typeof found === "object" ? found[current.plural.select(values.number)] : found;
    if (form === undefined) {
        throw new Error(`no text ${name}`);
    }
    return form.replace(/\{(\w+)\}/g, (_, key) => String(values[key]));
}

/** Names of the units of amounts: bytes, thousands of them, millions and so on. */
export function unitNames() {
    return current.texts["amount.units"];
}

/** A number with three significant digits. */
export function formatNumber(value) {
    return current.number.format(value);
}

/** The time of day. */
export function formatTime(milliseconds) {
    return current.clock.format(milliseconds);
}
