// The language of the page: its texts, numbers and times. Texts of the device come in the language
// of the device and are none of these. No part of the page is touched here.

import ar from "./texts/ar.js";
import de from "./texts/de.js";
import en from "./texts/en.js";
import es from "./texts/es.js";
import fr from "./texts/fr.js";
import ja from "./texts/ja.js";

export const CATALOGUES = { en, de, fr, es, ja, ar };

/** The languages by their own names, as they are offered. */
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

/** Everything that is told from now on is in this language, one of LANGUAGES. */
export function setLanguage(code) {
    // The device writes its numbers with these digits, too, and the two stand side by side.
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

/** The first of the user's languages, such as "de-AT", that the page speaks; English if none. */
export function bestLanguage(wanted) {
    const codes = wanted.map((each) => each.toLowerCase().split("-")[0]);
    return codes.find((code) => Object.hasOwn(LANGUAGES, code)) ?? "en";
}

/** A text by its name, with values in it. One with several forms takes that for values.number. */
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

/** A number with three digits that matter. */
export function formatNumber(value) {
    return current.number.format(value);
}

/** The time of day. */
export function formatTime(milliseconds) {
    return current.clock.format(milliseconds);
}
