// Small pictures. They only repeat the text beside them, so they are hidden from screen readers.

import { svg } from "./dom.js";

export const MOST_BARS = 5;

function glyph(kind, viewBox, ...children) {
    return svg(
        "svg",
        { class: `glyph glyph-${kind}`, viewBox, "aria-hidden": "true", focusable: "false" },
        ...children,
    );
}

/** Signal strength, 0 to 5 bars. */
export function signal(bars) {
    const rising = Array.from({ length: MOST_BARS }, (_, i) =>
        svg("rect", {
            class: i < bars ? "lit" : "unlit",
            x: 1 + i * 5,
            y: 15 - i * 3,
            width: 3.4,
            height: 4 + i * 3,
            rx: 1,
        }),
    );
    const none = bars === 0 ? svg("path", { class: "strike", d: "M1.5 2.5l7 7m0-7l-7 7" }) : null;
    return glyph("signal", "0 0 26 20", ...rising, none);
}

/** A battery filled to a percentage, with a bolt while it is charged. */
export function battery(percent, charging) {
    const level = Math.max(0, Math.min(100, percent ?? 0));
    let tone = "level";
    if (percent !== null && !charging && level <= 20) {
        tone = level <= 10 ? "level empty" : "level low";
    }
    return glyph(
        "battery",
        "0 0 34 20",
        svg("rect", { class: "case", x: 1, y: 3, width: 28, height: 14, rx: 4 }),
        svg("path", { class: "pole", d: "M31.5 7.8v4.4" }),
        svg("rect", { class: tone, x: 3.5, y: 5.5, width: (23 * level) / 100, height: 9, rx: 2 }),
        charging
            ? svg("path", { class: "bolt", d: "M16.8 1.5l-7 10h4.6l-1.4 7 7-10h-4.6z" })
            : null,
    );
}

const OUTLINES = {
    wifi: [
        "M2.5 8.5a13.5 13.5 0 0 1 19 0",
        "M6 12a8.5 8.5 0 0 1 12 0",
        "M9.5 15.5a3.5 3.5 0 0 1 5 0",
        "M12 19h.01",
    ],
    mail: ["M3 6h18v12H3z", "M3.5 6.5l8.5 7 8.5-7"],
    bell: ["M6 10a6 6 0 0 1 12 0c0 5 2 6 2 7H4c0-1 2-2 2-7", "M10 20.5h4"],
    plane: ["M3 13l8-2V5a1.5 1.5 0 0 1 3 0v5l8 4v2l-8-2v4l2.5 2v1L12.5 20 9 21v-1l2-2v-4l-8 1z"],
    pin: [
        "M12 21c-4-4.5-6.5-7.7-6.5-11a6.5 6.5 0 0 1 13 0c0 3.3-2.5 6.5-6.5 11z",
        "M12 12.3a2.3 2.3 0 1 0 0-4.6 2.3 2.3 0 0 0 0 4.6z",
    ],
    card: ["M6 3h8l4 4v14H6z", "M9.5 3v4", "M13 3.5v4"],
    sim: ["M6 3h8l4 4v14H6z", "M9 11h6v6H9z", "M12 11v6"],
    update: ["M12 4v10", "M8 10.5l4 4 4-4", "M5 19h14"],
    traffic: ["M8 20V5", "M4.5 8.5L8 5l3.5 3.5", "M16 4v15", "M12.5 15.5L16 19l3.5-3.5"],
    roaming: [
        "M12 21a9 9 0 1 0 0-18 9 9 0 0 0 0 18z",
        "M3 12h18",
        "M12 3c5 5 5 13 0 18",
        "M12 3c-5 5-5 13 0 18",
    ],
    tower: [
        "M12 11v10",
        "M8.5 7.5a5 5 0 0 0 0 7",
        "M15.5 7.5a5 5 0 0 1 0 7",
        "M5.5 4.5a9.3 9.3 0 0 0 0 13",
        "M18.5 4.5a9.3 9.3 0 0 1 0 13",
        "M12 11h.01",
    ],
};

/** An outline by name. */
export function outline(name) {
    return glyph("outline", "0 0 24 24", ...OUTLINES[name].map((d) => svg("path", { d })));
}
