// The languages of the page.

import assert from "node:assert/strict";
import { readdirSync, readFileSync } from "node:fs";
import path from "node:path";
import { test } from "node:test";
import { pathToFileURL } from "node:url";

import { assertQuiet, DESKTOP, shows, until } from "./support/browser.js";
import { ROOT } from "./support/paths.js";
import { device } from "./support/server.js";
import { suite } from "./support/suite.js";

const { serve, visit } = suite();

const DEMO = path.join(ROOT, "demo");
const {
    bestLanguage,
    CATALOGUES,
    LANGUAGES,
    setLanguage,
    t: text,
} = await import(pathToFileURL(path.join(DEMO, "language.js")));

const HEADINGS = {
    en: ["Network", "Traffic", "Notifications"],
    de: ["Netz", "Datenverkehr", "Benachrichtigungen"],
    fr: ["Réseau", "Trafic", "Notifications"],
    es: ["Red", "Tráfico", "Notificaciones"],
    ja: ["ネットワーク", "通信量", "通知"],
    ar: ["الشبكة", "حركة البيانات", "الإشعارات"],
};

function headings(page) {
    return page.locator("#cards h2 bdi, #notifications h2").allInnerTexts();
}

function direction(page) {
    return page.evaluate(() => [document.documentElement.lang, document.documentElement.dir]);
}

function forms(value) {
    return typeof value === "string" ? [value] : Object.values(value);
}

function placeholders(value) {
    return [...new Set(forms(value).flatMap((form) => form.match(/\{\w+\}/g) ?? []))].sort();
}

for (const code of Object.keys(LANGUAGES)) {
    test(`all texts exist in ${LANGUAGES[code]}, in every plural form, with their values`, () => {
        const texts = CATALOGUES[code];
        assert.deepEqual(Object.keys(texts), Object.keys(CATALOGUES.en));
        const categories = new Intl.PluralRules(code).resolvedOptions().pluralCategories;
        for (const [name, value] of Object.entries(texts)) {
            assert.ok(
                forms(value).every((form) => form.trim() !== ""),
                name,
            );
            if (name === "amount.units") {
                assert.equal(value.length, 7);
                continue;
            }
            assert.deepEqual(placeholders(value), placeholders(CATALOGUES.en[name]), name);
            if (typeof value === "object") {
                assert.deepEqual(Object.keys(value).sort(), [...categories].sort(), name);
            }
        }
    });
}

test("every text that the page uses exists, and every text is used", () => {
    const files = readdirSync(DEMO).filter((file) => /\.(js|html)$/.test(file));
    const source = files.map((file) => readFileSync(path.join(DEMO, file), "utf8")).join("\n");
    const named = new Set(
        [...source.matchAll(/["`]([a-z]+\.[a-zA-Z.]+|[a-z]+\.(?=\$\{))/g)].map(([, name]) => name),
    );
    const begins = [...named].filter((name) => name.endsWith("."));
    const ids = Object.keys(CATALOGUES.en);
    const groups = new Set(ids.map((id) => id.split(".")[0]));
    const unknown = [...named].filter(
        (name) =>
            !name.endsWith(".") &&
            groups.has(name.split(".")[0]) &&
            !/\.(js|css|svg)$/.test(name) &&
            !ids.includes(name),
    );
    assert.deepEqual(unknown, []);
    const unused = ids.filter(
        (id) => !named.has(id) && !begins.some((beginning) => id.startsWith(beginning)),
    );
    assert.deepEqual(unused, []);
});

test("numbers choose the plural form of their language", (t) => {
    t.after(() => setLanguage("en"));
    const counted = (code, number) => {
        setLanguage(code);
        return text("local.devices", { number });
    };
    assert.deepEqual(
        [0, 1, 2].map((number) => counted("fr", number)),
        ["0 appareil", "1 appareil", "2 appareils"],
    );
    assert.deepEqual(
        [1, 2, 3, 11, 100].map((number) => counted("ar", number)),
        ["جهاز واحد", "جهازان", "3 أجهزة", "11 جهازًا", "100 جهاز"],
    );
});

test("the first language of the browser that the page has is chosen", () => {
    assert.equal(bestLanguage(["pt-BR", "de-AT", "fr"]), "de");
    assert.equal(bestLanguage(["JA"]), "ja");
    assert.equal(bestLanguage(["pt", "constructor"]), "en");
    assert.equal(bestLanguage([]), "en");
});

for (const [code, locale] of Object.entries({
    en: "pt-BR",
    de: "de-AT",
    fr: "fr-CA",
    es: "es-MX",
    ja: "ja-JP",
    ar: "ar-EG",
})) {
    test(`a browser of ${locale} gets the page in ${LANGUAGES[code]}`, async (t) => {
        const page = await visit(t, await serve(t), {
            locale,
            answered: false,
            viewport: { width: 320, height: 640 },
        });
        await shows(page, "#connection", HEADINGS[code][0]);
        assert.deepEqual(await direction(page), [code, code === "ar" ? "rtl" : "ltr"]);
        const found = await headings(page);
        HEADINGS[code].forEach((heading, i) => assert.match(found[i], new RegExp(`^${heading}`)));
        // Nothing is wider than the screen of a phone.
        assert.equal(await page.evaluate(() => document.documentElement.scrollWidth), 320);
        await assertQuiet(page);
    });
}

test("the language chosen in the header is kept", async (t) => {
    const server = await serve(t);
    const page = await visit(t, server);
    await shows(page, "#connection .state", /^Connected$/);
    await page.getByRole("combobox", { name: "Language" }).selectOption("Deutsch");
    await shows(page, "#connection .state", /^Verbunden$/);
    await shows(page, "#updated", "Stand: ");
    assert.deepEqual(await direction(page), ["de", "ltr"]);
    assert.deepEqual(
        (await headings(page)).map((heading) => heading.replace(/\d+$/, "").trim()),
        HEADINGS.de,
    );
    assert.equal(await page.title(), "Hotspot");
    // The same state in another language is not announced.
    assert.equal(await page.getByRole("status").innerText(), "");
    await page.getByRole("button", { name: "Trennen", exact: true }).click();
    await shows(page, "#connection .state", /^Nicht verbunden$/);
    await page.reload();
    await shows(page, "#connection .state", /^Nicht verbunden$/);
    assert.equal(await page.getByRole("combobox", { name: "Sprache" }).inputValue(), "de");
    await assertQuiet(page);
});

test("by keyboard, with the focus staying on the list", async (t) => {
    const page = await visit(t, await serve(t));
    await page.getByRole("combobox", { name: "Language" }).focus();
    await page.keyboard.press("ArrowDown");
    await shows(page, "#connection .state", /^Verbunden$/);
    assert.equal(await page.evaluate(() => document.activeElement.id), "language");
});

test("the chosen language is used even if the browser stores nothing", async (t) => {
    const page = await visit(t, await serve(t));
    await page.addInitScript(() =>
        Object.defineProperty(globalThis, "localStorage", {
            get() {
                throw new DOMException("denied", "SecurityError");
            },
        }),
    );
    await page.reload();
    await shows(page, "#connection .state", /^Connected$/);
    await page.getByRole("combobox", { name: "Language" }).selectOption("Español");
    await shows(page, "#connection .state", /^Conectado$/);
    await assertQuiet(page);
});

test("errors and the time of the last answer are in the language, too", async (t) => {
    const server = await serve(t);
    const page = await visit(t, server, { locale: "fr-FR", answered: false });
    await shows(page, "#connection .state", /^Connecté$/);
    await server.stop();
    await shows(page, "#trouble", /ne répond pas\. Les informations affichées datent de \d/);
    await page.getByRole("combobox").selectOption("日本語");
    await shows(page, "#trouble", "ホットスポットが応答しません。");
    await shows(page, "#trouble button", "再試行");
});

test("in Arabic the page runs from right to left, but its plot does not", async (t) => {
    const document = device("default");
    document.webui.i18nSettings.language = "ar";
    const page = await visit(t, await serve(t, document), { locale: "ar", answered: false });
    await shows(page, "#notifications h3", /\p{Script=Arabic}/u);
    const [network, traffic] = await page.evaluate(() =>
        ["#connection", "#traffic"].map(
            (id) => document.querySelector(id).getBoundingClientRect().left,
        ),
    );
    assert.ok(network > traffic, "the first card is on the right");
    // Text that is written from left to right keeps its direction.
    const name = page.locator("#connection .network bdi");
    assert.equal(await name.evaluate((node) => getComputedStyle(node).direction), "ltr");
    const [now, before] = await page.evaluate(() => {
        const labels = [...document.querySelectorAll(".plot text")];
        return ["الآن", "قبل 5 د"].map((wanted) =>
            labels.find((label) => label.textContent.includes(wanted)).getBoundingClientRect(),
        );
    });
    assert.ok(now.left > before.right);
    assert.equal(await page.evaluate(() => document.documentElement.scrollWidth), DESKTOP.width);
    await assertQuiet(page);
});

test("a link of a notification leads to a page with a way back", async (t) => {
    const page = await visit(t, await serve(t));
    for (const [link, address] of [
        ["View messages.", "/messages"],
        ["Install now.", "/about/update"],
    ]) {
        const response = page.waitForResponse((each) => each.url().endsWith(address));
        await page.getByRole("link", { name: link }).click();
        assert.equal((await response).status(), 404);
        await shows(page, "h1", "This page does not exist");
        await shows(page, "#address", `You asked for: ${address}`);
        // Wait until the style sheet is loaded, wherever the page is.
        await until(
            page,
            () => getComputedStyle(document.querySelector(".status-bar")).position === "sticky",
        );
        await page.getByRole("link", { name: "Back to the overview" }).click();
        await shows(page, "#connection .network", "Orvane");
    }
    await assertQuiet(page, /status of 404/);
});

test("the page for missing pages is in the chosen language", async (t) => {
    const server = await serve(t);
    const page = await visit(t, server);
    await page.getByRole("combobox", { name: "Language" }).selectOption("العربية");
    await page.goto(`${server.origin}/messages`);
    await shows(page, "h1", "هذه الصفحة غير موجودة هنا");
    assert.deepEqual(await direction(page), ["ar", "rtl"]);
});
