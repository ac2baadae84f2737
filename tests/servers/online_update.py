#!/usr/bin/env python3
"""The online database update against a web host with PHP and MariaDB: online_update.py KORVANE_CLI UPDATE_SHOP

Each round edits the catalogue, builds, exports and has the host load. After each the host's tables hold exactly what the
build's database holds, whether a difference was sent or all of it.
"""
import pathlib
import random
import sqlite3
import subprocess
import sys
import unittest

HERE = pathlib.Path(__file__).resolve().parent
sys.path[:0] = [str(HERE), str(HERE.parent / "web")]
from mariadb_round_trip import RoundTrip  # noqa: E402  (the paths above come first)
from mysql_wire import Connection  # noqa: E402
from served_shop import ServedShop  # noqa: E402

KORVANE = PROGRAM = ""


class Host:
    """The host's database as the round trip asks for it."""

    def __init__(self, shop):
        self.shop = shop

    def connect(self):
        connection = Connection(str(self.shop.home / "run/mysql.sock"))
        connection.execute(b"USE negozio")
        connection.execute(b"SET NAMES latin1")
        return connection


class OnlineUpdate(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.shop = ServedShop(KORVANE).open()

    @classmethod
    def tearDownClass(cls):
        cls.shop.close()

    def setUp(self):
        """The host holds the last build, and it is known to."""
        self.shop.korvane("build")
        self.forget()
        self.assertEqual(self.update(), ("full", "OK"))

    def forget(self):
        (self.shop.shop / "db/last.mdb").unlink(missing_ok=True)

    def update(self):
        done = subprocess.run([PROGRAM, str(self.shop.shop)], capture_output=True, text=True, check=True)
        kind, rows = done.stdout.splitlines()[0].split()
        self.rows, self.said = int(rows), done.stdout.split("\n", 1)[1].rstrip("\n")
        return kind, self.said

    def languages(self):
        return len(list((self.shop.shop / "online").glob("updatedb*.php")))

    def assert_host_holds_the_build(self):
        trip = RoundTrip(Host(self.shop))
        trip.compare(self.shop.shop / "db/sql.mdb", "host", self.languages())
        trip.connection.close()
        self.assertEqual(trip.faults[:5], [])
        self.assertGreater(trip.values, 1000)

    def edit(self, statement, *values):
        self.shop.change(lambda catalogue: catalogue.execute(statement, values))

    def test_a_change_sends_its_rows_alone(self):
        self.edit("UPDATE articoli SET titolo = 'L''altra \"tazza\" \\ è così' WHERE ID = (SELECT MIN(ID) FROM articoli)")
        self.shop.korvane("build")
        self.assertEqual(self.update(), ("difference", "OK"))
        self.assertTrue(1 <= self.rows <= 3, self.rows)
        self.assert_host_holds_the_build()

    def test_a_second_update_of_an_unchanged_shop_sends_no_row(self):
        for _ in range(2):
            self.assertEqual(self.update(), ("difference", "OK"))
            self.assertEqual(self.rows, 0)
        self.assert_host_holds_the_build()

    def test_a_difference_is_not_inserted_twice(self):
        self.edit("INSERT INTO articoli (titolo, catID, prezzo) SELECT 'Nuovo', catID, 990000 FROM articoli LIMIT 1")
        self.shop.korvane("build")
        for _ in range(3):
            self.assertEqual(self.update(), ("difference", "OK"))
        self.assert_host_holds_the_build()

    def test_the_loaded_files_are_gone_and_cannot_be_fetched(self):
        self.assertEqual(list((self.shop.shop / "online").glob("*.sql")), [])
        self.assertIn(self.shop.visitor().ask("db.sql").status, (403, 404))

    def test_a_refused_word_ends_the_base_and_the_next_update_is_a_full_one(self):
        script = self.shop.shop / "online/updatedb.php"
        text = script.read_bytes()
        script.write_bytes(b"<?php die('accesso al database non autorizzato');")
        try:
            kind, said = self.update()
        finally:
            script.write_bytes(text)
        self.assertEqual(kind, "difference")
        self.assertTrue(said.startswith("accesso al database non autorizzato"), said)
        self.assertFalse((self.shop.shop / "db/last.mdb").exists())
        self.assertEqual(self.update(), ("full", "OK"))
        self.assert_host_holds_the_build()

    def test_a_failure_leads_to_the_logs_with_the_diagnosis(self):
        self.shop.execute("DROP TABLE opcodici")
        self.edit("UPDATE dettagliop SET codice = 'ZZ-9'")
        self.shop.korvane("build")
        kind, said = self.update()
        self.assertEqual(kind, "difference")
        self.assertIn("Si sono verificati errori nell'aggiornamento del database:", said)
        self.assertIn("opcodici", (self.shop.shop / "db1.log").read_text("cp1252"))
        self.assertIn("PHP", (self.shop.shop / "php.log").read_text("cp1252"))
        self.assertEqual(self.update(), ("full", "OK"))
        self.assert_host_holds_the_build()

    def test_a_host_that_is_down_fails_every_language(self):
        self.edit("UPDATE generale SET URL = 'http://127.0.0.1:1'")
        try:
            kind, said = self.update()
        finally:
            self.edit("UPDATE generale SET URL = ?", self.shop.base)
        self.assertIn("Si sono verificati errori", said)
        self.assertFalse((self.shop.shop / "db/last.mdb").exists())

    def test_random_edits_keep_the_host_equal_to_the_build(self):
        chance = random.Random(20240229)
        kinds = set()
        for _ in range(8):
            catalogue = sqlite3.connect(self.shop.shop / "catalog.mdb")
            numbers = [row[0] for row in catalogue.execute("SELECT ID FROM articoli ORDER BY ID")]
            with catalogue:
                for number in chance.sample(numbers, 3):
                    act = chance.choice(["price", "title", "delete", "hide", "same"])
                    if act == "price":
                        catalogue.execute("UPDATE articoli SET prezzo = prezzo + 10000 WHERE ID = ?", (number,))
                    elif act == "title":
                        catalogue.execute("UPDATE articoli SET titolo = titolo || ? WHERE ID = ?",
                                          (chance.choice([" è", "'", "\\", " \"x\"", " €"]), number))
                    elif act == "delete":
                        catalogue.execute("DELETE FROM articoli WHERE ID = ?", (number,))
            catalogue.close()
            self.shop.korvane("build")
            kind, said = self.update()
            self.assertEqual(said, "OK")
            kinds.add(kind)
            self.assert_host_holds_the_build()
        self.assertEqual(kinds, {"difference"})


if __name__ == "__main__":
    KORVANE, PROGRAM = sys.argv[1:3]
    unittest.main(argv=sys.argv[:1])
