// What helps a shopper to choose: suggestions by keyboard, lists in another order, pictures, the small cart, the estimate
// of shipping. They work in both templates, whose pages differ.
import { strict as assert } from "node:assert";
import { test } from "node:test";
import { articles, countries } from "../support/model.mjs";
import { amountsIn } from "../support/money.mjs";

const beginnings = { it: "tazz", en: "mug", fr: "mug", de: "bech" };

export function choosing(as) {
  const { language, words } = as;
  const the = (thing) => thing[language.code];

  test("suggestions lead to an article by the keyboard alone", as.visitor(async (shopper) => {
    await shopper.open("index");
    const field = shopper.page.locator("header input[name=q]");
    await field.focus();
    await shopper.page.keyboard.type(beginnings[language.code]);
    const options = shopper.page.getByRole("listbox", { name: words.suggerimenti }).getByRole("option");
    await options.first().waitFor();
    assert.equal(await field.getAttribute("aria-expanded"), "true");
    assert.equal(await field.getAttribute("aria-activedescendant"), null);
    await shopper.page.keyboard.press("ArrowUp");
    assert.equal(await field.getAttribute("aria-activedescendant"), await options.last().getAttribute("id"));
    await shopper.page.keyboard.press("ArrowDown");
    await shopper.page.keyboard.press("ArrowDown");
    assert.equal(await field.getAttribute("aria-activedescendant"), await options.first().getAttribute("id"));
    assert.equal(await options.first().getAttribute("aria-selected"), "true");
    await as.picture(shopper, "suggestions");
    await shopper.page.keyboard.press("Escape");
    await options.first().waitFor({ state: "detached" });
    assert.equal(await field.getAttribute("aria-expanded"), "false");
    await shopper.page.keyboard.type("a");
    await shopper.page.keyboard.press("Backspace");
    await options.first().waitFor();
    const title = await options.first().locator(".nome").innerText();
    await shopper.page.keyboard.press("ArrowDown");
    await Promise.all([shopper.page.waitForURL(/prod=/), shopper.page.keyboard.press("Enter")]);
    assert.ok((await shopper.page.locator("main").innerText()).includes(title), title);
  }));

  test("the dearest article of a department comes first when that is chosen", as.visitor(async (shopper) => {
    await shopper.open("cat007", "?n=1");
    await shopper.page.locator("details.filtri summary").click();
    await shopper.page.getByLabel(words.ordina_per).selectOption({ label: words.ordine_prezzo_giu });
    await Promise.all([shopper.page.waitForURL(/ordine=prezzo-giu/),
      shopper.page.getByRole("button", { name: words.filtri_mostra }).click()]);
    assert.equal((await shopper.titles())[0], the(articles.set));
    await as.picture(shopper, "sorted");
    await shopper.buy(the(articles.set));
    const cart = shopper.page.getByRole("region", { name: words.menu_carrello });
    await cart.getByText(the(articles.set)).waitFor();
    assert.ok(amountsIn(await cart.innerText()).includes(articles.set.price));
    await as.picture(shopper, "small-cart");
    await shopper.page.keyboard.press("Escape");
    await cart.waitFor({ state: "detached" });
  }));

  test("the picture of an article opens in its full size and closes again", as.visitor(async (shopper) => {
    await shopper.open("cat005", "?n=1&prod=1");
    const button = shopper.page.getByRole("button", { name: words.immagine_apri }).first();
    await button.click();
    const layer = shopper.page.getByRole("dialog", { name: words.immagine_grande });
    await layer.waitFor();
    await as.picture(shopper, "gallery");
    await shopper.page.keyboard.press("Escape");
    await layer.waitFor({ state: "detached" });
    assert.ok(await button.evaluate((element) => element === document.activeElement));
  }));

  test("the cart estimates what the order form then charges", as.visitor(async (shopper) => {
    await shopper.open("cat007", "?n=2");
    await shopper.buy(the(articles.set));
    await shopper.open("cart");
    const line = shopper.line(the(articles.set));
    assert.equal(await line.locator("img").count(), 1);
    assert.match(await line.getByRole("link").getAttribute("href"), /prod=/);
    for (const country of [countries.italy, countries.france]) {
      await shopper.open("cart");
      await shopper.page.locator("#kv-stima select").selectOption({ label: the(country) });
      const estimate = amountsIn(await shopper.page.locator("#kv-stima-esito .totale td").innerText())[0];
      await as.picture(shopper, "estimate");
      await shopper.open("order");
      await shopper.page.locator("[name=LSStato]").selectOption({ label: the(country) });
      assert.equal((await shopper.totals())[words.carrello_totale], estimate);
    }
  }));
}
