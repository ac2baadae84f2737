#!/usr/bin/env python3
"""Loads that visitors never see, and the index of words that they bring up to date: server_load.py KORVANE_CLI"""
import html
import http.client
import json
import random
import re
import threading
import urllib.parse

from load_shop import LoadedShop
from search_cases import RandomCatalogues  # noqa: F401  (found by unittest)
from shop_case import Case, main, order, shop


class Loads(Case):
    @classmethod
    def setUpClass(cls):
        cls.loaded = LoadedShop(shop())
        cls.full = cls.loaded.full

    def load(self, delete, insert):
        return self.loaded.load(delete, insert)

    def row(self, number, title="Titolo provvisorio"):
        return self.loaded.row(number, title)

    def check(self, page):
        self.assertTrue(self.loaded.is_whole(page), page.text[:200])

    def leftovers(self):
        return shop().rows("SHOW TABLES LIKE 'kvn\\_%'") + shop().rows("SHOW TABLES LIKE 'kvo\\_%'")

    def test_no_page_is_bad_during_loads_even_when_php_is_killed(self):
        """Full and incremental loads one after the other, some of them ended by kill -9, beside visitors."""
        ended = threading.Event()
        killer = random.Random(20261122)
        visiting = [threading.Thread(target=self.loaded.visit, args=(ended, 40)) for _ in range(2)]
        for visitor in visiting:
            visitor.start()
        try:
            for number in range(6):
                if number % 3 == 2:
                    self.loaded.load_and_kill(killer.uniform(0.02, 0.25))
                else:
                    self.assertEqual(self.load(None, None), "OK")
                    self.assertEqual(self.load("DELETE FROM articoli WHERE ID IN ('1');\r\n", self.row(1)), "OK")
        finally:
            ended.set()
            for visitor in visiting:
                visitor.join()
        self.assertEqual(self.loaded.bad, [])
        self.assertGreater(self.loaded.seen, 60)
        self.assertEqual(self.load(None, None), "OK")
        self.assertEqual(self.leftovers(), [])
        (shop().home / "log/php.log").write_text("")

    def test_a_full_load_takes_away_a_table_that_is_no_longer_sent(self):
        shop().execute("CREATE TABLE kv_unita (ID INT)", "CREATE TABLE kv_propria (ID INT)")
        self.assertEqual(self.load("DELETE FROM articoli WHERE ID IN ('1');\r\n", self.row(1)), "OK")
        self.assertEqual(shop().rows("SHOW TABLES LIKE 'kv_unita'"), [["kv_unita"]])
        self.assertEqual(self.load(None, None), "OK")
        self.assertEqual(shop().rows("SHOW TABLES LIKE 'kv_unita'"), [])
        self.assertEqual(shop().rows("SHOW TABLES LIKE 'kv_propria'"), [["kv_propria"]])
        shop().execute("DROP TABLE kv_propria")

    def test_a_full_load_takes_away_offers_that_are_no_longer_sent(self):
        shop().execute("INSERT INTO kv_offerte VALUES (1, 1)")
        self.assertEqual(self.load(None, None), "OK")
        self.assertEqual(shop().rows("SELECT * FROM kv_offerte"), [])

    def test_a_load_is_not_kept_from_its_way_by_what_an_ended_one_has_left(self):
        shop().execute("CREATE TABLE kvn_articoli (resto INT)", "CREATE TABLE kvo_articoli (resto INT)")
        self.assertEqual(self.load(None, None), "OK")
        self.check(self.visitor.ask("cat007.php?n=1"))
        self.assertEqual(self.leftovers(), [])

    def test_an_index_that_is_gone_or_of_an_earlier_release_is_made_by_a_load_of_changes(self):
        self.assertEqual(self.load(None, None), "OK")
        before = self.found("gres")
        for loss in ("DROP TABLE kv_insiemi", "DROP TABLE kv_sequenze", "ALTER TABLE kv_voci DROP COLUMN posizione"):
            shop().execute(loss, "UPDATE kv_stato SET valore = '2' WHERE nome = 'indice'")
            self.assertEqual(self.load("DELETE FROM articoli WHERE ID IN ('1');\r\n", self.row(1)), "OK")
            self.assertEqual(shop().rows("SELECT valore FROM kv_stato WHERE nome = 'indice'"), [["4"]])
            self.assertEqual((self.found("gres"), self.leftovers()), (before, []))

    def test_pages_show_the_time_of_delivery_from_the_load_on_that_brings_it(self):
        known = lambda: shop().rows("SELECT valore FROM kv_stato WHERE nome = 'laterali'")
        page = lambda: self.visitor.ask("cat007.php?n=1&prod=1").text
        self.assertEqual(self.load(None, None), "OK")
        self.assertEqual((known(), "Consegna:" in page()), ([[""]], False))
        self.assertEqual(self.load("", "CREATE TABLE kv_consegna (ID CHAR(20), tempo CHAR(100), tempo_l2 CHAR(100), tempo_l3"
                                   " CHAR(100), tempo_l4 CHAR(100) );\r\nINSERT INTO kv_consegna\r\nVALUES ( 'cat007', '2 giorni',"
                                   " NULL, NULL, NULL );\r\n"), "OK")
        self.assertEqual(known(), [["kv_consegna"]])
        self.assertIn("Consegna: 2 giorni", page())
        self.assertEqual(self.load("DROP TABLE kv_consegna;\r\n", ""), "OK")
        self.assertEqual((known(), "Consegna:" in page()), ([[""]], False))

    def test_whatever_statement_fails_the_former_catalogue_stays(self):
        before = shop().rows("SELECT COUNT(*), SUM(LENGTH(descrizione)) FROM articoli") + shop().rows("CHECKSUM TABLE dettaglio")
        text = self.full["db.sql"].decode("cp1252")
        starts = [match.start() for match in re.finditer(r"^(?:CREATE TABLE|INSERT INTO) ", text, re.M)]
        for start in starts[:3] + starts[40:400:120] + starts[-2:]:
            broken = text[:start] + "INSERT INTO nessuna VALUES ( 1 );\r\n" + text[start:]
            answer = self.load(self.full["dbdel.sql"].decode("cp1252").split("\r\n", 1)[1], broken.split("\r\n", 1)[1])
            self.assertIn("nessuna", answer)
            self.check(self.visitor.ask("cat007.php?n=1"))
            self.assertEqual(self.leftovers(), [])
        self.assertEqual(before, shop().rows("SELECT COUNT(*), SUM(LENGTH(descrizione)) FROM articoli")
                         + shop().rows("CHECKSUM TABLE dettaglio"))

    def test_a_difference_is_taken_whole_or_not_at_all(self):
        title = shop().rows("SELECT plain_titolo FROM articoli WHERE ID = 1")[0][0]
        for broken in ("INSERT INTO nessuna VALUES ( 1 );\r\n", "CREATE TABLE (;\r\n"):
            answer = self.load("DELETE FROM articoli WHERE ID IN ('1');\r\n", self.row(1) + broken)
            self.assertNotEqual(answer, "OK")
            self.assertEqual(shop().rows("SELECT plain_titolo FROM articoli WHERE ID = 1"), [[title]])

    def ask_again(self, address, name):
        """The status of a page for a browser that has it under a name."""
        parts = urllib.parse.urlsplit(shop().base)
        connection = http.client.HTTPConnection(parts.hostname, parts.port, timeout=60)
        connection.request("GET", "/" + address, headers={"If-None-Match": name})
        answer = connection.getresponse()
        body = answer.read()
        connection.close()
        return answer.status, len(body)

    def test_a_repeated_visit_costs_a_header_until_the_catalogue_or_the_stock_changes(self):
        for address in ("index.php", "cat007.php?n=1", "cat007.php?n=1&prod=1", "condizioni_l2.php"):
            name = self.visitor.ask(address).headers["ETag"]
            self.assertEqual(self.ask_again(address, name), (304, 0), address)
            self.assertEqual(self.load("\r\n", "\r\n"), "OK")
            self.assertEqual(self.ask_again(address, name)[0], 200, address)
        name = self.visitor.ask(address).headers["ETag"]
        self.assertIn("thankyou", order(self.visitor, self.cart, method=2).address)
        self.assertEqual(self.ask_again(address, name)[0], 200)
        for private in ("cart.php", "order.php", "login.php", "messaggio.php", "kvsearch.php?q=gres"):
            self.assertIsNone(shop().visitor().ask(private).headers["ETag"], private)
        self.assertIsNone(self.visitor.ask("index.php").headers["ETag"], "a visitor with a session")

    def found(self, word):
        return int(re.search(r"Articoli trovati: (\d+)", self.visitor.ask("kvsearch.php?q=" + word).text).group(1))

    def test_related_articles_are_found_by_key_as_by_reading_all(self):
        self.assertEqual(self.load(None, None), "OK")
        pages = [f"{page}.php?n={n}" for page, n in shop().rows(
            "SELECT DISTINCT pagina, sottopagina FROM articoli INNER JOIN dettaglio USING (ID) WHERE correlazione > ''")]
        ask = lambda: [re.sub(r"[0-9a-f]{32}", "", self.visitor.ask(address).text) for address in pages]
        by_key = ask()
        shop().execute("UPDATE kv_stato SET valore = '1' WHERE nome = 'indice'")
        try:
            self.assertEqual(by_key, ask())
        finally:
            shop().execute("UPDATE kv_stato SET valore = '4' WHERE nome = 'indice'")
        self.assertTrue(pages)

    def results(self, page):
        """What a search shows on a page of it, without the form: its results and how many there are."""
        text = shop().visitor().ask(f"kvsearch.php?q=a+e+ta&p={page}").text
        return re.search(r"Articoli trovati: (\d+)", text).group(1), re.findall(r'<li class="risultato">.*?</li>', text, re.S)

    def test_a_search_that_found_much_is_kept_until_the_next_load(self):
        script = shop().shop / "online/kvfound.php"
        former = script.read_bytes()
        kept = lambda: shop().rows("SELECT quanti, numeri FROM kv_ricerche r INNER JOIN kv_stato s ON s.nome = 'carico'"
                                   " AND s.valore = r.carico")
        pages = [self.results(page) for page in (1, 2, 9)]
        self.assertEqual(kept(), [])
        # As if few results were much, and a page and a half were all that is kept.
        script.write_bytes(former.replace(b"KV_WORTH_KEEPING = 100", b"KV_WORTH_KEEPING = 3").replace(b"KV_KEPT_NUMBERS = 500", b"KV_KEPT_NUMBERS = 15"))
        try:
            for _ in range(2):
                self.assertEqual([self.results(page) for page in (1, 2, 9)], pages)
            (count, numbers), = kept()
            self.assertEqual((count, len(numbers.split(","))), (pages[0][0], 15))
            shop().execute("UPDATE kv_ricerche SET quanti = 999")
            self.assertEqual(self.results(1)[0], "999", "what is kept is what is shown")
            self.assertEqual(self.load("\r\n", "\r\n"), "OK")
            self.assertEqual(kept(), [])
            self.assertEqual(self.results(1), pages[0])
        finally:
            script.write_bytes(former)

    def test_a_search_that_found_nothing_is_kept_until_the_next_load(self):
        self.assertEqual(self.load(None, None), "OK")
        kept = lambda: shop().rows("SELECT quanti, numeri FROM kv_ricerche r INNER JOIN kv_stato s ON s.nome = 'carico'"
                                   " AND s.valore = r.carico")
        self.assertEqual([self.found("zzqq"), self.found("zzqq"), kept()], [0, 0, [["0", ""]]])
        self.assertEqual(self.load("\r\n", "\r\n"), "OK")
        self.assertEqual(kept(), [])

    def test_a_search_of_frequent_words_reads_few_rows_however_many_articles_have_them(self):
        self.assertEqual(self.load(None, None), "OK")
        bits = (bytes(625) + b"\xff" * 1250).hex()
        shop().execute("INSERT INTO kv_vocaboli VALUES ('comunissimo'), ('frequentissimo')",
                       "INSERT INTO kv_sequenze VALUES ('-comunissimo\u00a0l')",
                       f"INSERT INTO kv_insiemi VALUES ('comunissimo', 2, 10000, x'{bits}'), ('-comunissimo\u00a0l', 3, 10000, x'{bits}'),"
                       f" ('frequentissimo', 2, 10000, x'{bits}')",
                       "INSERT INTO kv_voci SELECT 900000 + seq, 'cat007', seq, UNHEX(MD5(seq)), '', 5000 + seq FROM seq_0_to_9999")
        read = lambda: sum(int(row[1]) for row in shop().rows("SHOW GLOBAL STATUS LIKE 'Handler_read%'") if "_rnd_" not in row[0])
        try:
            before = read()
            for words in ("comunissimo+frequentissimo", "comuniss+frequentiss", "l-comuniss"):
                self.assertEqual(self.found(words), 10000, words)
            self.assertLess(read() - before, 9500)
        finally:
            shop().execute("DELETE FROM kv_vocaboli WHERE parola LIKE '%tissimo' OR parola = 'comunissimo'",
                           "DELETE FROM kv_sequenze WHERE parola LIKE '-comunissimo%'",
                           "DELETE FROM kv_insiemi WHERE parola LIKE '%tissimo' OR parola LIKE '%comunissimo%'",
                           "DELETE FROM kv_voci WHERE articolo >= 900000", "DELETE FROM kv_ricerche")

    def test_suggestions_for_a_much_used_beginning_are_kept_until_the_next_load(self):
        self.assertEqual(self.load(None, None), "OK")
        ask = lambda: json.loads(shop().visitor().ask("kvsuggerisci.php?q=ta").body)
        kept = lambda: shop().rows("SELECT numeri FROM kv_ricerche r INNER JOIN kv_stato s ON s.nome = 'carico'"
                                   " AND s.valore = r.carico")
        self.assertEqual(json.loads(shop().visitor().ask("kvsuggerisci.php?q=zzqq").body), [])
        self.assertEqual(kept(), [])
        first = ask()
        self.assertEqual(len(first), 8)
        (numbers,), = kept()
        shop().execute(f"UPDATE kv_ricerche SET numeri = '{numbers.split(',')[0]}'")
        self.assertEqual(ask(), first[:1], "what is kept is what is shown")
        self.assertEqual(self.load("\r\n", "\r\n"), "OK")
        self.assertEqual(ask(), first)

    def test_an_article_shown_alone_is_the_one_of_its_position_on_the_page(self):
        rows = shop().rows("SELECT pagina, sottopagina, contatore, plain_titolo FROM articoli INNER JOIN ordinamento USING (ID)"
                           " INNER JOIN dettaglio USING (ID) INNER JOIN categorie ON categorie.ID = catID"
                           " WHERE inaccessibile + nascosto = 0")
        self.assertGreater(len({int(row[2]) for row in rows}), 2)
        for page, number, position, title in rows:
            text = shop().visitor().ask(f"{page}.php?n={number}&prod={position}").text
            self.assertEqual(html.unescape(re.search(r"<h1>(.*?)</h1>", text, re.S).group(1)), html.unescape(title))
            self.assertEqual(shop().visitor().ask(f"{page}.php?n={number}&prod=99").status, 404)

    def test_an_article_shown_alone_follows_the_stock_and_a_load_at_once(self):
        number, page, part, position, title = shop().rows(
            "SELECT articoli.ID, pagina, sottopagina, contatore, plain_titolo FROM articoli INNER JOIN ordinamento USING (ID)"
            " WHERE pagina = 'cat007' ORDER BY contatore + 0 DESC LIMIT 1")[0]
        ask = lambda: shop().visitor().ask(f"{page}.php?n={part}&prod={position}").text
        self.assertNotIn('class="esaurito"', ask())
        shop().execute(f"REPLACE INTO kv_disponibilita VALUES ('A', '{number}', 1, 0)")
        try:
            self.assertIn('class="esaurito"', ask())
        finally:
            shop().execute(f"DELETE FROM kv_disponibilita WHERE tipo = 'A' AND chiave = '{number}'")
        delete = f"DELETE FROM articoli WHERE ID IN ('{number}');\r\n"
        self.assertEqual(self.load(delete, self.row(number, "Un altro titolo")), "OK")
        self.assertIn("Un altro titolo", ask())
        self.assertEqual(self.load(delete, self.row(number, title)), "OK")
        self.assertNotIn("Un altro titolo", ask())

    def test_the_index_follows_a_difference(self):
        number = int(shop().rows("SELECT articoli.ID FROM articoli INNER JOIN dettaglio USING (ID) INNER JOIN categorie ON"
                                 " categorie.ID = catID WHERE inaccessibile + nascosto = 0 LIMIT 1")[0][0])
        title = shop().rows(f"SELECT plain_titolo FROM articoli WHERE ID = {number}")[0][0]
        delete = f"DELETE FROM articoli WHERE ID IN ('{number}');\r\n"
        self.assertEqual(self.found("zirconia"), 0)
        self.assertEqual(self.load(delete, self.row(number, "Tazza di Zirconia")), "OK")
        self.assertEqual((self.found("zirconia"), self.found("irconi")), (1, 1))
        self.assertEqual(self.load(delete, self.row(number, title)), "OK")
        self.assertEqual(self.found("zirconia"), 0)
        self.assertEqual(self.load(None, None), "OK")
        self.assertEqual(shop().rows("SELECT COUNT(*) FROM kv_parole"), shop().rows("SELECT COUNT(*) FROM articoli"))


if __name__ == "__main__":
    main()
