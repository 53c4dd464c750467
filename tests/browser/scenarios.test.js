// The shipped scenarios, event by event, as a user sees them.

import assert from "node:assert/strict";
import { readdirSync, readFileSync } from "node:fs";
import path from "node:path";
import { test } from "node:test";

import { assertQuiet, shows, until } from "./support/browser.js";
import { SCENARIOS } from "./support/paths.js";
import { suite } from "./support/suite.js";

const { serve, visit } = suite();

const STATE = "#connection .state";
const NETWORK = "#connection .network";
const NOTE = "#connection .note";
const TECHNOLOGY = "#connection .technology";
const BARS = "#signal .headline";
const GPS = "#gps .headline";
const SIM = "#sim .headline";
const PERCENT = "#battery .headline";
const BATTERY = "#battery .rows";
const BOLT = "#battery .bolt";
const CLIENTS = "#local .headline";
const RECEIVED = "#traffic .received .amount";
const SENT = "#traffic .sent .amount";
const UPDATE = "#update .headline";
const UPDATE_STATE = "#update .rows";

function notification(id) {
    return `#notifications [data-id=${id}]`;
}

const READY = notification("softwareUpdate");
const READY_LINK = `${READY} a[href="/about/update"]`;

/**
 * For each scenario, its events in order; for each event, places of the page and the texts that they
 * show before the next event, null for a place that is not there. "states": all states of the
 * connection that the page shows; "charge": the direction in which the battery's charge changes.
 */
const EXPECTED = {
    commute: {
        states: [
            "Connected",
            "No service",
            "Searching for a network …",
            "Connecting …",
            "Connected",
        ],
        events: [
            ["In the city, with 5G", { [TECHNOLOGY]: /^5G UWB$/, [BARS]: /^2 of 5/ }],
            ["Somebody watches a film", { [RECEIVED]: /^776 MB$/ }],
            [
                "The suburbs have LTE with aggregated carriers",
                { [TECHNOLOGY]: /^LTE\+$/, [BARS]: /^4 of 5/, [RECEIVED]: /^793 MB$/ },
            ],
            [
                "The country has LTE",
                { [TECHNOLOGY]: /^LTE$/, [BARS]: /^1 of 5/, [RECEIVED]: /^826 MB$/ },
            ],
            [
                "A tunnel: no service",
                {
                    [STATE]: /^No service$/,
                    [NETWORK]: /^No network$/,
                    [TECHNOLOGY]: null,
                    [BARS]: /^No signal$/,
                    [GPS]: /^Searching/,
                    [RECEIVED]: /^826 MB$/,
                    [notification("noService")]: /^Alert[^]*finds no mobile network/,
                },
            ],
            ["The GPS receiver gives up", { [GPS]: null, [STATE]: /^No service$/ }],
            [
                "Daylight: searching for a network",
                { [STATE]: /^Searching for a network/, [GPS]: /^Searching/ },
            ],
            [
                "LTE is back",
                {
                    [STATE]: /^Connecting/,
                    [NETWORK]: /^Orvane$/,
                    [TECHNOLOGY]: /^LTE$/,
                    [BARS]: /^2 of 5/,
                    [notification("noService")]: null,
                },
            ],
            [
                "Connected again",
                { [STATE]: /^Connected$/, [GPS]: /^Position found$/, [RECEIVED]: /^873 MB$/ },
            ],
            [
                "The next city, with 5G",
                { [TECHNOLOGY]: /^5G UWB$/, [BARS]: /^5 of 5/, [RECEIVED]: /^931 MB$/ },
            ],
        ],
    },
    battery: {
        states: ["Connected"],
        charge: ["falls", "rises"],
        events: [
            [
                "On battery",
                {
                    [PERCENT]: /^5%$/,
                    [BATTERY]: /State\s+Low\s+Powered by\s+Battery/,
                    [BOLT]: null,
                },
            ],
            ["The last of the battery", { [PERCENT]: /^1%$/, [`${PERCENT}.alert`]: /./ }],
            [
                "A computer's USB port charges it",
                { [PERCENT]: /^21%$/, [BATTERY]: /State\s+Charging\s+Powered by\s+USB/ },
            ],
            [
                "The charger is plugged in",
                { [PERCENT]: /^100%$/, [BATTERY]: /State\s+Charged\s+Powered by\s+Charger/ },
            ],
            [
                "The battery is full",
                {
                    [PERCENT]: /^100%$/,
                    [BATTERY]: /State\s+Charged\s+Powered by\s+Charger/,
                    [BOLT]: null,
                },
            ],
        ],
    },
    "sim-swap": {
        states: [
            "Connected",
            "Disconnecting …",
            "No service",
            "Searching for a network …",
            "Connecting …",
            "Connected",
        ],
        events: [
            [
                "The SIM of Orvane is in use",
                { [SIM]: /^Ready$/, [NETWORK]: /^Orvane$/, [STATE]: /^Connected$/ },
            ],
            ["The data call ends", { [STATE]: /^Disconnecting/ }],
            [
                "The SIM is taken out",
                {
                    [SIM]: /^No SIM card$/,
                    [NETWORK]: /^No network$/,
                    [STATE]: /^No service$/,
                    [NOTE]: /^SIM card: No SIM card$/,
                    [notification("noService")]: /^Alert/,
                },
            ],
            [
                "Another SIM is put in; it wants its PIN",
                {
                    [SIM]: /^Locked, waits for its PIN$/,
                    [NOTE]: /^SIM card: Locked, waits for its PIN$/,
                    [notification("noService")]: null,
                    [notification("simPINLocked")]: /^Alert[^]*needs its PIN/,
                    [`${notification("simPINLocked")} a`]: /^Unlock the SIM/,
                },
            ],
            [
                "The PIN is right",
                {
                    [SIM]: /^Ready$/,
                    [STATE]: /^Searching for a network/,
                    [notification("simPINLocked")]: null,
                },
            ],
            [
                "Velta Mobil lets it in",
                { [NETWORK]: /^Velta Mobil$/, [STATE]: /^Connecting/, [TECHNOLOGY]: /^LTE\+$/ },
            ],
            ["The data call stands", { [STATE]: /^Connected$/, [BARS]: /^4 of 5/ }],
        ],
    },
    update: {
        states: ["Connected"],
        events: [
            ["The software is up to date", { [UPDATE]: /^No update$/, [READY]: null }],
            [
                "Version 2.15.1 arrives and is downloaded",
                { [UPDATE]: /^Version 2\.15\.1$/, [UPDATE_STATE]: /10 min\s+State\s+Code 4/ },
            ],
            [
                "The update is ready to be installed",
                {
                    [UPDATE_STATE]: /State\s+Code 5/,
                    [READY]: /^Warning[^]*Software update/,
                    [READY_LINK]: /^Install now\.$/,
                },
            ],
            [
                "The user has it installed",
                { [UPDATE_STATE]: /^Requested by you\s+Yes\s+State\s+Code 6/, [READY]: null },
            ],
            [
                "The update is installed",
                {
                    [UPDATE_STATE]: /State\s+Code 8/,
                    [notification("softwareUpdateSuccess")]: /^Info[^]*is up to date\.$/,
                },
            ],
            [
                "Version 2.16.0 arrives and is downloaded",
                {
                    [UPDATE]: /^Version 2\.16\.0$/,
                    "#update .text": /^This update brings new bands\.$/,
                    [UPDATE_STATE]: /12 min\s+State\s+Code 4/,
                    [notification("softwareUpdateSuccess")]: null,
                },
            ],
            [
                "The update is ready to be installed",
                { [UPDATE_STATE]: /State\s+Code 5/, [READY_LINK]: /^Install now\.$/ },
            ],
            [
                "The device installs it by itself",
                { [UPDATE_STATE]: /^State\s+Code 6/, [READY]: null },
            ],
            [
                "The update has failed",
                {
                    [UPDATE_STATE]: /^State\s+Code 10/,
                    [notification("softwareUpdateFailure")]:
                        /^Critical[^]*could not be installed/,
                },
            ],
        ],
    },
    gentle: {
        states: ["Connected"],
        charge: ["rises", "falls"],
        events: [
            ["Data flows", { [RECEIVED]: /^746 MB$/, [SENT]: /^53\.9 MB$/ }],
            ["On the charger", { [BATTERY]: /State\s+Charging/ }],
            [
                "The signal drops a little",
                { [BARS]: /^3 of 5/, [RECEIVED]: /^773 MB$/, [SENT]: /^57\.3 MB$/ },
            ],
            [
                "The signal rises again",
                { [BARS]: /^4 of 5/, [RECEIVED]: /^800 MB$/, [SENT]: /^60\.6 MB$/ },
            ],
            [
                "A tablet joins the Wi-Fi",
                { [CLIENTS]: /^6 devices$/, [PERCENT]: /^89%$/, [RECEIVED]: /^867 MB$/ },
            ],
            [
                "Off the charger",
                { [BATTERY]: /State\s+On battery/, [BOLT]: null, [RECEIVED]: /^894 MB$/ },
            ],
            ["The signal rises a little", { [BARS]: /^5 of 5/, [RECEIVED]: /^921 MB$/ }],
            ["The signal drops again", { [BARS]: /^4 of 5/, [RECEIVED]: /^934 MB$/ }],
            [
                "The tablet leaves",
                {
                    [CLIENTS]: /^5 devices$/,
                    [PERCENT]: /^84%$/,
                    [RECEIVED]: /^1 GB$/,
                    [SENT]: /^86 MB$/,
                    "#traffic .total .amount": /^1\.09 GB$/,
                },
            ],
        ],
    },
};

/**
 * Makes the page send requests all the time, as it does whenever the browser is back on a network,
 * and records everything that it shows about the connection and the battery.
 */
function followClosely(page) {
    return page.evaluate(() => {
        globalThis.seen = { states: [], charges: [] };
        const keep = (list, selector) => {
            const text = document.querySelector(selector)?.textContent;
            if (text !== undefined && text !== list.at(-1)) {
                list.push(text);
            }
        };
        const look = () => {
            keep(globalThis.seen.states, "#connection .state");
            keep(globalThis.seen.charges, "#battery .headline");
        };
        new MutationObserver(look).observe(document.body, {
            subtree: true,
            childList: true,
            characterData: true,
        });
        look();
        setInterval(() => dispatchEvent(new Event("online")), 25);
    });
}

async function showsAll(page, event, wanted) {
    for (const [place, pattern] of wanted) {
        try {
            await (pattern === null
                ? until(page, (selector) => document.querySelector(selector) === null, place)
                : shows(page, place, pattern));
        } catch (error) {
            assert.fail(`${event}: ${pattern === null ? `${place} stays` : error.message}`);
        }
    }
}

/** The directions in which the numbers in a sequence of texts such as "84%" change. */
function movements(texts) {
    const values = texts.map((text) => Number.parseInt(text, 10));
    const steps = values.slice(1).map((value, i) => (value > values[i] ? "rises" : "falls"));
    return steps.filter((step, i) => step !== steps[i - 1]);
}

/** Plays a scenario; each event waits until the page shows all effects of the one before it. */
async function follow(page, server, file, events, expected) {
    await server.play(file);
    let wanted = [];
    for (const [i, { at, say }] of events.entries()) {
        wanted.push(...Object.entries(expected[i][1]));
        // Events with the same time are one change of the device, made after the last of them.
        if (events[i + 1]?.at !== at) {
            await showsAll(page, say, wanted);
            wanted = [];
        }
        const told = await server.proceed();
        assert.ok(told.endsWith(` s  ${say}\n`), `${told} and not ${say}`);
    }
    assert.equal(await server.endPlay(), 0);
}

const names = readdirSync(SCENARIOS)
    .filter((file) => file.endsWith(".json"))
    .map((file) => file.replace(/\.json$/, ""));

test("the expected page is known for each shipped scenario", () => {
    assert.deepEqual([...names].sort(), Object.keys(EXPECTED).sort());
});

for (const name of names.filter((each) => EXPECTED[each] !== undefined)) {
    const file = `${name}.json`;
    const { title, events } = JSON.parse(readFileSync(path.join(SCENARIOS, file), "utf8"));
    const expected = EXPECTED[name];

    test(`${name}: ${title}`, async (t) => {
        assert.deepEqual(
            events.map(({ say }) => say),
            expected.events.map(([say]) => say),
        );
        const server = await serve(t);
        const page = await visit(t, server);
        await followClosely(page);
        await follow(page, server, file, events, expected.events);
        const { states, charges } = await page.evaluate(() => globalThis.seen);
        assert.deepEqual(states, expected.states);
        assert.deepEqual(movements(charges), expected.charge ?? [], String(charges));
        await assertQuiet(page);
    });
}
