// Paths of the files under test. CTest passes them; the defaults are for a run by hand.

import { createRequire } from "node:module";
import path from "node:path";
import { fileURLToPath } from "node:url";

export const ROOT = process.env.KESTAL_ROOT ?? fileURLToPath(new URL("../../..", import.meta.url));
export const BUILD = process.env.KESTAL_BUILD ?? path.join(ROOT, "build", "debug");
export const DEVICES = path.join(ROOT, "devices");
export const SCENARIOS = path.join(ROOT, "scenarios");
export const STAND = fileURLToPath(new URL("stand.py", import.meta.url));
// Debian's interpreter, as for the end-to-end tests.
export const PYTHON = "/usr/bin/python3";

/** Installed there by ../install. */
const modules =
    process.env.KESTAL_BROWSER_MODULES ?? path.join(BUILD, "tests", "browser", "modules");
export const load = createRequire(path.join(modules, "package.json"));
