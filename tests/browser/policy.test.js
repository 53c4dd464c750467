// The headers that the web server sends with the page, and that the page keeps its policy.

import assert from "node:assert/strict";
import { test } from "node:test";

import { assertQuiet, shows, until } from "./support/browser.js";
import { suite } from "./support/suite.js";

const { serve, visit } = suite();

const POLICY = {
    "default-src": "'none'",
    "script-src": "'self'",
    "style-src": "'self'",
    "img-src": "'self'",
    "connect-src": "'self'",
    "base-uri": "'none'",
    "form-action": "'none'",
    "frame-ancestors": "'none'",
};

function directives(policy) {
    return Object.fromEntries(
        policy.split(";").map((part) => part.trim().split(/ (.*)/).slice(0, 2)),
    );
}

test("every file of the page comes with its type and with the policy", async (t) => {
    const server = await serve(t);
    const page = await visit(t, server, { answered: false });
    const files = new Map();
    page.on("response", (response) => files.set(new URL(response.url()).pathname, response));
    const types = {
        "/": "text/html; charset=utf-8",
        "/style.css": "text/css; charset=utf-8",
        "/notices.css": "text/css; charset=utf-8",
        "/glyphs.css": "text/css; charset=utf-8",
        "/cards.css": "text/css; charset=utf-8",
        "/traffic.css": "text/css; charset=utf-8",
        "/favicon.svg": "image/svg+xml",
    };
    // The page does not wait until its pictures are loaded.
    const named = Object.keys(types).map((name) =>
        page.waitForResponse((response) => new URL(response.url()).pathname === name),
    );
    await page.reload();
    await shows(page, "#updated", "Updated");
    await Promise.all(named);
    const own = [...files].filter(([name]) => !name.startsWith("/srv/"));
    assert.ok(own.length >= 10, String([...files.keys()]));
    for (const [name, response] of own) {
        const headers = await response.allHeaders();
        assert.ok([200, 304].includes(response.status()), `${name}: ${response.status()}`);
        assert.deepEqual(directives(headers["content-security-policy"]), POLICY, name);
        assert.equal(headers["referrer-policy"], "same-origin", name);
        assert.equal(headers["x-content-type-options"], "nosniff", name);
        assert.equal(headers["cache-control"], "no-cache", name);
        if (response.status() === 200) {
            assert.equal(
                headers["content-type"],
                types[name] ?? "text/javascript; charset=utf-8",
                name,
            );
        }
    }
    await assertQuiet(page);
});

test("the page that is shown for missing pages has the policy, too", async (t) => {
    const server = await serve(t);
    const answer = await fetch(`${server.origin}/settings/sim`);
    assert.equal(answer.status, 404);
    assert.match(await answer.text(), /href="\/"/);
    assert.match(answer.headers.get("content-type"), /^text\/html\b/);
    assert.deepEqual(directives(answer.headers.get("content-security-policy")), POLICY);
    assert.equal(answer.headers.get("referrer-policy"), "same-origin");
});

test("scripts and styles in the page itself, and all of other servers, are refused", async (t) => {
    const server = await serve(t);
    const page = await visit(t, server);
    await page.evaluate(() => {
        const script = document.createElement("script");
        script.textContent = "globalThis.ran = true";
        const style = document.createElement("style");
        const image = document.createElement("img");
        image.src = "http://127.0.0.1:9/x.png";
        document.body.append(script, style, image);
        document.body.setAttribute("onclick", "globalThis.ran = true");
        fetch("http://127.0.0.1:9/").catch(() => {});
    });
    await until(
        page,
        () => new Set(globalThis.violations.map((text) => text.split(" ")[0])).size >= 4,
    );
    await page.locator("h1").click();
    assert.equal(await page.evaluate(() => globalThis.ran), undefined);
    const kinds = new Set(
        (await page.evaluate(() => globalThis.violations)).map((text) => text.split(" ")[0]),
    );
    assert.ok(kinds.has("img-src") && kinds.has("connect-src"), [...kinds].join());
});

test("no other page can show it in a frame", async (t) => {
    const server = await serve(t);
    const page = await visit(t, server);
    await page.goto("about:blank");
    await Promise.all([
        page.waitForEvent("framenavigated", (frame) => frame.url().startsWith("chrome-error:")),
        page.evaluate((origin) => {
            const frame = document.createElement("iframe");
            frame.src = origin;
            document.body.append(frame);
        }, server.origin),
    ]);
});

test("a link to another site sends no referrer", async (t) => {
    const server = await serve(t);
    const page = await visit(t, server);
    const asked = page.waitForRequest((request) => request.url().startsWith("http://localhost:"));
    await page.evaluate((port) => {
        location.href = `http://localhost:${port}/style.css`;
    }, server.port);
    assert.equal((await (await asked).allHeaders()).referer, undefined);
});

test("the icon comes from our own server", async (t) => {
    const server = await serve(t);
    const page = await visit(t, server);
    const type = await page.evaluate(() =>
        fetch(document.querySelector("link[rel=icon]").href).then((answer) =>
            answer.headers.get("content-type"),
        ),
    );
    assert.equal(type, "image/svg+xml");
});
