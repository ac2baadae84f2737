// A visitor fills the cart, looks at shipping, and orders; the merchant finds the order.
import { strict as assert } from "node:assert";
import { test } from "node:test";
import { articles, countries, methods, person } from "../support/model.mjs";
import { mailsWith } from "../support/mails.mjs";
import { amountsIn, written } from "../support/money.mjs";

// Its first word is beyond the character set of the pages.
const buyer = `${person.Nome} ${person.Cognome}`;

/** How far the parts of the page have moved since it was opened; 0.1 is what a visitor begins to mind (web.dev/cls). */
function layoutShift(page) {
  return page.evaluate(() => new Promise((done) => {
    // The first frame after this one has been painted, so whatever the scripts of the page drew is told.
    requestAnimationFrame(() => requestAnimationFrame(() => {
      const observer = new PerformanceObserver(() => {});
      observer.observe({ type: "layout-shift", buffered: true });
      done(observer.takeRecords().filter((entry) => !entry.hadRecentInput).reduce((sum, entry) => sum + entry.value, 0));
    }));
  }));
}

/** Two mugs and a set: 108.00 of goods, which ship in Italy for 4.00 and VAT in cash, free by transfer. */
async function fillCart(shopper, the) {
  await shopper.open("cat007", "?n=1");
  await shopper.buy(the(articles.mug), { pieces: 2 });
  await shopper.open("cat007", "?n=2");
  await shopper.buy(the(articles.set));
}

export function ordering(as) {
  const { host, language, words } = as;
  const the = (thing) => thing[language.code];

  test("the cart follows each change of a quantity", as.visitor(async (shopper) => {
    await shopper.open("cat007", "?n=2");
    await shopper.buy(the(articles.tumbler), { pieces: 5 });
    await shopper.open("cart");
    const total = async () => (await shopper.totals())[words.carrello_totale];
    assert.equal(await total(), 5 * articles.tumbler.price);
    assert.ok(await layoutShift(shopper.page) < 0.01, "nothing moves when the lines are drawn");
    assert.ok(await shopper.page.getByRole("link", { name: words.vai_all_ordine }).isEnabled());
    // Six pieces are five per cent cheaper.
    await shopper.setPieces(the(articles.tumbler), 6);
    assert.equal(await total(), 6 * articles.tumbler.price * 0.95);
    await as.picture(shopper, "cart");
    await shopper.page.reload();
    assert.equal(await total(), 6 * articles.tumbler.price * 0.95);
    await shopper.line(the(articles.tumbler)).getByRole("button", { name: words.togli }).click();
    await shopper.page.getByText(words.carrello_vuoto).waitFor();
  }));

  test("shipping follows country and method", as.visitor(async (shopper) => {
    await fillCart(shopper, the);
    await shopper.open("cart");
    await shopper.follow(words.vai_all_ordine);
    const shipping = async (country, method) => {
      await shopper.chooseShipping(country, the(method));
      const totals = await shopper.totals();
      // A country that pays no VAT buys without the VAT that the prices include.
      const vat = (totals[words.carrello_iva_esente] ?? 0) + (totals[words.carrello_iva_spedizione] ?? 0);
      assert.equal(vat < 0, country === the(countries.switzerland));
      assert.equal(totals[words.carrello_totale], totals[words.carrello_merce] + totals[words.carrello_spedizione] + vat);
      return totals[words.carrello_spedizione];
    };
    assert.equal(await shipping(the(countries.italy), methods.cash), 488);
    assert.equal(await shipping(the(countries.italy), methods.transfer), 0);
    assert.equal(await shipping(the(countries.france), methods.transfer), 1525);
    assert.equal(await shipping(the(countries.switzerland), methods.transfer), 2562);
    // Cash on delivery is for Italy alone.
    const cash = shopper.page.locator("[name=Pagamento] option").filter({ hasText: the(methods.cash) });
    assert.ok(await cash.evaluate((option) => option.disabled));
  }));

  test("an order reaches the customer, the merchant and the back office with one total", as.visitor(async (shopper) => {
    await fillCart(shopper, the);
    await shopper.open("order");
    await shopper.fillOrder(person);
    await shopper.chooseShipping(the(countries.italy), the(methods.cash));
    await as.picture(shopper, "order");
    const total = (await shopper.totals())[words.carrello_totale];
    assert.equal(total, 2 * articles.mug.price + articles.set.price + 488);
    await shopper.sendOrder();
    const main = await shopper.page.locator("main").innerText();
    const code = /\d{6}-[0-9A-F]{6}/.exec(main)?.[0];
    assert.ok(code, `no order code in: ${main}`);
    assert.ok(main.includes(written(total, language)));
    assert.ok(main.includes(buyer));
    await as.picture(shopper, "thank-you");

    const mails = mailsWith(host.mail, code);
    const recipients = mails.map((mail) => mail.headers.to).sort();
    assert.deepEqual(recipients, ["ordini@bottega.example", person.Email]);
    for (const mail of mails) {
      assert.ok(mail.text.includes(the(articles.mug)), mail.text);
      // Nobody has proven yet that the shopper's address is theirs.
      assert.equal(mail.text.includes(buyer), mail.headers.to !== person.Email, mail.text);
      assert.ok(amountsIn(mail.text).includes(total), mail.text);
    }
    await shopper.open("cart");
    await shopper.page.getByText(words.carrello_vuoto).waitFor();

    await as.merchant(async (merchant) => {
      await merchant.openOrder(code);
      const detail = await merchant.page.locator("main").innerText();
      assert.ok(amountsIn(detail).includes(total) && detail.includes(buyer), detail);
      assert.ok(detail.includes(the(articles.set)));
    });
  }));

  test("a line that is sold out says so where it is and closes the way to the order until it is gone",
    as.visitor((shopper) => as.merchant(async (merchant) => {
      const line = shopper.line(the(articles.mug));
      const other = shopper.line(the(articles.set));
      await fillCart(shopper, the);
      try {
        await merchant.setStock(articles.mug.code, 0);
        await shopper.open("cart");
        await line.getByText(words.riga_non_disponibile).waitFor();
        assert.match(await line.getAttribute("class"), /da-correggere/);
        assert.doesNotMatch(await other.getAttribute("class") ?? "", /da-correggere/);
        const step = shopper.page.getByRole("link", { name: words.vai_all_ordine });
        assert.equal(await step.getAttribute("aria-disabled"), "true");
        await shopper.page.getByRole("status").filter({ hasText: words.carrello_da_correggere }).waitFor();
        await as.picture(shopper, "cart-sold-out");
        await step.click({ force: true });
        assert.match(shopper.page.url(), /cart/);
        await merchant.setStock(articles.mug.code, 1);
        await shopper.page.reload();
        await line.getByText(`${words.pezzi_disponibili}: 1`).waitFor();
        // The quantity is taken as its field is left by a press on the other line's button, which has to get its click.
        await line.locator("input[type=number]").fill("1");
        await other.getByRole("button", { name: words.togli }).click();
        await other.waitFor({ state: "detached" });
        assert.equal(await line.locator("strong").count(), 0);
        await shopper.follow(words.vai_all_ordine);
        assert.match(shopper.page.url(), /order/);
      } finally {
        await merchant.setStock(articles.mug.code, "");
      }
    })));

  test("an order below the smallest amount is not taken", as.visitor(async (shopper) => {
    await shopper.open("cat007", "?n=2");
    // The page shows the price of one of six pieces, then of one.
    const tumbler = await shopper.forSale(the(articles.tumbler));
    await tumbler.getByLabel(words.quantita).fill("6");
    assert.equal(amountsIn(await tumbler.locator("strong.prezzo").innerText())[0], articles.tumbler.price * 0.95);
    await shopper.buy(the(articles.tumbler));
    await shopper.open("cart");
    await shopper.page.getByRole("status").filter({ hasText: words.carrello_manca }).waitFor();
    const step = shopper.page.getByRole("link", { name: words.vai_all_ordine });
    assert.equal(await step.getAttribute("aria-disabled"), "true");
    await as.picture(shopper, "cart-closed");
    await shopper.open("order");
    await shopper.fillOrder(person);
    await shopper.page.getByRole("button", { name: words.invia_ordine }).click();
    await shopper.page.getByRole("status").filter({ hasText: words.ordine_minimo }).waitFor();
    assert.match(shopper.page.url(), /order/);
  }));
}
