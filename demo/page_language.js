// The user's language: taken from the browser or chosen in the header, stored, and applied to the
// fixed texts of the page.

import { element, setText } from "./dom.js";
import { bestLanguage, direction, language, LANGUAGES, setLanguage, t } from "./language.js";

const KEY = "language";

/** The language chosen earlier; null if there is none or if the browser stores nothing. */
function kept() {
    try {
        const code = localStorage.getItem(KEY);
        return Object.hasOwn(LANGUAGES, code ?? "") ? code : null;
    } catch {
        return null;
    }
}

function keep(code) {
    try {
        localStorage.setItem(KEY, code);
    } catch {
        // If it cannot be stored, the choice is valid for this visit only.
    }
}

/** Writes the texts that the HTML file names: data-text, and data-label for screen readers. */
function apply() {
    document.documentElement.lang = language();
    document.documentElement.dir = direction();
    for (const node of document.querySelectorAll("[data-text]")) {
        setText(node, t(node.dataset.text));
    }
    for (const node of document.querySelectorAll("[data-label]")) {
        node.setAttribute("aria-label", t(node.dataset.label));
    }
}

/** Puts the page into the user's language. */
export function startLanguage() {
    setLanguage(kept() ?? bestLanguage(navigator.languages ?? [navigator.language]));
    apply();
}

/** Fills the list of languages and applies the user's choice. */
export function offerLanguages(list, changed) {
    list.replaceChildren(
        ...Object.entries(LANGUAGES).map(([code, name]) =>
            element("option", { value: code, lang: code }, name),
        ),
    );
    list.value = language();
    list.addEventListener("change", () => {
        setLanguage(list.value);
        keep(list.value);
        apply();
        changed();
    });
}
