// axe-core in the page: all its findings, one line each. Without preload, which asks for every style sheet again for the
// sake of one rule that is off by default.
import { readFileSync } from "node:fs";
import { createRequire } from "node:module";

const source = readFileSync(createRequire(import.meta.url).resolve("axe-core/axe.min.js"), "utf8");

export async function accessibilityFaults(page) {
  await page.evaluate(source);
  const { violations } = await page.evaluate(() => globalThis.axe.run({ resultTypes: ["violations"], preload: false }));
  return violations.flatMap((found) => found.nodes.map((node) => `${found.id} (${found.impact}): ${node.target.join(" ")}`));
}
