"""Orders on the merchant's own machine, with the program itself: korvane-cli at the door of a real back office. Classes
for backoffice_work_test.py. KORVANE_TEST_ORDERS is how many orders are fetched, more than one answer brings."""
import http.server
import os
import sqlite3
import subprocess
import threading
import urllib.error
import urllib.request

from backoffice_case import OFFICE
from backoffice_remote import RemoteDesk

ORDERS = int(os.environ.get("KORVANE_TEST_ORDERS", "250"))


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
