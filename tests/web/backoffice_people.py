"""What the back office does for a customer who asks for their data, and for the stock that runs short. Classes for
backoffice_work_test.py."""
import json

from backoffice_case import page_forms
from backoffice_desk import Desk
from served_shop import order


class PersonalData(Desk):
    def person(self, proven=1):
        number = self.add_customer("anna@example.org")
        self.shop.execute(f"UPDATE kv_clienti SET provato = {proven}, indirizzo = 'Via Łuka 1' WHERE id = {number}")
        fields = {"Nome": "Anna", "Cognome": "Bianchi", "Indirizzo": "Via Łuka 1", "Paese": "Italia", "Telefono": "02 1"}
        line = {"id": 41, "testo": "Ciotola", "quantita": 1, "importo": 5}
        for code, state in (("261101-CONTO", "spedito"), ("261102-OSPITE", "annullato"), ("261103-ALTRO", "spedito")):
            self.add_order(code, state=state, fields=fields, lines=[line])
        self.shop.execute(f"UPDATE kv_ordini SET cliente = {number} WHERE codice = '261101-CONTO'",
                          "UPDATE kv_ordini SET cliente = 999999, email = 'altra@example.org' WHERE codice = '261103-ALTRO'",
                          "INSERT INTO kv_annotazioni (ordine, quando, tipo, testo) SELECT id, NOW(), 'nota', 'Anna chiama'"
                          " FROM kv_ordini WHERE codice <> '261103-ALTRO'")
        return number

    def exported(self, number):
        page = self.office.ask(f"cliente.php?id={number}")
        form = next(form for form in page_forms(page) if form["fields"].get("azione") == "esporta")
        page = self.office.send(form, page)
        self.assertEqual(page.headers["Content-Type"], "application/json; charset=utf-8")
        return json.loads(page.body.decode())

    def delete(self, number):
        page = self.office.ask(f"cliente.php?id={number}&elimina=1")
        return self.office.send(page.form("cliente.php"), page)

    def test_a_customers_file_holds_all_that_is_known_and_nothing_of_others(self):
        data = self.exported(self.person())
        self.assertEqual((data["cliente"]["indirizzo"], "pw" in data["cliente"]), ("Via Łuka 1", False))
        self.assertEqual([order["codice"] for order in data["ordini"]], ["261101-CONTO", "261102-OSPITE"])
        self.assertEqual(data["ordini"][0]["dati"]["campi"]["Indirizzo"], "Via Łuka 1")
        self.assertEqual(data["ordini"][0]["annotazioni"][0]["testo"], "Anna chiama")

    def test_orders_that_were_only_placed_with_an_unproven_address_are_not_the_customers(self):
        number = self.person(proven=0)
        self.assertEqual([order["codice"] for order in self.exported(number)["ordini"]], ["261101-CONTO"])
        self.delete(number)
        self.assertEqual(self.shop.rows("SELECT nome FROM kv_ordini WHERE codice = '261102-OSPITE'"), [["Anna Bianchi"]])

    def test_a_deleted_customer_leaves_orders_without_a_name(self):
        before = self.shop.rows("SELECT * FROM kv_ordini WHERE codice = '261103-ALTRO'")
        number = self.person()
        before = self.shop.rows("SELECT * FROM kv_ordini WHERE codice = '261103-ALTRO'")
        self.assertIn("eliminato", self.delete(number).text)
        self.assertEqual(self.shop.rows("SELECT * FROM kv_clienti"), [])
        mine = self.shop.rows("SELECT cliente, nome, email, riepilogo, totale, stato FROM kv_ordini WHERE codice <> "
                              "'261103-ALTRO' ORDER BY id")
        self.assertEqual(mine, [["0", "Cliente eliminato", "", "", "10.50", state] for state in ("spedito", "annullato")])
        kept = str(self.shop.rows("SELECT * FROM kv_ordini WHERE codice <> '261103-ALTRO'")) + str(
            self.shop.rows("SELECT * FROM kv_annotazioni"))
        for person in ("Anna", "Bianchi", "uka", "example.org", "02 1"):
            self.assertNotIn(person, kept)
        data = json.loads(self.shop.rows("SELECT dati FROM kv_ordini WHERE codice = '261101-CONTO'")[0][0])
        self.assertEqual((data["campi"], data["righe"][0]["testo"]), ({"Paese": "Italia"}, "Ciotola"))
        self.assertEqual(self.shop.rows("SELECT * FROM kv_ordini WHERE codice = '261103-ALTRO'"), before)
        self.assertIn("Ciotola", self.order_page("261101-CONTO").text)


class Stock(Desk):
    def setUp(self):
        super().setUp()
        self.shop.execute("DELETE FROM kv_stato WHERE nome IN ('soglia_scorte', 'scorte_condivise')")

    def test_what_runs_short_is_counted_listed_and_marked_by_the_merchants_number(self):
        self.shop.execute("INSERT INTO kv_disponibilita VALUES ('A', '41', 1, 3), ('A', '42', 1, 4), ('A', '43', 1, 0),"
                          " ('A', '44', 0, 2)")
        self.assertRegex(self.office.ask("pannello.php").text, r"In esaurimento</h2><p><strong>1</strong> voce")
        page = self.office.ask("disponibilita.php?vedi=scarsi")
        self.assertEqual((page.text.count('name="c['), page.text.count(">in esaurimento<")), (1, 1))
        form = next(f for f in page_forms(page) if "soglia" in f["fields"])
        self.assertIn("numero intero", self.office.send(form, page, soglia="-1").text)
        self.assertEqual(self.office.send(form, page, soglia="4").text.count('name="c['), 2)

    def test_an_order_that_leaves_few_pieces_tells_the_merchant_once(self):
        self.shop.execute("INSERT INTO kv_disponibilita VALUES ('A', '41', 1, 5)")
        mails = lambda: [number for number in range(before, len(self.shop.mails()))
                         if "esaurimento" in self.message(number)[1]]
        before = len(self.shop.mails())
        for pieces, sent in ((1, 0), (1, 1), (1, 1)):
            self.assertIn("thankyou", order(self.shop.visitor(), f"41.{pieces}", method=2).address)
            self.assertEqual(len(mails()), sent)
        self.assertIn("RE-001: 3\r\n", self.message(mails()[0])[2])

    def test_counts_that_articles_shared_are_taken_over_and_pointed_out(self):
        self.shop.execute("DELETE FROM kv_stato WHERE nome = 'tabelle'",
                          "INSERT INTO kv_disponibilita VALUES ('O', 'O', 1, 4), ('O', 'NESSUNO', 1, 4)")
        order(self.shop.visitor(), "41.1", method=2)
        values = self.shop.rows("SELECT chiave, quantita FROM kv_disponibilita WHERE tipo = 'V'")
        self.assertGreater(len(values), 1)
        self.assertEqual({quantity for _, quantity in values}, {"4"})
        page = self.office.ask("disponibilita.php?tipo=V")
        self.assertIn("contava insieme le opzioni di più articoli: O.", page.text)
        form = next(f for f in page_forms(page) if "controllate" in page.text and "soglia" not in f["fields"]
                    and "disponibilita" in f["action"] and "c[0]" not in f["fields"] and f["method"] == "post")
        self.assertNotIn("contava insieme", self.office.send(form, page, controllate="1").text)

    def test_an_order_of_before_gives_its_pieces_back_to_its_article(self):
        self.shop.execute("INSERT INTO kv_disponibilita VALUES ('V', '41.7.O', 1, 1), ('V', '42.7.O', 1, 1), ('V', '41.7.OO', 1, 1)")
        self.add_order("261101-AAAAAA", lines=[{"id": 41, "testo": "x", "quantita": 3, "importo": 1, "scorte": ["OO"]}])
        self.change_state("annullato")
        self.assertEqual(self.shop.rows("SELECT chiave, quantita FROM kv_disponibilita ORDER BY chiave"),
                         [["41.7.O", "4"], ["41.7.OO", "1"], ["42.7.O", "1"]])
