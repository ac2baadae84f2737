// What helps a shopper to choose: suggestions by keyboard, lists in another order, pictures, the small cart, the estimate
// of shipping. They work in both templates, whose pages differ.
import { strict as assert } from "node:assert";
import { copyFileSync, rmSync } from "node:fs";
import { basename, join } from "node:path";
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
    const said = shopper.page.getByRole("status").filter({ hasText: words.suggerimenti });
    assert.equal(await said.innerText(), `${words.suggerimenti}: ${await options.count()}`);
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
    const sorted = await shopper.titles();
    assert.equal(sorted[0], the(articles.set));
    await as.picture(shopper, "sorted");
    // Whoever is sent the address sees the same list, and how it is sorted.
    await shopper.page.context().clearCookies();
    await shopper.page.goto(shopper.page.url());
    assert.deepEqual(await shopper.titles(), sorted);
    assert.equal(await shopper.page.getByLabel(words.ordina_per).inputValue(), "prezzo-giu");
    await shopper.buy(the(articles.set));
    const cart = shopper.page.getByRole("region", { name: words.menu_carrello });
    await cart.getByText(the(articles.set)).waitFor();
    assert.ok(amountsIn(await cart.innerText()).includes(articles.set.price));
    assert.ok((await cart.boundingBox()).width <= 400, "it covers no more of the page than it needs");
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

  test("the keyboard chooses among several pictures of an article and leafs through them in full size",
    as.visitor(async (shopper) => {
      const { page } = shopper;
      const gallery = page.locator(".galleria");
      const address = async () => new URL(await gallery.locator(".grande img").evaluate((picture) => picture.currentSrc)).pathname;
      await shopper.open("cat007", "?n=1&prod=1");
      const first = join(as.shop, "online", await gallery.getAttribute("data-grande"));
      const second = first.replace(/(?:-[pg])?(?=\.\w+$)/, "-2");
      copyFileSync(first, second);
      try {
        await page.reload();
        const small = page.getByRole("list", { name: words.immagini }).getByRole("link");
        assert.equal(await small.count(), 2);
        await small.nth(1).focus();
        await page.keyboard.press("Enter");
        assert.equal(await small.nth(1).getAttribute("aria-current"), "true");
        assert.equal(await address(), `/${basename(second)}`);
        const opener = page.getByRole("button", { name: words.immagine_apri });
        await opener.focus();
        await page.keyboard.press("Enter");
        const layer = page.getByRole("dialog", { name: words.immagine_grande });
        const position = layer.getByRole("status");
        assert.equal(await position.innerText(), "2 / 2");
        await page.keyboard.press("ArrowRight");
        assert.equal(await position.innerText(), "1 / 2");
        await page.keyboard.press("ArrowLeft");
        assert.equal(await position.innerText(), "2 / 2");
        await page.keyboard.press("Escape");
        await layer.waitFor({ state: "detached" });
        assert.ok(await opener.evaluate((element) => element === document.activeElement));
      } finally {
        rmSync(second);
      }
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
