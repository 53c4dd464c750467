// From what the cards show to the cards.

import { element, hiddenText, isolated, setText } from "./dom.js";
import { bytes, rate } from "./format.js";
import * as glyphs from "./glyphs.js";
import { notificationNodes } from "./notification_text.js";
import { TrafficPlot } from "./traffic.js";

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

function rowList(pairs) {
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

function heading(id, title, glyph) {
    return element(
        "h2",
        { id: `${id}-title` },
        glyph === undefined ? null : glyphOf(glyph),
        isolated(title),
    );
}

function section(id, ...children) {
    return element("section", { id, class: "card", "aria-labelledby": `${id}-title` }, ...children);
}

/** A card that is built anew when what it shows has changed, and only then. */
class Card {
    #shown = null;

    constructor(id) {
        this.node = section(id);
    }

    /** Shows the nodes that build() makes of a model. */
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

function smallCard(model) {
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

const SEVERITIES = new Map([
    ["info", "Info"],
    ["warning", "Warning"],
    ["alert", "Alert"],
    ["critical", "Critical"],
]);

function asText(value) {
    return typeof value === "string" ? value : "";
}

function notificationItem(notification) {
    const severity = SEVERITIES.get(notification?.severity);
    const tone = severity === undefined ? "none" : notification.severity;
    const label = asText(notification?.label);
    const title = asText(notification?.title);
    return element(
        "li",
        { class: `notification ${tone}`, "data-id": asText(notification?.id) },
        element(
            "p",
            { class: "kind" },
            severity === undefined ? null : element("span", { class: "severity" }, severity),
            label === "" ? null : isolated(label),
        ),
        title === "" ? null : element("h3", { dir: "auto" }, title),
        element("p", { class: "text", dir: "auto" }, notificationNodes(asText(notification?.text))),
    );
}

function notificationCard(list) {
    return [
        element(
            "h2",
            { id: "notifications-title" },
            glyphOf({ kind: "bell" }),
            "Notifications",
            list.length === 0 ? null : element("span", { class: "badge" }, String(list.length)),
        ),
        list.length === 0
            ? element("p", { class: "empty" }, "Nothing needs your attention.")
            : element("ul", { class: "notifications" }, list.map(notificationItem)),
    ];
}

/** Network, connection and the button that changes it. Stays the same node: the button has a focus. */
class ConnectionCard {
    #name = element("p", { class: "network" });
    #signal = element("div", { class: "big-signal" });
    #state = element("p", { class: "state" });
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
        this.#state.id = "connection-state";
        this.#button.addEventListener("click", () => {
            if (this.#button.getAttribute("aria-disabled") !== "true") {
                act(this.#button.dataset.action);
            }
        });
        this.node = section(
            "connection",
            heading("connection", "Network", { kind: "tower" }),
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

    /** @param pending the action under way, or null; @param message what became of the last one */
    show(model, pending, message) {
        const wanted = JSON.stringify([model, pending, message]);
        if (wanted === this.#shown) {
            return;
        }
        this.#shown = wanted;
        this.#name.replaceChildren(
            isolated(model.name ?? (model.airplane ? "Radio off" : "No network")),
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
        setText(this.#message, message ?? "");
        this.#message.hidden = message === null;
    }

    #showButton(action, pending) {
        const shown = pending ?? action ?? "connect";
        this.#button.dataset.action = shown;
        this.#button.classList.toggle("quiet", shown === "disconnect");
        this.#button.setAttribute("aria-disabled", String(pending !== null || action === null));
        this.#button.setAttribute("aria-busy", String(pending !== null));
        const names =
            pending === null
                ? { connect: "Connect", disconnect: "Disconnect" }
                : { connect: "Connecting …", disconnect: "Disconnecting …" };
        setText(this.#button, names[shown]);
    }
}

class TrafficCard {
    #received = element("dd");
    #sent = element("dd");
    #total = element("dd");
    #plot;

    constructor(history) {
        this.#plot = new TrafficPlot(history);
        const figure = (kind, name, value) =>
            element("div", { class: kind }, element("dt", {}, name), value);
        this.node = section(
            "traffic",
            heading("traffic", "Traffic", { kind: "traffic" }),
            element(
                "dl",
                { class: "figures" },
                figure("received", "Received", this.#received),
                figure("sent", "Sent", this.#sent),
                figure("total", "Total", this.#total),
            ),
            this.#plot.node,
        );
    }

    show(counters, history, time) {
        const now = history.now;
        const figure = (node, amount, speed) => {
            const wanted = amount === null ? "–" : bytes(amount);
            const current = speed === undefined ? "" : rate(speed);
            if (node.dataset.shown !== wanted + current) {
                node.dataset.shown = wanted + current;
                node.replaceChildren(
                    element("bdi", { class: "amount" }, wanted),
                    ...(current === "" ? [] : [" ", element("bdi", { class: "speed" }, current)]),
                );
            }
        };
        figure(this.#received, counters.received, now?.received);
        figure(this.#sent, counters.sent, now?.sent);
        figure(this.#total, counters.total, undefined);
        this.#plot.draw(time);
    }
}

/** Moves no node that is in its place already: a node that is moved loses its focus. */
function arrange(place, wanted) {
    for (const node of [...place.children]) {
        if (!wanted.includes(node)) {
            node.remove();
        }
    }
    let next = place.firstElementChild;
    for (const node of wanted) {
        if (node === next) {
            next = node.nextElementSibling;
        } else {
            place.insertBefore(node, next);
        }
    }
}

/** All cards of the page, in their order: the large ones, then the small ones. */
export class Cards {
    #large;
    #small;
    #cards = new Map();
    #connection;
    #traffic;
    #history;

    constructor(large, small, act, history) {
        this.#large = large;
        this.#small = small;
        this.#history = history;
        this.#connection = new ConnectionCard(act);
        this.#traffic = new TrafficCard(history);
    }

    /** Shows what is there and takes away what is not. */
    show({ connection, traffic, small, notifications, pending, message, time }) {
        const large = [];
        if (connection !== null) {
            large.push(this.#connection.node);
        }
        if (traffic !== null) {
            large.push(this.#traffic.node);
        }
        if (notifications !== null) {
            large.push(this.#card("notifications", notifications, notificationCard));
        }
        arrange(this.#large, large);
        arrange(
            this.#small,
            small.map((model) => this.#card(model.id, model, smallCard)),
        );
        if (connection !== null) {
            this.#connection.show(connection, pending, message);
        }
        if (traffic !== null) {
            // Drawn last: it has a width only where it is shown.
            this.#traffic.show(traffic, this.#history, time);
        }
    }

    #card(id, model, build) {
        if (!this.#cards.has(id)) {
            this.#cards.set(id, new Card(id));
        }
        const card = this.#cards.get(id);
        card.show(model, build);
        return card.node;
    }
}

/** The list of the status bar. */
export class StatusBar {
    #list;
    #shown = null;

    constructor(list) {
        this.#list = list;
    }

    show(items) {
        const wanted = JSON.stringify(items);
        if (wanted === this.#shown) {
            return;
        }
        this.#shown = wanted;
        this.#list.replaceChildren(
            ...items.map((item) =>
                element(
                    "li",
                    { "data-item": item.id, title: `${item.short} ${item.spoken}`.trim() },
                    glyphOf(item.glyph),
                    item.short === "" ? null : isolated(item.short),
                    hiddenText(` ${item.spoken}`),
                ),
            ),
        );
    }
}
