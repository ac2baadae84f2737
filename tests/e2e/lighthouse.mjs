// Lighthouse's scores for first page, a department, an article, the terms and a filled cart of the model shop, on a
// telephone and at a desk. Ends with 1 when a score is too low: `chiaro` reaches 100 wherever search engines may look, everything else 95. Options:
// see support/options.mjs.
import { rmSync } from "node:fs";
import { join } from "node:path";
import { measure, openMeasured } from "./support/lighthouse.mjs";
import { articles } from "./support/model.mjs";
import { makeShop, serve } from "./support/model_shop.mjs";
import { readOptions } from "./support/options.mjs";
import { Shopper } from "./support/shopper.mjs";
import { languages, readWords } from "./support/words.mjs";

const categories = ["performance", "accessibility", "best-practices", "seo"];
const pages = { home: "index.php", department: "cat007.php?n=1", article: "cat007.php?n=1&prod=1", terms: "condizioni.php",
  cart: "cart.php" };

const options = readOptions();
const wanted = (page) => (options.template === "chiaro" && page !== pages.cart ? 100 : 95);
process.env.TMPDIR = options.work;
const host = await serve(makeShop({ ...options, folder: options.work }), join(options.work, "host"));
const [language] = languages;
const words = readWords(options.cli, language);
const browser = await openMeasured(async (page) => {
  const shopper = new Shopper({ page }, { host, language, words });
  await shopper.open("cat007", "?n=1");
  await shopper.buy(articles.mug[language.code], { pieces: 2 });
});

/** The best of up to three runs: whatever else the machine does only makes a page slower. */
async function best(page, screen) {
  let found = await measure(browser, `${host.shop}/${page}`, categories, screen);
  for (let run = 2; run <= 3 && found.scores.performance < wanted(page); run++) {
    const again = await measure(browser, `${host.shop}/${page}`, categories, screen);
    found = again.scores.performance > found.scores.performance ? again : found;
  }
  return found;
}

let low = false;
console.log(["page", "screen", ...categories].map((word) => word.padEnd(15)).join(""));
for (const screen of ["mobile", "desktop"]) {
  for (const [name, page] of Object.entries(pages)) {
    const { scores, losses } = await best(page, screen);
    console.log([name, screen, ...categories.map((category) => String(scores[category]))]
      .map((word) => word.padEnd(15)).join(""));
    losses.forEach((loss) => console.log(`  ${loss}`));
    low ||= categories.some((category) => scores[category] < wanted(page));
  }
}
await browser.close();
await host.stop();
rmSync(options.work, { recursive: true, force: true });
process.exitCode = low ? 1 : 0;
