// The browser's side of the price oracle: answers requests of one JSON line each with one line.
//   cart   the shop's own scripts on a page as the server sent it, without a screen
//   visit  the same in chromium: somebody who buys on the article pages, and reads cart and order page
import { readFileSync } from "node:fs";
import { join } from "node:path";
import { createInterface } from "node:readline";
import vm from "node:vm";
import { Visit, openBrowser, screens } from "../e2e/support/browser.mjs";

const contexts = new Map();

/** The scripts of a shop's folder, run once, with as much of a browser as they need to count. */
function shopContext(folder) {
  if (!contexts.has(folder)) {
    const parts = { data: "[]", ready: [] };
    const document = {
      cookie: "",
      getElementById: (id) => id === "kv-carrello-dati" ? { textContent: parts.data } : null,
      querySelectorAll: () => [],
      addEventListener: (name, act) => parts.ready.push(act),
      dispatchEvent: () => true,
    };
    const location = { pathname: "/", protocol: "http:" };
    const context = vm.createContext({ document, navigator: {}, location, CustomEvent: class {} });
    context.window = Object.assign(context, { addEventListener: () => {} });
    for (const name of ["js0.js", "js1.js", "js2.js"]) {
      vm.runInContext(readFileSync(join(folder, name), "latin1"), context);
    }
    contexts.set(folder, { context, parts });
  }
  return contexts.get(folder);
}

/** The totals and the prices of the lines that the scripts compute from a page and its cookie. */
function cart({ folder, page, cookie, method, zone }) {
  const { context, parts } = shopContext(folder);
  const data = /<script type="application\/json" id="kv-carrello-dati">(.*?)<\/script>/s.exec(page);
  const start = /<script>(\s*document\.cookie =.*?)<\/script>/s.exec(page);
  parts.data = data[1];
  parts.ready = [];
  vm.runInContext(start[1], context);
  context.document.cookie = cookie;
  parts.ready.forEach((act) => act());
  const lines = context.servedLines();
  return {
    totals: context.orderTotals(lines, method, zone),
    pieces: lines.map((line) => context.pieceAmount(line)),
    texts: lines.map((line) => context.amountText(context.pieceAmount(line))),
  };
}

let browser = null;

/** Puts an article into the cart with the controls of its page. */
async function buy(page, { address, position, keys, pieces }) {
  await page.goto(address);
  const article = page.locator("article").first();
  for (const [slot, key] of Object.entries(keys).filter(([, chosen]) => chosen !== "")) {
    await article.locator(`select[name=op${slot}${position}]`).evaluate((select, wanted) => {
      select.selectedIndex = Array.from(select.options).findIndex((option) => option.dataset.k === wanted);
    }, key);
  }
  await article.locator(`input[name=qt${position}]`).fill(String(pieces));
  const button = article.locator("button[type=submit]");
  await (await button.count() > 0 ? button : article.locator("a.bottone")).click();
  await page.waitForFunction(() => document.getElementById("kv-avviso").classList.contains("visibile"));
}

const texts = (page, selector) => page.locator(selector).allInnerTexts();

async function visit({ cookies, purchases, cartPage, orderPage, country, method }) {
  browser = browser ?? await openBrowser();
  const visitor = await Visit.begin(browser, screens[1], "it");
  const { context, page } = visitor;
  try {
    await context.addCookies(cookies);
    for (const purchase of purchases) {
      await buy(page, purchase);
    }
    await page.goto(cartPage);
    const lines = await texts(page, "#carrello tbody tr td:nth-child(3)");
    await page.goto(orderPage);
    await page.locator("[name=LSStato]").selectOption({ label: country });
    await page.locator("[name=Pagamento]").selectOption({ label: method });
    const totals = await texts(page, "#carrello-totali td");
    await visitor.leave();
    return { lines, totals, faults: visitor.faults };
  } catch (error) {
    await context.close();
    throw error;
  }
}

for await (const line of createInterface({ input: process.stdin })) {
  const request = JSON.parse(line);
  const answer = request.visit ? await visit(request.visit) : cart(request.cart);
  process.stdout.write(`${JSON.stringify(answer)}\n`);
}
await browser?.close();
