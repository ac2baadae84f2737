// What a shopper does with the pages, told in the shop's own words, so that it holds for every template: links by
// their text, fields by their label or by the name that the scripts of the shop give them.
import { strict as assert } from "node:assert";
import { mailsWith } from "./mails.mjs";
import { amountsIn } from "./money.mjs";

export class Shopper {
  /** visit and screen: see browser.mjs; host: see model_shop.mjs; language and words: see words.mjs. */
  constructor(visit, { host, language, screen, words }) {
    Object.assign(this, { page: visit.page, host, language, screen, words });
  }

  /** Opens a page of the shop in the shopper's language by its stem; `rest` follows the address. */
  async open(stem, rest = "") {
    await this.page.goto(`${this.host.shop}/${stem}${this.language.suffix}.php${rest}`);
  }

  /** Follows a link of that text; one in a closed menu is uncovered first. */
  async follow(name, within = this.page.locator("body")) {
    const link = within.getByRole("link", { name, exact: true }).filter({ visible: true }).first();
    if (!await link.isVisible()) {
      await this.uncover(within, name);
    }
    await Promise.all([this.page.waitForLoadState("load"), link.click()]);
    await this.page.waitForLoadState("load");
  }

  /** Opens the closed parts of the page, one after the other, until a link of that text is to be seen. */
  async uncover(within, name) {
    const closed = this.page.locator("button[aria-expanded=false], details:not([open]) > summary").filter({ visible: true });
    const link = within.getByRole("link", { name, exact: true }).filter({ visible: true }).first();
    for (let count = await closed.count(); count > 0 && !await link.isVisible(); count--) {
      await closed.nth(count - 1).click();
    }
  }

  /** Goes to a department by its link, or by the drop-down list where the screen has no room for links. */
  async toDepartment(name) {
    const menu = this.page.locator("select[name=kvRepartiMenu]");
    if (!await menu.isVisible()) {
      await this.follow(name);
      return;
    }
    const texts = await menu.locator("option").allInnerTexts();
    assert.equal(texts[0].trim(), this.words.scegli_reparto);
    const index = texts.findIndex((text) => text.trim() === name);
    assert.notEqual(index, -1, `the list has no ${name}`);
    await Promise.all([this.page.waitForNavigation(), menu.selectOption({ index })]);
  }

  heading() {
    return this.page.getByRole("heading", { level: 1 }).innerText();
  }

  /** The titles of the articles on the page. */
  async titles() {
    const titles = await this.page.locator("article").getByRole("heading", { level: 2 }).allInnerTexts();
    return titles.map((title) => title.trim());
  }

  /** The card of one article on a department's page. */
  card(title) {
    return this.page.locator("article").filter({ has: this.page.getByRole("heading", { name: title, exact: true }) });
  }

  /** The card from which an article of this page is bought: here, or on the page that its title leads to. */
  async forSale(title) {
    const card = this.card(title);
    await card.waitFor();
    if (await card.getByLabel(this.words.quantita).count() === 0) {
      await Promise.all([this.page.waitForNavigation(), card.getByRole("link", { name: title, exact: true }).first().click()]);
    }
    return card;
  }

  /** Buys an article that the page shows: the choices by the name of their variant. */
  async buy(title, { pieces = 1, choices = {} } = {}) {
    const card = await this.forSale(title);
    for (const [variant, choice] of Object.entries(choices)) {
      await this.choose(card, variant, choice);
    }
    await card.getByLabel(this.words.quantita).fill(String(pieces));
    await card.getByText(this.words.acquista, { exact: true }).click();
    await this.page.getByRole("status").filter({ hasText: this.words.aggiunto_al_carrello }).waitFor();
  }

  /** Takes the option of a variant whose text begins with `choice`. */
  async choose(card, variant, choice) {
    const selector = card.getByLabel(variant);
    const texts = await selector.locator("option").allInnerTexts();
    const wanted = texts.findIndex((text) => text.trim().startsWith(choice));
    assert.notEqual(wanted, -1, `${variant} offers ${texts.join(", ")}, not ${choice}`);
    await selector.selectOption({ index: wanted });
  }

  /** The row of an article in the cart. */
  line(title) {
    return this.page.locator("#carrello tr").filter({ hasText: title });
  }

  async setPieces(title, pieces) {
    const field = this.line(title).locator("input[type=number]");
    await field.fill(String(pieces));
    await field.press("Tab");
  }

  /** The amounts of the totals by their label, in cents. */
  async totals() {
    const totals = {};
    for (const row of await this.page.locator("#carrello-totali tr").all()) {
      totals[(await row.locator("th").innerText()).trim()] = amountsIn(await row.locator("td").innerText())[0];
    }
    return totals;
  }

  async search(words) {
    await this.open("search");
    const field = this.page.locator("main input[name=q]");
    await field.fill(words);
    await Promise.all([this.page.waitForURL(/kvsearch/), field.press("Enter")]);
  }

  /** The titles of the results on the page, and how many there are in all. */
  async results() {
    const main = this.page.locator("main");
    const count = Number(/\d+/.exec(await main.getByText(this.words.cerca_risultati).innerText())[0]);
    const titles = await main.locator("li, article").filter({ has: this.page.locator("a[href*='.php?n=']") }).allInnerTexts();
    return { count, titles };
  }

  /** Fills the order form, but for country and method. */
  async fillOrder(person) {
    const form = this.page.locator("form[name=Ordine]");
    for (const [name, value] of Object.entries(person)) {
      await form.locator(`[name=${name}]`).fill(value);
    }
    for (const consent of ["Maggiorenne", "Privacy"]) {
      await form.locator(`[name=${consent}]`).check();
    }
  }

  async chooseShipping(country, method) {
    const form = this.page.locator("form[name=Ordine]");
    await form.locator("[name=LSStato]").selectOption({ label: country });
    await form.locator("[name=Pagamento]").selectOption({ label: method });
  }

  async sendOrder() {
    const button = this.page.locator("form[name=Ordine]").getByRole("button", { name: this.words.invia_ordine });
    await Promise.all([this.page.waitForURL(/thankyou/), button.click()]);
  }

  /** Sends the form of the login page that holds an action, filled; waits for what comes next. */
  async #account(action, values) {
    const form = this.page.locator("form").filter({ has: this.page.locator(`input[name=azione][value=${action}]`) });
    for (const [name, value] of Object.entries(values)) {
      await form.locator(`[name=${name}]`).fill(value);
    }
    const consent = form.locator("[name=privacy]");
    if (await consent.count() > 0) {
      await consent.check();
    }
    await Promise.all([this.page.waitForNavigation(), form.getByRole("button").click()]);
  }

  /** Registers by the form of the login page and the link of the mail that it brings. */
  async register(person) {
    await this.#account("registra", person);
    const link = /\S+\?r=\w+/;
    const found = () => mailsWith(this.host.mail, "?r=").filter((mail) => mail.headers.to === person.email);
    for (let tries = 0; found().length === 0 && tries < 600; tries++) {
      await this.page.waitForTimeout(50);
    }
    await this.page.goto(link.exec(found()[0].text)[0]);
    const form = this.page.locator("form").filter({ has: this.page.locator("input[name=azione][value=conferma]") });
    await Promise.all([this.page.waitForNavigation(), form.getByRole("button").click()]);
  }

  async signIn(email, password) {
    await this.open("login");
    await this.#account("entra", { email, pw: password });
  }

  async signOut() {
    await this.open("login");
    await this.#account("esci", {});
  }
}
