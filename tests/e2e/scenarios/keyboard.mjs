// A shopper who has no mouse orders: from the article to the cart, through the order form, to the button that costs money.
import { strict as assert } from "node:assert";
import { test } from "node:test";
import { Keyboard } from "../support/keyboard.mjs";
import { articles, countries, methods, person, variants } from "../support/model.mjs";
import { written } from "../support/money.mjs";

/** The width of a telephone that this order is tried on. */
const narrow = 320;
// The fields in the order in which Tab leads through them.
const fields = ["Nome", "Cognome", "Email", "Telefono", "Indirizzo", "CAP", "Citta"];

/** Fills the order form from its first field to its last one. */
async function fillForm(keyboard, form, the) {
  for (const name of fields) {
    await keyboard.fill(form.locator(`[name=${name}]`), person[name]);
  }
  await keyboard.choose(form.locator("[name=LSStato]"), the(countries.france));
  await keyboard.choose(form.locator("[name=Pagamento]"), the(methods.transfer));
  for (const consent of ["Maggiorenne", "Privacy"]) {
    await keyboard.tabTo(form.locator(`[name=${consent}]`));
    await keyboard.page.keyboard.press("Space");
  }
}

export function orderingByKeyboard(as) {
  const { language, words } = as;
  const the = (thing) => thing[language.code];
  const width = as.screen.isMobile ? narrow : as.screen.width;

  test(`a whole order goes through by the keyboard alone at ${width} pixels, and the focus is always seen`,
    as.visitor(async (shopper) => {
      const { page } = shopper;
      const keyboard = new Keyboard(page);
      await page.setViewportSize({ ...page.viewportSize(), width });
      await shopper.open("cat007", "?n=1&prod=1");
      const article = page.locator("article").first();
      await keyboard.choose(article.getByLabel(the(variants.glaze)), the(variants.glaze.ochre));
      await keyboard.fill(article.locator("input[name^=qt]"), "2");
      await keyboard.tabTo(article.locator(".acquisto").getByText(words.acquista, { exact: true }));
      await page.keyboard.press("Enter");
      const small = page.getByRole("region", { name: words.menu_carrello });
      await keyboard.enter(small.getByRole("link"), /cart/);
      const line = shopper.line(the(articles.mug));
      await keyboard.fill(line.locator("input[type=number]"), "3");
      // The field is left for the next control of its line, which is still there.
      await keyboard.tabTo(line.getByRole("button", { name: words.togli }));
      await keyboard.enter(page.getByRole("link", { name: words.vai_all_ordine }), /order/);
      const form = page.locator("form[name=Ordine]");
      await fillForm(keyboard, form, the);
      const total = (await shopper.totals())[words.carrello_totale];
      await as.picture(shopper, "keyboard-form");
      await keyboard.enter(form.getByRole("button", { name: words.invia_ordine }), /thankyou/);
      assert.ok((await page.locator("main").innerText()).includes(written(total, language)));
      assert.deepEqual([...keyboard.faults], []);
    }));
}
