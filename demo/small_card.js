// A small card: a headline, a text, rows of names and values, or several parts with such contents.

import { heading, rowList } from "./card.js";
import { element, isolated } from "./dom.js";

function headline(model) {
    return model.headline === null
        ? null
        : element("p", { class: `headline ${model.tone}` }, isolated(model.headline));
}

function shareBar(share) {
    const fill = element("span", {});
    fill.style.inlineSize = `${share * 100}%`;
    return element("div", { class: "share", "aria-hidden": "true" }, fill);
}

function part(model) {
    const badge = model.badge === null ? null : element("span", { class: "badge" }, model.badge);
    return element(
        "div",
        { class: "part" },
        element("h3", {}, model.title, badge),
        headline(model),
        rowList(model.rows),
    );
}

export function smallCard(model) {
    return [
        heading(model.id, model.title, model.glyph),
        ...(model.parts?.map(part) ?? [
            headline(model),
            typeof model.share === "number" ? shareBar(model.share) : null,
            model.text ? element("p", { class: "text", dir: "auto" }, model.text) : null,
            rowList(model.rows),
        ]),
    ];
}
