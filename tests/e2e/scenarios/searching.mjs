// A visitor searches. The shop asks for all words, and for whole words in one of the two runs.
import { strict as assert } from "node:assert";
import { test } from "node:test";
import { articles } from "../support/model.mjs";

const requests = {
  it: { all: "piatto maiolica", none: "piatto lampada", fragment: "maiol", many: "gres" },
  en: { all: "plate maiolica", none: "plate lamp", fragment: "maiol", many: "stoneware" },
  fr: { all: "assiette majolique", none: "assiette lampe", fragment: "majol", many: "grès" },
  de: { all: "Teller Majolika", none: "Teller Lampe", fragment: "Majol", many: "Steinzeug" },
};

export function searching(as) {
  const { language, words, wholeWords } = as;
  const request = requests[language.code];

  test("a search finds the articles that hold all of the words", as.visitor(async (shopper) => {
    await shopper.search(request.all);
    const { count, titles } = await shopper.results();
    assert.ok(count >= 1 && count === titles.length, `${count} results, ${titles.length} shown`);
    assert.ok(titles.some((title) => title.includes(articles.plate[language.code])), titles.join(", "));
    const result = shopper.page.locator("main li").filter({ has: shopper.page.locator("img") }).first();
    const picture = await result.locator("img").boundingBox();
    const title = await result.getByRole("link").first().boundingBox();
    assert.ok(picture.x + picture.width <= title.x, "the picture is beside the title");
    await shopper.search(request.none);
    await shopper.page.getByText(words.cerca_nessuno).waitFor();
    await as.picture(shopper, "search");
  }));

  test(wholeWords ? "a part of a word finds nothing" : "a part of a word finds the word", as.visitor(async (shopper) => {
    await shopper.search(request.fragment);
    const { count } = await shopper.results();
    assert.equal(count > 0, !wholeWords);
  }));

  test("a result leads to its article", as.visitor(async (shopper) => {
    await shopper.search(request.all);
    await shopper.page.locator("main").getByRole("link", { name: articles.plate[language.code] }).first().click();
    await shopper.page.waitForURL(/cat008/);
    await shopper.card(articles.plate[language.code]).waitFor();
  }));

  test("many results come in pages", as.visitor(async (shopper) => {
    await shopper.search(request.many);
    const first = await shopper.results();
    assert.ok(first.count > 3);
    assert.equal(first.titles.length, 3);
    await shopper.follow("2", shopper.page.locator("main").getByRole("navigation", { name: words.pagine }));
    const second = await shopper.results();
    assert.equal(second.count, first.count);
    assert.deepEqual(second.titles.filter((title) => first.titles.includes(title)), []);
  }));
}
