// Web server and service as they are deployed, with a separate port and device document.

import { spawn } from "node:child_process";
import { readFileSync, renameSync, writeFileSync } from "node:fs";
import path from "node:path";
import { createInterface } from "node:readline";

import { DEVICES, PYTHON, STAND } from "./paths.js";

/** The document of a shipped device. */
export function device(name) {
    return JSON.parse(readFileSync(path.join(DEVICES, `${name}.json`), "utf8"));
}

export class Server {
    #process;
    #answers;
    #file;

    /** Starts both on a device document and waits until they serve. */
    static async start(document = device("default"), environment = {}) {
        const server = new Server();
        try {
            server.#file = (await server.#order("place")).device;
            server.write(document);
            const { port } = await server.#order("start", { environment });
            server.port = port;
            server.origin = `http://127.0.0.1:${port}`;
        } catch (error) {
            await server.close();
            throw error;
        }
        return server;
    }

    constructor() {
        this.#process = spawn(PYTHON, [STAND], { stdio: ["pipe", "pipe", "inherit"] });
        this.#answers = createInterface({ input: this.#process.stdout })[Symbol.asyncIterator]();
    }

    async #order(name, values = {}) {
        this.#process.stdin.write(`${JSON.stringify({ do: name, ...values })}\n`);
        const { value, done } = await this.#answers.next();
        if (done) {
            throw new Error("the stand has ended");
        }
        const answer = JSON.parse(value);
        if (answer.error !== undefined) {
            throw new Error(answer.error);
        }
        return answer.result;
    }

    /** The current device document, which the service changes, too. */
    document() {
        return JSON.parse(readFileSync(this.#file, "utf8"));
    }

    /** Replaces the device document in one step. */
    write(document) {
        writeFileSync(`${this.#file}.next`, JSON.stringify(document, null, 2));
        renameSync(`${this.#file}.next`, this.#file);
    }

    /** Gives a command of kestal-sim to the running server; returns what it prints. */
    async control(...command) {
        const answer = await fetch(`${this.origin}/control`, {
            method: "POST",
            headers: { "Content-Type": "application/json" },
            body: JSON.stringify({ command }),
        });
        if (!answer.ok) {
            throw new Error(`/control answers ${answer.status}`);
        }
        const { exitCode, output, error } = await answer.json();
        if (exitCode !== 0) {
            throw new Error(error);
        }
        return output.trim();
    }

    /** Changes what sys_ calls answer. */
    async set(calls) {
        for (const [call, answer] of Object.entries(calls)) {
            await this.control("set", `sys.${call}`, answer);
        }
    }

    stop() {
        return this.#order("stop");
    }

    restart() {
        return this.#order("start");
    }

    killService() {
        return this.#order("kill_service");
    }

    hangService() {
        return this.#order("hang_service");
    }

    resumeService() {
        return this.#order("resume_service");
    }

    /** Starts a shipped scenario with its first event. */
    play(scenario) {
        return this.#order("play", { scenario });
    }

    /** Lets the next event happen. Returns the message about the previous one. */
    proceed() {
        return this.#order("proceed");
    }

    /** Ends the scenario after its last event. Returns the exit code. */
    endPlay() {
        return this.#order("end_play");
    }

    /** Logs a browser in; returns the cookie's value. */
    async openSession(agent) {
        const cookie = await this.control("session", "open", "--user-agent", agent);
        return cookie.replace(/^torusess=/, "");
    }

    async close() {
        const ended = new Promise((resolve) => this.#process.once("exit", resolve));
        this.#process.stdin.end();
        await ended;
    }
}
