// Decides when to send requests: only one at a time, seldom while the page is hidden, none after it
// has been hidden for long, less and less often while there is no answer, and soon after an action.

const PERIOD = 3_000;
const HIDDEN_PERIOD = 60_000;
/** After this time, nobody is expected to look soon, and each request wakes the hotspot up. */
const HIDDEN_LIMIT = 600_000;
const FIRST_RETRY = 1_000;
const LAST_RETRY = 15_000;
/** Pauses before the first requests after an action, which takes effect only after its answer. */
const SOON = [100, 300, 600, 1_000, 1_500, 2_500];

export class Poller {
    #ask;
    #timer = null;
    #running = null;
    #retry = FIRST_RETRY;
    #soon = [];
    #hiddenSince = 0;

    /** @param ask sends one request, returns whether there was an answer, and never throws */
    constructor(ask) {
        this.#ask = ask;
    }

    start() {
        this.#hiddenSince = Date.now();
        document.addEventListener("visibilitychange", () => {
            if (document.hidden) {
                this.#hiddenSince = Date.now();
                this.#plan();
            } else {
                this.now();
            }
        });
        window.addEventListener("online", () => {
            if (!this.#isForgotten) {
                this.now();
            }
        });
        return this.now();
    }

    /** Sends a request at once, or waits for the answer to the one that is under way. */
    now() {
        clearTimeout(this.#timer);
        this.#timer = null;
        this.#running ??= this.#round();
        return this.#running;
    }

    /** Sends several requests with short pauses. */
    soon() {
        this.#soon = [...SOON];
        this.#plan();
    }

    /** Whether requests of a soon() are still to be sent. */
    get isWaitingForEffect() {
        return this.#soon.length > 0;
    }

    settle() {
        this.#soon = [];
    }

    async #round() {
        let answered = false;
        try {
            answered = await this.#ask();
        } finally {
            this.#running = null;
            this.#retry = answered ? FIRST_RETRY : Math.min(this.#retry * 2, LAST_RETRY);
            this.#plan(answered);
        }
    }

    #plan(answered = true) {
        if (this.#running !== null) {
            return;
        }
        clearTimeout(this.#timer);
        this.#timer = null;
        if (!this.#isForgotten) {
            this.#timer = setTimeout(() => this.now(), this.#pause(answered));
        }
    }

    get #isForgotten() {
        return document.hidden && Date.now() - this.#hiddenSince >= HIDDEN_LIMIT;
    }

    #pause(answered) {
        if (this.#soon.length > 0) {
            return this.#soon.shift();
        }
        if (document.hidden) {
            return HIDDEN_PERIOD;
        }
        return answered ? PERIOD : this.#retry;
    }
}
