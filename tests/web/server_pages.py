#!/usr/bin/env python3
"""The pages of the template chiaro as the server sends them, without scripts: server_pages.py KORVANE_CLI"""
import json
import re

from shop_case import CustomerCase, main, shop


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


if __name__ == "__main__":
    main()
