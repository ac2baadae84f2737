// A shopper whose browser runs no scripts: plain links and forms lead from the department to the order.
import { strict as assert } from "node:assert";
import { test } from "node:test";
import { articles, countries, methods, person, variants } from "../support/model.mjs";
import { amountsIn, written } from "../support/money.mjs";

export function withoutScripts(as) {
  const { language, words } = as;
  const the = (thing) => thing[language.code];

  test("without scripts an article is bought, counted in the cart, and ordered", as.visitor(async (shopper) => {
    const { page } = shopper;
    await shopper.open("index");
    assert.ok(await page.locator("a.primo:visible").count() > 0, "the departments can be reached");
    await shopper.open("cat007", "?n=1&prod=1");
    const article = page.locator("article");
    await shopper.choose(article, the(variants.glaze), the(variants.glaze.ochre));
    await article.getByLabel(words.quantita, { exact: true }).fill("2");
    await Promise.all([page.waitForURL(/cart/), article.getByRole("button", { name: words.acquista, exact: true }).click()]);
    const line = page.locator("tr").filter({ hasText: the(articles.mug) });
    const price = articles.mug.price + variants.glaze.ochre.difference;
    assert.deepEqual(amountsIn(await line.innerText()).slice(-2), [price, 2 * price]);
    await line.locator("input").fill("3");
    await page.getByRole("button", { name: words.aggiorna }).click();
    assert.equal(amountsIn(await line.innerText()).at(-1), 3 * price);
    await as.picture(shopper, "cart-without-scripts");
    await page.getByRole("link", { name: words.vai_all_ordine }).click();
    await shopper.fillOrder(person);
    await shopper.chooseShipping(the(countries.italy), the(methods.transfer));
    const send = () => page.locator("main form").getByRole("button", { name: words.invia_ordine });
    // The sum is shown first: without scripts the form could not tell it.
    await Promise.all([page.waitForURL(/kvorder/), send().click()]);
    const total = amountsIn(await page.locator("pre").innerText()).at(-1);
    assert.ok(total >= 3 * price);
    await Promise.all([page.waitForURL(/thankyou/), send().click()]);
    assert.ok((await page.locator("main").innerText()).includes(written(total, language)));
  }, { javaScriptEnabled: false }));
}
