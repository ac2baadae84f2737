// A visitor looks around: departments, pages, variants, offers.
import { strict as assert } from "node:assert";
import { test } from "node:test";
import { articles, departments, variants } from "../support/model.mjs";
import { amountsIn, written } from "../support/money.mjs";

export function visiting(as) {
  const { language, words } = as;
  const the = (thing) => thing[language.code];

  test("the department tree leads from the first page to an article", as.visitor(async (shopper) => {
    await shopper.open("index");
    const blurred = await shopper.page.locator("main img").evaluateAll((pictures) => pictures
      .filter((picture) => picture.complete && picture.naturalWidth < picture.clientWidth)
      .map((picture) => `${picture.currentSrc}: ${picture.naturalWidth} pixels on ${picture.clientWidth}`));
    assert.deepEqual(blurred, [], "no picture of the first page is drawn larger than it is");
    await shopper.toDepartment(the(departments.ceramics));
    assert.match(await shopper.heading(), new RegExp(the(departments.ceramics)));
    await shopper.toDepartment(the(departments.cups));
    assert.match(await shopper.heading(), new RegExp(the(departments.cups)));
    assert.ok((await shopper.titles()).includes(the(articles.mug)));
    assert.equal(amountsIn(await shopper.card(the(articles.mug)).innerText())[0], articles.mug.price);
    await as.picture(shopper, "department");
  }));

  test("the title of an article leads to a page of its own, headed by it, with related articles as cards",
    as.visitor(async (shopper) => {
      await shopper.open("cat007", "?n=1");
      await Promise.all([shopper.page.waitForURL(/prod=1/),
        shopper.card(the(articles.mug)).getByRole("link", { name: the(articles.mug), exact: true }).click()]);
      assert.equal(await shopper.heading(), the(articles.mug));
      const data = await shopper.page.locator("script[type='application/ld+json']").allTextContents();
      const product = data.map((text) => JSON.parse(text)).find((one) => one["@type"] === "Product");
      const offer = [product.offers].flat()[0];
      assert.equal(Math.round(100 * offer.price), articles.mug.price);
      assert.equal(offer.shippingDetails.shippingDestination.addressCountry, "IT");
      assert.equal(offer.hasMerchantReturnPolicy.merchantReturnDays, 14);
      await shopper.page.getByRole("heading", { name: words.correlati, level: 2 }).waitFor();
      const cards = shopper.page.locator("main .schede a").filter({ has: shopper.page.locator("img") });
      assert.ok(amountsIn(await cards.first().innerText()).length > 0);
      await cards.first().click();
      await shopper.page.waitForURL((address) => !/cat007.*prod=1$/.test(address.href));
      await as.picture(shopper, "related");
    }));

  test("page 2 of a department goes on where page 1 ends", as.visitor(async (shopper) => {
    await shopper.open("cat007", "?n=1");
    const first = await shopper.titles();
    assert.equal(first.length, 3);
    await shopper.follow("2", shopper.page.getByRole("navigation", { name: words.pagine }));
    const second = await shopper.titles();
    assert.deepEqual(second, [the(articles.set), the(articles.tumbler)]);
    assert.deepEqual(first.filter((title) => second.includes(title)), []);
    await shopper.follow("1", shopper.page.getByRole("navigation", { name: words.pagine }));
    assert.deepEqual(await shopper.titles(), first);
  }));

  test("a variant says what it adds to the price, and the cart charges it", as.visitor(async (shopper) => {
    await shopper.open("cat007", "?n=1");
    const { ochre } = variants.glaze;
    const { paper } = variants.wrapping;
    const mug = await shopper.forSale(the(articles.mug));
    const offered = await mug.getByLabel(the(variants.glaze)).innerText();
    assert.match(offered, new RegExp(`${the(ochre)}.*\\+.*${written(ochre.difference, language)}`));
    await shopper.choose(mug, the(variants.glaze), the(ochre));
    assert.equal(amountsIn(await mug.locator("strong.prezzo").innerText())[0], articles.mug.price + ochre.difference);
    await shopper.buy(the(articles.mug), {
      choices: { [the(variants.glaze)]: the(ochre), [the(variants.wrapping)]: the(paper) },
    });
    await shopper.open("cart");
    const line = await shopper.line(the(articles.mug)).innerText();
    assert.match(line, new RegExp(`${the(ochre)}[^]*${the(paper)}`));
    const price = articles.mug.price + ochre.difference + paper.difference;
    assert.deepEqual(amountsIn(line).slice(-2), [price, price]);
  }));

  test("the price of a litre follows the chosen variant", as.visitor(async (shopper) => {
    await shopper.open("cat007", "?n=1");
    const { ochre } = variants.glaze;
    const mug = await shopper.forSale(the(articles.mug));
    const shown = async () => amountsIn(await mug.locator(".unitario").innerText())[0];
    assert.equal(await shown(), Math.round(articles.mug.price / articles.mug.litres));
    assert.match(await mug.locator(".unitario").innerText(), / \/ l$/);
    await shopper.choose(mug, the(variants.glaze), the(ochre));
    assert.equal(await shown(), Math.round((articles.mug.price + ochre.difference) / articles.mug.litres));
    await as.picture(shopper, "unit-price");
  }));

  test("an offer shows the old price beside the new one, and the cart charges the new one",
    as.visitor(async (shopper) => {
      await shopper.open("cat007", "?n=2");
      const card = shopper.card(the(articles.set));
      assert.deepEqual(amountsIn(await card.locator("s, del").innerText()), [articles.set.before]);
      assert.ok(amountsIn(await card.innerText()).includes(articles.set.price));
      await shopper.buy(the(articles.set));
      await shopper.open("cart");
      assert.equal((await shopper.totals())[words.carrello_totale], articles.set.price);
    }));

  test("the other language is one link away, on the same page", as.visitor(async (shopper) => {
    await shopper.open("cat008", "?n=1");
    const other = language.suffix === "" ? "cat008_l2.php" : "cat008.php";
    const link = shopper.page.locator(`header a[href*='${other}'], nav a[href*='${other}']`).first();
    if (!await link.isVisible()) {
      await shopper.page.locator("button[aria-expanded=false], summary").filter({ visible: true }).first().click();
    }
    await link.click();
    await shopper.page.waitForURL(new RegExp(other));
    assert.notEqual(await shopper.page.locator("html").getAttribute("lang"), language.code);
  }));
}
