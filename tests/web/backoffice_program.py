"""Orders on the merchant's own machine, with the program itself: korvane-cli, and what the window of orders does, at the
door of a real back office. Classes for backoffice_work_test.py. KORVANE_TEST_ORDERS is how many orders are fetched, more
than one answer brings, and how many visitors order; KORVANE_DESK_AT_WORK the program of the desk."""
import email.header
import http.server
import json
import os
import re
import sqlite3
import subprocess
import threading
import urllib.error
import urllib.request
from decimal import Decimal

from backoffice_case import OFFICE, page_forms
from backoffice_remote import RemoteDesk
from served_shop import order

ORDERS = int(os.environ.get("KORVANE_TEST_ORDERS", "250"))
PLACED = int(os.environ.get("KORVANE_TEST_ORDERS", "10"))


class CutLine(http.server.BaseHTTPRequestHandler):
    """Hands requests on to the shop; the answer to the request of number `cut`, from 1, ends in its middle."""
    target, cut, asked = "", 0, 0

    def do_POST(self):
        CutLine.asked += 1
        body = self.rfile.read(int(self.headers["Content-Length"]))
        request = urllib.request.Request(CutLine.target + self.path, body, {"Content-Type": self.headers["Content-Type"]})
        try:
            answer = urllib.request.urlopen(request)
        except urllib.error.HTTPError as refusal:
            answer = refusal
        with answer:
            text = answer.read()
            self.send_response(answer.status)
            self.send_header("Content-Type", answer.headers["Content-Type"])
        self.send_header("Content-Length", str(len(text)))
        self.end_headers()
        self.wfile.write(text[:len(text) // 2] if CutLine.asked == CutLine.cut else text)
        self.close_connection = True

    def log_message(self, *words):
        pass


class ProgramOrders(RemoteDesk):
    def setUp(self):
        super().setUp()
        self.line = http.server.ThreadingHTTPServer(("127.0.0.1", 0), CutLine)
        threading.Thread(target=self.line.serve_forever, daemon=True).start()
        CutLine.target, CutLine.cut, CutLine.asked = self.shop.base, 0, 0
        (self.shop.shop / "ordini.db").unlink(missing_ok=True)
        address = f"http://127.0.0.1:{self.line.server_port}"
        self.before = self.catalogue("SELECT URL, cartella, cartellaCGI FROM generale")[0]
        self.catalogue("UPDATE generale SET URL = ?, cartella = '', cartellaCGI = ?", address, OFFICE.rstrip("/"))
        self.fetch()  # makes the key
        key = self.catalogue("SELECT chiave FROM chiave_ordini")[0][0]
        self.shop.execute(f"REPLACE INTO kv_stato VALUES ('chiave_ordini', '{key}')")

    def tearDown(self):
        self.catalogue("UPDATE generale SET URL = ?, cartella = ?, cartellaCGI = ?", *self.before)
        self.line.shutdown()
        self.line.server_close()
        super().tearDown()

    def catalogue(self, statement, *values):
        found = []
        self.shop.change(lambda catalogue: found.extend(catalogue.execute(statement, values).fetchall()))
        return found

    def fetch(self, *options):
        """Status, the lines as lists of columns, and what was said."""
        done = subprocess.run([self.shop.program, "orders", self.shop.shop, *options], env=self.shop.environment,
                              stdin=subprocess.DEVNULL, capture_output=True, text=True, check=False)
        return done.returncode, [line.split("\t") for line in done.stdout.splitlines()], done.stderr

    def test_orders_come_once_over_a_line_that_breaks_and_their_sum_is_the_shops(self):
        self.shop.execute("INSERT INTO kv_ordini (codice, creato, nome, email, totale, valuta, metodo, stato, lingua, dati,"
                          " riepilogo) SELECT CONCAT('P', seq), NOW() - INTERVAL seq MINUTE, 'Łucja', '', seq + 0.45, 'EUR',"
                          f" 'Contrassegno', 'nuovo', '', '', 'x' FROM seq_1_to_{ORDERS}")
        CutLine.cut = CutLine.asked + 2
        status, lines, said = self.fetch()
        self.assertEqual((status, len(lines)), (1, 200), said)
        status, lines, said = self.fetch()
        self.assertEqual((status, said), (0, ""))
        self.assertEqual(sorted(line[0] for line in lines), sorted(f"P{n}" for n in range(1, ORDERS + 1)))
        cents = sum(int(line[3].split(" ")[0].replace(".", "")) for line in lines)
        self.assertEqual(cents, int(self.shop.rows("SELECT CAST(SUM(totale) * 100 AS INTEGER) FROM kv_ordini")[0][0]))
        self.wait(1000)
        self.change_state("pagato", "P7")
        status, lines, said = self.fetch()
        self.assertEqual([line[4] for line in lines if line[0] == "P7"], ["pagato"], said)
        self.assertEqual(len(lines), ORDERS)

    def work(self, *lines):
        """What the merchant was told and asked at the desk, a list for each line of work."""
        done = subprocess.run([os.environ["KORVANE_DESK_AT_WORK"], self.shop.shop], env=self.shop.environment, text=True,
                              input="".join("\t".join(line) + "\n" for line in lines), capture_output=True, check=True)
        told = [[]]
        for line in done.stdout.splitlines():
            told[-1].append(line)
            if line in ("done", "failed"):
                told.append([])
        self.assertEqual(len(told), len(lines) + 1, done.stdout)
        return told[:-1]

    def placed(self):
        """Codes of orders that visitors have placed over HTTP, one to three pieces each, and the pieces by code."""
        for n in range(PLACED):
            self.assertIn("thankyou", order(self.shop.visitor(), f"41.{n % 3 + 1}", method=2, Cognome=f"Bianchi {n}").address)
        codes = [row[0] for row in self.shop.rows("SELECT codice FROM kv_ordini ORDER BY id")]
        return codes, {code: n % 3 + 1 for n, code in enumerate(codes)}

    def status_mails(self, first):
        """Which orders the mails from a number on are about, once for each mail."""
        subjects = [str(email.header.make_header(email.header.decode_header(email.message_from_string(text)["Subject"])))
                    for text in self.shop.mails()[first:]]
        return sorted(re.search(r"\d{6}-[A-Z0-9]{6}", subject).group(0) for subject in subjects)

    def test_states_are_set_on_both_sides_and_no_mail_goes_twice(self):
        self.shop.execute("INSERT INTO kv_disponibilita VALUES ('A', '41', 1, 100000)")
        codes, pieces = self.placed()
        CutLine.cut = CutLine.asked + (1 if PLACED <= 200 else 2)
        self.assertEqual(self.fetch()[0], 1)
        status, lines, said = self.fetch()
        self.assertEqual((status, sorted(line[0] for line in lines)), (0, sorted(codes)), said)
        self.assert_sums_are_the_shops(lines)
        mails, wanted, work, expected = len(self.shop.mails()), {}, [], []
        for n, code in enumerate(codes):
            here, there = ("annullato", None) if n % 5 == 4 else ("pagato", [None, "spedito", "spedito", "pagato"][n % 5])
            if there:
                self.change_state(there, code, scrivi=None)
            work.append(("state", code, "nuovo", here, "yes" if n % 5 == 2 else "no", "yes", "yes"))
            conflict = f"asked\tLo stato dell'ordine {code} è cambiato nel frattempo sul server.\\n\\nQui: nuovo\\nSul server: " \
                "spedito\\nScelto: pagato\\n\\nNulla è stato modificato. Si desidera impostare comunque il valore scelto?"
            sent = f"told\tMessaggio al cliente: {here}"
            equal = "told\tL'ordine aveva già questo stato sul server: nulla è stato modificato, e nessun messaggio è partito."
            expected.append([[sent], [conflict], [conflict, sent], [equal], [sent]][n % 5] + ["done"])
            wanted[code] = "spedito" if n % 5 == 1 else here
        self.assertEqual(self.work(*work), expected)
        self.assertEqual(dict(self.shop.rows("SELECT codice, stato FROM kv_ordini")), wanted)
        self.assertEqual(self.status_mails(mails), sorted(code for n, code in enumerate(codes) if n % 5 in (0, 2, 4)))
        status, lines, said = self.fetch()
        self.assertEqual((status, {line[0]: line[4] for line in lines}), (0, wanted), said)
        self.assert_sums_are_the_shops(lines)
        back = sum(pieces[code] for code in codes if wanted[code] == "annullato")
        self.assertEqual(self.shop.rows("SELECT quantita FROM kv_disponibilita WHERE chiave = '41'"),
                         [[str(100000 - sum(pieces.values()) + back)]])
        self.assertEqual(self.pieces_here(), sum(pieces.values()))

    def assert_sums_are_the_shops(self, lines):
        shops = self.shop.rows("SELECT SUM(totale), COUNT(*) FROM kv_ordini")[0]
        self.assertEqual((sum(Decimal(line[3].split(" ")[0]) for line in lines), len(lines)), (Decimal(shops[0]), int(shops[1])))

    def pieces_here(self):
        orders = sqlite3.connect(self.shop.shop / "ordini.db")
        texts = [row[0] for row in orders.execute("SELECT dati FROM ordini")]
        orders.close()
        return sum(line["quantita"] for text in texts for line in json.loads(text)["righe"])

    def test_a_stale_page_of_the_back_office_overwrites_nothing_that_was_set_here(self):
        self.add_order("261101-AAAAAA")
        self.fetch()
        page = self.order_page()
        form = next(f for f in page_forms(page) if "stato" in f["fields"])
        self.assertEqual(self.work(("state", "261101-AAAAAA", "nuovo", "pagato", "no", "no", "no")), [["done"]])
        self.assertIn("cambiato nel frattempo", self.office.send(form, page, stato="annullato").text)
        self.assertEqual(self.shop.rows("SELECT stato FROM kv_ordini"), [["pagato"]])
        told = self.work(("note", "261101-AAAAAA", "richiamare Łucja"), ("note", "261101-ZZZZZZ", "x"))
        self.assertEqual((told[0], told[1][0].partition(".")[0]),
                         (["done"], "asked\tIl server non ha più l'ordine 261101-ZZZZZZ"))
        self.assertIn("richiamare &#321;ucja", self.order_page().text.replace("Ł", "&#321;"))

    def test_a_change_whose_answer_is_lost_is_done_once(self):
        self.add_order("261101-AAAAAA")
        self.fetch()
        mails = len(self.shop.mails())
        CutLine.cut = CutLine.asked + 1
        change = ("state", "261101-AAAAAA", "nuovo", "spedito", "no", "yes", "no")
        told = self.work(change, change)
        self.assertIn("Non si sa se il server ha eseguito la modifica", told[0][0])
        self.assertIn("L'ordine aveva già questo stato", told[1][0])
        self.assertEqual(len(self.shop.mails()), mails + 1)

    def test_what_the_shop_deletes_of_a_customer_leaves_the_file_of_orders(self):
        customer = self.add_customer("lucja@example.org")
        self.add_order("OLD", "Łucja Nowakowska", "lucja@example.org", state="spedito", created="'2001-05-05 10:00:00'")
        self.add_order("NEW", "Łucja Nowakowska", "lucja@example.org", state="spedito", fields={"Citta": "Nowakowska"})
        self.add_order("OTHER", "Ugo Bassi")
        self.shop.execute(f"UPDATE kv_ordini SET cliente = {customer} WHERE codice <> 'OTHER'")
        self.assertEqual(len(self.fetch()[1]), 3)
        self.assertIn(b"Nowakowska", (self.shop.shop / "ordini.db").read_bytes())
        page = self.office.ask(f"cliente.php?id={customer}&elimina=1")
        self.office.send(page.form("cliente.php"), page)
        status, lines, said = self.fetch()
        self.assertEqual((status, sorted(line[0] + " " + line[2] for line in lines)),
                         (0, ["NEW Cliente eliminato", "OTHER Ugo Bassi"]), said)
        self.assertIn("gli ordini restano, senza nome: NEW.", said)
        self.assertIn("eliminati anche da questo computer: OLD.", said)
        self.assertNotIn(b"owakowska", (self.shop.shop / "ordini.db").read_bytes())
        self.assertEqual(self.fetch()[2], "")

    def test_a_server_with_another_key_or_none_is_told_apart(self):
        for key, words in (("f" * 64, "un'altra chiave"), ("", "non ha ancora la chiave")):
            self.shop.execute(f"REPLACE INTO kv_stato VALUES ('chiave_ordini', '{key}')")
            status, lines, said = self.fetch()
            self.assertEqual((status, lines), (1, []))
            self.assertIn(words, said)

    def test_the_file_of_orders_is_readable_by_its_owner_alone(self):
        self.add_order("261101-AAAAAA", "Anna Neri", created="'2026-11-01 10:00:00'", total="80.50")
        status, lines, said = self.fetch("--since", "2026-11-01")
        self.assertEqual((status, lines), (0, [["261101-AAAAAA", "2026-11-01 10:00:00", "Anna Neri", "80.50 EUR", "nuovo"]]),
                         said)
        self.assertEqual((self.shop.shop / "ordini.db").stat().st_mode & 0o777, 0o600)
        orders = sqlite3.connect(self.shop.shop / "ordini.db")
        self.assertEqual(orders.execute("SELECT COUNT(*) FROM ordini").fetchone(), (1,))
        orders.close()
