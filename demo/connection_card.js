// Network, connection and the button that changes it.

import { heading, rowList, section } from "./card.js";
import { element, isolated, setText } from "./dom.js";
import * as glyphs from "./glyphs.js";
import { t } from "./language.js";

/** The card is never rebuilt, because its button would lose the focus. */
export class ConnectionCard {
    #name = element("p", { class: "network" });
    #signal = element("div", { class: "big-signal" });
    #state = element("p", { class: "state", id: "connection-state" });
    #note = element("p", { class: "note" });
    #rows = element("div");
    #button = element("button", {
        class: "button",
        type: "button",
        "aria-describedby": "connection-state",
    });
    #message = element("p", { class: "note alert" });
    #shown = null;

    constructor(act) {
        this.#button.addEventListener("click", () => {
            if (this.#button.getAttribute("aria-disabled") !== "true") {
                act(this.#button.dataset.action);
            }
        });
        this.node = section(
            "connection",
            heading("connection", t("network.title"), { kind: "tower" }),
            element(
                "div",
                { class: "connection" },
                element("div", { class: "connection-text" }, this.#name, this.#state, this.#note),
                this.#signal,
            ),
            this.#rows,
            element("div", { class: "actions" }, this.#button, this.#message),
        );
    }

    /** @param pending the action under way, or null; @param message the result of the last one */
    show(model, pending, message) {
        const wanted = JSON.stringify([model, pending, message]);
        if (wanted === this.#shown) {
            return;
        }
        this.#shown = wanted;
        this.#name.replaceChildren(
            isolated(model.name ?? t(model.airplane ? "network.radioOff" : "network.none")),
        );
        this.#state.className = `state ${model.tone}`;
        this.#state.replaceChildren(isolated(model.label));
        setText(this.#note, model.note ?? "");
        this.#note.hidden = model.note === null;
        this.#signal.replaceChildren(
            ...(model.bars === null || model.airplane ? [] : [glyphs.signal(model.bars)]),
            ...(model.technology === null || model.airplane
                ? []
                : [element("span", { class: "technology" }, isolated(model.technology))]),
        );
        this.#rows.replaceChildren(rowList(model.rows) ?? "");
        this.#showButton(model.action, pending);
        setText(this.#message, message === null ? "" : t(message));
        this.#message.hidden = message === null;
    }

    #showButton(action, pending) {
        const shown = pending ?? action ?? "connect";
        this.#button.dataset.action = shown;
        this.#button.classList.toggle("quiet", shown === "disconnect");
        this.#button.setAttribute("aria-disabled", String(pending !== null || action === null));
        this.#button.setAttribute("aria-busy", String(pending !== null));
        setText(this.#button, t(pending === null ? `action.${shown}` : `action.${shown}ing`));
    }
}
