"""What the law wants beside articles, as the server sends it: unit prices, lowest earlier prices, makers."""
import html
import json
import re

from shop_case import CustomerCase, served_lines, shop

TABLES = {
    "kv_unita": "ID INT, contenuto DECIMAL(20,4), misura CHAR(2)",
    "kv_minimi": "ID INT, minimo DECIMAL(20,4), giorni SMALLINT, minimo1 DECIMAL(20,4), giorni1 SMALLINT",
    "kv_sicurezza": "ID INT, produttore INT",
    "kv_produttori": "ID INT, nome CHAR(100), indirizzo CHAR(255), contatto CHAR(255), responsabile CHAR(100),"
                     " resp_indirizzo CHAR(255), resp_contatto CHAR(255)",
    "kv_consegna": "ID CHAR(20), tempo CHAR(100), tempo_l2 CHAR(100), tempo_l3 CHAR(100), tempo_l4 CHAR(100)",
}


class LegalNotes(CustomerCase):
    """Each test fills the tables that a build sends only with a row."""

    def setUp(self):
        super().setUp()
        self.drop()
        # What the load has said of these tables goes: pages try them.
        shop().execute("DELETE FROM kv_stato WHERE nome = 'laterali'")
        for name, columns in TABLES.items():
            shop().execute(f"CREATE TABLE {name} ({columns}) ENGINE=InnoDB")

    def tearDown(self):
        self.drop()
        shop().execute("REPLACE INTO kv_stato (nome, valore) VALUES ('laterali', '')")
        super().tearDown()

    def drop(self):
        shop().execute(*(f"DROP TABLE IF EXISTS {name}" for name in TABLES))

    def an_offer(self):
        """An article on offer: number, address of its page, price asked in cents."""
        number, page, sub_page, position = shop().rows(
            "SELECT articoli.ID, pagina, sottopagina, contatore FROM articoli INNER JOIN ordinamento USING (ID) INNER JOIN"
            " dettaglio USING (ID) INNER JOIN categorie ON categorie.ID = catID WHERE importo < implistino AND importo > 0"
            " AND inaccessibile = 0 ORDER BY articoli.ID LIMIT 1")[0]
        return number, f"{page}.php?n={sub_page}&prod={position}"

    def notes(self, address, kind):
        found = re.findall(rf'class="nota {kind}">([^<]*)<', self.visitor.ask(address).text)
        return [html.unescape(text) for text in found if text]

    def cents(self, text):
        return int(re.sub(r"\D", "", text))

    def test_a_unit_price_is_beside_the_price_on_page_list_and_showcase(self):
        number, address = self.an_offer()
        self.assertEqual(self.notes(address, "unitario"), [])
        shop().execute(f"INSERT INTO kv_unita VALUES ({number}, 0.25, 'kg')")
        page = self.visitor.ask(address).text
        price = re.search(r'<strong class="prezzo">([^<]*)<', page).group(1)
        note = self.notes(address, "unitario")
        self.assertEqual([self.cents(text.split(" / ")[0]) for text in note], [4 * self.cents(html.unescape(price))])
        self.assertTrue(note[0].endswith(" / kg"), note)
        self.assertIn('data-contenuto="2500" data-misura="kg"', page)
        self.assertEqual(self.notes(address.split("&")[0], "unitario"), note)
        shop().execute("INSERT INTO kv_unita SELECT ID, 2, 'pz' FROM ordinamento WHERE ID <> " + number)
        self.assertTrue(all(text.endswith((" / pezzo", " / kg")) for text in self.notes("index.php", "unitario")))
        self.assertGreater(len(self.notes("index.php", "unitario")), 3)
        found = self.visitor.ask("kvsearch.php?q=di").text
        self.assertEqual(len(self.notes("kvsearch.php?q=di", "unitario")), found.count('<strong class="prezzo">'))
        related = self.visitor.ask("cat007.php?n=1&prod=1").text
        self.assertRegex(related, r'<strong class="importo">')
        self.assertEqual(len(re.findall(r'</strong> <span class="nota unitario">[^<]* / (?:pezzo|kg)</span></a>', related)),
                         related.count('<strong class="importo">'))
        suggested = json.loads(self.visitor.ask("kvsuggerisci.php?q=ta").body)
        self.assertEqual({self.cents(one["p"]) / self.cents(one["n"].split(" / ")[0]) for one in suggested}, {2, 0.25})

    def test_a_reduced_price_comes_with_the_lowest_before(self):
        number, address = self.an_offer()
        self.assertEqual(self.notes(address, "minimo"), [])
        shop().execute(f"INSERT INTO kv_minimi VALUES ({number}, 100, 30, NULL, NULL)")
        vat = float(shop().rows("SELECT iva FROM categorie INNER JOIN dettaglio ON categorie.ID = catID"
                                f" WHERE dettaglio.ID = {number}")[0][0])
        note = self.notes(address, "minimo")
        self.assertTrue(note[0].startswith("Prezzo più basso nei 30 giorni prima della riduzione: "), note)
        self.assertEqual(self.cents(note[0].split(": ")[1]), round(10000 * (1 + vat)))
        english = self.notes(address.replace(".php", "_l2.php"), "minimo")
        self.assertTrue(english[0].startswith("Lowest price in the 30 days before the reduction: "), english)

    def test_the_page_of_an_article_names_its_maker(self):
        number, address = self.an_offer()
        self.assertNotIn('class="sicurezza"', self.visitor.ask(address).text)
        shop().execute(f"INSERT INTO kv_sicurezza VALUES ({number}, 4)",
                       "INSERT INTO kv_produttori VALUES (4, 'Forno <Po>', 'Via Po 1', 'a@b.it', '', NULL, NULL)")
        page = self.visitor.ask(address).text
        part = page[page.index('<details class="sicurezza" open>'):page.index("</details>")]
        self.assertIn("<dt>Produttore</dt><dd>Forno &lt;Po&gt;<br>Via Po 1<br>", part)
        self.assertIn('href="mailto:a@b.it"', part)
        self.assertNotIn("Responsabile", part)

    def test_the_time_of_delivery_is_on_page_card_cart_and_for_those_who_compare_offers(self):
        number, address = self.an_offer()
        self.assertNotIn("consegna", self.visitor.ask(address).text)
        department = shop().rows(f"SELECT catID FROM dettaglio WHERE ID = {number}")[0][0]
        shop().execute(f"INSERT INTO kv_consegna VALUES ('{department}', '2-4 giorni', '2-4 days', '', NULL)")
        page = self.visitor.ask(address).text
        self.assertIn('<p class="nota consegna">Consegna: 2-4 giorni</p>', page)
        days = json.loads(re.search(r'"transitTime":(\{[^}]*\})', page).group(1))
        self.assertEqual((days["minValue"], days["maxValue"], days["unitCode"]), (2, 4, "DAY"))
        cards = self.visitor.ask(address.split("&")[0]).text
        self.assertEqual(cards.count("Consegna: 2-4 giorni"), cards.count('<article class="scheda"') - cards.count('class="esaurito"'))
        self.assertIn("Delivery: 2-4 days", self.visitor.ask(address.replace(".php", "_l2.php")).text)
        self.assertIn("Livraison : 2-4 giorni", self.visitor.ask(address.replace(".php", "_l3.php")).text)
        shop().execute(f"INSERT INTO kv_consegna VALUES ('{number}', 'Su ordinazione', NULL, NULL, NULL)")
        self.assertIn("Consegna: Su ordinazione", self.visitor.ask(address).text)
        self.assertEqual(served_lines(self.visitor, f"{number}.1")[0]["t"], "Su ordinazione")
        self.assertIn("<small>Consegna: Su ordinazione</small>", self.visitor.ask("cart.php").text)

    def test_a_page_without_the_tables_asks_for_each_once_and_complains_not(self):
        self.drop()
        self.assertEqual(self.visitor.ask(self.an_offer()[1]).status, 200)
