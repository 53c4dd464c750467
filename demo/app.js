// The page: sends requests to the service from time to time and shows the answers.

import { Cards, StatusBar } from "./cards.js";
import { setText } from "./dom.js";
import { formatTime, t } from "./language.js";
import { connection, traffic } from "./network.js";
import { offerLanguages, startLanguage } from "./page_language.js";
import { Poller } from "./poller.js";
import { askNotifications, askStatus, connect, disconnect } from "./service.js";
import { smallCards, statusItems } from "./status.js";
import { TrafficHistory } from "./traffic.js";
import { UntoldNotice } from "./untold_notice.js";

const byId = (id) => document.getElementById(id);

/** Reasons why the page has no answer; each is also the name of a text. */
const TROUBLES = ["gone", "disabled", "refused"];

startLanguage();

const trafficHistory = new TrafficHistory();
const statusBar = new StatusBar(byId("status-items"));
const untoldNotice = new UntoldNotice(byId("untold"));
const poller = new Poller(ask);

let cards = makeCards();
let answer = null;
let answeredAt = null;
let trouble = null;
/** The action under way: its name and the state that it should change. */
let pending = null;
/** The name of the text about the result of the last action. */
let message = null;
let announcedState = null;
let announcedNotifications = null;
let tellsNothing = false;
let announcedNothing = false;

function makeCards() {
    return new Cards(byId("cards"), byId("details"), act, trafficHistory);
}

/** Announces a text to screen readers. */
function announce(text) {
    setText(byId("announcer"), text);
}

async function ask() {
    try {
        const { loggedIn, data } = await askStatus();
        // The list is requested even if the status says that there are no notifications: it says so
        // also when the list could not be read.
        take(loggedIn, data, await askNotifications());
        return true;
    } catch (error) {
        // Even if the error is in this page itself, the values shown are out of date.
        if (error.kind === undefined) {
            console.error(error);
        }
        lose(TROUBLES.includes(error.kind) ? error.kind : "gone");
        return false;
    }
}

function take(loggedIn, data, notifications) {
    answer = { loggedIn, data, notifications };
    answeredAt = Date.now();
    const counters = traffic(data);
    if (counters?.flows) {
        trafficHistory.add(answeredAt, counters.received, counters.sent);
    } else {
        trafficHistory.pause();
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
    announce(`${t(`trouble.${kind}.title`)} ${t(`trouble.${kind}.text`)}`);
}

/** Ends the action when the device is in another state, or when its time is over. */
function settle(now) {
    if (pending === null) {
        return;
    }
    if (now === null || now.action !== pending.name) {
        pending = null;
        poller.settle();
    } else if (!poller.isWaitingForEffect) {
        message = `action.${pending.name}Failed`;
        pending = null;
        announce(t(message));
    }
}

async function act(name) {
    pending = { name };
    message = null;
    show();
    try {
        await (name === "connect" ? connect() : disconnect());
        // The answer does not tell the outcome of the action; the next states do.
        poller.soon();
    } catch (error) {
        if (error.kind === "refused") {
            pending = null;
            message = "action.refused";
            announce(t(message));
            show();
        } else {
            lose(error.kind);
        }
    }
}

function announceNews(wasLost) {
    const news = [];
    if (wasLost) {
        news.push(t("news.back"));
    }
    const state = connection(answer.data)?.label ?? null;
    if (announcedState !== null && state !== null && state !== announcedState) {
        news.push(t("news.state", { state }));
    }
    announcedState = state ?? announcedState;
    if (tellsNothing && !announcedNothing) {
        news.push(t("untold.nothing"));
    }
    announcedNothing = tellsNothing;
    const number = answer.notifications?.length ?? 0;
    if (announcedNotifications !== null && number > announcedNotifications) {
        news.push(t("news.notification"));
    }
    announcedNotifications = number;
    if (news.length > 0) {
        announce(news.join(" "));
    }
}

function showTrouble() {
    if (trouble === null && byId("trouble").contains(document.activeElement)) {
        // The button disappears, so the focus must move.
        byId("main").focus();
    }
    byId("trouble").hidden = trouble === null;
    document.body.classList.toggle("stale", trouble !== null);
    if (trouble !== null) {
        const text = t(`trouble.${trouble}.text`);
        const stale = answer && t("trouble.stale", { time: formatTime(answeredAt) });
        setText(byId("trouble-title"), t(`trouble.${trouble}.title`));
        setText(byId("trouble-text"), answer === null ? text : `${stale} ${text}`);
    }
}

function show() {
    showTrouble();
    byId("waiting").hidden = answer !== null || trouble !== null;
    if (answer === null) {
        return;
    }
    const { loggedIn, data, notifications } = answer;
    const login = byId("login");
    setText(login, t(loggedIn ? "page.signedIn" : "page.signedOut"));
    login.classList.toggle("good", loggedIn);
    login.hidden = false;
    statusBar.show(statusItems(data));
    tellsNothing = untoldNotice.show(data);
    cards.show({
        connection: connection(data),
        traffic: traffic(data),
        small: smallCards(data),
        // If the device provides no values at all, an empty list does not mean that there are none.
        notifications: tellsNothing && notifications?.length === 0 ? null : notifications,
        pending: pending?.name ?? null,
        message,
        time: answeredAt,
    });
    setText(byId("updated"), t("page.updated", { time: formatTime(answeredAt) }));
}

/** Writes the current contents of the page again in the new language. */
function changeLanguage() {
    cards = makeCards();
    // The same state now has another name, which must not be announced as a change.
    announcedState = null;
    announce("");
    show();
}

offerLanguages(byId("language"), changeLanguage);
byId("retry").addEventListener("click", () => poller.now());
poller.start();
