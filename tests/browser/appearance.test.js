// The appearance of the page: widths, themes, writing directions, and accessibility.

import assert from "node:assert/strict";
import { mkdirSync, readFileSync } from "node:fs";
import path from "node:path";
import { test } from "node:test";

import { assertQuiet, DESKTOP, PHONE, shows, until } from "./support/browser.js";
import { load } from "./support/paths.js";
import { device } from "./support/server.js";
import { suite } from "./support/suite.js";

const { serve, visit } = suite();

const AXE = readFileSync(load.resolve("axe-core/axe.min.js"), "utf8");

async function complaintsOfAxe(page) {
    // Loaded through the debugger, because the page's policy forbids foreign scripts.
    await page.evaluate(AXE);
    const { violations } = await page.evaluate(() => globalThis.axe.run(document));
    return violations.flatMap(({ id, nodes }) =>
        nodes.map((node) => `${id}: ${node.html} ${node.failureSummary}`),
    );
}

function luminance(color) {
    const [red, green, blue] = color.match(/[\d.]+/g).map(Number);
    return 0.2126 * red + 0.7152 * green + 0.0722 * blue;
}

/** The number of colours in a part of the screen. */
async function colors(page, clip) {
    const picture = await page.screenshot({ clip, fullPage: true });
    return page.evaluate(async (base64) => {
        const bytes = Uint8Array.from(atob(base64), (letter) => letter.charCodeAt(0));
        const bitmap = await createImageBitmap(new Blob([bytes], { type: "image/png" }));
        const canvas = new OffscreenCanvas(bitmap.width, bitmap.height).getContext("2d");
        canvas.drawImage(bitmap, 0, 0);
        const { data } = canvas.getImageData(0, 0, bitmap.width, bitmap.height);
        return new Set(new Uint32Array(data.buffer)).size;
    }, picture.toString("base64"));
}

for (const name of ["default", "dual-sim-slot-2", "no-service", "everything-failing"]) {
    test(`nothing is wider than a phone (${name})`, async (t) => {
        const page = await visit(t, await serve(t, device(name)), {
            viewport: { width: 320, height: 640 },
        });
        const widths = await page.evaluate(() => [
            document.documentElement.scrollWidth,
            document.body.scrollWidth,
        ]);
        assert.deepEqual(widths, [320, 320]);
        const wide = await page
            .locator("body *:not(.hidden-text, .hidden-text *, .skip)")
            .evaluateAll((nodes) =>
                nodes
                    .filter((node) => node.getBoundingClientRect().right > innerWidth + 0.5)
                    .map((node) => node.outerHTML.slice(0, 80)),
            );
        assert.deepEqual(wide, []);
    });
}

test("a long text without blanks does not widen the page", async (t) => {
    const document = device("default");
    document.sys.getCellularServiceStats.networkName = "N".repeat(64);
    document.msgbus["zelt.ans.notifications"] = [
        { id: "test", titleId: "T".repeat(49), textId: "x".repeat(280) },
    ];
    const page = await visit(t, await serve(t, document), { viewport: PHONE });
    assert.equal(await page.evaluate(() => document.documentElement.scrollWidth), PHONE.width);
});

for (const colorScheme of ["light", "dark"]) {
    test(`the page follows the theme of the user and can be read in it (${colorScheme})`, async (t) => {
        const page = await visit(t, await serve(t), { colorScheme });
        const [ink, ground] = await page.evaluate(() => {
            const style = getComputedStyle(document.body);
            return [style.color, style.backgroundColor];
        });
        const dark = luminance(ground) < luminance(ink);
        assert.equal(dark, colorScheme === "dark");
        assert.deepEqual(await complaintsOfAxe(page), []);
        await assertQuiet(page);
    });
}

for (const name of ["dual-sim-slot-2", "pin-locked", "out-of-credit", "everything-failing"]) {
    test(`the page follows the accessibility rules (${name})`, async (t) => {
        const page = await visit(t, await serve(t, device(name)), { viewport: PHONE });
        assert.deepEqual(await complaintsOfAxe(page), []);
    });
}

test("the page follows the accessibility rules while the service is away", async (t) => {
    const server = await serve(t);
    const page = await visit(t, server);
    await server.stop();
    await shows(page, "#trouble", "does not answer");
    assert.deepEqual(await complaintsOfAxe(page), []);
});

test("the page that is shown for missing pages follows the accessibility rules", async (t) => {
    const server = await serve(t);
    const page = await visit(t, server, { locale: "ar", answered: false });
    await page.goto(`${server.origin}/messages`);
    await until(page, () => document.documentElement.dir === "rtl");
    assert.deepEqual(await complaintsOfAxe(page), []);
});

test("landmarks and headings show the structure", async (t) => {
    const page = await visit(t, await serve(t));
    for (const role of ["banner", "main", "contentinfo"]) {
        assert.equal(await page.getByRole(role).count(), 1, role);
    }
    for (const name of ["Network", "Traffic", "Notifications", "Signal", "SIM card", "Battery"]) {
        assert.equal(await page.getByRole("region", { name }).count(), 1, name);
    }
    const levels = await page
        .locator("h1, h2, h3, h4")
        .evaluateAll((nodes) => nodes.map((node) => Number(node.tagName[1])));
    assert.equal(levels[0], 1);
    levels.forEach((level, i) =>
        assert.ok(i === 0 || level <= levels[i - 1] + 1, `heading ${i}: ${levels}`),
    );
    assert.equal(
        await page.locator("[aria-live], [role=status], [role=alert], [role=log]").count(),
        1,
    );
    const spoken = await page.locator("#status-items li").allTextContents();
    assert.ok(spoken.includes("5G UWB Signal 4 of 5 bars"), String(spoken));
    assert.ok(spoken.includes("84% battery, charging"), String(spoken));
});

test("every element that the keyboard reaches shows its focus", async (t) => {
    const page = await visit(t, await serve(t));
    const stops = [];
    for (;;) {
        await page.keyboard.press("Tab");
        const stop = await page.evaluate(() => {
            const node = document.activeElement;
            const style = getComputedStyle(node);
            return node === document.body
                ? null
                : [
                      node.ariaLabel ?? node.textContent,
                      style.outlineStyle,
                      parseFloat(style.outlineWidth),
                  ];
        });
        if (stop === null || stops.some(([name]) => name === stop[0])) {
            break;
        }
        stops.push(stop);
    }
    assert.deepEqual(
        stops.map(([name]) => name),
        ["Skip to the content", "Language", "Disconnect", "Install now.", "View messages."],
    );
    for (const [name, line, width] of stops) {
        assert.ok(line === "solid" && width >= 2, `${name}: ${line} ${width}`);
    }
});

test("texts of the device keep their own direction", async (t) => {
    const document = device("default");
    document.webui.i18nSettings.language = "ar";
    const page = await visit(t, await serve(t, document));
    await shows(page, "#notifications h3", /\p{Script=Arabic}/u);
    const directions = await page.evaluate(() =>
        ["body", "#notifications .text"].map(
            (place) => getComputedStyle(document.querySelector(place)).direction,
        ),
    );
    assert.deepEqual(directions, ["ltr", "rtl"]);
});

test("in forced colours, the legend and the bar of the memory card are visible", async (t) => {
    const page = await visit(t, await serve(t), { forcedColors: "active" });
    const places = [".figures .received dt", ".figures .sent dt"];
    for (const place of places) {
        const box = await page.locator(place).boundingBox();
        assert.ok((await colors(page, { ...box, width: 12 })) > 1, `no mark at ${place}`);
    }
    const bar = await page.locator("#storage .share").boundingBox();
    const inside = { x: bar.x + 3, y: bar.y + 3, width: bar.width - 6, height: bar.height - 6 };
    // Two colours: one for the used part and one for the free part.
    assert.equal(await colors(page, inside), 2);
});

/** Lets the page's clock run through some minutes of traffic. */
async function letTrafficPass(server, page, answers) {
    const stats = server.document().sys.getCellularDataConnectionStats;
    let [received, sent] = [stats.bytesReceived1, stats.bytesTransmitted1];
    for (let i = 0; i < answers; i += 1) {
        const wave = Math.sin(i / 6) + Math.sin(i / 2.3) / 2;
        received += Math.round(3_000_000 * (1.6 + wave) * (i % 17 === 0 ? 2 : 1));
        sent += Math.round(500_000 * (1.7 - wave));
        await server.set({
            getCellularDataConnectionStats: {
                ...stats,
                bytesReceived1: received,
                bytesTransmitted1: sent,
                duration: stats.duration + 3 * i,
            },
        });
        const shown = await page.locator("#updated").innerText();
        await page.clock.runFor(3000);
        await until(
            page,
            (before) => document.querySelector("#updated").innerText !== before,
            shown,
        );
    }
}

test(
    "pictures for the documentation",
    { skip: process.env.KESTAL_PICTURES === undefined },
    async (t) => {
        const folder = process.env.KESTAL_PICTURES;
        mkdirSync(folder, { recursive: true });
        const server = await serve(t);
        const take = async (name, options, answers) => {
            const page = await visit(t, server, { ...options, answered: false });
            await page.clock.install({ time: new Date("2026-11-21T12:00:00") });
            await page.reload();
            await shows(page, "#updated", "Updated");
            await letTrafficPass(server, page, answers);
            await page.screenshot({
                path: path.join(folder, name),
                fullPage: options.whole ?? true,
            });
        };
        await take("page.png", { viewport: DESKTOP, colorScheme: "light" }, 100);
        await take(
            "page-phone-dark.png",
            { viewport: PHONE, colorScheme: "dark", whole: false, deviceScaleFactor: 2 },
            100,
        );
    },
);
