// Connecting and disconnecting from the page.

import assert from "node:assert/strict";
import { test } from "node:test";

import { assertQuiet, shows, until } from "./support/browser.js";
import { device } from "./support/server.js";
import { suite } from "./support/suite.js";

const { serve, visit } = suite();

const CONNECTED = "connected";
const READY = "ready";

function connectionOf(server) {
    return server.document().sys.getCellularDataConnectionStatus;
}

const button = (page, name) => page.getByRole("button", { name, exact: true });

test("by mouse", async (t) => {
    const server = await serve(t);
    const page = await visit(t, server);
    await button(page, "Disconnect").click();
    await shows(page, "#connection .state", "Not connected");
    assert.equal(connectionOf(server), READY);
    await button(page, "Connect").click();
    await shows(page, "#connection .state", /^Connected$/);
    assert.equal(connectionOf(server), CONNECTED);
    await assertQuiet(page);
});

test("by keyboard, with the focus staying on the button", async (t) => {
    const server = await serve(t);
    const page = await visit(t, server);
    const focused = () => page.evaluate(() => document.activeElement.textContent);
    for (let i = 0; i < 20 && (await focused()) !== "Disconnect"; i += 1) {
        await page.keyboard.press("Tab");
    }
    assert.equal(await focused(), "Disconnect");
    await page.keyboard.press("Enter");
    await shows(page, "#connection .state", "Not connected");
    assert.equal(connectionOf(server), READY);
    await until(page, () => document.activeElement.textContent === "Connect");
    await page.keyboard.press("Space");
    await shows(page, "#connection .state", /^Connected$/);
    assert.equal(connectionOf(server), CONNECTED);
    assert.equal(await focused(), "Disconnect");
});

test("the new state is announced", async (t) => {
    const server = await serve(t);
    const page = await visit(t, server);
    assert.equal(await page.getByRole("status").innerText(), "");
    await button(page, "Disconnect").click();
    await until(
        page,
        () => document.querySelector("[role=status]").textContent === "Not connected.",
    );
});

test("if the device does not obey, the user is told", async (t) => {
    const document = device("default");
    document.sys.cellularDataDisconnect = { error: 5 };
    const server = await serve(t, document);
    const page = await visit(t, server);
    await button(page, "Disconnect").click();
    await shows(page, "#connection .actions", "The hotspot has not disconnected.");
    await shows(page, "#connection .state", /^Connected$/);
    assert.equal(await button(page, "Disconnect").getAttribute("aria-disabled"), "false");
});

test("without a network there is nothing to connect to", async (t) => {
    const server = await serve(t, device("no-service"));
    const page = await visit(t, server);
    const orders = [];
    page.on("request", (request) => orders.push(new URL(request.url()).pathname));
    await button(page, "Connect").click({ force: true });
    await until(
        page,
        (shown) => document.querySelector("#updated").textContent !== shown,
        await page.locator("#updated").innerText(),
    );
    assert.ok(!orders.includes("/srv/connect"), String(orders));
});

test("over plain http from another host, where browsers send fewer headers", async (t) => {
    const server = await serve(t, device("default"), {
        KESTAL_ORIGINS: "http://hotspot.local:{port}",
    });
    const page = await visit(t, server, { origin: `http://hotspot.local:${server.port}` });
    const order = page.waitForRequest((request) => request.url().endsWith("/srv/disconnect"));
    await button(page, "Disconnect").click();
    const headers = await (await order).allHeaders();
    assert.equal(headers["sec-fetch-site"], undefined);
    assert.equal(headers.origin, `http://hotspot.local:${server.port}`);
    await shows(page, "#connection .state", "Not connected");
    assert.equal(connectionOf(server), READY);
});

test("an order from an address that is not the server's own is refused with a message", async (t) => {
    const server = await serve(t);
    const page = await visit(t, server, { origin: `http://hotspot.local:${server.port}` });
    await button(page, "Disconnect").click();
    await shows(page, "#connection .actions", "The hotspot does not accept this command from here.");
    assert.equal(connectionOf(server), CONNECTED);
    await shows(page, "#connection .state", /^Connected$/);
});
