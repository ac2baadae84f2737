#!/usr/bin/env python3
"""The pages of the template chiaro as the server sends them, without scripts: server_pages.py KORVANE_CLI"""
import json
import re

from at_home_cases import AtHome  # noqa: F401  (found by unittest)
from law_page_cases import LawfulPages, enter_identity  # noqa: F401
from law_price_cases import LegalNotes  # noqa: F401  (its tests run on this file's shop)
from served_shop import SHOPPER
from shop_case import CustomerCase, article, cart_cookie, main, order, shop
from shopper_cases import *  # noqa: F401,F403  (cases that this shop runs too)


class Pages(CustomerCase):
    def data(self, address, kind="Product"):
        """The structured data of a page that are of a kind."""
        found = re.findall(r'<script type="application/ld\+json">(.*?)</script>', self.visitor.ask(address).text, re.S)
        return next(data for data in map(json.loads, found) if data["@type"] == kind)

    def with_one_variant(self):
        """An article with one variant: number, variant, the codes of its values, the address of its page."""
        number, variant, position = shop().rows(
            "SELECT dettaglio.ID, opzione1, contatore FROM dettaglio INNER JOIN articoli USING (ID) INNER JOIN ordinamento"
            " USING (ID) WHERE opzione1 > 1 AND opzione2 < 2 AND opzione3 < 2 AND opzione4 < 2 AND pagina = 'cat007'"
            " AND sottopagina = 1 LIMIT 1")[0]
        codes = [row[0] for row in shop().rows(f"SELECT codice FROM opcodici WHERE OpID = {variant}")]
        return number, variant, codes, f"cat007.php?n=1&prod={position}"

    def sell_out(self, number, variant, codes):
        for code in codes:
            shop().execute(f"REPLACE INTO kv_disponibilita VALUES ('V', '{number}.{variant}.{code}', 1, 0)")

    def test_structured_data_tell_which_values_are_sold_out(self):
        number, variant, codes, address = self.with_one_variant()
        self.assertEqual(self.data(address)["offers"]["availability"], "https://schema.org/InStock")
        self.sell_out(number, variant, codes[:1])
        offers = {offer["sku"]: offer["availability"].rsplit("/")[-1] for offer in self.data(address)["offers"]}
        self.assertEqual(offers, {code: "OutOfStock" if code == codes[0] else "InStock" for code in codes})

    def test_an_article_whose_values_are_all_sold_out_is(self):
        number, variant, codes, address = self.with_one_variant()
        self.sell_out(number, variant, codes)
        page = self.visitor.ask(address).text
        self.assertIn('class="esaurito"', page)
        self.assertNotIn('class="acquisto"', page)

    def test_an_order_goes_through_without_scripts(self):
        address = self.with_one_variant()[3]
        page = self.visitor.ask(address)
        form = page.form("kvcarrello")
        pieces = next(name for name in form["fields"] if name.startswith("qt"))
        page = self.visitor.send(form, page, **{pieces: "3"})
        self.assertIn("/cart.php", page.address)
        line = next(name for name in page.form("kvcarrello")["fields"] if name.startswith("q["))
        self.assertEqual(page.form("kvcarrello")["fields"][line], "3")
        page = self.visitor.send(page.form("kvcarrello"), page, **{line: "4"})
        self.assertEqual(page.form("kvcarrello")["fields"][line], "4")
        self.assertIn('href="order.php"', page.text)
        page = self.visitor.ask("order.php")
        page = self.visitor.send(page.form("kvorder"), page, **dict(SHOPPER, Nome="Łucja"))
        self.assertEqual(self.count("kv_ordini"), 0)
        total = re.search(r"Totale: (\S+ [\d.,]+)", page.text).group(1)
        page = self.visitor.send(page.form("kvorder"), page)
        self.assertIn("thankyou", page.address)
        self.assertIn(total, page.text)
        self.assertEqual(self.order_data()["righe"][0]["quantita"], 4)
        self.assertEqual(self.order_data()["campi"]["Nome"], "Łucja")
        self.assertFalse(any("kvstore_cart" in name for _, name in self.visitor.cookies))

    def test_a_cart_without_scripts_says_what_keeps_from_the_order(self):
        cart_cookie(self.visitor, self.cart)
        shop().execute(f"REPLACE INTO kv_disponibilita VALUES ('A', '{self.article}', 1, 0)")
        page = self.visitor.ask("cart.php").text
        plain = page[page.index("<noscript>"):page.index("</noscript>")]
        self.assertIn('class="da-correggere"', plain)
        self.assertIn("correggere o togliere le righe segnate", plain)
        self.assertNotIn('href="order.php"', plain)
        cart_cookie(self.visitor, f"{article('PA-002')}.1")
        self.assertRegex(self.visitor.ask("cart.php").text, r"Ordine minimo: € 15,00\. Mancano ancora: € [\d,]+\.")

    def test_what_cannot_be_bought_is_told_without_scripts(self):
        page = self.visitor.ask(self.with_one_variant()[3])
        form = page.form("kvcarrello")
        pieces = next(name for name in form["fields"] if name.startswith("qt"))
        self.assertIn("quantità valida", self.visitor.send(form, page, **{pieces: "-1"}).text)
        self.assertIn("non sono più disponibili", self.visitor.send(form, page, compra="99999.1").text)
        self.assertFalse(any("kvstore_cart" in name for _, name in self.visitor.cookies))

    def test_the_page_after_a_payment_says_paid_only_of_a_paid_order(self):
        word = "Il pagamento è andato a buon fine"
        self.assertNotIn(word, self.visitor.ask("payok.php").text)
        order(self.visitor, self.cart, method=2)
        page = self.visitor.ask("payok.php").text
        self.assertNotIn(word, page)
        self.assertIn("non è ancora confermato", page)
        shop().execute("UPDATE kv_ordini SET stato = 'pagato'")
        self.assertIn(word, self.visitor.ask("payok.php").text)

    def test_a_page_says_what_it_may_load_and_who_may_frame_it(self):
        for address in ("index.php", "cat007.php?n=1", "cart.php", "login.php", "kvsearch.php?q=gres", "cat007.php?n=99"):
            headers = self.visitor.ask(address).headers
            policy = headers["Content-Security-Policy"]
            for part in ("default-src 'self'", "object-src 'none'", "base-uri 'self'", "frame-ancestors 'self'"):
                self.assertIn(part, policy, address)
            self.assertNotIn("unsafe-eval", policy)
            self.assertEqual((headers["X-Content-Type-Options"], headers["Referrer-Policy"]), ("nosniff", "same-origin"))

    def test_the_first_page_reads_all_articles_of_its_showcase_by_one_query(self):
        shop().execute("SET GLOBAL log_output = 'TABLE'", "TRUNCATE mysql.general_log", "SET GLOBAL general_log = 1")
        text = self.visitor.ask("index.php").text
        shop().execute("SET GLOBAL general_log = 0")
        asked = [row[0] for row in shop().rows("SELECT argument FROM mysql.general_log WHERE command_type IN ('Query', 'Execute')"
                                               " AND argument LIKE 'SELECT%FROM articoli%'")]
        self.assertEqual(len(asked), 1, asked)
        self.assertGreater(text.count('class="scheda"'), 3)
        self.assertGreater(text.count('class="bollo'), 0)


if __name__ == "__main__":
    main(enter_identity)
