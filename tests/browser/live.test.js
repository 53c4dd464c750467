// The page follows the device.

import assert from "node:assert/strict";
import { test } from "node:test";

import { row, shows, until } from "./support/browser.js";
import { suite } from "./support/suite.js";

const { serve, visit } = suite();

function batteryIs(chargePercent, chargingState, chargingSource) {
    return { getBatteryStatus: { chargePercent, chargingState, detection: 2, chargingSource } };
}

test("the battery is unplugged, runs low and is charged again", async (t) => {
    const server = await serve(t);
    const page = await visit(t, server);
    await shows(page, "#battery .headline", "84%");
    server.set(batteryIs(18, 0, 0));
    await shows(page, "#battery .headline", "18%");
    assert.equal(await row(page, "battery", "State"), "Low");
    assert.match(await page.locator("#battery .headline").getAttribute("class"), /warning/);
    await shows(page, "#status-items [data-item=battery]", "18%");
    assert.equal(await page.locator("#battery .bolt").count(), 0);
    server.set(batteryIs(19, 1, 1));
    await shows(page, "#battery .headline", "19%");
    assert.equal(await row(page, "battery", "State"), "Charging");
    assert.equal(await row(page, "battery", "Powered by"), "Charger");
    assert.equal(await page.locator("#battery .bolt").count(), 1);
    server.set(batteryIs(50, 0, 1));
    await shows(page, "#battery .headline", "50%");
    assert.equal(await row(page, "battery", "State"), "Not charging");
});

test("a battery that is taken out", async (t) => {
    const server = await serve(t);
    const page = await visit(t, server);
    server.set({ getBatteryStatus: { detection: 1 } });
    await shows(page, "#battery .headline", "No battery");
    assert.equal(await page.locator("#status-items [data-item=battery]").count(), 0);
});

test("what the device no longer tells goes away and comes back", async (t) => {
    const server = await serve(t);
    const page = await visit(t, server);
    const gps = server.document().sys.getGPSStatus;
    await shows(page, "#gps", "GPS");
    server.set({ getGPSStatus: { error: 5 } });
    await until(page, () => document.querySelector("#gps") === null);
    server.set({ getGPSStatus: gps });
    await shows(page, "#gps", "GPS");
});

test("the plot grows with the traffic", async (t) => {
    const server = await serve(t);
    const page = await visit(t, server);
    const points = () => page.locator(".plot").getAttribute("data-points").then(Number);
    const before = await points();
    const stats = server.document().sys.getCellularDataConnectionStats;
    server.set({
        getCellularDataConnectionStats: {
            ...stats,
            bytesReceived1: stats.bytesReceived1 + 60_000_000,
        },
    });
    await until(
        page,
        (count) => Number(document.querySelector(".plot").dataset.points) > count,
        before,
    );
    await shows(page, "#traffic .received", "794 MB");
    await until(page, () => document.querySelector(".plot .received .line") !== null);
    const height = await page.locator(".plot").evaluate((plot) => {
        const floor = plot.querySelector(".grid").y1.baseVal.value;
        const corners = [...plot.querySelectorAll(".received .line")].flatMap((line) => [
            ...line.points,
        ]);
        return floor - Math.min(...corners.map((corner) => corner.y));
    });
    assert.ok(height > 40, `the line rises by ${height}`);
    assert.match(
        await page.locator(".plot").getAttribute("aria-label"),
        /^Traffic of the last five minutes; now .+ received, .+ sent$/,
    );
    const labels = await page.locator(".plot text").allTextContents();
    assert.ok(labels.includes("now") && labels.includes("−5 min"), String(labels));
    assert.ok(
        labels.some((label) => / [kM]B\/s$/.test(label)),
        String(labels),
    );
});

test("counters that begin anew leave a gap and no fall below zero", async (t) => {
    const server = await serve(t);
    const page = await visit(t, server);
    server.set({
        getCellularDataConnectionStats: {
            duration: 1,
            bytesReceived1: 1000,
            bytesTransmitted1: 10,
        },
    });
    await shows(page, "#traffic .received", "1 kB");
    await shows(page, "#traffic .received", "0 B/s");
    const low = await page.locator(".plot .line").evaluateAll((lines) => {
        const floor = document.querySelector(".plot .grid").y1.baseVal.value;
        return lines.flatMap((line) => [...line.points]).some((point) => point.y > floor);
    });
    assert.equal(low, false);
});

test("a link that is still there keeps the focus when its card changes", async (t) => {
    const server = await serve(t);
    const page = await visit(t, server);
    const link = page.locator("#notifications a").first();
    await link.focus();
    const seen = await page.locator("#updated").innerText();
    server.set({ getSMSUnreadCount: 4 });
    await shows(page, "#notifications", "Unread messages: 4.");
    assert.notEqual(await page.locator("#updated").innerText(), seen);
    assert.equal(
        await page.evaluate(() => document.activeElement.textContent),
        await link.innerText(),
    );
});
