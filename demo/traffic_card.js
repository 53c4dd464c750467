// Amounts, rates and the plot of the traffic.

import { heading, section } from "./card.js";
import { element } from "./dom.js";
import { bytes, rate } from "./format.js";
import { t } from "./language.js";
import { TrafficPlot } from "./traffic_plot.js";

/** The card is never rebuilt, because the plot measures the width of its node. */
export class TrafficCard {
    #received = element("dd");
    #sent = element("dd");
    #total = element("dd");
    #history;
    #plot;

    constructor(history) {
        this.#history = history;
        this.#plot = new TrafficPlot(history);
        const figure = (kind, value) =>
            element("div", { class: kind }, element("dt", {}, t(`traffic.${kind}`)), value);
        this.node = section(
            "traffic",
            heading("traffic", t("traffic.title"), { kind: "traffic" }),
            element(
                "dl",
                { class: "figures" },
                figure("received", this.#received),
                figure("sent", this.#sent),
                figure("total", this.#total),
            ),
            this.#plot.node,
        );
    }

    show(counters, time) {
        const now = this.#history.now;
        this.#figure(this.#received, counters.received, now?.received);
        this.#figure(this.#sent, counters.sent, now?.sent);
        this.#figure(this.#total, counters.total, undefined);
        this.#plot.draw(time, counters.flows);
    }

    #figure(node, amount, speed) {
        const wanted = amount === null ? "–" : bytes(amount);
        const current = speed === undefined ? "" : rate(speed);
        if (node.dataset.shown === wanted + current) {
            return;
        }
        node.dataset.shown = wanted + current;
        node.replaceChildren(
            element("bdi", { class: "amount" }, wanted),
            ...(current === "" ? [] : [" ", element("bdi", { class: "speed" }, current)]),
        );
    }
}
