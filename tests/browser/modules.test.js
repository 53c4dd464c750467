// Modules of the page that can be tested without a page.

import assert from "node:assert/strict";
import path from "node:path";
import { test } from "node:test";
import { pathToFileURL } from "node:url";

import { ROOT } from "./support/paths.js";

const module = (name) => import(pathToFileURL(path.join(ROOT, "demo", name)));

const { bytes, duration, parseCount, parseInteger, rate, unitOf } = await module("format.js");
const network = await module("network.js");
const status = await module("status.js");
const { safeAddress } = await module("notification_text.js");

test("amounts have three digits and a suitable unit", () => {
    const cases = [
        [0, "0 B"],
        [999, "999 B"],
        [1000, "1 kB"],
        [1234, "1.23 kB"],
        [999_499, "999 kB"],
        [999_500, "1 MB"],
        [734003200n, "734 MB"],
        [5473566720n, "5.47 GB"],
        [18446744073709551615n, "18.4 EB"],
    ];
    for (const [amount, text] of cases) {
        assert.equal(bytes(amount), text);
    }
    assert.equal(rate(1499.6), "1.5 kB/s");
    assert.deepEqual(unitOf(1000), { name: "kB", size: 1000 });
});

test("times have their two largest parts", () => {
    const cases = {
        0: "0 s",
        59: "59 s",
        60: "1 min 0 s",
        3599: "59 min 59 s",
        3600: "1 h 0 min",
        86399: "23 h 59 min",
        90000: "1 d 1 h",
    };
    for (const [seconds, text] of Object.entries(cases)) {
        assert.equal(duration(seconds), text);
    }
});

test("a value that is not a number is ignored", () => {
    for (const text of [
        "",
        "-1",
        "x",
        "1.5",
        " 1",
        "1e9",
        undefined,
        null,
        {},
        "123456789012345678901",
    ]) {
        assert.equal(parseCount(text), null);
    }
    assert.equal(parseCount("18446744073709551615"), 18446744073709551615n);
    for (const value of ["", "x", undefined, null, {}, [], "1.5", "12345678901"]) {
        assert.equal(parseInteger(value), null);
    }
    assert.equal(parseInteger("-1"), -1);
    assert.equal(parseInteger(7), 7);
});

test("only addresses of own pages and of web pages are accepted", () => {
    const base = "http://192.0.2.1/index.html";
    for (const [written, href] of [
        ["/a?b#c", "http://192.0.2.1/a?b#c"],
        ["https://example.com", "https://example.com/"],
        ["/srvx", "http://192.0.2.1/srvx"],
        ["/a/../b/./c.d", "http://192.0.2.1/b/c.d"],
        ["/a?b=//c/../d", "http://192.0.2.1/a?b=//c/../d"],
        ["https://example.com//x", "https://example.com//x"],
    ]) {
        assert.equal(safeAddress(written, base).href, href);
    }
    for (const written of [
        "javascript:x",
        "JAVASCRIPT:x",
        "\u0001javascript:x",
        "java\nscript:x",
        "data:text/html,x",
        "blob:http://192.0.2.1/x",
        "filesystem:x",
        "http://a:b@example.com/",
        "http://a@example.com/",
        "/srv/connect",
        "/srv",
        "/SRV/connect",
        "/%73rv/connect",
        "/srv%2fconnect",
        "/./srv/connect",
        "/a/%2e%2e/srv/connect",
        "////192.0.2.1/srv/connect",
        "https://192.0.2.1/srv/connect",
        "/.//192.0.2.1/srv/connect",
        "/..//192.0.2.1/srv/connect",
        "/a/..//192.0.2.1/srv/connect",
        "./\\/192.0.2.1/srv/connect",
        "/%2e//192.0.2.1/srv/connect",
        "http://192.0.2.1//192.0.2.1/srv/connect",
        "/.//example.com/x",
        "/a//srv/connect",
        "/%2fsrv/connect",
        "/.%2fsrv/connect",
        "/a%2f..%2fsrv/connect",
        "/a%5c..%5csrv/connect",
        "/%zz",
        "http://[",
        "\\srv\\connect",
    ]) {
        assert.equal(safeAddress(written, base), null, written);
    }
});

test("values of a wrong type are ignored", () => {
    const odd = {
        statusBarNetwork: 5,
        statusBarConnectionState: {},
        statusBarSignalBars: [],
        statusBarBatteryPercent: "full",
        statusBarBytesReceived: "-3",
        statusBarSimStatus: null,
        statusBarSdCardStatus: 1,
        statusBarGpsStatus: "constructor",
        StatusBarSoftwareUpdateStatus: "x",
        isDualSimSupported: "1",
        statusBarSmsUnreadCount: true,
    };
    assert.equal(network.connection(odd), null);
    assert.equal(network.traffic(odd), null);
    assert.deepEqual(status.smallCards(odd), []);
    assert.deepEqual(status.statusItems(odd), []);
});

test("a state that this page does not know is shown as it is, without an action", () => {
    const shown = network.connection({
        statusBarNetwork: "N",
        statusBarConnectionState: "Hibernating",
    });
    assert.deepEqual([shown.label, shown.action], ["Hibernating", null]);
    const unknown = network.connection({ statusBarNetwork: "N", statusBarConnectionState: "" });
    assert.equal(unknown.label, "State unknown");
});
