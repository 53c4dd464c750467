// The page's time, passing by hand.

import { shows, until } from "./browser.js";

/** Everything that the page had at hand is done. */
export function settled(page) {
    return page.evaluate(() => fetch("/favicon.svg").then((answer) => answer.text()));
}

/** From here on the page's time passes by hand only. */
export async function stopClock(page) {
    await page.clock.install({ time: new Date("2026-11-21T12:00:00") });
    await page.clock.pauseAt(new Date("2026-11-21T13:00:00"));
    // The page begins anew, with time at rest: no question is under way, the next one is planned.
    await page.reload();
    await shows(page, "#updated", "13:00:00");
    await settled(page);
}

/** Waits for the answer that something brings about; it must tell another second. */
export async function answers(page, action) {
    const shown = await page.locator("#updated").innerText();
    await action();
    await until(page, (before) => document.querySelector("#updated").innerText !== before, shown);
    await settled(page);
}
