// A clock for the page that the test advances by hand.

import { shows, until } from "./browser.js";

/** Waits until the page has finished all pending work. */
export function settled(page) {
    return page.evaluate(() => fetch("/favicon.svg").then((answer) => answer.text()));
}

/** From here on, the page's clock advances only by hand. */
export async function stopClock(page) {
    await page.clock.install({ time: new Date("2026-11-21T12:00:00") });
    await page.clock.pauseAt(new Date("2026-11-21T13:00:00"));
    // The page starts again with a stopped clock: no request is under way, and the next is scheduled.
    await page.reload();
    await shows(page, "#updated", "13:00:00");
    await settled(page);
}

/** Does `action` and waits for the answer that it leads to, which must be of another second. */
export async function answers(page, action) {
    const shown = await page.locator("#updated").innerText();
    await action();
    await until(page, (before) => document.querySelector("#updated").innerText !== before, shown);
    await settled(page);
}
