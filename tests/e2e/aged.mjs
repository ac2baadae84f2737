// A shop of an earlier release: opened, built and served as it is, it has the pages of a shop that was never aged, and
// takes an order in a real browser.
import { strict as assert } from "node:assert";
import { cpSync, readFileSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";
import { ageShop, filesBelow, formerTexts, isPatched, withoutFormer, withoutSpace } from "./support/aged_shop.mjs";
import { Visit, openBrowser, screens } from "./support/browser.mjs";
import { articles, countries, methods, person } from "./support/model.mjs";
import { buildShop, newShop, runIn, serve } from "./support/model_shop.mjs";
import { readOptions } from "./support/options.mjs";
import { Shopper } from "./support/shopper.mjs";
import { languages, readWords } from "./support/words.mjs";

const options = readOptions();
process.env.TMPDIR = options.work;
const seed = Number(process.env.KORVANE_TEST_SEED ?? 1);
const seeds = Number(process.env.KORVANE_TEST_SEEDS ?? 2);

/** Makes a shop and ages a copy of it; both have the same values in their columns once they are opened. */
function makePair(number) {
  const given = { ...options, folder: join(options.work, String(number)), wholeWords: true };
  const young = newShop(given);
  const aged = join(given.folder, "aged");
  cpSync(young, aged, { recursive: true });
  const { values, told } = ageShop({
    shop: aged, application: join(given.folder, "data", "korvane"), seed: number,
    execute: (statements) => runIn(aged, statements),
  });
  runIn(young, values);
  return { given, young, aged, told };
}

/** The site of a shop whose scripts are as they were before, compared with that of another one. */
function compareSites(young, aged, told) {
  for (const folder of ["online", "scripts"]) {
    const [there, here] = [filesBelow(join(young, folder)), filesBelow(join(aged, folder))];
    assert.deepEqual([...here.keys()].sort(), [...there.keys()].sort(), told);
    const differing = [...there.keys()].filter((name) => isPatched(name)
      ? withoutFormer(here.get(name)) !== withoutFormer(there.get(name)) : here.get(name) !== there.get(name));
    assert.deepEqual(differing, [], told);
    // In the first language some of the new lines read like the former ones.
    const others = [...here].filter(([name]) => isPatched(name) && /_l\d\./.test(name));
    for (const [name, text] of others) {
      assert.deepEqual(formerTexts.filter((former) => withoutSpace(text).includes(former)), [], `${name}, ${told}`);
    }
  }
}

const pairs = Array.from({ length: seeds }, (unused, index) => makePair(seed + index));

for (const { given, young, aged, told } of pairs) {
  test(`an aged shop is built like one that was never aged (${told})`, () => {
    for (const shop of [young, aged]) {
      const said = buildShop(given, shop);
      assert.doesNotMatch(said, /\?|Errore/, told);
    }
    compareSites(young, aged, told);
    const modules = [young, aged].map((shop) => filesBelow(join(shop, "code", "SysPay")));
    assert.deepEqual(modules[1], modules[0], told);
    assert.match(readFileSync(join(aged, "code", "ve.dat"), "latin1"), /^1\.0\.8/, told);
  });
}

test("an aged shop takes an order", async () => {
  const { aged } = pairs[0];
  const host = await serve(aged, join(options.work, "host"));
  const browser = await openBrowser();
  const language = languages[0];
  try {
    const visit = await Visit.begin(browser, screens[1], language.code);
    const shopper = new Shopper(visit, { host, language, screen: screens[1], words: readWords(options.cli, language) });
    await shopper.open("cat007", "?n=1");
    await shopper.buy(articles.mug[language.code], { pieces: 5 });
    await shopper.open("order");
    await shopper.fillOrder(person);
    await shopper.chooseShipping(countries.italy, methods.transfer[language.code]);
    await shopper.sendOrder();
    assert.match(await shopper.page.locator("main").innerText(), /\d{6}-[0-9A-F]{6}/);
    visit.check();
  } finally {
    await browser.close();
    await host.stop();
  }
  assert.equal(host.log("php.log") + host.log("nginx-error.log"), "");
});
