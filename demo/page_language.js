// The language that the user has: asked of the browser, chosen in the header, kept, and told in the
// fixed texts of the page.

import { element, setText } from "./dom.js";
import { bestLanguage, direction, language, LANGUAGES, setLanguage, t } from "./language.js";

const KEY = "language";

/** What was chosen earlier; null where nothing was or where the browser keeps nothing. */
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
        // Then it is the choice of this visit.
    }
}

/** Writes the texts that the page's file names: data-text, and data-label for those only spoken. */
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

/** Fills the list of languages and follows what is chosen there. */
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
