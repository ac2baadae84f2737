// The texts of a page in one language beside those of the same page in Italian, in which the shop is written first.

/** Whatever a visitor may come to read or hear: texts, also those not yet shown, titles of the page and of its parts. */
function readTexts() {
  const texts = [document.title, document.querySelector("meta[name=description]")?.content ?? ""];
  const walker = document.createTreeWalker(document.body, NodeFilter.SHOW_TEXT);
  while (walker.nextNode()) {
    if (walker.currentNode.parentElement.closest("script, style, noscript, [lang]") === document.documentElement) {
      texts.push(walker.currentNode.data);
    }
  }
  for (const name of ["alt", "title", "placeholder", "aria-label"]) {
    texts.push(...[...document.body.querySelectorAll(`[${name}]`)].map((element) => element.getAttribute(name)));
  }
  const codeOfOrder = /\d{6}-[0-9A-F]{6}/g;
  return texts.map((text) => text.replace(codeOfOrder, "").replace(/\s+/g, " ").trim())
    .filter((text) => /\p{L}{3}/u.test(text));
}

export function textsOf(page) {
  return page.evaluate(readTexts);
}

/** The names of all countries in a language. */
function countriesIn(language) {
  const regions = new Intl.DisplayNames(language, { type: "region", style: "short", fallback: "none" });
  const letters = [..."ABCDEFGHIJKLMNOPQRSTUVWXYZ"];
  return letters.flatMap((one) => letters.map((two) => regions.of(one + two))).filter((name) => name !== undefined);
}

/** Texts that show what a script or the builder failed to say. */
export function brokenTexts(texts) {
  return texts.filter((text) => /<<|>>|undefined|\bNaN\b|\[object|\bnull\b/.test(text));
}

/**
 * The texts that are as in Italian. words, italian: the texts of both languages' modules, in which a word may be
 * the same, as may the name of a country; names: the texts that are the same in all languages.
 */
export function leftInItalian(texts, italianTexts, { words, italian, names }) {
  const tags = Object.keys(words).filter((tag) => words[tag] === italian[tag]);
  const same = new Set([...names, ...tags.map((tag) => words[tag]), ...countriesIn(words.codice_lingua)]);
  return texts.filter((text) => italianTexts.includes(text) && !same.has(text));
}
