// The setup of every test file: one browser for the file, and servers and pages for each test.

import { after, before } from "node:test";

import { launch, open, shows } from "./browser.js";
import { device, Server } from "./server.js";

export function suite() {
    let browser = null;
    before(async () => {
        browser = await launch();
    });
    after(() => browser.close());

    async function serve(t, document = device("default"), environment = {}) {
        const server = await Server.start(document, environment);
        t.after(() => server.close());
        return server;
    }

    /** Opens the page and waits until it shows the first answer. */
    async function visit(t, server, options = {}) {
        const page = await open(browser, options.origin ?? server.origin, options);
        t.after(() => page.context().close());
        if (options.answered ?? true) {
            await shows(page, "#updated", "Updated");
        }
        return page;
    }

    return { serve, visit };
}
