// The modules of the page that need no page.

import assert from "node:assert/strict";
import path from "node:path";
import { test } from "node:test";
import { pathToFileURL } from "node:url";

import { ROOT } from "./support/paths.js";

const module = (name) => import(pathToFileURL(path.join(ROOT, "demo", name)));

const { bytes, duration, isRightToLeft, parseCount, parseInteger, rate, unitOf } =
    await module("format.js");
const status = await module("status.js");
const { niceMaximum, TrafficHistory, WINDOW } = await module("traffic.js");
const { safeAddress } = await module("notification_text.js");

test("amounts have three digits and the unit that fits", () => {
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

test("what is no number is none", () => {
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

test("letters decide the direction", () => {
    assert.ok(isRightToLeft("Orvane Hotspot: رسائل"));
    assert.ok(isRightToLeft("שלום"));
    assert.ok(!isRightToLeft("新しいメッセージ 5G"));
});

test("rates are differences over time, and counters that go back are gaps", () => {
    const history = new TrafficHistory();
    history.add(0, 1000n, 100n);
    assert.equal(history.now, null);
    history.add(2000, 5000n, 100n);
    assert.deepEqual(history.now, { from: 0, time: 2000, received: 2000, sent: 0 });
    history.add(4000, 10n, 0n);
    assert.equal(history.now, null);
    history.add(6000, 10n, 50n);
    assert.equal(history.now.sent, 25);
    history.add(6000 + 91_000, 1010n, 50n);
    assert.equal(history.now, null);
    assert.equal(history.points.length, 4);
    history.add(WINDOW + 5000, 1010n, 50n);
    assert.deepEqual(
        history.points.map((point) => point.time),
        [6000, 97_000, WINDOW + 5000],
    );
});

test("counters beyond what a floating number holds exactly still have exact differences", () => {
    const history = new TrafficHistory();
    history.add(0, 18446744073709551000n, 0n);
    history.add(1000, 18446744073709551600n, 0n);
    assert.equal(history.now.received, 600);
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

test("addresses are own pages or pages of the web", () => {
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

test("an answer of wrong types is an answer without these values", () => {
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
    assert.equal(status.connection(odd), null);
    assert.equal(status.traffic(odd), null);
    assert.deepEqual(status.smallCards(odd), []);
    assert.deepEqual(status.statusItems(odd), []);
    assert.deepEqual(
        status.translatedTexts({ statusBarBandwidth: 3 }, [null, {}, { text: 1 }]),
        [],
    );
});

test("a state that this page does not know is shown as it is, without an action", () => {
    const shown = status.connection({
        statusBarNetwork: "N",
        statusBarConnectionState: "Hibernating",
    });
    assert.deepEqual([shown.label, shown.action], ["Hibernating", null]);
    const unknown = status.connection({ statusBarNetwork: "N", statusBarConnectionState: "" });
    assert.equal(unknown.label, "State unknown");
});
