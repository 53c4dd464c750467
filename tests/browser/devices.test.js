// For each device, the page shows everything that the service answers, and nothing else.

import assert from "node:assert/strict";
import { test } from "node:test";

import { assertQuiet, cards, row, shows, untold } from "./support/browser.js";
import { device } from "./support/server.js";
import { suite } from "./support/suite.js";

const { serve, visit } = suite();

const EVERYTHING = [
    "connection",
    "traffic",
    "notifications",
    "signal",
    "sim",
    "battery",
    "local",
    "storage",
    "gps",
    "sms",
    "update",
];

const ALL_PARTS = [
    "Network",
    "Traffic",
    "Signal",
    "SIM card",
    "Battery",
    "Connected devices",
    "Wi-Fi",
    "Memory card",
    "GPS",
    "Messages",
    "Software update",
    "Notifications",
];

function statusBar(page) {
    return page
        .locator("#status-items li")
        .evaluateAll((nodes) => nodes.map((node) => node.dataset.item));
}

function litBars(page) {
    return page.locator(".big-signal .lit").count();
}

test("a 5G device with everything", async (t) => {
    const server = await serve(t);
    const page = await visit(t, server);
    assert.deepEqual(await cards(page), EVERYTHING);
    await shows(page, "#connection .network", /^Orvane$/);
    await shows(page, "#connection .state", /^Connected$/);
    await shows(page, "#connection .technology", /^5G UWB$/);
    assert.equal(await litBars(page), 4);
    assert.equal(await row(page, "connection", "Connected for"), "1 h 30 min");
    assert.equal(await row(page, "connection", "Network choice"), "Automatic");
    assert.equal(await row(page, "connection", "Preferred"), "Global");
    assert.equal(await row(page, "connection", "Roaming"), null);
    await shows(page, "#traffic .received", "734 MB");
    await shows(page, "#traffic .sent", "52.4 MB");
    await shows(page, "#traffic .total", "786 MB");
    await shows(page, "#signal .headline", "4 of 5 bars");
    assert.equal(await row(page, "signal", "Band"), "B66, n77");
    assert.equal(await row(page, "signal", "Bandwidth"), "40 MHz, 100 MHz");
    assert.equal(await row(page, "signal", "SNR"), "17 dB");
    assert.equal(await row(page, "signal", "SINR"), null);
    await shows(page, "#sim .headline", "Ready");
    assert.equal(await row(page, "sim", "Reject code"), null);
    await shows(page, "#battery .headline", "84%");
    assert.equal(await row(page, "battery", "State"), "Charging");
    assert.equal(await row(page, "battery", "Powered by"), "USB");
    await shows(page, "#local .headline", "5 devices");
    assert.equal(await row(page, "local", "On Wi-Fi"), "2 of 32");
    assert.equal(await row(page, "local", "Guests"), "1");
    assert.equal(await row(page, "local", "Ethernet"), "Connected");
    await shows(page, "#storage .headline", "24.1 GB free");
    assert.equal(await row(page, "storage", "Used"), "7.79 GB of 31.9 GB");
    await shows(page, "#gps .headline", "Position found");
    await shows(page, "#sms .headline", "3 unread messages");
    await shows(page, "#update .headline", "Version 2.14.0");
    await shows(page, "#update .text", "This update improves 5G coverage and battery life.");
    await shows(page, "#login", "Signed out");
    assert.deepEqual(await statusBar(page), ["signal", "wifi", "sms", "bell", "gps", "battery"]);
    await assertQuiet(page);
    assert.deepEqual(await untold(page), []);
});

test("an LTE device without a memory card", async (t) => {
    const page = await visit(t, await serve(t, device("lte-plus-one-sim")));
    await shows(page, "#connection .technology", /^LTE\+$/);
    await shows(page, "#storage .headline", "No memory card");
    assert.equal(await row(page, "storage", "Used"), null);
    assert.equal(await row(page, "battery", "Powered by"), "Battery");
    await assertQuiet(page);
    assert.deepEqual(await untold(page), []);
});

test("a 3G device has another kind of signal quality", async (t) => {
    const page = await visit(t, await serve(t, device("3g-old-sim")));
    await shows(page, "#connection .state", "Connected, idle");
    assert.equal(await row(page, "connection", "Network choice"), "Manual");
    assert.equal(await row(page, "signal", "SINR"), "7 dB");
    assert.equal(await row(page, "signal", "SNR"), null);
    assert.ok(!(await cards(page)).includes("gps"), "the device has no GPS");
    assert.deepEqual(await untold(page), []);
});

test("no service", async (t) => {
    const page = await visit(t, await serve(t, device("no-service")));
    await shows(page, "#connection .network", "No network");
    await shows(page, "#connection .state", "No service");
    await shows(page, "#signal .headline", "No signal");
    assert.equal(await row(page, "signal", "Band"), null);
    assert.equal(await row(page, "sim", "Reject code"), "11");
    const button = page.getByRole("button", { name: "Connect", exact: true });
    assert.equal(await button.getAttribute("aria-disabled"), "true");
    await assertQuiet(page);
    assert.deepEqual(await untold(page), []);
});

test("a SIM that waits for its PIN", async (t) => {
    const page = await visit(t, await serve(t, device("pin-locked")));
    await shows(page, "#sim .headline", "Locked, waits for its PIN");
    await shows(page, "#connection .note", "SIM card: Locked, waits for its PIN");
    await assertQuiet(page);
});

test("no SIM", async (t) => {
    const page = await visit(t, await serve(t, device("no-sim")));
    await shows(page, "#sim .headline", "No SIM card");
    await shows(page, "#connection .note", "SIM card: No SIM card");
    await assertQuiet(page);
    assert.deepEqual(await untold(page), []);
});

test("two SIMs, the second in use", async (t) => {
    const page = await visit(t, await serve(t, device("dual-sim-slot-2")));
    await shows(page, "#connection .network", "Velta Mobil");
    await shows(page, "#connection .state", "Connected");
    // Signal and technology follow a change of the SIM one answer later.
    await shows(page, "#connection .technology", /^5G$/);
    assert.equal(await litBars(page), 5);
    await shows(page, "#sim .part:nth-of-type(1)", /SIM 1\s+Ready[^]*Orvane/);
    await shows(page, "#sim .part:nth-of-type(2)", /SIM 2\s+In use\s+Ready[^]*Velta Mobil/);
    await assertQuiet(page);
    assert.deepEqual(await untold(page), []);
});

test("two slots, the second empty", async (t) => {
    const page = await visit(t, await serve(t, device("dual-sim-empty-slot")));
    await shows(page, "#sim .part:nth-of-type(1)", /SIM 1\s+In use\s+Ready/);
    await shows(page, "#sim .part:nth-of-type(2)", /SIM 2\s+No SIM card/);
});

test("roaming", async (t) => {
    const page = await visit(t, await serve(t, device("roaming")));
    assert.equal(await row(page, "connection", "Roaming"), "International");
    assert.ok((await statusBar(page)).includes("roaming"));
});

test("airplane mode", async (t) => {
    const page = await visit(t, await serve(t, device("airplane-mode")));
    await shows(page, "#connection .network", "Radio off");
    await shows(page, "#connection .state", "Airplane mode");
    assert.equal((await statusBar(page))[0], "airplane");
    await shows(page, "#local", "Wi-Fi");
    assert.deepEqual(await untold(page), []);
});

test("an account out of credit whose connection is still up can be disconnected", async (t) => {
    const page = await visit(t, await serve(t, device("out-of-credit")));
    await shows(page, "#connection .state", "Account out of credit");
    const button = page.getByRole("button", { name: "Disconnect" });
    assert.equal(await button.getAttribute("aria-disabled"), "false");
});

test("a device that answers nothing", async (t) => {
    const page = await visit(t, await serve(t, device("everything-failing")));
    await shows(page, "#untold", "The hotspot answers but reports nothing about its state.");
    assert.deepEqual(await untold(page), ALL_PARTS);
    // Above all, the page must not claim that there are no notifications.
    assert.deepEqual(await cards(page), []);
    assert.deepEqual(await statusBar(page), []);
    assert.equal(await page.locator("#trouble").isVisible(), false);
    await shows(page, "h1", "Hotspot");
    await assertQuiet(page);
});

test("a device whose carrier enables everything and whose other calls fail", async (t) => {
    const page = await visit(t, await serve(t, device("every-group-failing")));
    await shows(page, "#untold", "The hotspot answers but reports nothing about its state.");
    assert.deepEqual(await untold(page), ALL_PARTS);
    assert.deepEqual(await cards(page), []);
    await assertQuiet(page);
});

test("a device on which some calls fail", async (t) => {
    const document = device("default");
    document.sys.getBatteryStatus = { error: 5 };
    document.sys.getConnectedDeviceList = { error: 5 };
    const page = await visit(t, await serve(t, document));
    await shows(page, "#untold", "The hotspot does not report its whole state.");
    assert.deepEqual(await untold(page), ["Battery", "Connected devices"]);
    await shows(page, "#connection .network", /^Orvane$/);
});

test("a caller with a session is signed in", async (t) => {
    const server = await serve(t);
    const page = await visit(t, server);
    const value = await server.openSession(await page.evaluate(() => navigator.userAgent));
    await page.context().addCookies([{ name: "torusess", value, url: server.origin }]);
    await shows(page, "#login", "Signed in");
});
