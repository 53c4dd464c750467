// The plot of the traffic.

import { element, svg } from "./dom.js";
import { inUnit, rate, unitOf } from "./format.js";
import { direction, formatNumber, t } from "./language.js";
import { niceMaximum, runs, WINDOW } from "./traffic.js";

const LOWEST = 190;
const MARGIN = { top: 12, right: 16, bottom: 26, left: 68 };
/** The approximate largest width of a letter on the axes. */
const LETTER_WIDTH = 7;

/** Marks the direction of a right-to-left text, because the picture itself does not define one. */
function directed(text) {
    return direction() === "rtl" ? `\u2067${text}\u2069` : text;
}

function line(kind, points, x, y, bottom) {
    return runs(points).map((run) => {
        // The first rate is valid for all the time before it; each further one adds a short time.
        const corners = [
            `${x(run[0].from)},${y(run[0][kind])}`,
            ...run.map((point) => `${x(point.time)},${y(point[kind])}`),
        ];
        const ground = `${x(run.at(-1).time)},${bottom} ${x(run[0].from)},${bottom}`;
        return svg(
            "g",
            { class: kind },
            svg("polygon", { class: "area", points: `${corners.join(" ")} ${ground}` }),
            svg("polyline", { class: "line", points: corners.join(" ") }),
        );
    });
}

function label(x, y, anchor, text) {
    return svg("text", { x, y, "text-anchor": anchor }, directed(text));
}

/** The numbers at the lines of the scale; only the highest one has the unit. */
function scaleTexts(maximum) {
    const unit = unitOf(maximum);
    const highest = t("amount.rate", { amount: inUnit(maximum, unit) });
    return ["0", formatNumber(maximum / 2 / unit.size), highest];
}

function axes(texts, left, right, bottom, y, maximum) {
    const rows = texts.flatMap((text, i) => {
        const height = y((maximum * i) / (texts.length - 1));
        return [
            svg("line", { class: "grid", x1: left, x2: right, y1: height, y2: height }),
            label(left - 8, height + 4, "end", text),
        ];
    });
    const minutes = WINDOW / 60_000;
    const columns = Array.from({ length: minutes }, (_, i) => {
        const x = left + ((right - left) * i) / minutes;
        return label(x, bottom + 18, "middle", t("traffic.ago", { minutes: minutes - i }));
    });
    const now = label(right + MARGIN.right, bottom + 18, "end", t("traffic.now"));
    const step = right - left < 340 ? 2 : 1;
    return [...rows, ...columns.filter((_, i) => (minutes - i) % step === 0), now];
}

/** A plot that fills the width it is given. */
export class TrafficPlot {
    #history;
    #picture = svg("svg", { class: "plot", role: "img" });
    #empty = element("p", { class: "plot-empty" });
    #now = Date.now();
    #flows = true;

    constructor(history) {
        this.#history = history;
        this.node = element("div", { class: "plot-frame" }, this.#picture, this.#empty);
        new ResizeObserver(() => this.draw(this.#now, this.#flows)).observe(this.node);
    }

    /** @param flows whether there is a connection, so that rates can be expected */
    draw(now, flows) {
        this.#now = now;
        this.#flows = flows;
        const points = this.#history.points;
        this.#empty.hidden = points.length > 0;
        this.#empty.textContent = t(flows ? "traffic.collecting" : "traffic.pausing");
        const width = Math.floor(this.node.clientWidth);
        if (width < 120) {
            return;
        }
        const maximum = niceMaximum(
            Math.max(0, ...points.map((point) => Math.max(point.received, point.sent))),
        );
        const texts = scaleTexts(maximum);
        const left = Math.max(MARGIN.left, 12 + LETTER_WIDTH * texts.at(-1).length);
        const right = width - MARGIN.right;
        const height = Math.max(LOWEST, Math.floor(this.node.clientHeight));
        const bottom = height - MARGIN.bottom;
        const begin = now - WINDOW;
        const round = (value) => Math.round(value * 10) / 10;
        const x = (time) => round(left + ((right - left) * Math.max(0, time - begin)) / WINDOW);
        const y = (value) => round(bottom - ((bottom - MARGIN.top) * value) / maximum);

        this.#picture.setAttribute("aria-label", this.#summary());
        this.#picture.setAttribute("data-points", String(points.length));
        this.#picture.setAttribute("viewBox", `0 0 ${width} ${height}`);
        this.#picture.setAttribute("width", String(width));
        this.#picture.setAttribute("height", String(height));
        this.#picture.replaceChildren(
            ...axes(texts, left, right, bottom, y, maximum),
            ...line("received", points, x, y, bottom),
            ...line("sent", points, x, y, bottom),
        );
    }

    #summary() {
        const current = this.#history.now;
        return current === null
            ? t("traffic.plot")
            : t("traffic.plotNow", {
                  received: rate(current.received),
                  sent: rate(current.sent),
              });
    }
}
