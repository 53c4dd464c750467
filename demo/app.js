// The page: asks the service from time to time and shows what it answers.

import { Cards, StatusBar } from "./cards.js";
import { setText } from "./dom.js";
import { isRightToLeft } from "./format.js";
import { Poller } from "./poller.js";
import { askNotifications, askStatus, connect, disconnect } from "./service.js";
import { connection, smallCards, statusItems, traffic, translatedTexts } from "./status.js";
import { TrafficHistory } from "./traffic.js";

const byId = (id) => document.getElementById(id);

const TROUBLES = {
    gone: ["The hotspot does not answer.", "This page goes on by itself as soon as it is back."],
    disabled: ["The web interface is switched off.", "The carrier has disabled it on this device."],
    refused: [
        "The hotspot refuses to answer this page.",
        "Open it by an address that the hotspot knows.",
    ],
};

const REFUSED =
    "The hotspot does not take this order from here. Open the page by an address that it knows.";

const clock = new Intl.DateTimeFormat("en", {
    hour: "2-digit",
    minute: "2-digit",
    second: "2-digit",
    hourCycle: "h23",
});

const trafficHistory = new TrafficHistory();
const cards = new Cards(byId("cards"), byId("details"), act, trafficHistory);
const statusBar = new StatusBar(byId("status-items"));
const poller = new Poller(ask);

let answer = null;
let answeredAt = null;
let trouble = null;
/** The action under way: its name and the state that it is to change. */
let pending = null;
let message = null;
let announcedState = null;
let announcedNotifications = null;

/** Tells it to screen readers. */
function announce(text) {
    setText(byId("announcer"), text);
}

async function ask() {
    try {
        const { loggedIn, data } = await askStatus();
        // "0" says that the list is empty.
        const notifications =
            data.statusBarNotificationFlag === "0" ? [] : await askNotifications();
        take(loggedIn, data, notifications);
        return true;
    } catch (error) {
        // Whatever has failed, be it this page: what is shown is no longer what is.
        if (error.kind === undefined) {
            console.error(error);
        }
        lose(TROUBLES[error.kind] === undefined ? "gone" : error.kind);
        return false;
    }
}

function take(loggedIn, data, notifications) {
    answer = { loggedIn, data, notifications };
    answeredAt = Date.now();
    const counters = traffic(data);
    if (counters !== null) {
        trafficHistory.add(answeredAt, counters.received, counters.sent);
    }
    settle(connection(data));
    const wasLost = trouble !== null;
    trouble = null;
    show();
    announceNews(wasLost);
}

function lose(kind) {
    if (trouble === kind) {
        if (pending !== null) {
            pending = null;
            show();
        }
        return;
    }
    trouble = kind;
    pending = null;
    poller.settle();
    show();
    announce(TROUBLES[kind].join(" "));
}

/** An action is over when the device is in another state, or when it had its time. */
function settle(now) {
    if (pending === null) {
        return;
    }
    if (now === null || now.action !== pending.name) {
        pending = null;
        poller.settle();
    } else if (!poller.isWaitingForEffect) {
        message =
            pending.name === "connect"
                ? "The hotspot has not connected."
                : "The hotspot has not disconnected.";
        pending = null;
        announce(message);
    }
}

async function act(name) {
    pending = { name };
    message = null;
    show();
    try {
        await (name === "connect" ? connect() : disconnect());
        // The answer says nothing of the outcome; the state does.
        poller.soon();
    } catch (error) {
        if (error.kind === "refused") {
            pending = null;
            message = REFUSED;
            announce(message);
            show();
        } else {
            lose(error.kind);
        }
    }
}

function announceNews(wasLost) {
    const news = [];
    if (wasLost) {
        news.push("The hotspot answers again.");
    }
    const state = connection(answer.data)?.label ?? null;
    if (announcedState !== null && state !== null && state !== announcedState) {
        news.push(`${state}.`);
    }
    announcedState = state ?? announcedState;
    const number = answer.notifications?.length ?? 0;
    if (announcedNotifications !== null && number > announcedNotifications) {
        news.push("There is a new notification.");
    }
    announcedNotifications = number;
    if (news.length > 0) {
        announce(news.join(" "));
    }
}

function showTrouble() {
    if (trouble === null && byId("trouble").contains(document.activeElement)) {
        // The button goes away; what it asked for has come.
        byId("main").focus();
    }
    byId("trouble").hidden = trouble === null;
    document.body.classList.toggle("stale", trouble !== null);
    if (trouble !== null) {
        const [title, text] = TROUBLES[trouble];
        setText(byId("trouble-title"), title);
        setText(
            byId("trouble-text"),
            answer === null ? text : `What you see is from ${clock.format(answeredAt)}. ${text}`,
        );
    }
}

function show() {
    showTrouble();
    byId("waiting").hidden = answer !== null || trouble !== null;
    if (answer === null) {
        return;
    }
    const { loggedIn, data, notifications } = answer;
    document.documentElement.dir = translatedTexts(data, notifications).some(isRightToLeft)
        ? "rtl"
        : "ltr";
    const login = byId("login");
    setText(login, loggedIn ? "Signed in" : "Signed out");
    login.classList.toggle("good", loggedIn);
    login.hidden = false;
    statusBar.show(statusItems(data));
    cards.show({
        connection: connection(data),
        traffic: traffic(data),
        small: smallCards(data),
        notifications,
        pending: pending?.name ?? null,
        message,
        time: answeredAt,
    });
    setText(byId("updated"), `Updated ${clock.format(answeredAt)}`);
}

byId("retry").addEventListener("click", () => poller.now());
poller.start();
