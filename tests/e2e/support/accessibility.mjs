// axe-core in the page: all its findings, one line each.
import { readFileSync } from "node:fs";
import { createRequire } from "node:module";

const source = readFileSync(createRequire(import.meta.url).resolve("axe-core/axe.min.js"), "utf8");

export async function accessibilityFaults(page) {
  await page.evaluate(source);
  const { violations } = await page.evaluate(() => globalThis.axe.run({ resultTypes: ["violations"] }));
  return violations.flatMap((found) => found.nodes.map((node) => `${found.id} (${found.impact}): ${node.target.join(" ")}`));
}
