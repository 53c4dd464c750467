// Headless Chromium, and the page in it. Errors that the page reports are kept for the tests.

import assert from "node:assert/strict";

import { load } from "./paths.js";

const { chromium } = load("playwright-core");

const ARGUMENTS = [
    "--disable-gpu",
    "--disable-quic",
    "--no-first-run",
    "--disable-background-networking",
    "--disable-component-update",
    "--disable-sync",
    // Names for a server on the network: browsers send such servers fewer headers than local ones.
    "--host-resolver-rules=MAP *.local 127.0.0.1",
];

export const DESKTOP = { width: 1280, height: 900 };
export const PHONE = { width: 360, height: 740 };

/** How long the tests wait for a state of the page, in milliseconds. */
export const DEADLINE = 60_000;

export function launch() {
    const asRoot = process.getuid() === 0 ? ["--no-sandbox"] : [];
    return chromium.launch({
        executablePath: "/usr/bin/chromium",
        args: [...ARGUMENTS, ...asRoot],
        timeout: DEADLINE,
    });
}

/** Opens the page in a new profile and collects the errors that it reports. */
export async function open(browser, origin, options = {}) {
    const context = await browser.newContext({ viewport: DESKTOP, ...options });
    context.setDefaultTimeout(DEADLINE);
    const page = await context.newPage();
    page.complaints = [];
    page.on("pageerror", (error) => page.complaints.push(String(error)));
    page.on("console", (message) => {
        if (["error", "warning"].includes(message.type())) {
            page.complaints.push(message.text());
        }
    });
    await page.addInitScript(() => {
        globalThis.violations = [];
        document.addEventListener("securitypolicyviolation", (event) => {
            globalThis.violations.push(`${event.violatedDirective} ${event.blockedURI}`);
        });
    });
    await page.goto(origin);
    return page;
}

/** Waits until an expression is true in the page, which evaluates it in every frame. */
export async function until(page, condition, argument) {
    await page.waitForFunction(condition, argument, { timeout: DEADLINE });
}

/** Waits until a place of the page shows a text, or a text that a pattern matches. */
export async function shows(page, selector, wanted) {
    const pattern =
        wanted instanceof RegExp
            ? wanted
            : new RegExp(wanted.replace(/[.*+?^${}()|[\]\\]/g, "\\$&"));
    try {
        await until(
            page,
            ([where, source, flags]) => {
                const node = document.querySelector(where);
                return (
                    node !== null &&
                    node.checkVisibility() &&
                    new RegExp(source, flags).test(node.innerText)
                );
            },
            [selector, pattern.source, pattern.flags],
        );
    } catch {
        const place = page.locator(selector).first();
        const found =
            (await place.count()) > 0 ? JSON.stringify(await place.innerText()) : "nothing";
        assert.fail(`${selector} shows ${found} and not ${pattern}`);
    }
}

/** The value beside a name in a card; null when there is no such row. */
export async function row(page, card, name) {
    const rows = await page
        .locator(`#${card} .rows > div`)
        .evaluateAll((nodes) =>
            nodes.map((node) => [
                node.querySelector("dt").innerText,
                node.querySelector("dd").innerText,
            ]),
        );
    return new Map(rows).get(name) ?? null;
}

/** The visible cards, in their order. */
export function cards(page) {
    return page.locator("main .card").evaluateAll((nodes) => nodes.map((node) => node.id));
}

/** The page's text about values that the device does not provide; empty if there is none. */
export async function untold(page) {
    const notice = page.locator("#untold");
    return (await notice.isVisible()) ? notice.locator("li").allInnerTexts() : [];
}

/** Fails if the page has violated its own policy or has reported an error in the console. */
export async function assertQuiet(page, allowed = /^$/) {
    assert.deepEqual(await page.evaluate(() => globalThis.violations), []);
    assert.deepEqual(
        page.complaints.filter((text) => !allowed.test(text)),
        [],
    );
}
