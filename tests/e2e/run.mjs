// The model shop, built by the program and served by tools/local-host, in a real browser: one run for one template.
// The tests are told in scenarios/, what they do in support/.
import { strict as assert } from "node:assert";
import { rmSync } from "node:fs";
import { join } from "node:path";
import { after, describe, test } from "node:test";
import { Visit, openBrowser, screens } from "./support/browser.mjs";
import { Merchant } from "./support/merchant.mjs";
import { makeShop, serve } from "./support/model_shop.mjs";
import { readOptions } from "./support/options.mjs";
import { Shopper } from "./support/shopper.mjs";
import { emittedMarkup } from "./support/valid_html.mjs";
import { languages, readWords } from "./support/words.mjs";
import { choosing } from "./scenarios/choosing.mjs";
import { customers } from "./scenarios/customers.mjs";
import { orderingByKeyboard } from "./scenarios/keyboard.mjs";
import { ordering } from "./scenarios/ordering.mjs";
import { accessibleBackOffice, fitsInEveryLanguage, lookedAt, measured } from "./scenarios/pages.mjs";
import { searching } from "./scenarios/searching.mjs";
import { visiting } from "./scenarios/visiting.mjs";
import { withoutScripts } from "./scenarios/without_scripts.mjs";

const options = readOptions();
process.env.TMPDIR = options.work;
// One run searches whole words, the other parts of words.
const wholeWords = options.template === "chiaro";
const shop = makeShop({ ...options, wholeWords, folder: options.work });
const host = await serve(shop, join(options.work, "host"));
const browsers = new Map();
let failed = false;

// Whoever ends the run ends it at once: the browsers and the servers go with the program that started them.
for (const signal of ["SIGINT", "SIGTERM", "SIGHUP"]) {
  process.prependListener(signal, () => process.exit(1));
}

after(async () => {
  for (const browser of browsers.values()) {
    await (await browser).close();
  }
  await host.stop();
  if (!failed) {
    rmSync(options.work, { recursive: true, force: true });
  }
});

/** The browser whose pages are laid out with a family of fonts, opened when first asked for. */
function browserWith(fonts) {
  if (!browsers.has(fonts)) {
    browsers.set(fonts, openBrowser(fonts));
  }
  return browsers.get(fonts);
}

/** Runs `act` as a visitor with cookies of their own; fails also for faults that they met. */
async function visit({ screen, fonts }, locale, act) {
  const visitor = await Visit.begin(await browserWith(fonts), screen, locale);
  try {
    await act(visitor);
    visitor.check();
    await visitor.leave();
  } catch (error) {
    failed = true;
    const picture = join(options.work, `failed-${Date.now()}.png`);
    await visitor.page.screenshot({ path: picture, fullPage: true });
    error.message += `\nat ${visitor.page.url()}, see ${picture}; faults met: ${visitor.faults.join("; ") || "none"}`;
    await visitor.context.close();
    throw error;
  }
}

const italian = readWords(options.cli, languages[0]);

/** What a scenario knows of its visitors: their screen, language and fonts, and how they come and go. */
function visitors(language, screen, fonts = "usual") {
  const words = readWords(options.cli, language);
  const name = `${language.code}-${screen.width}`;
  const shopperOf = (one) => new Shopper(one, { host, language, screen, words });
  return {
    shop, host, language, screen, words, italian, wholeWords, name,
    shopperOf,
    address: (stem, rest) => `${host.shop}/${stem}${language.suffix}.php${rest}`,
    visitor: (act, other = {}) => () => visit({ screen: { ...screen, ...other }, fonts }, language.code,
      (one) => act(shopperOf(one))),
    merchant: (act) => visit({ screen: screens[1], fonts }, "it", async (one) => {
      const merchant = new Merchant(one, host);
      await merchant.enter();
      await act(merchant);
    }),
    async picture(who, subject) {
      if (options.shots) {
        const path = join(options.shots, `${options.template}-${name}-${subject.replace(/\W+/g, "-")}.png`);
        await who.page.screenshot({ path, fullPage: true });
      }
    },
  };
}

// Two languages in each template, one on each screen; in a long run (KORVANE_TEST_SEEDS) `chiaro` in every combination. Its
// scripts are those of `classico`.
const combined = options.template === "chiaro" && process.env.KORVANE_TEST_SEEDS !== undefined;
for (const [row, screen] of screens.entries()) {
  for (const language of combined ? languages : [languages[options.template === "chiaro" ? row : 3 - row]]) {
    const as = visitors(language, screen);
    describe(`${options.template}, ${language.name}, ${screen.width} pixels`, () => {
      visiting(as);
      searching(as);
      choosing(as);
      ordering(as);
      // The narrow screen is the harder one; the wide one is tried once.
      if (screen.isMobile || options.template === "chiaro") {
        orderingByKeyboard(as);
      }
      customers(as);
      withoutScripts(as);
    });
  }
}

const [phone, desk] = screens.map((screen) => visitors(languages[0], screen));
const italianTexts = new Map();
describe(`the pages of ${options.template}`, () => {
  lookedAt(phone, { widths: [320, phone.screen.width], italian: italianTexts });
  fitsInEveryLanguage(phone);
  lookedAt(desk, { widths: [desk.screen.width], italian: italianTexts,
    html: options.template === "classico" ? emittedMarkup : [] });
  if (options.template === "chiaro") {
    accessibleBackOffice(desk);
    measured(phone);
  }
});

// Visitors have other fonts than this machine: a wide one, one as wide as most, a narrow one. The wide one is the usual one
// of Italian pages above, and gets the longest words.
for (const [fonts, language] of [["narrow", languages[1]], ["even", languages[2]], ["wide", languages[3]]]) {
  describe(`the pages of ${options.template} in ${language.name} with ${fonts} fonts`, () => {
    const as = visitors(language, screens[0], fonts);
    lookedAt(as, { widths: [320, desk.screen.width, as.screen.width], italian: italianTexts });
  });
}

test("neither PHP nor the web server had anything to complain of", () => {
  const complaints = host.log("php.log") + host.log("nginx-error.log");
  failed ||= complaints !== "";
  assert.equal(complaints, "");
});
