// Lighthouse on pages of the served shop, in a chromium of its own.
import { mkdtempSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import lighthouse, { desktopConfig } from "lighthouse";
import { chromium } from "playwright-core";
import { chromiumFlags, findChromium, fontsOf } from "./browser.mjs";
import { freePort } from "./free_port.mjs";

/** Opens a browser whose cookies Lighthouse keeps: `fillCart` is given a page of it. */
export async function openMeasured(fillCart) {
  const port = await freePort();
  const context = await chromium.launchPersistentContext(mkdtempSync(join(tmpdir(), "lighthouse-")), {
    executablePath: findChromium(),
    chromiumSandbox: process.getuid() !== 0,
    args: [...chromiumFlags(), `--remote-debugging-port=${port}`],
    env: fontsOf("usual"),
  });
  await fillCart(await context.newPage());
  return { port, close: () => context.close() };
}

/**
 * The scores of one page from 0 to 100 by category, and what cost points: lines of category, audit and title.
 * screen: "mobile" (a slow telephone on a slow network) or "desktop".
 */
export async function measure(browser, url, categories, screen = "mobile") {
  const flags = { port: browser.port, output: "json", logLevel: "error", onlyCategories: categories,
    disableStorageReset: true };
  const { lhr } = await lighthouse(url, flags, screen === "desktop" ? desktopConfig : undefined);
  const scores = {};
  const losses = [];
  for (const [name, category] of Object.entries(lhr.categories)) {
    scores[name] = Math.round(category.score * 100);
    for (const { id, weight } of category.auditRefs) {
      const audit = lhr.audits[id];
      if (weight > 0 && audit.score !== null && audit.score < 1) {
        losses.push(`${name}: ${id}: ${audit.title} ${audit.displayValue ?? ""}`.trim());
      }
    }
  }
  return { scores, losses };
}
