// A page of a developer on another port, as docs/api/README.md shows it, with scripts/run.

import { spawn } from "node:child_process";
import { readFileSync } from "node:fs";
import http from "node:http";
import path from "node:path";
import { after, before, test } from "node:test";

import { launch, open, shows } from "./support/browser.js";
import { ROOT } from "./support/paths.js";

let browser = null;
before(async () => {
    browser = await launch();
});
after(() => browser.close());

function listen(server) {
    return new Promise((resolve) =>
        server.listen(0, "127.0.0.1", () => resolve(server.address().port)),
    );
}

async function freePort() {
    const server = http.createServer();
    const port = await listen(server);
    await new Promise((resolve) => server.close(resolve));
    return port;
}

/** Starts scripts/run and returns what it prints once it serves. */
function run(t, ...options) {
    const script = spawn(path.join(ROOT, "scripts", "run"), options, {
        stdio: ["ignore", "pipe", "inherit"],
    });
    t.after(() => {
        script.kill("SIGTERM");
        return new Promise((resolve) => script.once("exit", resolve));
    });
    return new Promise((resolve, reject) => {
        let output = "";
        script.stdout.on("data", (piece) => {
            output += piece;
            if (output.includes("Ctrl-C stops it.")) {
                resolve(output);
            }
        });
        script.once("exit", () => reject(new Error(`scripts/run has ended: ${output}`)));
    });
}

test("the page of the documentation shows the status, and who is signed in", async (t) => {
    const text = readFileSync(path.join(ROOT, "docs", "api", "README.md"), "utf8");
    const port = await freePort();
    const page = /```html\n(.*?)```/s.exec(text)[1].replace("localhost:8080", `localhost:${port}`);
    const server = http.createServer((_, answer) =>
        answer.writeHead(200, { "Content-Type": "text/html" }).end(page),
    );
    const own = await listen(server);
    t.after(() => server.close());

    const options = ["--origin", `http://localhost:${own}`, "--device", "no-service"];
    const output = await run(t, "--port", String(port), ...options);
    const tab = await open(browser, `http://localhost:${own}/`);
    t.after(() => tab.context().close());
    await shows(tab, "#state", "signed out");

    const link = /http:\/\/127\.0\.0\.1(:\d+\/sign-in\/\w+)/.exec(output)[1];
    await tab.goto(`http://localhost${link}`);
    await tab.goto(`http://localhost:${own}/`);
    await shows(tab, "#state", "signed in");
});
