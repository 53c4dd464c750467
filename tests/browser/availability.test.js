// The page while the service does not answer, and how often it sends requests.

import assert from "node:assert/strict";
import { test } from "node:test";

import { shows, until } from "./support/browser.js";
import { answers, settled, stopClock } from "./support/clock.js";
import { device } from "./support/server.js";
import { suite } from "./support/suite.js";

const { serve, visit } = suite();

const GONE = /does not answer/;

function isWell(page) {
    return until(page, () => document.querySelector("#trouble").hidden);
}

test("a server that goes away and comes back", async (t) => {
    const server = await serve(t);
    const page = await visit(t, server);
    await server.stop();
    await shows(page, "#trouble", GONE);
    await shows(page, "#trouble", "What you see is from");
    await shows(page, "#connection .network", "Orvane");
    assert.match(await page.getByRole("status").innerText(), GONE);
    const document = server.document();
    document.sys.getSMSUnreadCount = 9;
    server.write(document);
    await server.restart();
    await isWell(page);
    await shows(page, "#sms .headline", "9 unread messages");
    await until(page, () =>
        document.querySelector("[role=status]").textContent.includes("answers again"),
    );
});

test("an order that gets no answer is given up", async (t) => {
    const server = await serve(t);
    const page = await visit(t, server);
    await server.stop();
    await shows(page, "#trouble", GONE);
    await page.getByRole("button", { name: "Disconnect", exact: true }).click();
    await until(page, () => {
        const button = document.querySelector("#connection button");
        return (
            button.textContent === "Disconnect" && button.getAttribute("aria-disabled") === "false"
        );
    });
    await server.restart();
    await isWell(page);
    await shows(page, "#connection .state", /^Connected$/);
});

test("the user can start the next attempt", async (t) => {
    const server = await serve(t);
    const page = await visit(t, server, { answered: false });
    await stopClock(page);
    await server.stop();
    await page.clock.runFor(3_000);
    await shows(page, "#trouble", GONE);
    await server.restart();
    await page.getByRole("button", { name: "Try again" }).press("Enter");
    await isWell(page);
    assert.equal(await page.evaluate(() => document.activeElement.id), "main");
});

test("a service that dies is started again, and the page continues", async (t) => {
    const server = await serve(t);
    const page = await visit(t, server);
    await server.killService();
    await server.set({ getSMSUnreadCount: 8 });
    await shows(page, "#sms .headline", "8 unread messages");
    await isWell(page);
});

test("a service that hangs", async (t) => {
    const server = await serve(t, device("default"), { KESTAL_TIMEOUT: "1" });
    const page = await visit(t, server);
    await server.hangService();
    await shows(page, "#trouble", GONE);
    await server.resumeService();
    await isWell(page);
});

for (const [cause, answer] of [
    ["the carrier has switched it off", 0],
    ["the device cannot be asked whether it may", { error: 5 }],
]) {
    test(`a web interface that is not available, because ${cause}`, async (t) => {
        const document = device("default");
        document.sys.getWebUICarrierEnabled = answer;
        const server = await serve(t, document);
        const page = await visit(t, server, { answered: false });
        await shows(page, "#trouble", "The web interface is not available.");
        // The page cannot distinguish these two causes.
        await shows(page, "#trouble", /carrier has switched it off.*device does not answer/);
        await server.set({ getWebUICarrierEnabled: 1 });
        await isWell(page);
        await shows(page, "#connection .network", "Orvane");
    });
}

/** Makes the page think that it is hidden, or visible. */
function hide(page, hidden) {
    return page.evaluate((value) => {
        Object.defineProperty(document, "hidden", { configurable: true, get: () => value });
        document.dispatchEvent(new Event("visibilitychange"));
    }, hidden);
}

/** Counts the requests of the page, as `asked()`. */
function counting(page) {
    let number = 0;
    page.on("request", (request) => {
        number += request.url().endsWith("/srv/status") ? 1 : 0;
    });
    return () => number;
}

test("a visible page sends a request every three seconds, a hidden one every minute", async (t) => {
    const server = await serve(t);
    const page = await visit(t, server, { answered: false });
    await stopClock(page);
    const asked = counting(page);
    const asksAfter = async (seconds) => {
        const before = asked();
        await page.clock.runFor(seconds * 1000 - 100);
        await settled(page);
        assert.equal(asked(), before, `asked before ${seconds} s had passed`);
        await answers(page, () => page.clock.runFor(100));
        assert.equal(asked(), before + 1);
    };
    await asksAfter(3);
    await asksAfter(3);
    await hide(page, true);
    await asksAfter(60);
    await asksAfter(60);
    await page.clock.runFor(1000);
    await answers(page, () => hide(page, false));
    await asksAfter(3);
});

test("a page that has been hidden for ten minutes asks no more until it is visible", async (t) => {
    const server = await serve(t);
    const page = await visit(t, server, { answered: false });
    await stopClock(page);
    const asked = counting(page);
    await hide(page, true);
    for (let minute = 0; minute < 10; ++minute) {
        await answers(page, () => page.clock.runFor(60_000));
    }
    assert.equal(asked(), 10);
    await page.clock.runFor(3_600_000);
    await page.evaluate(() => window.dispatchEvent(new Event("online")));
    await page.clock.runFor(60_000);
    await settled(page);
    assert.equal(asked(), 10);
    await answers(page, () => hide(page, false));
    assert.equal(asked(), 11);
    await answers(page, () => page.clock.runFor(3_000));
    assert.equal(asked(), 12);
});
