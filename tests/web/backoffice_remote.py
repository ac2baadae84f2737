"""The merchant's own machine at the door of the back office: who is let in, which orders it gets, what it sets. Classes
for backoffice_work_test.py. KORVANE_TEST_ORDERS is how many orders the test of a fetch that breaks has."""
import concurrent.futures
import os
import re
import threading

from backoffice_case import OFFICE, page_forms
from backoffice_desk import Desk
from desk_client import KEY, DeskClient
from served_shop import order

LINES = [{"id": 41, "codice": "CE-1", "testo": "CE-1 Bowl", "scelte": "Glaze: Blue", "testo_prima": "CE-1 Ciotola Łuka",
          "scelte_prima": "Smalto: Blu", "quantita": 3, "importo": 24.5, "scorte": ["A41"]},
         {"testo": "Vaso €", "quantita": 1, "importo": 7}]


class RemoteDesk(Desk):
    def setUp(self):
        super().setUp()
        self.desk = DeskClient(self.shop.visitor("/" + OFFICE))
        self.give_key()

    def give_key(self):
        self.shop.execute(f"REPLACE INTO kv_stato VALUES ('chiave_ordini', '{KEY.hex()}')")

    def tearDown(self):
        self.shop.execute("DELETE FROM kv_stato WHERE nome = 'chiave_ordini'", "DELETE FROM kv_tentativi",
                          "DELETE FROM kv_numeri")
        super().tearDown()

    def order(self, code="261101-AAAAAA"):
        return next(one for one in self.desk.orders()[0] if one["codice"] == code)

    def wait(self, seconds):
        """Lets time pass for the moments at which orders changed."""
        self.shop.execute(f"UPDATE kv_ordini SET modificato = modificato - INTERVAL {seconds} SECOND")


class RemoteSignatures(RemoteDesk):
    def test_a_signed_request_learns_which_shop_this_is(self):
        answer = self.desk.ask("prova")
        self.assertEqual(answer["versione"], 1)
        self.assertIn("Bottega", answer["negozio"])
        self.assertEqual(self.desk.visitor.cookies, {})

    def test_what_is_no_signed_request_finds_nothing(self):
        whole = self.desk.request({"azione": "prova"})
        self.assertEqual(self.desk.visitor.ask("remoto.php").status, 404)
        for name in whole:
            self.assertEqual(self.desk.visitor.ask("remoto.php", {k: v for k, v in whole.items() if k != name}).status, 404)
        self.assertEqual(self.desk.visitor.ask("remoto.php", {**whole, "dati": None, "dati[]": "x"}).status, 404)

    def test_a_shop_without_the_key_says_so(self):
        for wrong in ("", "abc", KEY.hex().upper()):
            self.shop.execute(f"REPLACE INTO kv_stato VALUES ('chiave_ordini', '{wrong}')")
            self.assertEqual(self.desk.refusal(), (403, "chiave"))

    def test_a_forged_request_is_refused(self):
        self.assertEqual(self.desk.refusal(key=bytes(32)), (403, "firma"))
        for name, forged in (("dati", '{"azione":"ordini"}'), ("ora", "1"), ("numero", "0" * 32), ("firma", ""),
                             ("firma", "0" * 64)):
            self.assertEqual(self.desk.refusal(**{name: forged}), (403, "firma"), name)
        self.assertIsNone(self.desk.refusal())

    def test_a_number_is_taken_once_even_by_two_requests_at_a_time(self):
        request = self.desk.request({"azione": "prova"})
        barrier = threading.Barrier(4)

        def send(_):
            barrier.wait()
            return DeskClient(self.shop.visitor("/" + OFFICE)).visitor.ask("remoto.php", request)

        with concurrent.futures.ThreadPoolExecutor(4) as threads:
            answers = list(threads.map(send, range(4)))
        self.assertEqual(sorted(page.status for page in answers), [200, 403, 403, 403])
        self.assertEqual({page.text for page in answers if page.status == 403}, {"numero\n"})
        upper = {"azione": "prova"}
        number = "abcdef" + request["numero"][6:]
        self.assertIsNone(self.desk.refusal(upper, number=number))
        self.assertEqual(self.desk.refusal(upper, number=number.upper()), (403, "numero"))
        self.assertEqual(self.desk.refusal(upper, number="x"), (403, "numero"))

    def test_a_stale_or_an_early_request_hears_the_servers_clock(self):
        for age in (301, 100000, -302):
            status, text = self.desk.refusal(age=age)
            self.assertRegex(text, r"^ora \d{10}$")
            self.assertEqual(status, 403)
        for age in (290, -290):
            self.assertIsNone(self.desk.refusal(age=age))

    def test_numbers_are_forgotten_when_no_request_could_use_them_again(self):
        self.assertIsNone(self.desk.refusal())
        self.shop.execute("UPDATE kv_numeri SET quando = quando - 901")
        self.assertIsNone(self.desk.refusal())
        self.assertEqual(self.shop.rows("SELECT COUNT(*) FROM kv_numeri"), [["1"]])

    def test_after_ten_wrong_signatures_further_ones_of_an_address_have_to_wait(self):
        for _ in range(10):
            self.assertEqual(self.desk.refusal(firma="0" * 64), (403, "firma"))
        self.assertEqual(self.desk.refusal(firma="0" * 64), (429, "tentativi"))
        self.assertIsNone(self.desk.refusal())
        self.shop.execute("UPDATE kv_tentativi SET quando = quando - INTERVAL 16 MINUTE")
        self.assertEqual(self.desk.refusal(firma="0" * 64), (403, "firma"))

    def test_what_the_shop_doesnt_know_is_answered_with_words_for_the_merchant(self):
        for asked in ({"azione": "altro"}, {"azione": ["x"]}, {}, "[]", "no", "[[[[[[[[[[1]]]]]]]]]]"):
            answer = self.desk.send(self.desk.request(asked))
            self.assertEqual(answer, {"errore": "Il negozio non conosce questa richiesta: pubblicarlo di nuovo."})


class RemoteOrders(RemoteDesk):
    def test_an_order_comes_whole_in_utf_8(self):
        self.add_order("261101-AAAAAA", "Łucja 日本", created="'2026-11-01 10:00:00'", total="80.50",
                       lines=[LINES[0], {"testo": "damaged"}, LINES[1]],
                       fields={"Nome": "Łucja", "Citta": "Forlì", "Note": "€ uno\r\ndue"},
                       extra={"lingua": "en", "totali": {"merce": 80.5, "iva": -1, "spese": 0}})
        number = self.shop.rows("SELECT id FROM kv_ordini")[0][0]
        self.shop.execute("INSERT INTO kv_recessi (numero, ordine, creato, email, tardi, stato, lingua, righe, ricevuta)"
                          f" VALUES ('261101-AAAAAA-R1', {number}, '2026-11-02 11:00:00', '', 0, 'ricevuto', '', '"
                          + '[{"n":2,"testo":"Vaso €","scelte":"","quantita":1},{"n":9,"testo":"x","quantita":2},7]' + "', '')",
                          "INSERT INTO kv_annotazioni (ordine, quando, tipo, testo) VALUES"
                          f" ({number}, '2026-11-02 12:00:00', 'nota', 'Telefonato Ł')")
        found = self.order()
        self.assertRegex(found.pop("modificato"), r"^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{6}$")
        self.assertEqual(found, {
            "id": int(number), "codice": "261101-AAAAAA", "creato": "2026-11-01 10:00:00", "cliente": 0,
            "nome": "Łucja 日本", "email": "anna@example.org", "totale": "80.50", "valuta": "EUR",
            "metodo": "Contrassegno", "stato": "nuovo", "lingua": "en", "pagamento": "",
            "riepilogo": "Riepilogo di Łucja 日本",
            "campi": {"Nome": "Łucja", "Citta": "Forlì", "Note": "€ uno\r\ndue"},
            "righe": [{"id": 41, "codice": "CE-1", "testo": "CE-1 Bowl", "scelte": "Glaze: Blue",
                       "prima": "CE-1 Ciotola Łuka", "scelte_prima": "Smalto: Blu", "quantita": 3, "importo": "24.50"},
                      {"id": 0, "codice": "", "testo": "Vaso €", "scelte": "", "prima": "Vaso €", "scelte_prima": "",
                       "quantita": 1, "importo": "7.00"}],
            "totali": {"merce": "80.50", "iva": "-1.00", "spese": "0.00"},
            "note": [{"quando": "2026-11-02 12:00:00", "tipo": "nota", "testo": "Telefonato Ł"}],
            "recessi": [{"numero": "261101-AAAAAA-R1", "creato": "2026-11-02 11:00:00", "stato": "ricevuto", "righe": [
                {"riga": 1, "testo": "Vaso €", "scelte": "", "quantita": 1},
                {"riga": -1, "testo": "x", "scelte": "", "quantita": 2}]}]})

    def test_only_what_changed_comes_again(self):
        for code in "ABC":
            self.add_order(code)
        self.wait(1000)
        first, after = self.desk.orders()
        self.assertEqual([one["codice"] for one in first], ["A", "B", "C"])
        self.assertEqual(self.desk.orders(after)[0], [])
        self.desk.ask("nota", codice="B", testo="richiamare")
        again = self.desk.orders(after)[0]
        self.assertEqual([(one["codice"], one["note"][0]["testo"]) for one in again], [("B", "richiamare")])

    def test_whatever_belongs_to_an_order_brings_it_again(self):
        customer = self.add_customer("anna@example.org")
        self.add_order("A", state="spedito", fields={"Nome": "Anna"})
        self.add_order("B")
        self.shop.execute(f"UPDATE kv_ordini SET cliente = {customer} WHERE codice = 'A'",
                          "INSERT INTO kv_recessi (numero, ordine, creato, email, tardi, stato, lingua, righe, ricevuta)"
                          " SELECT 'A-R1', id, NOW(), '', 0, 'ricevuto', '', '[]', '' FROM kv_ordini WHERE codice = 'A'")
        self.wait(1000)
        after = self.desk.orders()[1]
        page = self.office.ask("recessi.php")
        self.office.send(next(f for f in page_forms(page) if "recesso" in f["fields"]), page, stato_recesso="accolto")
        self.assertEqual([one["recessi"][0]["stato"] for one in self.desk.orders(after)[0]], ["accolto"])
        self.wait(1000)
        self.change_state("pagato", "A")
        self.assertEqual([one["stato"] for one in self.desk.orders(after)[0]], ["pagato"])
        self.wait(1000)
        page = self.office.ask(f"cliente.php?id={customer}&elimina=1")
        self.office.send(page.form("cliente.php"), page)
        gone = self.desk.orders(after)[0]
        self.assertEqual([(one["codice"], one["nome"], one["campi"]) for one in gone], [("A", "Cliente eliminato", {})])

    def test_orders_whose_years_are_over_are_named_when_they_are_deleted(self):
        customer = self.add_customer("anna@example.org")
        self.add_order("OLD", state="spedito", created="'2001-05-05 10:00:00'", lines=LINES)
        self.add_order("NEW", state="spedito")
        self.shop.execute(f"UPDATE kv_ordini SET cliente = {customer}",
                          "INSERT INTO kv_annotazioni (ordine, quando, tipo, testo) SELECT id, NOW(), 'stato', 's' FROM kv_ordini")
        number = self.shop.rows("SELECT id FROM kv_ordini WHERE codice = 'OLD'")[0][0]
        self.assertEqual(self.desk.ask("ordini", dopo="", quanti=9)["tolti"], "")
        self.assertEqual(self.desk.ask("tolti", da=0, quanti=9), {"tolti": [], "altri": False})
        page = self.office.ask(f"cliente.php?id={customer}&elimina=1")
        self.office.send(page.form("cliente.php"), page)
        self.assertEqual([one["codice"] for one in self.desk.orders()[0]], ["NEW"])
        self.assertEqual(self.desk.ask("ordini", dopo="", quanti=9)["tolti"].split("-")[0], "1")
        self.assertEqual(self.desk.ask("tolti", da=0, quanti=9),
                         {"tolti": [{"id": int(number), "codice": "OLD"}], "altri": False})
        self.assertEqual(self.shop.rows(f"SELECT * FROM kv_annotazioni WHERE ordine = {number}"), [])
        self.shop.execute("INSERT INTO kv_tolti (ordine, codice) VALUES (1, 'T1'), (2, 'T2'), (3, 'T3'), (4, 'T4')")
        step = self.desk.ask("tolti", da=3, quanti=1)
        self.assertEqual(([one["codice"] for one in step["tolti"]], step["altri"]), (["T3"], True))

    def test_a_transaction_that_ended_late_is_not_missed(self):
        self.add_order("A")
        after = self.desk.orders()[1]
        self.add_order("LATE")
        self.shop.execute("UPDATE kv_ordini SET modificato = modificato - INTERVAL 60 SECOND WHERE codice = 'LATE'")
        self.assertEqual([one["codice"] for one in self.desk.orders(after)[0]], ["LATE", "A"])

    def test_nor_one_that_ended_while_a_reading_was_under_way(self):
        for code in "ABC":
            self.add_order(code)
        answer = self.desk.ask("ordini", dopo="", quanti=2)
        self.assertEqual((len(answer["ordini"]), answer["altri"]), (2, True))
        self.add_order("LATE")
        self.shop.execute("UPDATE kv_ordini SET modificato = modificato - INTERVAL 60 SECOND WHERE codice = 'LATE'")
        rest, after = self.desk.orders(answer["dopo"])
        self.assertEqual([one["codice"] for one in rest], ["C"])
        self.assertIn("LATE", [one["codice"] for one in self.desk.orders(after)[0]])

    def test_an_hour_that_comes_twice_loses_nothing(self):
        # The last Sunday of October: 00:30 and 01:30 of world time are both half past two in Italy.
        self.add_order("A")
        self.add_order("B")
        self.shop.execute("SET time_zone = '+00:00'", "UPDATE kv_ordini SET modificato = '2026-10-25 00:30:00' WHERE codice = 'A'",
                          "UPDATE kv_ordini SET modificato = '2026-10-25 01:30:00' WHERE codice = 'B'")
        first = self.desk.ask("ordini", dopo="", quanti=1)
        self.assertEqual(first["ordini"][0]["modificato"], "2026-10-25 00:30:00.000000")
        self.assertEqual([one["modificato"] for one in self.desk.orders(first["dopo"])[0]], ["2026-10-25 01:30:00.000000"])

    def test_orders_that_changed_in_one_moment_are_read_in_steps(self):
        self.shop.execute("INSERT INTO kv_ordini (codice, creato, nome, email, totale, valuta, metodo, stato, lingua, dati,"
                          " riepilogo, modificato) SELECT CONCAT('C', seq), NOW(), '', '', 1, '', '', 'nuovo', '', '', '',"
                          " '2026-11-01 10:00:00' FROM seq_1_to_60")
        for most in (7, 60, 500):
            found, after = self.desk.orders(most=most)
            self.assertEqual([one["codice"] for one in found], [f"C{n}" for n in range(1, 61)], most)
        self.assertEqual(self.desk.orders(after)[0], [])
        self.assertEqual(len(self.desk.orders("nessun segno")[0]), 60)

    def test_an_answer_ends_before_it_is_too_long(self):
        self.shop.execute("INSERT INTO kv_ordini (codice, creato, nome, email, totale, valuta, metodo, stato, lingua, dati,"
                          " riepilogo) SELECT CONCAT('C', seq), NOW(), '', '', 1, '', '', 'nuovo', '', '',"
                          " REPEAT('\\n', 1500000) FROM seq_1_to_5")
        steps, after = [], ""
        while not steps or answer["altri"]:
            answer = self.desk.ask("ordini", dopo=after, quanti=500)
            after = answer["dopo"]
            steps.append(len(answer["ordini"]))
        self.assertEqual(steps, [2, 2, 1])

    def test_orders_of_an_earlier_release_get_the_moment_of_the_upgrade(self):
        self.add_order("A")
        self.shop.execute("ALTER TABLE kv_ordini DROP KEY modificato, DROP COLUMN modificato", "DROP TABLE kv_numeri",
                          "REPLACE INTO kv_stato VALUES ('tabelle', '3')")
        self.assertEqual([one["codice"] for one in self.desk.orders()[0]], ["A"])
        self.assertEqual(self.shop.rows("SELECT GROUP_CONCAT(COLUMN_NAME ORDER BY SEQ_IN_INDEX) FROM information_schema.STATISTICS"
                                        " WHERE TABLE_NAME = 'kv_ordini' AND INDEX_NAME = 'modificato'"), [["modificato,id"]])

    def test_a_fetch_that_breaks_off_goes_on_and_its_sums_are_the_shops(self):
        number = int(os.environ.get("KORVANE_TEST_ORDERS", "24"))
        for n in range(number):
            buyer = self.shop.visitor()
            self.assertIn("thankyou", order(buyer, f"41.{n % 3 + 1}", method=2, Cognome=f"Bianchi {n}").address)
        half = self.desk.ask("ordini", dopo="", quanti=min(500, number // 2))
        # The second answer is cut off on its way: what came of it counts for nothing.
        cut = self.desk.request({"azione": "ordini", "dopo": half["dopo"], "quanti": 500})
        self.assertEqual(len(self.desk.cut(cut, 1000)), 1000)
        self.assertEqual(self.desk.visitor.ask("remoto.php", cut).text, "numero\n")
        rest, _ = self.desk.orders(half["dopo"])
        found = half["ordini"] + rest
        self.assertEqual(len({one["codice"] for one in found}), number)
        self.assertEqual(len(found), number)
        cents = lambda text: int(text.replace(".", ""))
        shops = self.shop.rows("SELECT SUM(totale), COUNT(*) FROM kv_ordini")[0]
        self.assertEqual([sum(cents(one["totale"]) for one in found), number], [cents(shops[0]), int(shops[1])])
        self.assertEqual(sum(line["quantita"] for one in found for line in one["righe"]),
                         sum(n % 3 + 1 for n in range(number)))


class RemoteChanges(RemoteDesk):
    def setUp(self):
        super().setUp()
        self.add_order("261101-AAAAAA", lines=LINES)

    def state(self, before, after, **fields):
        return self.desk.ask("stato", **{"codice": "261101-AAAAAA", "da": before, "a": after, "scorte": True,
                                         "scrivi": False, "messaggio": "", **fields})

    def test_a_state_that_is_set_here_writes_to_the_customer_once(self):
        before = len(self.shop.mails())
        request = self.desk.request({"azione": "stato", "codice": "261101-AAAAAA", "da": "nuovo", "a": "spedito",
                                     "scorte": False, "scrivi": True, "messaggio": "Partito Ł,\n{codice}"})
        answer = self.desk.send(request)
        self.assertEqual((answer["esito"], answer["ordine"]["stato"], answer["mail"]),
                         ("fatto", "spedito", "Messaggio al cliente: spedito"))
        self.assertEqual([note["testo"] for note in answer["ordine"]["note"]],
                         ['Stato: da "nuovo" a "spedito"', "Messaggio al cliente: spedito"])
        self.assertTrue(self.message(before)[2].startswith("Partito Ł,\r\n261101-AAAAAA\r\n"))
        self.assertEqual(self.desk.visitor.ask("remoto.php", request).status, 403)
        self.assertEqual(self.state("nuovo", "spedito", scrivi=True)["esito"], "diverso")
        self.assertEqual(len(self.shop.mails()), before + 1)

    def test_a_state_that_was_changed_in_the_back_office_is_left(self):
        self.change_state("pagato", scrivi=None)
        before = len(self.shop.mails())
        answer = self.state("nuovo", "annullato", scrivi=True)
        self.assertEqual((answer["esito"], answer["ordine"]["stato"], answer["mail"]), ("diverso", "pagato", ""))
        self.assertEqual(self.state("pagato", "spedito")["esito"], "fatto")
        self.assertEqual(len(self.shop.mails()), before)
        self.assertEqual(self.state("nuovo", "spedito", codice="261101-ZZZZZZ"),
                         {"esito": "sconosciuto", "ordine": None, "mail": ""})

    def test_pieces_come_back_and_go_when_asked(self):
        self.shop.execute("INSERT INTO kv_disponibilita VALUES ('A', '41', 1, 2)")
        pieces = lambda: self.shop.rows("SELECT quantita FROM kv_disponibilita")[0][0]
        for before, after, moves, left in (("nuovo", "annullato", True, "5"), ("annullato", "nuovo", True, "2"),
                                           ("nuovo", "annullato", False, "2")):
            self.assertEqual(self.state(before, after, scorte=moves)["esito"], "fatto")
            self.assertEqual(pieces(), left)

    def test_a_state_that_there_isnt_is_told(self):
        self.assertEqual(self.state("nuovo", "perdùto Ł"), {"errore": 'Il negozio non conosce lo stato "perdùto Ł".'})
        self.assertEqual(self.order()["stato"], "nuovo")

    def test_a_note_is_added(self):
        answer = self.desk.ask("nota", codice="261101-AAAAAA", testo=" Telefonato:\r\nmartedì Ł ")
        self.assertEqual((answer["esito"], answer["ordine"]["note"][0]["testo"]), ("fatto", "Telefonato:\r\nmartedì Ł"))
        self.assertIn("marted", self.order_page().text)
        self.assertEqual(self.desk.ask("nota", codice="261101-ZZZZZZ", testo="x")["esito"], "sconosciuto")
        self.assertEqual(self.desk.ask("nota", codice="261101-AAAAAA", testo=" "), {"errore": "L'annotazione è vuota."})


class RemoteStock(RemoteDesk):
    def row(self, kind, search):
        return self.desk.ask("scorte", tipo=kind, cerca=search, da=0, quanti=500)

    def test_the_stock_is_read_in_steps_as_its_page_shows_it(self):
        self.shop.execute("INSERT INTO kv_disponibilita VALUES ('A', '41', 1, 12), ('A', '42', 0, NULL)")
        whole = self.row("A", "")["voci"]
        self.assertEqual(len(whole), int(self.shop.rows("SELECT COUNT(*) FROM articoli")[0][0]))
        steps = []
        for at in range(0, 1000, 7):
            answer = self.desk.ask("scorte", tipo="A", cerca="", da=at, quanti=7)
            steps += answer["voci"]
            if not answer["altri"]:
                break
        self.assertEqual(steps, whole)
        kept = {one["chiave"]: one["voce"] for one in whole}
        self.assertEqual((kept["41"], kept["42"], kept["43"]), ("1|12", "0|", "1|"))
        code = self.shop.rows("SELECT codice FROM dettaglio WHERE ID = 41")[0][0]
        self.assertEqual([one["chiave"] for one in self.row("A", code)["voci"]], ["41"])
        self.assertTrue(any(one["nome"].startswith("Tazzina da caffè") for one in self.row("A", "caffè")["voci"]))
        self.assertTrue(all(re.fullmatch(r"\d+\.\d+\..+", one["chiave"]) for one in self.row("V", "Smalto")["voci"]))
        self.assertEqual(self.row("V", "nessuna cosa"), {"voci": [], "altri": False})

    def test_a_count_is_set_where_it_is_still_as_seen(self):
        put = lambda before, after, key="41": self.desk.ask("scorta", tipo="A", chiave=key, prima=before, dopo=after)
        self.assertEqual(put("1|", "1|012"), {"esito": "fatto", "voce": "1|12"})
        self.shop.execute("UPDATE kv_disponibilita SET quantita = 11 WHERE chiave = '41'")
        self.assertEqual(put("1|12", "1|20"), {"esito": "diverso", "voce": "1|11"})
        self.assertEqual(put("1|11", "0|"), {"esito": "fatto", "voce": "0|"})
        self.assertEqual(put("0|", "1|"), {"esito": "fatto", "voce": "1|"})
        self.assertEqual(self.shop.rows("SELECT * FROM kv_disponibilita"), [])
        for wrong in ("1|x", "12", "", "2|1", "1|-1", "1|12345678"):
            self.assertIn("numero intero", put("1|", wrong)["errore"])
        self.assertIn("errore", put("1|", "1|1", ""))
        self.assertEqual(self.desk.ask("scorte", tipo="X"), {"errore": "Il negozio non ha questo elenco."})

    def test_a_key_beyond_ascii_is_found_again(self):
        self.assertEqual(self.desk.ask("scorta", tipo="V", chiave="41.7.Città€", prima="1|", dopo="1|4")["esito"], "fatto")
        self.assertEqual(self.desk.ask("scorta", tipo="V", chiave="41.7.Città€", prima="1|4", dopo="1|5")["voce"], "1|5")
        self.assertEqual(self.shop.rows("SELECT CONVERT(chiave USING utf8mb4) FROM kv_disponibilita"), [["41.7.Città€"]])
