// A customer with a price list of their own: other prices, and departments that are closed to visitors.
import { strict as assert } from "node:assert";
import { test } from "node:test";
import { articles, countries, departments, methods, person } from "../support/model.mjs";
import { amountsIn } from "../support/money.mjs";

/** Orders what is in the cart and the same once more from the list of past orders. */
async function ordersAgain(as, shopper, email) {
  const { language, words } = as;
  const { page } = shopper;
  await shopper.setPieces(articles.mug[language.code], 2);
  await page.getByRole("link", { name: words.vai_all_ordine }).click();
  await page.waitForURL(/order/);
  await shopper.fillOrder({ ...person, Email: email });
  await shopper.chooseShipping(countries.italy[language.code], methods.transfer[language.code]);
  await shopper.sendOrder();
  await shopper.open("login");
  const order = page.locator("section").filter({ hasText: words.storico_titolo }).getByRole("listitem").first();
  await order.locator("summary").click();
  assert.ok((await order.innerText()).includes(articles.mug[language.code]));
  const outside = await page.evaluate(() => document.documentElement.scrollWidth - innerWidth);
  assert.ok(outside <= 0, `an opened order is ${outside} pixels wider than the screen`);
  await as.picture(shopper, "past-order");
  await Promise.all([page.waitForURL(/cart/), order.getByRole("button").click()]);
  assert.equal(await shopper.line(articles.mug[language.code]).locator("input[type=number]").inputValue(), "2");
}

export function customers(as) {
  const { language, words } = as;
  const the = (thing) => thing[language.code];

  test("a visitor at a closed department is asked to sign in", as.visitor(async (shopper) => {
    await shopper.open("index");
    await shopper.toDepartment(the(departments.retailers));
    await shopper.page.waitForURL(/login.*m=11/);
    await as.picture(shopper, "login");
  }));

  test("a customer whom the merchant gives the retailers' price list sees its prices and its department",
    as.visitor(async (shopper) => {
      const email = `negozio-${as.name}@cliente.example`;
      const password = "una parola lunga";
      await shopper.open("login");
      await shopper.register({ nome: "Åsa", cognome: "Lindqvist", email, pw: password });
      await as.merchant((merchant) => merchant.setPriceList(email, 1));
      await shopper.open("cat007", "?n=1");
      assert.ok(amountsIn(await shopper.card(the(articles.mug)).innerText()).includes(articles.mug.retailer));
      await shopper.open("index");
      await shopper.toDepartment(the(departments.retailers));
      assert.match(await shopper.heading(), new RegExp(the(departments.retailers)));
      assert.ok((await shopper.titles()).length > 0);

      await shopper.open("cat007", "?n=1");
      await shopper.buy(the(articles.mug));
      await shopper.open("cart");
      assert.equal((await shopper.totals())[words.carrello_totale], articles.mug.retailer);
      const account = shopper.page.getByRole("banner").getByRole("link", { name: words.menu_conto });
      assert.match(await account.innerText(), /Åsa/);
      await shopper.signOut();
      await shopper.open("cart");
      assert.equal(await account.count(), 0);
      assert.equal((await shopper.totals())[words.carrello_totale], articles.mug.price);
      await shopper.signIn(email, password);
      await shopper.open("cart");
      assert.equal((await shopper.totals())[words.carrello_totale], articles.mug.retailer);
      await ordersAgain(as, shopper, email);
    }));
}
