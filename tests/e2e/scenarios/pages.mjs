// Every kind of page, looked at by tools: accessibility and valid HTML in both templates and in the back office, and
// Lighthouse's scores that do not depend on the machine.
import { strict as assert } from "node:assert";
import { after, before, test } from "node:test";
import { accessibilityFaults } from "../support/accessibility.mjs";
import { measure, openMeasured } from "../support/lighthouse.mjs";
import { articles, countries, methods, person } from "../support/model.mjs";
import { brokenTexts, leftInItalian, textsOf } from "../support/texts.mjs";
import { htmlFaults } from "../support/valid_html.mjs";
import { languages } from "../support/words.mjs";

/** Pages that any visitor can open, by stem and what follows it; {many} stands for a word of several articles. */
const pageKinds = [
  ["index"], ["cat001", "?n=1"], ["cat007", "?n=1"], ["cat007", "?n=2"], ["cat007", "?n=1&prod=1"],
  ["cat007", "?n=1&ordine=prezzo"], ["search"], ["kvsearch", "?q={many}&p=1"],
  ["kvsearch", "?q=nessunarticolo"], ["cart"], ["order"], ["login"], ["login", "?m=11"], ["messaggio"],
  ["condizioni"], ["recesso"], ["datipers"], ["kvrecesso"],
];
/** Those that hold all there is to read: enough for the other languages, whose pages are laid out as the Italian ones. */
const spokenKinds = [
  ["index"], ["cat007", "?n=1&prod=1"], ["cat007", "?n=1&ordine=prezzo"], ["kvsearch", "?q={many}&p=1"], ["cart"], ["order"],
  ["login"], ["condizioni"], ["recesso"], ["datipers"], ["kvrecesso"],
];
const many = { it: "gres", en: "stoneware", fr: "mug", de: "Steinzeug" };
// The cart, the session of those who order or sign in, and what the order form reads of a customer and of stock.
const neededCookies = /^kvstore_(?:(?:cart|sessione)\d+|disp|cliente|di_nuovo)$/;
const narrowest = 320;
// What has one name in all languages: the shop, a glaze, a customer.
const names = ["Bottega Montelune", "Bottega Montelune ·", "info@bottega.example", "Terracotta", "(Ada)"];
const measuredPages = [["index"], ["cat007", "?n=1"], ["cart"]];
let tours = 0;
const categories = ["accessibility", "best-practices", "seo"];

/** Puts something into the visitor's cart. */
async function fillCart(shopper) {
  await shopper.open("cat007", "?n=1");
  await shopper.buy(articles.mug[shopper.language.code], { pieces: 2 });
}

/** Withdraws from the order whose page is open; each step is looked at. */
async function withdraw(shopper, look) {
  const main = shopper.page.locator("main");
  const code = /\d{6}-[0-9A-F]{6}/.exec(await main.innerText())[0];
  const goOn = (address) => Promise.all([shopper.page.waitForURL(address), main.locator("form button").last().click()]);
  await shopper.open("kvrecesso");
  await main.locator("[name=codice]").fill(code);
  await main.locator("[name=email]").fill(person.Email);
  await goOn(/passo=scegli/);
  await look("the choice of a withdrawal");
  await main.locator("[type=checkbox]").first().check();
  await goOn(/passo=conferma/);
  await look("the second step of a withdrawal");
  assert.ok(await main.getByRole("button", { name: shopper.words.recesso_conferma }).isVisible());
  await goOn(/passo=ricevuta/);
  assert.ok((await main.innerText()).includes(`${code}-R1`));
  await look("the receipt of a withdrawal");
}

/** Visits the given kinds of pages with something in the cart, then orders; `look` is given the name of each. */
async function tour(shopper, kinds, look) {
  await fillCart(shopper);
  for (const [stem, rest = ""] of kinds) {
    await shopper.open(stem, rest.replace("{many}", many[shopper.language.code]));
    await look(stem + rest);
  }
  await shopper.open("order");
  await shopper.fillOrder(person);
  await shopper.chooseShipping(countries.italy[shopper.language.code], methods.transfer[shopper.language.code]);
  await shopper.sendOrder();
  await look("thankyou");
  await withdraw(shopper, look);
  await shopper.open("cart");
  await look("an empty cart");
  tours += 1;
  // Nothing in it but the mark can end a line.
  const email = `giro${tours}donaudampfschifffahrtsgesellschaft@cliente.example`;
  await shopper.open("login");
  await shopper.register({ nome: "Ada", cognome: "Neri", email, pw: "una parola lunga" });
  await shopper.open("login");
  await look("a customer's own page");
  const cookies = (await shopper.page.context().cookies()).map(({ name }) => name);
  assert.deepEqual(cookies.filter((name) => !neededCookies.test(name)), []);
  assert.equal(await shopper.page.evaluate(() => localStorage.length + sessionStorage.length), 0);
}

/** The controls that exceed the right edge of the screen: their HTML and where they end. */
function controlsOutside(page) {
  return page.evaluate(() => [...document.querySelectorAll("a, button, input, select, textarea")]
    .map((element) => ({ element, box: element.getBoundingClientRect() }))
    .filter(({ element, box }) => element.checkVisibility() && box.width > 1 && box.right > innerWidth + 1)
    .map(({ element, box }) => `${element.outerHTML.slice(0, 80)} ends at ${Math.round(box.right)}`));
}

/** What axe-core says of each page of a tour. */
async function withAxe(shopper, name, faults) {
  faults.push(...(await accessibilityFaults(shopper.page)).map((fault) => `${name}: ${fault}`));
}

/** What exceeds the width of screens; the page is left as wide as the last. */
async function onScreens(as, shopper, name, widths, faults) {
  const { height } = shopper.page.viewportSize();
  for (const width of widths) {
    await shopper.page.setViewportSize({ width, height });
    const needed = await shopper.page.evaluate(() => document.documentElement.scrollWidth);
    if (needed > width) {
      faults.push(`${name}: ${needed} pixels wide at ${width}`);
    }
    faults.push(...(await controlsOutside(shopper.page)).map((fault) => `${name} at ${width}: ${fault}`));
    await as.picture(shopper, `${width} ${name}`);
  }
}

/** What is wrong with the texts of a page. italian: those of each page in Italian, which a tour in Italian fills. */
async function withTexts(as, shopper, name, italian, faults) {
  const texts = await textsOf(shopper.page);
  const wrong = brokenTexts(texts);
  const spoken = await shopper.page.locator("html").getAttribute("lang");
  if (spoken !== as.language.code) {
    wrong.push(`says that its language is ${spoken}`);
  }
  if (as.language === languages[0]) {
    italian.set(name, texts);
  } else {
    const first = italian.get(name);
    wrong.push(...leftInItalian(texts, first, { words: as.words, italian: as.italian, names }));
    // A search finds other articles in each language.
    if (texts.length < first.length && !name.startsWith("kvsearch")) {
      wrong.push(`${first.length - texts.length} texts fewer than in Italian`);
    }
  }
  faults.push(...wrong.map((text) => `${name}: ${text}`));
}

/** Collects what html-validate says of each page as the server sends it; the result waits for the last. */
function withHtmlValidate(page, accepted, faults) {
  const pending = [];
  const look = async (response) => {
    if (response.request().resourceType() === "document" && response.status() === 200) {
      const html = new TextDecoder("windows-1252").decode(await response.body());
      const name = response.url().replace(/^.*\//, "");
      faults.push(...(await htmlFaults(html, accepted)).map((fault) => `${name}: ${fault}`));
    }
  };
  page.on("response", (response) => pending.push(look(response)));
  return () => Promise.all(pending);
}

/**
 * One tour through all kinds of pages, and a test for each tool that looked on. widths: of the screens on which each page is
 * tried, that of the visitor last; italian: the texts of the pages in Italian (`withTexts`); html: the faults of HTML that
 * are accepted (`htmlFaults`), without which it isn't looked at.
 */
export function lookedAt(as, { widths, italian, html }) {
  const faults = { axe: [], screens: [], texts: [], html: [] };
  let ended = false;
  const kinds = as.language === languages[0] ? pageKinds : spokenKinds;
  test(`every kind of page opens at ${as.screen.width} pixels in ${as.language.name}`, as.visitor(async (shopper) => {
    const settled = html ? withHtmlValidate(shopper.page, html, faults.html) : () => {};
    await tour(shopper, kinds, async (name) => {
      await onScreens(as, shopper, name, widths, faults.screens);
      await withTexts(as, shopper, name, italian, faults.texts);
      if (as.language === languages[0]) {
        await withAxe(shopper, name, faults.axe);
      }
      await settled();
    });
    ended = true;
  }));
  const clean = (name, found) => test(name, () => {
    assert.ok(ended, "the tour did not come to its end");
    assert.equal([...new Set(found)].join("\n"), "");
  });
  // In the other languages the same pages have other words.
  if (as.language === languages[0]) {
    clean("axe-core finds nothing on any kind of page", faults.axe);
  }
  clean(`no page scrolls sideways and every control is within reach at ${widths.join(", ")} pixels`, faults.screens);
  clean("no text is missing or left in Italian", faults.texts);
  if (html) {
    clean("html-validate accepts every kind of page as the server sends it", faults.html);
  }
}

/** Pages with long words and long names of values in each of the shop's four languages, on the narrowest screen. */
export function fitsInEveryLanguage(as) {
  test(`at ${narrowest} pixels pages of all four languages keep within the screen`, as.visitor(async (shopper) => {
    const faults = [];
    await fillCart(shopper);
    for (const { suffix } of languages) {
      for (const stem of ["index", "cat005", "cat007", "cat016", "cart", "order"]) {
        await shopper.page.goto(as.address(stem, "").replace(/(?=\.php$)/, suffix));
        await onScreens(as, shopper, stem + suffix, [narrowest], faults);
      }
    }
    assert.equal([...new Set(faults)].join("\n"), "");
  }));
}

export function accessibleBackOffice(as) {
  test("axe-core finds nothing in the back office, its HTML is valid, and it fits a narrow screen", async () => {
    const faults = [];
    await as.merchant(async (merchant) => {
      for (const address of await merchant.pages()) {
        const answer = await merchant.page.goto(address);
        faults.push(...(await htmlFaults(await answer.text())).map((fault) => `${address}: ${fault}`));
        faults.push(...(await accessibilityFaults(merchant.page)).map((fault) => `${address}: ${fault}`));
        const name = `office ${address.replace(/^.*\//, "")}`;
        await onScreens(as, merchant, name, [narrowest, as.screen.width], faults);
      }
    });
    assert.equal(faults.join("\n"), "");
  });
}

export function measured(as) {
  let browser;
  before(async () => {
    browser = await openMeasured((page) => fillCart(as.shopperOf({ page })));
  });
  after(() => browser?.close());
  for (const [stem, rest = ""] of measuredPages) {
    test(`Lighthouse gives ${stem} 95 or more for ${categories.join(", ")}`, async () => {
      const { scores, losses } = await measure(browser, as.address(stem, rest), categories);
      const low = Object.entries(scores).filter(([, score]) => score < 95);
      assert.deepEqual(low, [], losses.join("\n"));
    });
  }
}
