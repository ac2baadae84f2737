"""What the tests of the back office share: one served shop for a file of tests, empty tables and the merchant's steps
for each of them, an empty error log after it. A file ends with `main()`, which takes the program from the command."""
import base64
import json
import re
import sys
import unittest

from served_shop import Forms, ServedShop

OFFICE = "scripts/backoffice/"


class Case(unittest.TestCase):
    shop = None

    def setUp(self):
        self.office = Case.shop.visitor("/" + OFFICE)
        # An attempt makes the tables, if it is the first.
        self.enter(visitor=Case.shop.visitor("/" + OFFICE))
        Case.shop.execute(*(f"DELETE FROM kv_{name}" for name in
                       ("ordini", "recessi", "clienti", "disponibilita", "richieste", "tentativi",
                        "annotazioni", "testi", "tolti")))

    def tearDown(self):
        self.assertEqual(Case.shop.log(), "")

    def enter(self, user="bottega", password="bottega-locale", visitor=None):
        visitor = visitor or self.office
        page = visitor.ask("index.php")
        return visitor.send(page.form("index.php"), page, utente=user, password=password)

    def add_order(self, code, name="Anna Bianchi", email="anna@example.org", total="10.50", state="nuovo",
                  created="NOW()", fields=None, lines=(), extra=None):
        data = json.dumps({"campi": fields or {}, "righe": list(lines), "totali": {"merce": 1}, **(extra or {})},
                          separators=(",", ":")).replace("\\", "\\\\")
        quote = lambda text: "'" + text.replace("\\", "\\\\").replace("'", "\\'") + "'"
        Case.shop.execute("INSERT INTO kv_ordini (codice, creato, cliente, nome, email, totale, valuta, metodo, stato,"
                     f" lingua, dati, riepilogo) VALUES ({quote(code)}, {created}, 0, {quote(name)}, {quote(email)},"
                     f" {total},"
                     f" 'EUR', 'Contrassegno', {quote(state)}, '', '{data.replace(chr(39), chr(39) * 2)}',"
                     f" {quote('Riepilogo di ' + name)})")

    def add_customer(self, email, name="Anna", approved=1):
        Case.shop.execute("INSERT INTO kv_clienti (email, pw, nome, cognome, approvato, creato) VALUES"
                     f" ('{email}', 'x', '{name}', 'Bianchi', {approved}, NOW())")
        return Case.shop.rows(f"SELECT id FROM kv_clienti WHERE email = '{email}'")[0][0]

    def codes(self, address):
        return re.findall(r'ordine\.php\?codice=([^"]+)"', self.office.ask(address).text)


def page_forms(page):
    return Forms(page.text).forms


def last_link():
    """The address in the newest mail."""
    body = Case.shop.mails()[-1].replace("\r\n", "\n").partition("\n\n")[2]
    return re.search(r"http\S+", base64.b64decode(body).decode()).group(0)


def main():
    program = sys.argv[1] if len(sys.argv) > 1 else sys.exit("usage: TEST KORVANE_CLI")
    Case.shop = ServedShop(program)
    passed = False
    try:
        Case.shop.open()
        passed = unittest.main(argv=sys.argv[:1] + sys.argv[2:], exit=False).result.wasSuccessful()
    finally:
        Case.shop.close(keep=not passed)
    sys.exit(0 if passed else 1)
