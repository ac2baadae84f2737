"""What helps shoppers to choose and to buy, as the server sends it: suggestions, results, lists in another order, the
estimate of shipping, the small cart, past orders, the map for search engines. Cases for server_pages.py."""
import html
import json
import re
import shutil
import urllib.parse

from served_shop import SHOPPER
from shop_case import CustomerCase, cart_cookie, order, register, send, shop

AMOUNT = r"€ ([\d.]+,\d\d)"


def cents(text):
    return int(text.replace(".", "").replace(",", ""))


class ShopperCase(CustomerCase):
    def json(self, address):
        page = self.visitor.ask(address)
        self.assertIn("application/json", page.headers["Content-Type"])
        return json.loads(page.body.decode())

    def cards(self, address):
        """Title, price and address of each card of a list."""
        text = self.visitor.ask(address).text
        found = re.findall(r'<article class="scheda".*?<h2><a href="([^"]*)">(.*?)</a></h2>.*?class="prezzo">(.*?)</strong>',
                           text, re.S)
        return [(html.unescape(title), cents(re.search(AMOUNT, price).group(1)), html.unescape(link))
                for link, title, price in found]

    def all_cards(self, pages):
        return [card for page in range(1, pages + 1) for card in self.cards(f"cat007.php?n={page}")]


class Choosing(ShopperCase):
    def test_suggestions_are_articles_whose_words_begin_so_best_first(self):
        found = self.json("kvsuggerisci.php?q=maiol")
        self.assertTrue(1 <= len(found) <= 8)
        first = self.visitor.ask(found[0]["u"])
        self.assertEqual(first.status, 200)
        self.assertIn(f"<h1>{found[0]['t']}</h1>", html.unescape(first.text))
        self.assertIn(found[0]["p"], first.text)
        both = self.json("kvsuggerisci.php?q=" + urllib.parse.quote("maiolica pia"))
        self.assertTrue(both and all("iatt" in entry["t"] for entry in both[:1]), both)

    def test_nothing_is_suggested_for_one_character_for_marks_or_from_a_closed_department(self):
        for text in ("m", "", "%%", "__", "zzzzzz", "a' OR 1=1"):
            self.assertEqual(self.json("kvsuggerisci.php?q=" + urllib.parse.quote(text)), [], text)
        before = self.json("kvsuggerisci.php?q=tazz")
        department = before[0]["u"].split(".")[0]
        shop().execute(f"UPDATE categorie SET inaccessibile = 1 WHERE ID = '{department}'")
        after = self.json("kvsuggerisci.php?q=tazz")
        shop().execute(f"UPDATE categorie SET inaccessibile = 0 WHERE ID = '{department}'")
        self.assertNotIn(department, [entry["u"].split(".")[0] for entry in after])

    def test_results_show_picture_price_and_offer(self):
        text = self.visitor.ask("kvsearch.php?q=gres").text
        results = re.findall(r'<li class="risultato">(.*?)</li>', text, re.S)
        self.assertGreater(len(results), 2)
        for result in results:
            self.assertRegex(result, r"<img [^>]*src=")
            self.assertRegex(result, r'class="prezzo">' + AMOUNT)
        struck = [re.search(rf'class="bollo">Offerta<.*?<s>{AMOUNT}</s>.*?class="prezzo">{AMOUNT}', result, re.S)
                  for result in results if 'class="barrato"' in result]
        self.assertTrue(struck and all(struck), results)
        for offer in struck:
            self.assertLess(cents(offer.group(2)), cents(offer.group(1)))

    def test_a_department_in_the_order_of_its_prices(self):
        usual = self.all_cards(2)
        self.assertGreater(len(usual), 3)
        for order_name, backwards in (("prezzo", False), ("prezzo-giu", True)):
            cards = self.cards(f"cat007.php?n=1&ordine={order_name}")
            prices = [price for _, price, _ in cards]
            self.assertEqual(prices, sorted((price for _, price, _ in usual), reverse=backwards))
        titles = [title for title, _, _ in self.cards("cat007.php?n=1&ordine=nome")]
        self.assertEqual(titles, sorted(titles, key=str.lower))
        for title, _, link in cards:
            self.assertIn(f"<h1>{title}</h1>", html.unescape(self.visitor.ask(link).text))

    def test_a_department_shows_what_was_chosen_and_says_how_much(self):
        usual = self.all_cards(2)
        middle = sorted(price for _, price, _ in usual)[len(usual) // 2]
        wanted = sorted(title for title, price, _ in usual if price <= middle)
        page = f"cat007.php?n=1&a={middle / 100:.2f}"
        self.assertEqual(sorted(title for title, _, _ in self.cards(page)), wanted)
        self.assertIn(f"Articoli scelti: {len(wanted)}", self.visitor.ask(page).text)
        offers = self.visitor.ask("cat007.php?n=1&offerte=1").text
        self.assertEqual(offers.count("<article"), offers.count('class="barrato"'))
        self.assertGreater(offers.count("<article"), 0)
        nothing = self.visitor.ask("cat007.php?n=1&da=99999").text
        self.assertIn("Nessun articolo corrisponde ai filtri.", nothing)
        self.assertEqual(nothing.count("<article"), 0)

    def test_new_articles_are_shown_alone_or_first(self):
        new = {row[0] for row in shop().rows("SELECT plain_titolo FROM articoli INNER JOIN dettaglio USING (ID) WHERE pagina ="
                                             " 'cat007' AND novita <> 0")}
        self.assertTrue(new)
        self.assertEqual({title for title, _, _ in self.cards("cat007.php?n=1&novita=1")}, new)
        first = [title for title, _, _ in self.cards("cat007.php?n=1&ordine=novita")]
        self.assertEqual(set(first[:len(new)]), new)
        self.assertGreater(len(first), len(new))

    def test_a_value_of_a_variant_chooses_the_articles_that_have_it(self):
        text = self.visitor.ask("cat007.php?n=1").text
        name, values = re.search(r'<select name="(v\d+)">(.*?)</select>', text, re.S).groups()
        key = re.search(r'value="([0-9a-f]{6})"', values).group(1)
        found = self.cards(f"cat007.php?n=1&{name}={key}")
        self.assertTrue(found)
        for _, _, link in found:
            self.assertIn(f'data-k="{key}"', self.visitor.ask(link).text)
        chosen = self.visitor.ask(f"cat007.php?n=1&{name}={key}").text
        self.assertIn(f'value="{key}" selected', chosen)
        self.assertRegex(chosen, r'rel="canonical" href="[^"]*cat007\.php\?n=1">')

    def test_an_address_that_chooses_nothing_known_is_the_usual_page(self):
        usual = self.cards("cat007.php?n=1")
        for rest in ("&ordine=x", "&da=-1", "&v0=abc", "&ordine[]=prezzo", "&v12=zzzzzz", "&offerte=2"):
            self.assertEqual(self.cards("cat007.php?n=1" + rest), usual, rest)
        self.assertEqual(self.visitor.ask("cat007.php?n=99&ordine=prezzo").status, 404)

    def test_related_articles_are_cards_with_picture_and_price(self):
        group = shop().rows("SELECT a.pagina, a.sottopagina, o.contatore FROM articoli a INNER JOIN dettaglio d USING (ID)"
                            " INNER JOIN ordinamento o USING (ID) INNER JOIN categorie c ON c.ID = d.catID WHERE correlazione IN"
                            " (SELECT correlazione FROM dettaglio WHERE correlazione <> '' GROUP BY 1 HAVING COUNT(*) > 1)"
                            " AND c.nascosto = 0 AND c.inaccessibile = 0 LIMIT 1")[0]
        text = self.visitor.ask("{}.php?n={}&prod={}".format(*group)).text
        cards = re.findall(r'<li><a class="scheda" href="([^"]*)">(.*?)</a></li>', text, re.S)
        self.assertTrue(cards)
        for link, card in cards:
            self.assertIn("<img", card)
            price = re.search(AMOUNT, card).group(0)
            self.assertIn(price, self.visitor.ask(html.unescape(link)).text)

    def test_numbered_pictures_are_shown_beside_the_first(self):
        page = "cat007.php?n=1&prod=1"
        text = self.visitor.ask(page).text
        self.assertNotIn("provini", text)
        name = re.search(r'data-grande="([^"]*)"', text).group(1)
        online = shop().shop / "online"
        stem = re.sub(r"-[pg]$", "", name.rsplit(".", 1)[0])
        second = online / f"{stem}-2.{name.rsplit('.', 1)[1]}"
        shutil.copy(online / name, second)
        try:
            text = self.visitor.ask(page).text
        finally:
            second.unlink()
        self.assertEqual(re.findall(r'<li><a href="([^"]*)" data-testo', text), [name, second.name])


class Buying(ShopperCase):
    def noscript(self, address):
        text = self.visitor.ask(address).text
        return text[text.index("<noscript>"):text.index("</noscript>")]

    def test_the_estimate_of_shipping_is_what_the_order_charges(self):
        cart_cookie(self.visitor, self.cart)
        plain = self.noscript("cart.php")
        countries = dict((name, value) for value, name in
                         re.findall(r'<option value="(\d-\d+)"[^>]*>([^<]*)</option>', plain))
        for country in ("Italia", "Germania"):
            text = self.noscript("cart.php?paese=" + countries[country])
            shipping = re.search(r"Spese di spedizione</th><td>" + AMOUNT, text).group(1)
            total = re.search(r"Totale con la spedizione</th><td>" + AMOUNT, text).group(1)
            page = self.visitor.ask("order.php")
            form = page.form("kvorder")
            answers = [self.visitor.send(form, page, **dict(SHOPPER, LSStato=countries[country], Pagamento=method)).text
                       for method in ("1", "2")]
            shown = [answer for answer in answers if "Spese di spedizione: " in answer]
            self.assertTrue(any(f"Spese di spedizione: € {shipping}\r\n" in answer and f"Totale: € {total}" in answer
                                for answer in shown), shown)

    def test_the_rest_until_shipping_is_free_is_right_to_the_cent(self):
        cart_cookie(self.visitor, self.cart)
        text = self.noscript("cart.php")
        home = re.search(r'value="(\d-\d+)"[^>]*>Italia<', text).group(1)
        text = self.noscript("cart.php?paese=" + home)
        threshold, rest = map(cents, re.search(rf"gratuita oltre {AMOUNT}\. Mancano ancora: {AMOUNT}", text).groups())
        goods = cents(re.search(rf"Totale articoli: <strong>{AMOUNT}", text).group(1))
        self.assertEqual(goods + rest, threshold + 1)
        cart_cookie(self.visitor, f"{self.article}.{threshold // goods + 1}")
        text = self.noscript("cart.php?paese=" + home)
        self.assertIn("Spese di spedizione</th><td>€ 0,00", text)
        self.assertIn("Spedizione gratuita.", text)

    def test_lines_of_the_cart_have_picture_and_link_and_the_small_cart_their_sum(self):
        cart_cookie(self.visitor, f"{self.article}.3")
        plain = self.noscript("cart.php")
        link = html.unescape(re.search(r'class="provino".*?<a href="([^"]*)">', plain).group(1))
        self.assertEqual(self.visitor.ask(link).status, 200)
        small = self.json("kvminicarrello.php")
        self.assertEqual((len(small["righe"]), small["righe"][0]["q"]), (1, 3))
        self.assertEqual(small["merce"], small["righe"][0]["t"])
        self.assertEqual(cents(re.search(rf"Totale articoli: <strong>{AMOUNT}", plain).group(1)), small["merce"])
        self.assertTrue((shop().shop / "online" / small["righe"][0]["f"]).is_file())

    def test_a_customer_sees_past_orders_and_repeats_one(self):
        register(self.visitor)
        variant = shop().rows("SELECT ID FROM dettaglio WHERE opzione1 > 1 AND opzione2 < 2 AND opzione3 < 2 AND opzione4 < 2"
                              " AND catID = 'cat007' LIMIT 1")[0][0]
        page = self.visitor.ask(self.visitor.ask("login.php").address)
        self.assertIn("Ancora nessun ordine.", page.text)
        key = re.search(r'data-k="(\w+)"', self.visitor.ask(self.page_of(variant)).text).group(1)
        lines = f"{variant}.2.{key}_{self.article}.1"
        order(self.visitor, lines)
        page = self.visitor.ask("login.php")
        code = re.search(r'name="ripeti" value="([^"]+)"', page.text).group(1)
        self.assertIn("Ricevuto", page.text)
        form = page.form("kvcarrello")
        after = self.visitor.send(form, page, ripeti=code)
        self.assertIn("/cart.php", after.address)
        carts = [value for (_, name), value in self.visitor.cookies.items() if "kvstore_cart" in name]
        self.assertEqual([value.rstrip(".") for value in carts], [lines])

    def page_of(self, number):
        row = shop().rows("SELECT pagina, sottopagina, contatore FROM articoli INNER JOIN ordinamento USING (ID)"
                          f" WHERE articoli.ID = {number}")[0]
        return "{}.php?n={}&prod={}".format(*row)

    def test_nobody_repeats_the_order_of_another_or_without_the_page(self):
        register(self.visitor)
        order(self.visitor, self.cart)
        code = shop().rows("SELECT codice FROM kv_ordini")[0][0]
        self.visitor.ask("kvcarrello.php", {"ripeti": code})
        self.assertFalse(any("kvstore_cart" in name for _, name in self.visitor.cookies))
        stranger = shop().visitor()
        register(stranger, "eva@example.org")
        form = stranger.ask("login.php").form("logcheck")
        stranger.ask("kvcarrello.php", {"ripeti": code, "gettone": form["fields"]["gettone"]})
        self.assertFalse(any("kvstore_cart" in name for _, name in stranger.cookies))
        send(self.visitor, "esci")


class ForOthers(ShopperCase):
    def test_the_map_names_pages_of_every_language_that_are_there(self):
        online = shop().shop / "online"
        index = (online / "sitemap.xml").read_text()
        parts = re.findall(r"<loc>([^<]*)</loc>", index)
        suffixes = {re.search(r"/kvsitemap(\w*)\.php\?p=1$", part).group(1) for part in parts}
        self.assertEqual(suffixes, {"", "_l2", "_l3", "_l4"})
        for part in parts:
            page = self.visitor.ask(part)
            self.assertIn("application/xml", page.headers["Content-Type"])
            pages = [html.unescape(loc) for loc in re.findall(r"<loc>([^<]*)</loc>", page.body.decode())]
            self.assertGreater(len(pages), 40)
            self.assertEqual(len(pages), len(set(pages)))
            for address in (pages[0], pages[5], pages[-1]):
                self.assertEqual(self.visitor.ask(address).status, 200, address)
        robots = (online / "robots.txt").read_text()
        self.assertIn(f"Sitemap: {shop().base}/sitemap.xml", robots)
        self.assertNotIn("Disallow: /\n", robots)

    def test_the_map_counts_what_every_visitor_sees(self):
        script = shop().shop / "online/conta.php"
        script.write_text("<?php include 'funcs.php'; include_once 'kvload.php'; include_once 'kvmappa.php'; echo "
                          "kvCountVisible('', kvRiga('SELECT COUNT(*) AS n FROM articoli')['n']), ' ', kvRiga('SELECT COUNT(*) AS n' . kvVisibleArticles('articoli'))['n'];")
        self.addCleanup(script.unlink)
        [[department, articles]] = shop().rows(
            "SELECT catID, COUNT(*) AS n FROM dettaglio INNER JOIN categorie ON categorie.ID = catID"
            " WHERE nascosto = 0 AND inaccessibile = 0 GROUP BY catID ORDER BY n DESC LIMIT 1")
        before = self.visitor.ask("conta.php").body.decode().split()
        shop().execute("UPDATE categorie SET nascosto = 1 WHERE ID = '%s'" % department)
        self.addCleanup(shop().execute, "UPDATE categorie SET nascosto = 0 WHERE ID = '%s'" % department)
        after = self.visitor.ask("conta.php").body.decode().split()
        self.assertEqual(before[0], before[1])
        self.assertEqual(after[0], after[1])
        self.assertEqual(int(before[0]) - int(after[0]), int(articles))

    def test_a_robots_file_of_the_merchant_stays(self):
        robots = shop().shop / "online/robots.txt"
        ours = robots.read_text()
        robots.write_text("User-agent: *\n")
        shop().korvane("export-sql")
        shop().host("load", shop().shop, "--home", shop().home)
        self.assertEqual(robots.read_text(), "User-agent: *\n")
        robots.write_text(ours)

    def test_a_page_tells_those_who_show_a_link_what_it_is(self):
        text = self.visitor.ask("cat007.php?n=1&prod=1").text
        told = dict(re.findall(r'<meta property="og:(\w+)" content="([^"]*)">', text))
        self.assertEqual(told["type"], "product")
        self.assertEqual(told["title"], re.search(r"<h1>(.*?)</h1>", text).group(1))
        self.assertEqual(self.visitor.ask(told["image"]).status, 200)
        self.assertEqual(html.unescape(told["url"]), f"{shop().base}/cat007.php?n=1&prod=1")
        self.assertNotIn("og:type", self.visitor.ask("login.php").text)
        self.assertEqual(text.count('<meta name="keywords" content="ceramica artigianale, '), 1)

    def test_offers_tell_shipping_and_return(self):
        data = self.visitor.ask("cat007.php?n=1&prod=1").text
        product = next(found for found in map(json.loads, re.findall(r'ld\+json">(.*?)</script>', data))
                       if found["@type"] == "Product")
        offer = product["offers"][0] if isinstance(product["offers"], list) else product["offers"]
        shipping = offer["shippingDetails"]
        self.assertEqual(shipping["shippingDestination"]["addressCountry"], "IT")
        self.assertGreater(float(shipping["shippingRate"]["value"]), 0)
        self.assertEqual(offer["hasMerchantReturnPolicy"]["merchantReturnDays"], 14)

    def test_a_page_that_is_not_there_offers_the_search(self):
        page = self.visitor.ask("cat007.php?n=99")
        self.assertEqual(page.status, 404)
        self.assertIn('action="kvsearch.php"', page.text[page.text.index("<main"):])

    def test_a_customer_is_greeted_once_signed_in(self):
        self.assertIn("Accesso clienti", self.visitor.ask("index.php").text)
        register(self.visitor)
        page = self.visitor.ask("index.php").text
        self.assertRegex(page, r"Il mio conto <small class=\"nome\">\(Ada\)</small>")


__all__ = ["Choosing", "Buying", "ForOthers"]
