// A shop of an earlier release: opened, built and served as it is, it has the pages of a shop that was never aged, and
// takes an order in a real browser.
import { strict as assert } from "node:assert";
import { execFileSync } from "node:child_process";
import { cpSync, mkdirSync, readFileSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";
import { ageShop, filesBelow, isPatched, withoutFormer, wrongLines } from "./support/aged_shop.mjs";
import { Visit, openBrowser, screens } from "./support/browser.mjs";
import { articles, countries, methods, person } from "./support/model.mjs";
import { buildShop, newShop, runIn, serve, userOf } from "./support/model_shop.mjs";
import { readOptions } from "./support/options.mjs";
import { Shopper } from "./support/shopper.mjs";
import { languages, readWords } from "./support/words.mjs";

const options = readOptions();
process.env.TMPDIR = options.work;
const seed = Number(process.env.KORVANE_TEST_SEED ?? 1);
const seeds = Number(process.env.KORVANE_TEST_SEEDS ?? 2);

/** Turns on the patch that has to be asked for. */
function askForPatch(folder) {
  const settings = join(userOf(folder).XDG_CONFIG_HOME, "korvane");
  mkdirSync(settings, { recursive: true });
  writeFileSync(join(settings, "korvane.ini"), "[AppIni]\nJs2NoIva=1\n");
}

/**
 * Makes a shop and ages a copy of it; both have the same values in their columns once they are opened. The visitors of
 * every other pair may not see or do everything, and all patches apply.
 */
function makePair(number) {
  const limited = number % 2 === 0;
  const given = { ...options, folder: join(options.work, String(number)), wholeWords: true };
  const young = newShop(given);
  if (limited) {
    askForPatch(given.folder);
  }
  const aged = join(given.folder, "aged");
  cpSync(young, aged, { recursive: true });
  const { values, told } = ageShop({
    shop: aged, application: join(given.folder, "data", "korvane"), seed: number, limited,
    execute: (statements) => runIn(aged, statements),
  });
  runIn(young, values);
  return { given, young, aged, told, limited };
}

/** The site of a shop whose scripts are as they were before, compared with that of another one. */
function compareSites({ young, aged, told, limited }) {
  for (const folder of ["online", "scripts"]) {
    const [there, here] = [filesBelow(join(young, folder)), filesBelow(join(aged, folder))];
    assert.deepEqual([...here.keys()].sort(), [...there.keys()].sort(), told);
    const differing = [...there.keys()].filter((name) => isPatched(name)
      ? withoutFormer(here.get(name)) !== withoutFormer(there.get(name)) : here.get(name) !== there.get(name));
    assert.deepEqual(differing, [], told);
    // In the first language some of the new lines read like the former ones.
    const others = [...here].filter(([name]) => isPatched(name) && /_l\d\./.test(name));
    for (const [name, text] of others) {
      assert.deepEqual(wrongLines(name, text, limited), [], `${name}, ${told}`);
    }
  }
}

/** Each patched script of a site is one that its language accepts. */
function checkSyntax(folder) {
  for (const name of filesBelow(folder).keys()) {
    if (isPatched(name)) {
      const [program, option] = name.endsWith(".js") ? [process.execPath, "--check"] : ["php", "-l"];
      execFileSync(program, [option, join(folder, name)], { stdio: "pipe" });
    }
  }
}

const pairs = Array.from({ length: seeds }, (unused, index) => makePair(seed + index));

for (const pair of pairs) {
  const { given, young, aged, told } = pair;
  test(`an aged shop is built like one that was never aged (${told})`, () => {
    for (const shop of [young, aged]) {
      const said = buildShop(given, shop);
      assert.doesNotMatch(said, /\?|Errore/, told);
    }
    compareSites(pair);
    checkSyntax(join(aged, "online"));
    const modules = [young, aged].map((shop) => filesBelow(join(shop, "code", "SysPay")));
    assert.deepEqual(modules[1], modules[0], told);
    assert.match(readFileSync(join(aged, "code", "ve.dat"), "latin1"), /^1\.0\.8/, told);
  });
}

test("an aged shop takes an order", async () => {
  const { aged } = pairs.find((pair) => !pair.limited) ?? pairs[0];
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
    await shopper.chooseShipping(countries.italy[language.code], methods.transfer[language.code]);
    await shopper.sendOrder();
    assert.match(await shopper.page.locator("main").innerText(), /\d{6}-[0-9A-F]{6}/);
    visit.check();
  } finally {
    await browser.close();
    await host.stop();
  }
  assert.equal(host.log("php.log") + host.log("nginx-error.log"), "");
});
