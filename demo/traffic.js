// The traffic of the last minutes: rates from the counters of successive answers, and their plot.

import { element, svg } from "./dom.js";
import { rate, unitOf } from "./format.js";

export const WINDOW = 5 * 60_000;
/** Answers that lie further apart have no line between them. */
const LONGEST_STEP = 90_000;

/** Rates, each for the time since the answer before it. */
export class TrafficHistory {
    #last = null;
    points = [];

    /** Takes the counters of an answer. A counter that went back has started anew. */
    add(time, received, sent) {
        const last = this.#last;
        this.#last = { time, received, sent };
        if (last !== null && time > last.time) {
            const seconds = (time - last.time) / 1000;
            const restarted = received < last.received || sent < last.sent;
            const apart = restarted || time - last.time > LONGEST_STEP;
            this.points.push({
                from: last.time,
                time,
                received: apart ? null : Number(received - last.received) / seconds,
                sent: apart ? null : Number(sent - last.sent) / seconds,
            });
        }
        const oldest = time - WINDOW;
        this.points = this.points.filter((point) => point.time > oldest);
    }

    /** The newest rates; null before there are two answers. */
    get now() {
        const point = this.points.at(-1);
        return point !== undefined && point.received !== null ? point : null;
    }
}

/** The smallest of 1, 2, 5, 10 ... that is not below a rate, and at least 1 kB/s. */
export function niceMaximum(value) {
    let maximum = 1000;
    for (let i = 0; maximum < value; i += 1) {
        maximum *= i % 3 === 1 ? 2.5 : 2;
    }
    return maximum;
}

const LOWEST = 190;
const MARGIN = { top: 12, right: 16, bottom: 26, left: 68 };

/** Pieces of line, each an unbroken run of points. */
function runs(points, kind) {
    const all = [];
    let run = null;
    for (const point of points) {
        if (point[kind] === null) {
            run = null;
            continue;
        }
        if (run === null) {
            run = [];
            all.push(run);
        }
        run.push(point);
    }
    return all;
}

function line(kind, points, x, y, bottom) {
    return runs(points, kind).map((run) => {
        const corners = run.map(
            (point) => `${x(point.from)},${y(point[kind])} ${x(point.time)},${y(point[kind])}`,
        );
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
    return svg("text", { x, y, "text-anchor": anchor }, text);
}

function axes(width, bottom, right, maximum, y) {
    const unit = unitOf(maximum);
    const rows = [0, 0.5, 1].flatMap((part) => {
        const height = y(maximum * part);
        return [
            svg("line", { class: "grid", x1: MARGIN.left, x2: right, y1: height, y2: height }),
            label(
                MARGIN.left - 8,
                height + 4,
                "end",
                `${(maximum * part) / unit.size}${part === 1 ? ` ${unit.name}/s` : ""}`,
            ),
        ];
    });
    const minutes = WINDOW / 60_000;
    const columns = Array.from({ length: minutes + 1 }, (_, i) => {
        const x = MARGIN.left + ((right - MARGIN.left) * i) / minutes;
        return label(x, bottom + 18, "middle", i === minutes ? "now" : `−${minutes - i} min`);
    });
    const step = width < 420 ? 2 : 1;
    return [...rows, ...columns.filter((_, i) => (minutes - i) % step === 0)];
}

/** A plot that fills the width it is given. */
export class TrafficPlot {
    #history;
    #picture = svg("svg", { class: "plot", role: "img" });
    #now = Date.now();

    constructor(history) {
        this.#history = history;
        this.node = element("div", { class: "plot-frame" }, this.#picture);
        new ResizeObserver(() => this.draw(this.#now)).observe(this.node);
    }

    draw(now) {
        this.#now = now;
        const width = Math.floor(this.node.clientWidth);
        if (width < 120) {
            return;
        }
        const points = this.#history.points;
        const right = width - MARGIN.right;
        const height = Math.max(LOWEST, Math.floor(this.node.clientHeight));
        const bottom = height - MARGIN.bottom;
        const maximum = niceMaximum(
            Math.max(0, ...points.map((point) => Math.max(point.received, point.sent))),
        );
        const begin = now - WINDOW;
        const round = (value) => Math.round(value * 10) / 10;
        const x = (time) =>
            round(MARGIN.left + ((right - MARGIN.left) * Math.max(0, time - begin)) / WINDOW);
        const y = (value) => round(bottom - ((bottom - MARGIN.top) * value) / maximum);

        const current = this.#history.now;
        const summary =
            current === null
                ? "Traffic of the last five minutes"
                : `Traffic of the last five minutes; now ${rate(current.received)} received, ${rate(current.sent)} sent`;
        this.#picture.setAttribute("aria-label", summary);
        this.#picture.setAttribute("data-points", String(points.length));
        this.#picture.setAttribute("viewBox", `0 0 ${width} ${height}`);
        this.#picture.setAttribute("width", String(width));
        this.#picture.setAttribute("height", String(height));
        this.#picture.replaceChildren(
            ...axes(width, bottom, right, maximum, y),
            ...line("received", points, x, y, bottom),
            ...line("sent", points, x, y, bottom),
        );
    }
}
