#!/usr/bin/env python3
"""Loads that visitors never see, and the index of words that they bring up to date: server_load.py KORVANE_CLI"""
import concurrent.futures
import http.client
import os
import pathlib
import random
import re
import signal
import threading
import urllib.parse

from shop_case import Case, main, order, shop


class Loads(Case):
    @classmethod
    def setUpClass(cls):
        shop().korvane("export-sql")
        online = shop().shop / "online"
        cls.full = {name: (online / name).read_bytes() for name in ("dbdel.sql", "db.sql")}
        cls.word = cls.full["db.sql"].decode("cp1252").splitlines()[0][1:]
        cls.wanted = shop().visitor().ask("cat007.php?n=1").text.count("<article")

    def load(self, delete, insert):
        """Has the host load two texts; None gives the whole shop."""
        for name, text in (("dbdel.sql", delete), ("db.sql", insert)):
            head = f"#{self.word}\r\n\r\n".encode()
            (shop().shop / "online" / name).write_bytes(self.full[name] if text is None else head + text.encode("cp1252"))
        return shop().visitor().ask("updatedb.php", {"rnd": "x", "sec": self.word}).text.strip()

    def check(self, page):
        self.assertEqual((page.status, page.text.count("<article"), page.text.count("</html>")), (200, self.wanted, 1))

    def leftovers(self):
        return shop().rows("SHOW TABLES LIKE 'kvn\\_%'") + shop().rows("SHOW TABLES LIKE 'kvo\\_%'")

    def test_no_page_is_bad_during_loads_even_when_php_is_killed(self):
        """Full and incremental loads one after the other, some of them ended by kill -9, beside visitors."""
        ended = threading.Event()
        killer = random.Random(20261122)

        def visits():
            count = 0
            visitor = shop().visitor()
            while not ended.is_set() or count < 40:
                try:
                    page = visitor.ask("cat007.php?n=1")
                except (OSError, ValueError, http.client.HTTPException):
                    continue
                if page.status != 502:
                    self.check(page)
                count += 1
            return count
        with concurrent.futures.ThreadPoolExecutor(3) as pool:
            visiting = [pool.submit(visits) for _ in range(2)]
            try:
                for number in range(6):
                    if number % 3 == 2:
                        timer = threading.Timer(killer.uniform(0.02, 0.25), self.kill_php)
                        timer.start()
                        try:
                            self.load(None, None)
                        except (OSError, ValueError, http.client.HTTPException):
                            pass
                        timer.join()
                    else:
                        self.assertEqual(self.load(None, None), "OK")
                        self.assertEqual(self.load("DELETE FROM articoli WHERE ID IN ('1');\r\n", self.row(1)), "OK")
            finally:
                ended.set()
            self.assertGreater(sum(future.result() for future in visiting), 60)
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

    def row(self, number, title="Titolo provvisorio"):
        """An INSERT for an article as the build writes it, with another title."""
        names = [row[0] for row in shop().rows("SHOW COLUMNS FROM articoli")]
        values = dict(zip(names, shop().rows(f"SELECT * FROM articoli WHERE ID = {number}")[0]))
        values["plain_titolo"] = title
        quoted = [f" {values[name]}" if name in ("ID", "sottopagina") else "NULL" if values[name] is None else
                  "'" + values[name].replace("\\", "\\\\").replace("'", "\\'").replace("\r", "\\r").replace("\n", "\\n") + "'"
                  for name in names]
        return ("LOCK TABLES articoli WRITE;\r\nINSERT INTO articoli\r\nVALUES (\r\n" + ", \r\n".join(quoted)
                + " );\r\n\r\nUNLOCK TABLES;\r\n")

    def kill_php(self):
        """kill -9 of the workers of this shop's PHP."""
        for entry in pathlib.Path("/proc").glob("[0-9]*"):
            try:
                environment = (entry / "cmdline").read_bytes()
                parent = re.search(r"PPid:\s*(\d+)", (entry / "status").read_text()).group(1)
                master = pathlib.Path("/proc", parent, "cmdline").read_bytes()
            except OSError:
                continue
            if b"php-fpm: pool" in environment and str(shop().home).encode() in master:
                os.kill(int(entry.name), signal.SIGKILL)

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
        self.assertEqual(shop().rows("SELECT COUNT(DISTINCT articolo) FROM kv_parole"), shop().rows("SELECT COUNT(*) FROM articoli"))


if __name__ == "__main__":
    main()
