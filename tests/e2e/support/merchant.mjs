// What the merchant does in the back office.

export class Merchant {
  constructor(visit, host) {
    this.page = visit.page;
    this.host = host;
  }

  async enter() {
    await this.page.goto(`${this.host.backoffice}/`);
    await this.page.locator("[name=utente]").fill("bottega");
    await this.page.locator("[name=password]").fill("bottega-locale");
    await Promise.all([this.page.waitForNavigation(), this.page.locator("[name=password]").press("Enter")]);
  }

  async openOrder(code) {
    await this.page.goto(`${this.host.backoffice}/ordini.php`);
    await this.page.getByRole("link", { name: code }).first().click();
    await this.page.getByRole("heading", { name: code }).waitFor();
  }

  /** Sets how many pieces there are of the article that has a code; "" is no limit. */
  async setStock(code, pieces) {
    await this.page.goto(`${this.host.backoffice}/disponibilita.php?q=${code}`);
    const field = this.page.getByLabel(`Quantità: ${code}`);
    await field.fill(String(pieces));
    await Promise.all([this.page.waitForNavigation(), field.press("Enter")]);
  }

  /** Gives a customer one of the price lists 0 to 9. */
  async setPriceList(email, list) {
    await this.page.goto(`${this.host.backoffice}/clienti.php?q=${encodeURIComponent(email)}`);
    const field = this.page.locator("[name=listino]");
    if (!await field.isVisible()) {
      await this.page.locator("tr").filter({ hasText: email }).getByRole("link").first().click();
    }
    await field.waitFor();
    if (await field.evaluate((element) => element.tagName) === "SELECT") {
      await field.selectOption(String(list));
    } else {
      await field.fill(String(list));
    }
    const form = this.page.locator("form").filter({ has: field });
    await Promise.all([this.page.waitForNavigation(), form.getByRole("button").first().click()]);
  }

  /** The addresses of the pages that the menu leads to, of the newest order and of its prints. */
  async pages() {
    const address = (link) => link.evaluate((element) => element.href);
    const links = await this.page.locator("nav a").all();
    const found = await Promise.all(links.map(address));
    await this.page.goto(`${this.host.backoffice}/ordini.php`);
    found.push(await address(this.page.locator("table").getByRole("link").first()));
    await this.page.goto(found.at(-1));
    found.push(...await Promise.all((await this.page.locator("a[href^='stampa']").all()).map(address)));
    return found.filter((one) => !/esci/.test(one));
  }
}
