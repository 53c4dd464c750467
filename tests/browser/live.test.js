// The page follows changes of the device.

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
    await server.set(batteryIs(18, 0, 0));
    await shows(page, "#battery .headline", "18%");
    assert.equal(await row(page, "battery", "State"), "Low");
    assert.match(await page.locator("#battery .headline").getAttribute("class"), /warning/);
    await shows(page, "#status-items [data-item=battery]", "18%");
    assert.equal(await page.locator("#battery .bolt").count(), 0);
    await server.set(batteryIs(19, 1, 1));
    await shows(page, "#battery .headline", "19%");
    assert.equal(await row(page, "battery", "State"), "Charging");
    assert.equal(await row(page, "battery", "Powered by"), "Charger");
    assert.equal(await page.locator("#battery .bolt").count(), 1);
    await server.set(batteryIs(50, 0, 1));
    await shows(page, "#battery .headline", "50%");
    assert.equal(await row(page, "battery", "State"), "Not charging");
});

test("a battery that is taken out", async (t) => {
    const server = await serve(t);
    const page = await visit(t, server);
    await server.set({ getBatteryStatus: { detection: 1 } });
    await shows(page, "#battery .headline", "No battery");
    assert.equal(await page.locator("#status-items [data-item=battery]").count(), 0);
});

test("values that the device no longer reports disappear and come back", async (t) => {
    const server = await serve(t);
    const page = await visit(t, server);
    const gps = server.document().sys.getGPSStatus;
    await shows(page, "#gps", "GPS");
    await server.set({ getGPSStatus: { error: 5 } });
    await until(page, () => document.querySelector("#gps") === null);
    await shows(page, "#untold", /The hotspot does not report its whole state[^]*\bGPS$/);
    await server.set({ getGPSStatus: gps });
    await shows(page, "#gps", "GPS");
    await until(page, () => document.querySelector("#untold").hidden);
});

test("a link keeps the focus when its card changes", async (t) => {
    const server = await serve(t);
    const page = await visit(t, server);
    const link = page.locator("#notifications a").first();
    await link.focus();
    const seen = await page.locator("#updated").innerText();
    await server.set({ getSMSUnreadCount: 4 });
    await shows(page, "#notifications", "Unread messages: 4.");
    assert.notEqual(await page.locator("#updated").innerText(), seen);
    assert.equal(
        await page.evaluate(() => document.activeElement.textContent),
        await link.innerText(),
    );
});
