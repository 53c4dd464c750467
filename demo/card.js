// The building blocks of cards.

import { element, isolated } from "./dom.js";
import * as glyphs from "./glyphs.js";

export function glyphOf({ kind, ...values }) {
    switch (kind) {
        case "signal":
            return glyphs.signal(values.bars);
        case "battery":
            return glyphs.battery(values.percent, values.charging);
        default:
            return glyphs.outline(kind);
    }
}

export function rowList(pairs) {
    if (pairs.length === 0) {
        return null;
    }
    return element(
        "dl",
        { class: "rows" },
        pairs.map(([name, value]) =>
            element(
                "div",
                {},
                element("dt", {}, isolated(name)),
                element("dd", {}, isolated(value)),
            ),
        ),
    );
}

export function heading(id, title, glyph) {
    return element(
        "h2",
        { id: `${id}-title` },
        glyph === undefined ? null : glyphOf(glyph),
        isolated(title),
    );
}

export function section(id, ...children) {
    return element("section", { id, class: "card", "aria-labelledby": `${id}-title` }, ...children);
}

/** A card that is rebuilt only when its contents have changed. */
export class Card {
    #shown = null;

    constructor(id) {
        this.node = section(id);
    }

    /** Shows the nodes that build() creates from a model. */
    show(model, build) {
        const wanted = JSON.stringify(model);
        if (wanted === this.#shown) {
            return;
        }
        this.#shown = wanted;
        const focused = this.node.contains(document.activeElement)
            ? document.activeElement.getAttribute("href")
            : null;
        this.node.replaceChildren(...build(model).filter((child) => child !== null));
        if (focused !== null) {
            [...this.node.querySelectorAll("a")]
                .find((link) => link.getAttribute("href") === focused)
                ?.focus();
        }
    }
}
