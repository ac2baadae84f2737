#!/usr/bin/env python3
"""What the merchant does in the back office: backoffice_work_test.py KORVANE_CLI"""
import json
import re

from backoffice_case import Case, last_link, main, page_forms
from backoffice_attacks import RemoteAttacks  # noqa: F401  (tests of this program)
from backoffice_desk import Lines, Messages, TwoLanguages, Waiting  # noqa: F401  (tests of this program)
from backoffice_people import PersonalData, Stock  # noqa: F401
from backoffice_program import ProgramOrders  # noqa: F401
from backoffice_remote import RemoteChanges, RemoteOrders, RemoteSignatures, RemoteStock  # noqa: F401
from backoffice_law_cases import CustomersData, Withdrawn  # noqa: F401  (found by unittest)
from served_shop import cart_number, order


class Orders(Case):
    def setUp(self):
        super().setUp()
        self.enter()

    def test_the_list_is_newest_first_and_divided_into_pages(self):
        for n in range(30):
            self.add_order(f"261101-{n:06}")
        self.assertEqual(self.codes("ordini.php"), [f"261101-{n:06}" for n in range(29, 4, -1)])
        self.assertEqual(self.codes("ordini.php?p=2"), [f"261101-{n:06}" for n in range(4, -1, -1)])
        self.assertIn("30 ordini", self.office.ask("ordini.php").text)

    def test_orders_are_found_by_code_name_mail_day_and_state(self):
        self.add_order("261101-AAAAAA", "Anna Bianchi", "anna@example.org", created="'2026-11-01 10:00:00'")
        self.add_order("261102-BBBBBB", "Città 100%", "b_b@example.org", state="pagato",
                       created="'2026-11-02 23:59:59'")
        self.add_order("261103-CCCCCC", "Carla", "c@example.org", state="da verificare",
                       created="'2026-11-03 00:00:00'")
        for query, found in (("q=aaaa", "A"), ("q=bianchi", "A"), ("q=citt%E0", "B"), ("q=%25", "B"), ("q=b_b", "B"),
                             ("q=c@ex", "C"), ("da=2026-11-02", "CB"), ("a=2026-11-02", "BA"), ("q=nessuno", ""),
                             ("da=2026-11-02&a=2026-11-02", "B"), ("stato=pagato", "B"), ("stato=aperti", "CA"),
                             ("stato=da+verificare", "C"), ("stato=ignoto", "CBA"), ("da=2026-02-31", "CBA")):
            self.assertEqual("".join(code[-1] for code in self.codes("ordini.php?" + query)), found, query)

    def test_an_order_shows_address_lines_and_notes_and_changes_state(self):
        self.add_order("261101-AAAAAA", fields={"Nome": "Anna", "Cognome": "Łuka", "Citta": "Forlì", "Note": "€ uno"},
                       lines=[{"testo": "CE-1 Ciotola", "scelte": "Smalto: Blu", "quantita": 3, "importo": 24.5}])
        page = self.office.ask("ordine.php?codice=261101-AAAAAA")
        for text in ("Anna &#321;uka", "Forlì", "€ uno", "CE-1 Ciotola", "Smalto: Blu", "73,50", "10,50"):
            self.assertIn(text, page.text)
        answer = self.office.send(page.form("ordine.php"), page, stato="spedito")
        self.assertIn("ora: spedito", answer.text)
        self.assertEqual(self.shop.rows("SELECT stato FROM kv_ordini"), [["spedito"]])
        stale = self.office.send(page.form("ordine.php"), page, stato="annullato")
        self.assertIn("nel frattempo", stale.text)
        self.office.send(answer.form("ordine.php"), answer, stato="rubato")
        self.assertEqual(self.shop.rows("SELECT stato FROM kv_ordini"), [["spedito"]])
        self.assertEqual(self.office.ask("ordine.php?codice=261101-ZZZZZZ").status, 404)

    def test_a_cancelled_order_gives_its_pieces_back_once_and_takes_them_again(self):
        self.shop.execute("INSERT INTO kv_disponibilita VALUES ('A', '41', 1, 2), ('O', 'CR', 1, NULL)")
        self.add_order("261101-AAAAAA", lines=[{"testo": "x", "quantita": 3, "importo": 1, "scorte": ["A41", "OCR"]}])
        pieces = lambda: self.shop.rows("SELECT chiave, quantita FROM kv_disponibilita ORDER BY chiave")
        for state, left in (("annullato", "5"), ("nuovo", "2")):
            page = self.office.ask("ordine.php?codice=261101-AAAAAA")
            self.office.send(page.form("ordine.php"), page, stato=state)
            self.office.send(page.form("ordine.php"), page, stato=state)
            self.assertEqual(pieces(), [["41", left], ["CR", None]])
        page = self.office.ask("ordine.php?codice=261101-AAAAAA")
        self.office.send(page.form("ordine.php"), page, stato="annullato", scorte=None)
        self.assertEqual(pieces(), [["41", "2"], ["CR", None]])

    def test_the_csv_file_is_utf_8_with_a_mark_and_formulas_disarmed(self):
        self.add_order("261101-AAAAAA", "=HYPERLINK(\"x\");Città", "-2+3@example.org", total="1234.50",
                       created="'2026-11-01 10:00:00'", fields={"RagioneSociale": "@SUM(A1)", "CAP": "00100",
                                                                "Provincia": "\uff1d1+1", "Telefono": "+39 02",
                                                                "Note": "due\r\nrighe €"})
        self.add_order("261102-BBBBBB")
        page = self.office.ask("ordini_csv.php?q=AAAA")
        self.assertEqual(page.headers["Content-Type"], "text/csv; charset=utf-8")
        self.assertRegex(page.headers["Content-Disposition"], r'^attachment; filename="ordini-[0-9-]+\.csv"$')
        self.assertEqual(page.body, (
            "Codice;Data;Cliente;E-mail;Totale;Valuta;Pagamento;Stato;Ragione sociale;Partita IVA;Indirizzo;CAP;Città;"
            "Provincia;Paese;Telefono;Note\r\n"
            "\"261101-AAAAAA\";01/11/2026 10:00;\"'=HYPERLINK(\"\"x\"\");Città\";\"'-2+3@example.org\";1234,50;\"EUR\";"
            "\"Contrassegno\";\"nuovo\";\"'@SUM(A1)\";\"\";\"\";\"00100\";\"\";\"'\uff1d1+1\";\"\";\"'+39 02\";"
            "\"due righe €\"\r\n"
        ).encode("utf-8-sig"))

    def test_the_csv_file_holds_more_orders_than_one_step_reads(self):
        self.shop.execute("INSERT INTO kv_ordini (codice, creato, nome, email, totale, valuta, metodo, stato, lingua,"
                          " dati, riepilogo) SELECT CONCAT('C', seq), NOW(), '', '', 1, '', '', 'nuovo', '', '', ''"
                     " FROM seq_1_to_450")
        self.assertEqual(self.office.ask("ordini_csv.php").text.count("\r\n"), 451)

    def test_the_summary_counts_today_and_this_month(self):
        self.add_order("A", total="100")
        self.add_order("B", total="50.25", state="annullato")
        self.add_order("C", created="NOW() - INTERVAL 40 DAY", total="7")
        self.add_customer("a@example.org", approved=0)
        self.shop.execute("INSERT INTO kv_disponibilita VALUES ('A', '41', 1, 0), ('A', '42', 1, 1)")
        text = re.sub(r"<[^>]+>", " ", self.office.ask("pannello.php").text)
        self.assertRegex(text, r"Oggi\s+2\s+ordini\s+EUR&nbsp;100,00")
        self.assertRegex(text, r"Questo mese\s+2\s+ordini")
        self.assertRegex(text, r"Da evadere\s+2\s+ordini")
        self.assertRegex(text, r"approvazione\s+1\s+cliente")
        self.assertRegex(text, r"Non disponibili\s+1\s+voce")


class Customers(Case):
    def setUp(self):
        super().setUp()
        self.enter()

    def register(self, email):
        customer = self.shop.visitor()
        page = customer.ask("login.php")
        form = next(f for f in page_forms(page) if f["fields"].get("azione") == "registra")
        before = len(self.shop.mails())
        customer.send(form, page, nome="Anna", cognome="Bianchi", email=email, pw="una-password", privacy="1")
        page = customer.ask("login.php?r=" + re.search(r"r=([0-9a-f]{48})", self.shop.mail_after(before)).group(1))
        customer.send(page.form("logcheck"), page)
        return customer, self.shop.rows(f"SELECT id FROM kv_clienti WHERE email = '{email}'")[0][0]

    def edit(self, number, **changes):
        page = self.office.ask(f"cliente.php?id={number}")
        form = next(f for f in page_forms(page) if f["fields"].get("azione") == "salva")
        return self.office.send(form, page, **changes)

    def price(self, customer):
        """Total of one piece of article 41 in the customer's order, shipping left out."""
        order(customer, "41.1")
        data = json.loads(self.shop.rows("SELECT dati FROM kv_ordini ORDER BY id DESC LIMIT 1")[0][0])
        return round(data["totali"]["merce"] - data["totali"]["sconto"], 2), data["righe"][0]["importo"]

    def test_price_list_and_discount_given_here_hold_in_the_shop(self):
        customer, number = self.register("anna@example.org")
        total, piece = self.price(customer)
        self.assertEqual(total, piece)
        self.assertIn("Dati salvati", self.edit(number, sconto="12,5").text)
        discounted, same = self.price(customer)
        self.assertEqual(same, piece)
        self.assertAlmostEqual(discounted, piece * 0.875, delta=0.006)
        self.edit(number, sconto="0", listino="1")
        self.assertNotEqual(self.price(customer)[1], piece)

    def test_a_waiting_customer_is_found_and_approved(self):
        self.add_customer("pronto@example.org")
        number = self.add_customer("attesa@example.org", approved=0)
        page = self.office.ask("clienti.php?attesa=1")
        self.assertIn("attesa@example.org", page.text)
        self.assertNotIn("pronto@example.org", page.text)
        self.office.send(next(f for f in page_forms(page) if f["fields"].get("id") == number), page)
        self.assertEqual(self.shop.rows(f"SELECT approvato FROM kv_clienti WHERE id = {number}"), [["1"]])

    def test_wrong_values_are_refused_and_leave_the_row(self):
        self.add_customer("altro@example.org")
        number = self.add_customer("anna@example.org")
        before = self.shop.rows("SELECT * FROM kv_clienti ORDER BY id")
        for changes in ({"listino": "10"}, {"listino": "-1"}, {"sconto": "100,01"}, {"sconto": "-5"}, {"sconto": "x"},
                        {"email": "no"}, {"email": "altro@example.org"}):
            self.assertIn('role="alert"', self.edit(number, **changes).text, changes)
        self.assertEqual(self.shop.rows("SELECT * FROM kv_clienti ORDER BY id"), before)

    def test_a_customer_is_deleted_after_a_question_only(self):
        number = self.add_customer("anna@example.org")
        page = self.office.ask(f"cliente.php?id={number}&elimina=1")
        self.assertEqual(len(self.shop.rows("SELECT id FROM kv_clienti")), 1)
        answer = self.office.send(page.form("cliente.php"), page)
        self.assertIn("eliminato", answer.text)
        self.assertEqual(self.shop.rows("SELECT id FROM kv_clienti"), [])

    def test_a_made_up_password_is_shown_once_opens_the_shop_and_ends_other_sessions(self):
        customer, number = self.register("anna@example.org")
        page = self.office.ask(f"cliente.php?id={number}")
        form = next(f for f in page_forms(page) if "pw" in f["fields"])
        answer = self.office.send(form, page, azione="genera")
        password = re.search(r"password è ([a-z0-9-]{14})", answer.text).group(1)
        self.assertNotIn(password, self.office.ask(f"cliente.php?id={number}").text)
        self.assertNotIn(password, str(self.shop.rows("SELECT * FROM kv_clienti")))
        self.assertIn("azione\" value=\"entra", customer.ask("login.php").text)
        page = customer.ask("login.php")
        form = next(f for f in page_forms(page) if f["fields"].get("azione") == "entra")
        self.assertTrue(customer.send(form, page, email="anna@example.org", pw=password).address.endswith("/index.php"))
        page = self.office.ask(f"cliente.php?id={number}")
        form = next(f for f in page_forms(page) if "pw" in f["fields"])
        short = self.office.send(form, page, azione="password", pw="corta")
        self.assertIn("almeno 8", short.text)
        self.assertIn("Password cambiata", self.office.send(form, page, azione="password", pw="con uno\0 zero").text)

    def test_a_requested_password_is_sent_again_and_the_older_link_is_dead(self):
        customer, _ = self.register("anna@example.org")
        other = self.shop.visitor()
        page = other.ask("login.php")
        form = next(f for f in page_forms(page) if f["fields"].get("azione") == "richiedi")
        before = len(self.shop.mails())
        other.send(form, page, email="anna@example.org")
        self.shop.mail_after(before)
        first = last_link()
        page = self.office.ask("richieste.php?q=anna")
        answer = self.office.send(next(f for f in page_forms(page) if f["fields"].get("id")), page)
        self.assertIn("Inviato", answer.text)
        second = last_link()
        self.assertNotEqual(first, second)
        self.assertEqual(self.shop.rows("SELECT stato FROM kv_richieste WHERE stato <> 'registrata' ORDER BY id"),
                         [["annullata"], ["nuova"]])
        self.assertNotIn("ripristina", other.ask(first).text)
        page = other.ask(second)
        form = next(f for f in page_forms(page) if f["fields"].get("azione") == "ripristina")
        other.send(form, page, pw="nuova-password")
        self.assertEqual(self.shop.rows("SELECT stato FROM kv_richieste ORDER BY id DESC LIMIT 1"), [["usata"]])


class Availability(Case):
    def setUp(self):
        super().setUp()
        self.enter()

    def save(self, address, **changes):
        page = self.office.ask(address)
        return page, self.office.send(next(f for f in page_forms(page) if "c[0]" in f["fields"]), page, **changes)

    def test_an_article_that_is_not_available_cannot_be_ordered(self):
        buyer = self.shop.visitor()
        self.assertIn("thankyou", order(buyer, "41.1").address)
        _, answer = self.save("disponibilita.php?q=RE-001", **{"d[0]": None})
        self.assertIn("salvata", answer.text)
        self.assertEqual(self.shop.rows("SELECT tipo, chiave, disponibile, quantita FROM kv_disponibilita"),
                         [["A", "41", "0", None]])
        buyer = self.shop.visitor()
        buyer.cookies["/", "kvstore_cart" + cart_number(buyer)] = "41.1"
        self.assertIn("/cart.php", buyer.ask("order.php").address)
        self.assertEqual(self.shop.rows("SELECT COUNT(*) FROM kv_ordini"), [["1"]])
        self.assertIn("RE-001", self.office.ask("disponibilita.php?vedi=esauriti").text)

    def test_a_quantity_is_lowered_by_orders_and_a_page_shown_before_does_not_bring_it_back(self):
        self.save("disponibilita.php?q=RE-001", **{"q[0]": "3"})
        page = self.office.ask("disponibilita.php?q=RE-001")
        form = next(f for f in page_forms(page) if "c[0]" in f["fields"])
        self.assertIn("thankyou", order(self.shop.visitor(), "41.2").address)
        answer = self.office.send(form, page, **{"q[0]": "10"})
        self.assertIn("nel frattempo", answer.text)
        self.assertEqual(self.shop.rows("SELECT quantita FROM kv_disponibilita"), [["1"]])
        self.office.send(form, page)
        self.assertEqual(self.shop.rows("SELECT quantita FROM kv_disponibilita"), [["1"]])

    def test_an_empty_quantity_lifts_the_limit(self):
        self.save("disponibilita.php?q=RE-001", **{"q[0]": "3"})
        self.save("disponibilita.php?q=RE-001", **{"q[0]": ""})
        self.assertEqual(self.shop.rows("SELECT * FROM kv_disponibilita"), [])
        for wrong in ("-1", "uno", "1,5"):
            self.assertIn("numero intero", self.save("disponibilita.php?q=RE-001", **{"q[0]": wrong})[1].text)
        self.assertEqual(self.shop.rows("SELECT * FROM kv_disponibilita"), [])

    def test_values_are_listed_by_article_and_tell_small_from_capital_letters(self):
        slots = ", ".join(f"opzione{slot}{listino}" for slot in range(1, 5) for listino in ("", *(f"_{n}" for n in range(1, 10))))
        numbers = [row[0] for row in self.shop.rows(f"SELECT ID FROM dettaglio WHERE 2 IN ({slots})")]
        self.shop.execute("INSERT INTO opcodici VALUES (900, 'qx', 2), (902, 'QX', 2)")
        try:
            page = self.office.ask("disponibilita.php?tipo=V&q=qx")
            fields = next(f for f in page_forms(page) if "c[0]" in f["fields"])["fields"]
            keys = sorted(value for name, value in fields.items() if name.startswith("c["))
            self.assertEqual(keys, sorted(f"{number}.2.{code}" for number in numbers for code in ("QX", "qx")))
            self.save("disponibilita.php?tipo=V&q=qx", **{"q[0]": "0", "q[1]": "7"})
            stored = self.shop.rows("SELECT tipo, chiave, quantita FROM kv_disponibilita ORDER BY quantita")
            self.assertEqual(stored, [["V", fields["c[0]"], "0"], ["V", fields["c[1]"], "7"]])
        finally:
            self.shop.execute("DELETE FROM opcodici WHERE ID >= 900")


if __name__ == "__main__":
    main()
