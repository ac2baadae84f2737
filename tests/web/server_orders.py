#!/usr/bin/env python3
"""The orders of the model shop and the stock that they take from: server_orders.py KORVANE_CLI"""
import concurrent.futures
import email
import json
import re
import urllib.parse

from order_mail_cases import OrderMails  # noqa: F401  (found by unittest)
from personal_data_cases import PersonalData  # noqa: F401
from withdrawal_cases import Withdrawals  # noqa: F401
from shop_case import CustomerCase, article, cart_cookie, mail_text, main, order, register, send, served_lines, shop


class Orders(CustomerCase):
    def test_an_order_is_stored_and_told_to_both(self):
        before = len(shop().mails())
        page = order(self.visitor, f"{self.article}.2", method=2)
        self.assertIn("thankyou2.php", page.address)
        row = shop().rows("SELECT codice, nome, email, totale, stato, metodo FROM kv_ordini")[0]
        self.assertEqual(row[1:3] + row[4:], ["Anna Bianchi", "anna@example.org", "nuovo", "Bonifico anticipato"])
        self.assertIn(row[0], page.text)
        mails = [email.message_from_string(text) for text in shop().mails()[before:]]
        self.assertEqual(sorted(mail["To"] for mail in mails), ["anna@example.org", "ordini@bottega.example"])
        amount = "{:,.2f}".format(float(row[3])).replace(",", " ").replace(".", ",").replace(" ", ".")
        for mail in mails:
            text = mail_text(mail)
            self.assertIn(row[0], text)
            self.assertIn(amount, text)

    def test_an_order_empties_the_cart(self):
        order(self.visitor, self.cart, method=2)
        self.assertFalse(any("kvstore_cart" in name for path, name in self.visitor.cookies))

    def test_the_total_is_the_sum_of_its_parts(self):
        order(self.visitor, f"{self.article}.3", method=2)
        sums = self.order_data()["totali"]
        total = sums["merce"] - sums["sconto"] + sums["iva"] + sums["spese"] + sums["ivaspese"]
        self.assertAlmostEqual(sums["totale"], total, 6)
        self.assertEqual(shop().rows("SELECT totale FROM kv_ordini")[0][0], f"{sums['totale']:.2f}")

    def test_a_large_order_gets_the_discount_by_amount(self):
        order(self.visitor, f"{self.article}.40", method=2)
        sums = self.order_data()["totali"]
        self.assertAlmostEqual(sums["sconto"], round(sums["merce"] * 0.05 + 1e-9, 2), 6)

    def test_a_personal_discount_takes_the_place_of_the_one_by_amount(self):
        self.customer(sconto="12.5")
        order(self.visitor, f"{self.article}.40", method=2)
        sums = self.order_data()["totali"]
        self.assertAlmostEqual(sums["sconto"], round(sums["merce"] * 0.125 + 1e-9, 2), 6)
        self.assertEqual(self.count("kv_ordini", "cliente > 0"), 1)

    def test_an_order_below_the_minimum_is_refused(self):
        page = order(self.visitor, f"{article('PA-002')}.1", method=2)
        self.assertIn("messaggio", page.address)
        self.assertEqual(self.count("kv_ordini"), 0)

    def test_required_fields_are_required_by_the_server(self):
        for name in ("Nome", "Cognome", "Indirizzo", "CAP", "Citta", "Email"):
            order(self.visitor, self.cart, method=2, **{name: " "})
        order(self.visitor, self.cart, method=2, Email="nessun indirizzo")
        order(self.visitor, self.cart, method=2, Privacy=None)
        self.assertEqual(self.count("kv_ordini"), 0)

    def test_a_shop_that_asks_for_registration_takes_no_order_of_a_visitor(self):
        script = shop().shop / "online/funcs.php"
        text = script.read_bytes()
        script.write_bytes(text.replace(b"$regobbl = 0;\r\n$visofferta", b"$regobbl = 1;\r\n$visofferta", 1))
        try:
            answer = self.visitor.ask("order.php", follow=False)
            self.assertIn("login.php?m=23", answer.headers["Location"])
            register(self.visitor, dopo="ordine")
            page = order(self.visitor, self.cart, method=2)
            self.assertIn("thankyou", page.address)
        finally:
            script.write_bytes(text)

    def test_the_form_is_filled_with_the_customers_data(self):
        self.customer()
        send(self.visitor, "dati", nome="Ada", cognome="Neri", indirizzo="Via dell'Orto 3", citta="Forl\u00ec", paese="Italia")
        cart_cookie(self.visitor, self.cart)
        cookie = re.search(r'kvstore_cliente=([^"]*)"', self.visitor.ask("order.php").text).group(1)
        data = dict(pair.split("=") for pair in cookie.split("|"))
        self.assertEqual(urllib.parse.unquote(data["indirizzo"]), "Via dell'Orto 3")
        self.assertEqual(urllib.parse.unquote(data["citta"]), "Forl\u00ec")
        self.assertEqual(data["email"], "ada%40example.org")

    def test_pages_of_the_second_language_take_orders(self):
        cart_cookie(self.visitor, self.cart)
        page = self.visitor.ask("order_l2.php")
        form = page.form("kvorder")
        self.assertEqual(form["action"], "kvorder_l2.php")

    def test_an_article_is_bought_by_a_plain_form(self):
        page = self.visitor.ask("cat007.php")
        form = page.form("kvcarrello")
        number, position = shop().rows("SELECT ID, contatore FROM ordinamento INNER JOIN articoli USING (ID) WHERE pagina ="
                                       " 'cat007' AND sottopagina = 1 ORDER BY contatore + 0 LIMIT 1")[0]
        self.assertIn(f'name="compra" value="{number}.{position}"', page.text)
        page = self.visitor.send(form, page, compra=f"{number}.{position}", **{f"qt{position}": "2"})
        self.assertIn("/cart.php", page.address)
        lines = served_lines(self.visitor, next(value for (_, name), value in self.visitor.cookies.items() if "cart" in name))
        self.assertEqual([line["ok"] for line in lines], [True])

    def test_the_ways_to_pay_are_told_on_the_page_and_in_the_mail(self):
        for method, words in ((2, "IBAN: IT60 X054 2811 1010 0000 0123 456"), (1, "contanti al corriere")):
            before = len(shop().mails())
            page = order(shop().visitor(), self.cart, method=method)
            self.assertIn(words, page.text)
            for mail in shop().mails()[before:]:
                self.assertIn(words, mail_text(mail).replace("\r\n", " "))

    def test_the_merchants_words_arrive_as_they_were_typed(self):
        script = shop().shop / "online/kvmailtesto.php"
        text = script.read_bytes()
        typed = 'Costa $totale \\" e {$x} "così" \\r\\n $codice ${y} <?php ?> \''
        emitted = '$info .= "' + typed.replace('"', '\\"') + '\\r\\n";\r\n$info .= "N. " . $codice . "!\\r\\n";\r\n'
        start = text.index(b"$info .=")
        script.write_bytes(text[:start] + emitted.encode("cp1252") + text[text.index(b"KORVANE_MAIL;"):])
        before = len(shop().mails())
        try:
            order(self.visitor, self.cart, method=2)
        finally:
            script.write_bytes(text)
        mail = next(mail for mail in map(email.message_from_string, shop().mails()[before:]) if "anna" in mail["To"])
        code = shop().rows("SELECT codice FROM kv_ordini")[0][0]
        self.assertIn(f"{typed}\r\nN. {code}!\r\n", mail_text(mail))


class Stock(CustomerCase):
    def limit(self, kind, key, pieces, available=1):
        shop().execute(f"REPLACE INTO kv_disponibilita VALUES ('{kind}', '{key}', {available}, {pieces})")

    def stock(self):
        return shop().rows("SELECT quantita FROM kv_disponibilita")[0][0]

    def test_an_order_takes_its_pieces(self):
        self.limit("A", self.article, 5)
        order(self.visitor, f"{self.article}.2", method=2)
        self.assertEqual(self.stock(), "3")

    def test_more_than_there_is_cannot_be_ordered(self):
        self.limit("A", self.article, 1)
        line = served_lines(self.visitor, f"{self.article}.2")[0]
        self.assertEqual((line["ok"], line["m"]), (True, 1))
        self.assertEqual(self.visitor.ask("order.php", follow=False).headers["Location"], "cart.php")
        order(self.visitor, self.cart, Dettaglio=f"{self.article}.2")
        self.assertEqual((self.count("kv_ordini"), self.stock()), (0, "1"))

    def test_an_article_that_is_switched_off_cannot_be_ordered(self):
        self.limit("A", self.article, "NULL", 0)
        self.assertEqual(served_lines(self.visitor, self.cart)[0]["m"], 0)

    def two_with_the_same_variant(self):
        """Two articles that share a variant, the variant, and the keys of its value with the code O."""
        variant, = shop().rows("SELECT OpID FROM opcodici WHERE codice = 'O'")[0]
        numbers = [int(row[0]) for row in shop().rows(
            f"SELECT ID FROM dettaglio INNER JOIN articoli USING (ID) WHERE opzione1 = {variant} AND opzione2 < 2 AND"
            " pagina = 'cat007' ORDER BY ID")][:2]
        key = re.search(r'value="[^"]*#O\|[^"]*" data-k="(\w+)"', self.visitor.ask("cat007.php").text).group(1)
        return numbers, variant, key

    def test_a_value_of_a_variant_has_its_own_stock_in_each_article(self):
        (number, other), variant, key = self.two_with_the_same_variant()
        self.limit("V", f"{number}.{variant}.O", 3)
        order(self.visitor, f"{number}.2.{key}", method=2)
        self.assertEqual(self.stock(), "1")
        lines = served_lines(self.visitor, f"{number}.2.{key}_{other}.9.{key}")
        self.assertEqual([line["m"] for line in lines], [1, None])

    def test_sold_out_values_are_read_by_their_key_however_many_values_are_limited(self):
        (number, other), variant, key = self.two_with_the_same_variant()
        shop().execute(f"INSERT INTO kv_disponibilita SELECT 'V', CONCAT({number}, seq, '.{variant}.O'), 1, 0 FROM seq_0_to_999")
        self.limit("V", f"{number}.{variant}.O", 0)
        read = lambda: int(shop().rows("SHOW GLOBAL STATUS LIKE 'Handler_read_next'")[0][1])
        before = read()
        options = re.findall(rf'<option ([^>]*)data-k="{key}">', self.visitor.ask("cat007.php").text)
        self.assertLess(read() - before, 900)
        self.assertEqual(["disabled" in option for option in options].count(True), 1)

    def test_a_value_that_is_sold_out_cannot_be_chosen(self):
        (number, other), variant, key = self.two_with_the_same_variant()
        self.limit("V", f"{number}.{variant}.O", 0)
        page = self.visitor.ask("cat007.php").text
        options = re.findall(rf'<option ([^>]*)data-k="{key}">([^<]*)<', page)
        sold_out = [text for attributes, text in options if attributes.startswith("disabled")]
        self.assertEqual((len(sold_out), len(options) > 1), (1, True))
        self.assertIn("Al momento non disponibile", sold_out[0])
        self.assertFalse(any("selected" in attributes for attributes, text in options if "disabled" in attributes))
        part, position = shop().rows(f"SELECT sottopagina, contatore FROM articoli INNER JOIN ordinamento USING (ID) WHERE ID = {number}")[0]
        alone = self.visitor.ask(f"cat007.php?n={part}&prod={position}").text
        told = [data for data in map(json.loads, re.findall(r'ld\+json">(.*?)</script>', alone, re.S)) if data["@type"] == "Product"]
        self.assertEqual([offer["sku"] for offer in told[0]["offers"] if offer["availability"].endswith("OutOfStock")], ["O"])

    def test_the_stock_of_an_earlier_shop_is_counted_for_each_article(self):
        (number, other), variant, key = self.two_with_the_same_variant()
        self.limit("O", "O", 4)
        shop().execute("DELETE FROM kv_stato")
        order(self.visitor, self.cart, method=2)
        self.assertEqual(self.count("kv_disponibilita", "tipo = 'O'"), 0)
        self.assertEqual([line["m"] for line in served_lines(self.visitor, f"{number}.1.{key}_{other}.1.{key}")], [4, 4])

    def test_two_lines_share_the_stock_of_their_article(self):
        keys = re.findall(r'data-k="(\w+)"', self.visitor.ask("cat007.php").text.split("TZ-002")[0].rsplit("<article")[-1])
        number = article("TZ-002")
        self.limit("A", number, 3)
        lines = served_lines(self.visitor, f"{number}.2.{keys[0]}_{number}.2.{keys[1]}")
        self.assertEqual([line["m"] for line in lines], [1, 1])

    def test_the_last_piece_goes_to_one_of_many(self):
        self.limit("A", self.article, 1)
        visitors = [shop().visitor() for _ in range(8)]
        with concurrent.futures.ThreadPoolExecutor(8) as pool:
            pages = list(pool.map(lambda visitor: self.attempt(visitor), visitors))
        self.assertEqual((self.count("kv_ordini"), self.stock()), (1, "0"))
        self.assertEqual(sum("thankyou" in address for address in pages), 1)

    def attempt(self, visitor):
        try:
            return order(visitor, self.cart, method=2).address
        except StopIteration:
            return "order form refused"


if __name__ == "__main__":
    # The steps go by the simple template's pages, where a department page has every selector.
    main(lambda catalogue: catalogue.execute("UPDATE generale SET template = 'classico'"))
