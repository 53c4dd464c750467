// All cards of the page and the status bar: creates their nodes from their models.

import { Card, glyphOf } from "./card.js";
import { ConnectionCard } from "./connection_card.js";
import { element, hiddenText, isolated } from "./dom.js";
import { notificationCard } from "./notification_card.js";
import { smallCard } from "./small_card.js";
import { TrafficCard } from "./traffic_card.js";

/** Puts nodes in order, but moves none that is already in place: a moved node loses its focus. */
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

/** The cards in their order: the large ones, then the small ones. */
export class Cards {
    #large;
    #small;
    #cards = new Map();
    #connection;
    #traffic;

    constructor(large, small, act, history) {
        this.#large = large;
        this.#small = small;
        this.#connection = new ConnectionCard(act);
        this.#traffic = new TrafficCard(history);
    }

    /** Shows the cards that have a model and removes the others. */
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
            // Drawn last, because the plot has a width only once the card is on the page.
            this.#traffic.show(traffic, time);
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
