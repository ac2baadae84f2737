// The model shop in two languages goes online by FTP to a host that has nothing, is visited, edited, and goes online
// again: only what changed is sent, and the host then holds what a host holds that got everything at once.
import { strict as assert } from "node:assert";
import { cpSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { after, test } from "node:test";
import { Visit, openBrowser, screens } from "./support/browser.mjs";
import { EmptySite, PublishedShop, edit, filesOf } from "./support/merchant_site.mjs";
import { articles, departments } from "./support/model.mjs";
import { makeShop, userOf } from "./support/model_shop.mjs";
import { amountsIn } from "./support/money.mjs";
import { readOptions } from "./support/options.mjs";
import { Shopper } from "./support/shopper.mjs";
import { languages, readWords } from "./support/words.mjs";

const options = readOptions();
process.env.TMPDIR = options.work;
const environment = userOf(options.work);
const merchant = new PublishedShop(options.cli, makeShop({ ...options, wholeWords: true, folder: options.work }), environment);
const untouched = join(options.work, "untouched");
cpSync(merchant.shop, untouched, { recursive: true });
const site = await EmptySite.open(untouched, join(options.work, "first"));
const browser = await openBrowser();
let failed = false;

for (const signal of ["SIGINT", "SIGTERM", "SIGHUP"]) {
  process.prependListener(signal, () => process.exit(1));
}

after(async () => {
  await browser.close();
  await site.close();
  if (!failed) {
    rmSync(options.work, { recursive: true, force: true });
  }
});

/** One step; the steps build on each other, and what failed is kept. */
function step(name, act) {
  test(name, async () => {
    try {
      await act();
    } catch (error) {
      failed = true;
      throw error;
    }
  });
}

/** A visitor of the site, who meets no fault. */
async function visit(language, act) {
  const one = await Visit.begin(browser, screens[1], language.code);
  await act(new Shopper(one, { host: site.host, language, screen: screens[1], words: readWords(options.cli, language) }));
  one.check();
  await one.context.close();
}

step("nothing is sent to a host without the folder until the question is answered", () => {
  assert.throws(() => merchant.publish(site));
  assert.equal(site.hasFolder("online"), false);
});

step("the first publish makes the folders and sends everything", () => {
  const sent = merchant.publish(site, "--answer", "yes");
  assert.equal(site.hasFolder("online") && site.hasFolder("scripts"), true);
  assert.ok(sent.includes("cat007.php") && sent.includes("cat007_l2.php") && sent.includes("db_l2.sql"));
});

step("the shop is open in both languages", async () => {
  for (const language of languages.slice(0, 2)) {
    await visit(language, async (shopper) => {
      await shopper.open("index");
      await shopper.toDepartment(departments.ceramics[language.code]);
      await shopper.toDepartment(departments.cups[language.code]);
      const mug = await shopper.card(articles.mug[language.code]).innerText();
      assert.equal(amountsIn(mug)[0], articles.mug.price);
    });
  }
});

step("after a few edits only the changed files and a difference of the rows are sent", () => {
  const before = { ...filesOf(join(merchant.shop, "online")), ...filesOf(join(merchant.shop, "scripts")) };
  const article = (title) => `(SELECT ID FROM articoli WHERE titolo = '${title}')`;
  edit(merchant.shop, [
    `UPDATE articoli SET prezzo = prezzo * 2 WHERE ID = ${article(articles.mug.it)}`,
    `UPDATE categorie SET titolo = 'Tazze nuove', titolo_l2 = 'New cups' WHERE titolo = '${departments.cups.it}'`,
    `DELETE FROM articoli WHERE ID = ${article(articles.tumbler.it)}`,
  ]);
  writeFileSync(join(merchant.shop, "kvftp.ini"), "OPDB: 0\r\n");
  merchant.build();
  const now = { ...filesOf(join(merchant.shop, "online")), ...filesOf(join(merchant.shop, "scripts")) };
  const isSent = (name) => !/\.(sc|sql)$/.test(name);
  const changed = Object.keys(now).filter((name) => isSent(name) && now[name] !== before[name]);
  const sent = merchant.publish(site);
  assert.deepEqual(sent.filter(isSent).sort(), changed.sort());
  assert.ok(changed.length < Object.keys(now).length, "the files that are the same stay where they are");
  const difference = readFileSync(join(merchant.shop, "online/db.sql"), "latin1");
  assert.match(difference, /INSERT INTO/);
  assert.doesNotMatch(difference, /CREATE TABLE/);
  assert.match(readFileSync(join(merchant.shop, "online/dbdel.sql"), "latin1"), /DELETE FROM articoli WHERE/);
});

step("visitors see the new price, the new name, and no more of the article", async () => {
  for (const language of languages.slice(0, 2)) {
    await visit(language, async (shopper) => {
      await shopper.open("index");
      await shopper.toDepartment(departments.ceramics[language.code]);
      await shopper.toDepartment(language.code === "it" ? "Tazze nuove" : "New cups");
      const mug = await shopper.card(articles.mug[language.code]).innerText();
      assert.equal(amountsIn(mug)[0], 2 * articles.mug.price);
      assert.equal(await shopper.card(articles.tumbler[language.code]).count(), 0);
    });
  }
});

step("the site is what a host holds that gets everything at once", async () => {
  const held = { files: site.files(), tables: site.tables() };
  await site.host.stop();
  for (const name of ["kvftp.ini", "db/last.mdb", "db/last.ini"]) {
    rmSync(join(merchant.shop, name));
  }
  merchant.forgetWhatWasSent();
  const second = await EmptySite.open(untouched, join(options.work, "second"));
  try {
    merchant.publish(second, "--answer", "yes");
    assert.deepEqual(second.files(), held.files);
    assert.deepEqual(second.tables(), held.tables);
  } finally {
    await second.close();
  }
});
