// The data rates and the plot of the traffic.

import assert from "node:assert/strict";
import path from "node:path";
import { test } from "node:test";
import { pathToFileURL } from "node:url";

import { shows, until } from "./support/browser.js";
import { answers, stopClock } from "./support/clock.js";
import { ROOT } from "./support/paths.js";
import { device } from "./support/server.js";
import { suite } from "./support/suite.js";

const { serve, visit } = suite();

const { niceMaximum, runs, SPAN, TrafficHistory, WINDOW } = await import(
    pathToFileURL(path.join(ROOT, "demo", "traffic.js"))
);

const KILOBYTE = 1000;
const PERIOD = 3000;

/** The rates that result when a counter is read at certain times, in milliseconds. */
function ratesOf(times, counter) {
    const history = new TrafficHistory();
    times.forEach((time) => history.add(time, BigInt(Math.round(counter(time))), 0n));
    return history.points.map((point) => point.received);
}

/** A counter for 1000 bytes a second that is updated only every three seconds. */
function inSteps(time) {
    return 3 * KILOBYTE * Math.floor(time / PERIOD);
}

test("a counter that changes as often as it is read gives neither no rate nor twice the right one", () => {
    // An answer may come a little before or after the counter's step that it should include.
    const times = Array.from({ length: 60 }, (_, i) => i * PERIOD + (i % 3) * 20 - 20);
    const rates = ratesOf(times.slice(1), inSteps);
    assert.ok(rates.length > 50);
    for (const rate of rates) {
        assert.ok(rate > 700 && rate < 1300, String(rates));
    }
});

test("quick requests after an action draw no spike", () => {
    const times = [0, 3000, 6000, 9000, 12_000, 12_100, 12_400, 13_000, 14_000, 15_500, 18_000];
    // The counter's step lies between two answers that follow each other quickly.
    const rates = ratesOf(times, (time) => inSteps(time + 2700));
    assert.equal(rates.length, 7);
    for (const rate of rates) {
        assert.ok(rate > 700 && rate < 1300, String(rates));
    }
});

test("the first rate comes after enough time", () => {
    const history = new TrafficHistory();
    history.add(0, 1000n, 100n);
    history.add(SPAN - 1, 2000n, 100n);
    assert.equal(history.now, null);
    history.add(SPAN, 25_000n, 1300n);
    assert.deepEqual(history.now, { from: 0, time: SPAN, received: 2000, sent: 100 });
    history.add(SPAN + 3000, 25_000n, 1300n);
    assert.equal(history.now.from, SPAN);
});

test("a counter that goes back, or a pause, begins a new series", () => {
    const history = new TrafficHistory();
    const take = (time, received) => history.add(time, received, 0n);
    take(0, 0n);
    take(SPAN, 5000n);
    take(SPAN + 3000, 10n);
    assert.equal(history.now, null);
    take(2 * SPAN + 3000, 10n);
    assert.equal(history.now.received, 0);
    history.pause();
    assert.equal(history.now, null);
    take(2 * SPAN + 6000, 1_000_000n);
    assert.equal(history.now, null);
    take(3 * SPAN + 6000, 1_000_000n);
    assert.equal(history.now.received, 0);
    assert.deepEqual(
        runs(history.points).map((run) => run.length),
        [1, 1, 1],
    );
});

test("old values are dropped, and so are values in the future after the clock was put back", () => {
    const history = new TrafficHistory();
    for (let time = 0; time <= WINDOW + SPAN; time += 3000) {
        history.add(time, 0n, 0n);
    }
    assert.ok(history.points.every((point) => point.time > SPAN));
    history.add(60_000, 0n, 0n);
    assert.ok(history.points.every((point) => point.time <= 60_000));
    assert.equal(history.now, null);
});

test("counters beyond what a floating number holds exactly still have exact differences", () => {
    const history = new TrafficHistory();
    history.add(0, 18446744073709551000n, 0n);
    history.add(SPAN, 18446744073709551600n, 0n);
    assert.equal(history.now.received, 600 / (SPAN / 1000));
});

test("the scale ends at 1, 2 or 5 times a power of ten", () => {
    const cases = [
        [0, 1000],
        [1000, 1000],
        [1001, 2000],
        [2001, 5000],
        [5001, 10_000],
        [10_001, 20_000],
        [480_000_000, 500_000_000],
    ];
    for (const [value, maximum] of cases) {
        assert.equal(niceMaximum(value), maximum);
    }
});

/** Lets the device's counter grow by so many bytes, and the page send one request. */
async function count(server, page, bytes) {
    const stats = server.document().sys.getCellularDataConnectionStats;
    await server.set({
        getCellularDataConnectionStats: { ...stats, bytesReceived1: stats.bytesReceived1 + bytes },
    });
    await answers(page, () => page.clock.runFor(PERIOD));
}

async function countForAWhile(server, page) {
    for (let passed = 0; passed < SPAN; passed += PERIOD) {
        await count(server, page, 15_000_000);
    }
}

test("an empty plot says that it is collecting values, until it has rates", async (t) => {
    const server = await serve(t);
    const page = await visit(t, server, { answered: false });
    await stopClock(page);
    await shows(page, "#traffic .plot-empty", "Collecting");
    await countForAWhile(server, page);
    await shows(page, "#traffic .received .speed", /^5 MB\/s$/);
    assert.equal(await page.locator(".plot-empty").isVisible(), false);
    const height = await page.locator(".plot").evaluate((plot) => {
        const floor = plot.querySelector(".grid").y1.baseVal.value;
        const corners = [...plot.querySelectorAll(".received .line")].flatMap((line) => [
            ...line.points,
        ]);
        return floor - Math.min(...corners.map((corner) => corner.y));
    });
    assert.ok(height > 40, `the line rises by ${height}`);
    assert.equal(
        await page.locator(".plot").getAttribute("aria-label"),
        "Traffic of the last five minutes; now 5 MB/s received, 0 B/s sent",
    );
    const labels = await page.locator(".plot text").allTextContents();
    assert.ok(labels.includes("now") && labels.includes("−5 min"), String(labels));
    assert.ok(labels.includes("5 MB/s"), String(labels));
});

test("counters that begin again leave a gap and no rate below zero", async (t) => {
    const server = await serve(t);
    const page = await visit(t, server, { answered: false });
    await stopClock(page);
    await countForAWhile(server, page);
    await server.set({
        getCellularDataConnectionStats: {
            duration: 1,
            bytesReceived1: 1000,
            bytesTransmitted1: 10,
        },
    });
    await answers(page, () => page.clock.runFor(PERIOD));
    assert.equal(await page.locator("#traffic .speed").count(), 0);
    await countForAWhile(server, page);
    await shows(page, "#traffic .received .speed", /^5 MB\/s$/);
    assert.equal(await page.locator(".plot .received .line").count(), 2);
    const low = await page.locator(".plot .line").evaluateAll((lines) => {
        const floor = document.querySelector(".plot .grid").y1.baseVal.value;
        return lines.flatMap((line) => [...line.points]).some((point) => point.y > floor);
    });
    assert.equal(low, false);
});

test("without a connection there is no rate, even if the device's counters rise", async (t) => {
    const server = await serve(t);
    const page = await visit(t, server, { answered: false });
    await stopClock(page);
    await countForAWhile(server, page);
    await shows(page, "#traffic .received .speed", "5 MB/s");
    await server.set({ getCellularDataConnectionStatus: 0 });
    for (let i = 0; i < 6; i += 1) {
        await count(server, page, 15_000_000);
        assert.equal(await page.locator("#connection .state").innerText(), "Not connected");
        assert.equal(await page.locator("#traffic .speed").count(), 0);
        assert.equal(
            await page.locator(".plot").getAttribute("aria-label"),
            "Traffic of the last five minutes",
        );
    }
    await server.set({ getCellularDataConnectionStatus: 2 });
    await answers(page, () => page.clock.runFor(PERIOD));
    await countForAWhile(server, page);
    await shows(page, "#traffic .received .speed", "5 MB/s");
});

for (const name of ["no-service", "no-sim", "airplane-mode", "pin-locked"]) {
    test(`nothing is collected while there is no connection (${name})`, async (t) => {
        const page = await visit(t, await serve(t, device(name)));
        await shows(page, "#traffic .plot-empty", "There is no rate without a connection.");
        await until(page, () => document.querySelector("#traffic .speed") === null);
    });
}
