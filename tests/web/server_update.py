#!/usr/bin/env python3
"""The database update on the host, updatedb.php: server_update.py KORVANE_CLI"""
import re
import threading

from shop_case import Case, main, shop

HEAD = "#{word}\r\n"
TABLE = "CREATE TABLE prova (\r\nID INT,\r\nuno CHAR(50),\r\ndue LONGTEXT,\r\ntre FLOAT\r\n);\r\n"
ROW = "INSERT INTO prova\r\nVALUES (\r\n {0}, \r\n'{1}', \r\n'{2}', \r\n {3} );\r\n\r\n"
REFUSED = "accesso al database non autorizzato"


class Update(Case):
    """Each test puts files of its own beside updatedb.php."""

    word = "abcdefghijklmnopqrst"

    def setUp(self):
        super().setUp()
        shop().execute("DROP TABLE IF EXISTS prova")
        self.online = shop().shop / "online"

    def put(self, load, drop="DROP TABLE prova;\r\n", mark="", word=None):
        for name, text in (("db.sql", load), ("dbdel.sql", drop)):
            head = HEAD.format(word=word or self.word) + (f"#QS={mark}\r\n" if mark else "")
            (self.online / name).write_bytes((head + "\r\n" + text).encode("cp1252"))

    def update(self, word=None, **fields):
        return self.visitor.ask("updatedb.php", dict({"rnd": "x", "sec": word or self.word}, **fields)).text

    def left(self):
        return sorted(path.name for path in self.online.glob("*.sql"))

    def test_a_load_makes_the_tables_and_takes_the_files_away(self):
        self.put(TABLE + "LOCK TABLES prova WRITE;\r\n" + ROW.format(1, "a", "b", ".5") + "UNLOCK TABLES;\r\n")
        self.assertEqual(self.update(), "OK")
        self.assertEqual(shop().rows("SELECT * FROM prova"), [["1", "a", "b", "0.5"]])
        self.assertEqual(self.left(), [])

    def test_the_word_of_both_files_is_asked_for(self):
        self.put(TABLE)
        for word in ("x", self.word[:-1], self.word + "x", self.word.upper(), " " + self.word):
            self.assertEqual(self.update(word), REFUSED)
        self.assertEqual(self.visitor.ask("updatedb.php").text, REFUSED)
        self.assertEqual(self.visitor.ask("updatedb.php", {"sec[]": self.word}).text, REFUSED)
        self.assertEqual(self.visitor.ask("updatedb.php?sec=" + self.word).text, REFUSED)
        (self.online / "dbdel.sql").write_bytes(b"#altra\r\n")
        self.assertEqual(self.update(), REFUSED)
        self.assertEqual(shop().rows("SHOW TABLES LIKE 'prova'"), [])

    def test_the_key_of_orders_is_kept_by_the_database_once_the_word_was_right(self):
        kept = lambda: shop().rows("SELECT valore FROM kv_stato WHERE nome = 'chiave_ordini'")
        shop().execute("DELETE FROM kv_stato WHERE nome = 'chiave_ordini'")
        key = "0123456789abcdef" * 4
        self.put(TABLE)
        self.assertEqual(self.update("x", chiave=key), REFUSED)
        self.assertEqual(kept(), [])
        for wrong in ("", key[1:], key.upper(), key + "\n"):
            self.put(TABLE)
            self.assertEqual(self.update(chiave=wrong), "OK")
        self.assertEqual(kept(), [])
        for fields in ({"chiave": key}, {}, {"chiave[]": "f" * 64}):
            self.put(TABLE)
            self.assertEqual(self.update(**fields), "OK")
            self.assertEqual(kept(), [[key]])
        files = [path for path in shop().shop.rglob("*") if path.is_file()]
        self.assertEqual([path for path in files if key.encode() in path.read_bytes()], [])

    def test_an_empty_word_opens_nothing(self):
        for first in (b"#\r\n", b"\r\n", b""):
            for name in ("db.sql", "dbdel.sql"):
                (self.online / name).write_bytes(first + TABLE.encode())
            self.assertEqual(self.visitor.ask("updatedb.php", {"sec": ""}).text, REFUSED)

    def test_files_that_are_gone_are_refused(self):
        for name in ("db.sql", "dbdel.sql"):
            (self.online / name).unlink(missing_ok=True)
        self.assertEqual(self.update(), REFUSED)

    def test_the_files_cannot_be_read_over_the_web(self):
        self.put(TABLE)
        for name in ("db.sql", "dbdel.sql", "db.SQL"):
            self.assertIn(self.visitor.ask(name).status, (403, 404))
        self.put("CREATE TABLE (;\r\n")
        self.assertNotEqual(self.update(), "OK")
        self.assertEqual((self.online / "db.sql").stat().st_mode & 0o777, 0o600)

    def test_the_separator_comes_from_the_second_line(self):
        self.put((TABLE + ROW.format(1, "a;", ";\\g\\n", "2")).replace(";\r\n", ";\\g\r\n"), "DROP TABLE prova;\\g\r\n", ";\\g")
        self.assertEqual(self.update(), "OK")
        self.assertEqual(shop().rows("SELECT uno, due FROM prova"), [["a;", ";g\n"]])

    def test_lines_that_end_in_a_single_character_are_read(self):
        self.put(TABLE + ROW.format(1, "a", "b", "1"))
        for name in ("db.sql", "dbdel.sql"):
            path = self.online / name
            path.write_bytes(path.read_bytes().replace(b"\r\n", b"\n"))
        self.assertEqual(self.update(), "OK")
        self.assertEqual(shop().rows("SELECT COUNT(*) FROM prova"), [["1"]])

    def test_texts_arrive_byte_for_byte(self):
        text = "".join(chr(code) for code in range(256))
        quoted = "".join({0: "\\0", 8: "\\b", 9: "\\t", 10: "\\n", 13: "\\r", 39: "\\'", 34: '\\"', 92: "\\\\"}.get(ord(c), c)
                         for c in text)
        path = self.online / "db.sql"
        self.put(TABLE)
        path.write_bytes(path.read_bytes() + ROW.format(1, "x", "@", "1").encode().replace(b"@", quoted.encode("latin1")))
        self.assertEqual(self.update(), "OK")
        wanted = text.encode("latin1").hex().upper()
        self.assertEqual(shop().rows("SELECT HEX(CONVERT(due USING latin1)) FROM prova"), [[wanted]])

    def test_many_rows_arrive_in_their_order(self):
        rows = "".join(ROW.format(n, f"codice {n}", "testo " * (n % 60), f" {n}.25") for n in range(1, 8001))
        self.put(TABLE + rows)
        self.assertEqual(self.update(), "OK")
        self.assertEqual(shop().rows("SELECT COUNT(*), SUM(ID), SUM(LENGTH(due)), MAX(tre) FROM prova"),
                         [["8000", "32004000", str(sum(6 * (n % 60) for n in range(1, 8001))), "8000.25"]])

    def test_a_row_larger_than_a_joined_statement_arrives(self):
        self.put(TABLE + ROW.format(1, "a", "x" * 1500000, "1") + ROW.format(2, "b", "y", "2"))
        self.assertEqual(self.update(), "OK")
        self.assertEqual(shop().rows("SELECT ID, LENGTH(due) FROM prova ORDER BY ID"), [["1", "1500000"], ["2", "1"]])

    def test_rows_of_up_to_three_columns_are_on_one_line(self):
        self.put("CREATE TABLE prova (ID INT, uno CHAR(9), due CHAR(9));\r\n" + "".join(
            f"INSERT INTO prova VALUES ( {n}, 'VALUES (', ');' );\r\n" for n in range(3)))
        self.assertEqual(self.update(), "OK")
        self.assertEqual(shop().rows("SELECT COUNT(*) FROM prova WHERE uno = 'VALUES (' AND due = ');'"), [["3"]])

    def test_a_table_that_is_not_there_needs_no_dropping(self):
        self.put(TABLE, "DROP TABLE prova;\r\n\r\nDROP TABLE nessuna;\r\n")
        self.assertEqual(self.update(), "OK")

    def test_a_statement_that_deletes_and_fails_is_told(self):
        self.put("", "DELETE FROM nessuna WHERE ID IN ('1');\r\n")
        self.assertIn("nessuna", self.update())

    def test_a_difference_of_nothing_is_a_load(self):
        self.put("\r\n\r\n", "\r\n")
        self.assertEqual(self.update(), "OK")

    def test_a_broken_transfer_is_told_before_it_does_harm(self):
        self.put(TABLE + ROW.format(1, "a", "b", "1"))
        self.update()
        self.put(TABLE + ROW.format(2, "a", "b", "1").strip()[:-3])
        self.assertIn("non è completo", self.update())
        self.assertEqual(shop().rows("SELECT ID FROM prova"), [["1"]])

    def test_a_failed_load_is_repaired_by_the_next(self):
        rows = "".join(ROW.format(n, "a", "b", "1") for n in range(1, 50))
        self.put(TABLE + "LOCK TABLES prova WRITE;\r\n" + rows + ROW.format(50, "x" * 60, "b", "1") + "UNLOCK TABLES;\r\n")
        answer = self.update()
        self.assertIn("INSERT INTO prova", answer)
        self.assertIn("uno", answer)
        self.put(TABLE + rows)
        self.assertEqual(self.update(), "OK")
        self.assertEqual(shop().rows("SELECT COUNT(*) FROM prova"), [["49"]])

    def test_a_failure_tells_no_path(self):
        self.put("CREATE TABLE prova (x INT) DATA DIRECTORY='/nessuna/cartella';\r\nLOAD DATA INFILE '/etc/passwd' INTO TABLE"
                 " prova;\r\n")
        answer = self.update()
        self.assertNotEqual(answer, "OK")
        self.assertNotIn(str(shop().work), answer)
        self.assertIsNone(re.search(r"(?<!')/(etc|tmp|home|nessuna)/", answer.split("\n", 1)[1]))

    def test_two_updates_at_once_leave_whole_tables(self):
        self.put(TABLE + "".join(ROW.format(n, "a", "b" * 200, "1") for n in range(1, 6001)))
        answers = []
        threads = [threading.Thread(target=lambda: answers.append(shop().visitor().ask(
            "updatedb.php", {"sec": self.word}).text)) for _ in range(3)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertIn("OK", answers)
        self.assertEqual(shop().rows("SELECT COUNT(*) FROM prova"), [["6000"]])

    def test_the_diagnostics_tell_versions_and_limits_and_no_more(self):
        self.put(TABLE)
        self.update()
        page = self.visitor.ask("updatedb.php?w=phpinfo&segreto=1")
        self.assertRegex(page.text, r"\APHP \d+\.\d+")
        self.assertIn("memory_limit: 128M", page.text)
        self.assertIn("mysqli", page.text)
        for secret in ("segreto", "negozio", str(shop().work), "HTTP_", "DOCUMENT_ROOT", "PATH", "cookie", "REMOTE_ADDR", "/"):
            self.assertNotIn(secret, page.text.replace("fpm-fcgi", ""))

    def test_the_diagnostics_are_for_who_knew_the_word_and_not_for_long(self):
        scratch = shop().home / "tmp"
        for path in scratch.glob("kvdiagnosi*"):
            path.unlink()
        self.assertEqual(self.visitor.ask("updatedb.php?w=phpinfo").text, "PHP attivo\n")
        self.update("x" * 20)
        self.assertEqual(self.visitor.ask("updatedb.php?w=phpinfo").text, "PHP attivo\n")
        self.put("CREATE TABLE (;\r\n")
        self.assertNotEqual(self.update(), "OK")
        self.assertIn("memory_limit", self.visitor.ask("updatedb.php?w=phpinfo").text)
        path, = scratch.glob("kvdiagnosi*")
        until, signed = path.read_text().split(" ")
        for text in (f"{int(until) - 700} {signed}", f"{int(until) + 1} {signed}", until, ""):
            path.write_text(text)
            self.assertEqual(self.visitor.ask("updatedb.php?w=phpinfo").text, "PHP attivo\n")

    def test_each_language_has_its_own_files(self):
        self.put(TABLE)
        self.assertEqual(self.visitor.ask("updatedb_l2.php", {"sec": self.word}).text, REFUSED)


class Pages(Case):
    def test_a_page_is_served_while_the_tables_are_gone(self):
        shop().execute("RENAME TABLE articoli TO articoli_via, categorie TO categorie_via")
        try:
            page = self.visitor.ask("cat007.php")
        finally:
            shop().execute("RENAME TABLE articoli_via TO articoli, categorie_via TO categorie")
        self.assertEqual(page.status, 200)
        self.assertIn("</html>", page.text)

    def test_a_database_that_is_away_is_told_without_its_words(self):
        script = shop().shop / "online/kvdb.php"
        text = script.read_bytes()
        script.write_bytes(text.replace(b"\r\nlocalhost\r\n", b"\r\nlocalhost:/nessuno\r\n"))
        try:
            page = self.visitor.ask("cat007.php")
        finally:
            script.write_bytes(text)
        self.assertEqual(page.status, 503)
        self.assertIn("raggiungibile", page.text)
        self.assertEqual((page.text.count("<!DOCTYPE html>"), page.text.count("</html>")), (1, 1))
        self.assertGreater(int(page.headers["Retry-After"]), 0)
        self.assertNotIn("nessuno", page.text)
        log = shop().home / "log/php.log"
        self.assertIn("Shop database", log.read_text())
        log.write_text("")


if __name__ == "__main__":
    main()
