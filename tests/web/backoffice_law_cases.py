"""Withdrawals and customers' data as the merchant sees them."""
import json

from backoffice_case import Case, page_forms

LINES = [{"n": 0, "testo": "CE-1 Ciotola <b>", "scelte": "Smalto: Blu", "quantita": 2}]


class BackOfficeCase(Case):
    def setUp(self):
        super().setUp()
        self.enter()
        self.add_order("261101-AAAAAA")

    def form(self, page, field):
        """The form that has a field."""
        return next(form for form in page_forms(page) if field in form["fields"])


class Withdrawn(BackOfficeCase):
    def setUp(self):
        super().setUp()
        number = Case.shop.rows("SELECT id FROM kv_ordini")[0][0]
        Case.shop.execute("INSERT INTO kv_recessi (numero, ordine, creato, email, tardi, stato, lingua, righe, ricevuta) VALUES"
                          f" ('261101-AAAAAA-R1', {number}, NOW(), 'anna@example.org', 1, 'ricevuto', '',"
                          f" '{json.dumps(LINES)}', '')")

    def test_a_withdrawal_is_in_its_list_and_at_its_order(self):
        self.assertIn("<strong>1</strong> recesso", self.office.ask("pannello.php").text)
        for address in ("recessi.php", "ordine.php?codice=261101-AAAAAA"):
            text = self.office.ask(address).text
            for words in ("261101-AAAAAA-R1", "2 &times; CE-1 Ciotola &lt;b&gt;", "Smalto: Blu", "Oltre 14 giorni"):
                self.assertIn(words, text)

    def test_the_merchant_says_what_becomes_of_it(self):
        page = self.office.ask("recessi.php?stato=ricevuto")
        answer = self.office.send(self.form(page, "recesso"), page, stato_recesso="rimborsato")
        self.assertIn("Lo stato del recesso è ora: rimborsato.", answer.text)
        self.assertIn("Nessun recesso.", answer.text)
        self.assertIn("261101-AAAAAA-R1", self.office.ask("recessi.php?stato=rimborsato").text)

    def test_a_forged_or_wrong_state_changes_nothing(self):
        page = self.office.ask("recessi.php")
        form = self.form(page, "recesso")
        self.office.send(form, page, stato_recesso="inventato")
        self.assertEqual(self.office.send(form, page, stato_recesso="accolto", gettone="0" * 32).status, 403)
        self.assertIn("index.php", Case.shop.visitor("/scripts/backoffice/").ask("recessi.php").address)
        self.assertEqual(Case.shop.rows("SELECT stato FROM kv_recessi"), [["ricevuto"]])


class CustomersData(BackOfficeCase):
    def setUp(self):
        super().setUp()
        self.number = self.add_customer("anna@example.org")
        Case.shop.execute(f"UPDATE kv_ordini SET cliente = {self.number}")

    def test_the_merchant_downloads_a_customers_data(self):
        page = self.office.ask(f"cliente.php?id={self.number}")
        form = next(form for form in page_forms(page) if form["fields"].get("azione") == "esporta")
        answer = self.office.send(form, page)
        self.assertEqual(answer.headers["Content-Type"], "application/json; charset=utf-8")
        data = json.loads(answer.body)
        self.assertEqual((data["cliente"]["email"], [one["codice"] for one in data["ordini"]]),
                         ("anna@example.org", ["261101-AAAAAA"]))
        self.assertNotIn("pw", data["cliente"])

    def test_deletion_warns_of_orders_under_way_and_leaves_anonymous_ones(self):
        page = self.office.ask(f"cliente.php?id={self.number}&elimina=1")
        self.assertIn("Ci sono ordini in corso", page.text)
        self.office.send(page.form("cliente.php"), page)
        self.assertEqual(Case.shop.rows("SELECT codice, cliente, nome, email, riepilogo FROM kv_ordini"),
                         [["261101-AAAAAA", "0", "Cliente eliminato", "", ""]])
        text = self.office.ask("ordine.php?codice=261101-AAAAAA").text
        self.assertIn("Cliente eliminato", text)
        self.assertNotIn("mailto:", text)
