"""The merchant's desk: orders in two languages, on paper, as lines of a file; mails of a change of state; notes and
lists of what waits; sales of the last days. Classes for backoffice_work_test.py."""
import email.header
import hashlib
import re

from backoffice_case import Case, page_forms
from served_shop import order


class Desk(Case):
    def setUp(self):
        super().setUp()
        self.enter()

    def order_page(self, code="261101-AAAAAA"):
        return self.office.ask(f"ordine.php?codice={code}")

    def change_state(self, state, code="261101-AAAAAA", **fields):
        page = self.order_page(code)
        form = next(f for f in page_forms(page) if "stato" in f["fields"])
        return self.office.send(form, page, stato=state, **fields)

    def message(self, number):
        """Who gets a mail, its subject and its text."""
        message = email.message_from_string(self.shop.mails()[number])
        subject = str(email.header.make_header(email.header.decode_header(message["Subject"])))
        text = next(part for part in message.walk() if part.get_content_type() == "text/plain")
        return message["To"], subject, text.get_payload(decode=True).decode()

    def annotations(self, kind):
        return [row[0] for row in self.shop.rows(f"SELECT testo FROM kv_annotazioni WHERE tipo = '{kind}' ORDER BY id")]


class TwoLanguages(Desk):
    def english_order(self):
        """An order of two pieces of a mug with its first glaze, placed in English; its code."""
        buyer = self.shop.visitor()
        number, values = self.shop.rows("SELECT d.ID, opzione FROM dettaglio d INNER JOIN opzioni o ON o.ID = opzione1"
                                        " WHERE codice = 'TZ-002'")[0]
        # The key of a value in a cart: six characters of the digest of its code and name.
        key = hashlib.md5(re.search(r'#([^"]*\|[^"]*?)(?: \*)?"', values).group(1).encode("cp1252")).hexdigest()[:6]
        self.assertIn("thankyou", order(buyer, f"{number}.2.{key}", method=2, suffix="_l2", Note="Ring twice").address)
        return self.shop.rows("SELECT codice FROM kv_ordini")[0][0]

    def test_an_order_is_in_the_first_language_with_the_customers_words_beside_it(self):
        code = self.english_order()
        names = ["Tazzina da caffè con piattino", "Espresso cup with saucer"]
        text = self.order_page(code).text
        self.assertIn(f"<span>TZ-002 {names[0]}<small>Smalto: B Blu di Montelune<", text)
        self.assertIn(f"Cliente: </span>TZ-002 {names[1]} (Glaze: B Montelune blue)<", text)
        self.assertIn("Bonifico anticipato (Bank transfer in advance)", text)
        lines = self.office.ask("ordini_csv.php?righe=1").body.decode("utf-8-sig").split("\r\n")
        self.assertEqual(lines[0].split(";")[-9:], ["Riga", "Codice articolo", "Articolo", "Opzioni", "Articolo (cliente)",
                                                    "Opzioni (cliente)", "Quantità", "Prezzo", "Totale riga"])
        self.assertRegex(lines[1], f';1;"TZ-002";"TZ-002 {names[0]}.*?";".*?";"TZ-002 {names[1]}.*?";".*?";2;[0-9]+,[0-9]'
                         r'{2};[0-9]+,[0-9]{2}$')

    def test_a_mail_is_in_the_language_of_the_order(self):
        code = self.english_order()
        before = len(self.shop.mails())
        self.change_state("spedito", code)
        to, subject, text = self.message(before)
        self.assertEqual(to, "anna@example.org")
        self.assertIn(f"Order {code}", subject)
        self.assertIn("Dear customer,\r\n\r\nyour order has been sent.\r\n\r\nOrder " + code, text)
        for typed in ("Anna", "Via Roma", "Ring twice"):
            self.assertNotIn(typed, text)


class Lines(Desk):
    LINES = [{"id": 41, "codice": "CE-1", "testo": "CE-1 Ciotola", "scelte": "Smalto: Blu", "quantita": 3, "importo": 24.5},
             {"id": 42, "codice": "=1+1", "testo": "=1+1 Vaso", "quantita": 1, "importo": 7}]

    def test_a_file_of_lines_repeats_the_order_for_each_of_them(self):
        self.add_order("261101-AAAAAA", lines=self.LINES)
        self.add_order("261102-BBBBBB")
        page = self.office.ask("ordini_csv.php?righe=1")
        self.assertRegex(page.headers["Content-Disposition"], r'filename="righe-[0-9-]+\.csv"$')
        self.assertTrue(page.body.startswith("\ufeff".encode()))
        rows = [line.split(";") for line in page.body.decode("utf-8-sig").split("\r\n")[1:-1]]
        self.assertEqual([row[0] for row in rows], ['"261102-BBBBBB"', '"261101-AAAAAA"', '"261101-AAAAAA"'])
        self.assertEqual(rows[0][-9:], [""] * 9)
        self.assertEqual(rows[1][-9:], ["1", '"CE-1"', '"CE-1 Ciotola"', '"Smalto: Blu"', '"CE-1 Ciotola"',
                                        '"Smalto: Blu"', "3", "24,50", "73,50"])
        self.assertEqual(rows[2][-9:-6], ["2", "\"'=1+1\"", "\"'=1+1 Vaso\""])

    def test_an_order_is_printed_as_order_delivery_note_and_receipt(self):
        self.add_order("261101-AAAAAA", state="pagato", lines=self.LINES, total="80.50",
                       fields={"Nome": "Anna", "Cognome": "Łuka", "Indirizzo": "<b>Via</b> Roma 1", "Note": "Al piano"})
        amounts = ("24,50", "73,50", "80,50")
        for kind, heading, shown in (("ordine", "Ordine", True), ("consegna", "Documento di consegna", False),
                                     ("ricevuta", "Ricevuta", True)):
            link = re.search(f'href="(stampa[^"]*cosa={kind})"', self.order_page().text).group(1)
            text = self.office.ask(link.replace("&amp;", "&")).text
            self.assertIn(f"<h1>{heading} 261101-AAAAAA</h1>", text)
            for part in ("Anna &#321;uka", "&lt;b&gt;Via&lt;/b&gt; Roma 1", "CE-1 Ciotola", "Smalto: Blu"):
                self.assertIn(part, text, kind)
            self.assertEqual([amount in text for amount in amounts], [shown] * 3, kind)
        self.assertIn("Importo ricevuto", text)
        for wrong in ("codice=261101-AAAAAA&cosa=altro", "codice=x&cosa=ordine", "codice[]=1&cosa[]=2", ""):
            self.assertEqual(self.office.ask("stampa.php?" + wrong).status, 404, wrong)


class Messages(Desk):
    def setUp(self):
        super().setUp()
        self.add_order("261101-AAAAAA", created="'2026-11-01 10:00:00'", total="1234.50")
        self.before = len(self.shop.mails())

    def words(self, language="it", **fields):
        page = self.office.ask("testi.php?lingua=" + language)
        return self.office.send(page.form("testi.php"), page, **{**{f"t{n}": None for n in range(7)}, **fields})

    def shown(self, number, language="it"):
        return re.search(rf'name="t{number}"[^>]*>\n(.*?)</textarea>',
                         self.office.ask("testi.php?lingua=" + language).text, re.S).group(1)

    def test_each_change_of_state_writes_to_the_customer_and_is_noted(self):
        states = ["da verificare", "importo diverso", "pagato", "rifiutato", "annullato", "nuovo", "spedito"]
        for state in states:
            self.assertIn("Messaggio al cliente: " + state, self.change_state(state).text)
        self.assertEqual(len(self.shop.mails()) - self.before, 7)
        texts = {self.message(self.before + n)[2] for n in range(7)}
        self.assertEqual(len(texts), 7)
        for text in texts:
            self.assertIn("Ordine 261101-AAAAAA del 01/11/2026, totale EUR 1.234,50.", text)
        self.assertEqual(self.annotations("messaggio"), ["Messaggio al cliente: " + state for state in states])
        self.assertEqual(self.annotations("stato")[0], 'Stato: da "nuovo" a "da verificare"')

    def test_the_merchants_own_words_go_out(self):
        self.words(o5="{negozio}: {codice}", t5="Città “€”:\r\npartito, {totale} {ignoto}")
        self.assertEqual(self.shown(5), "Città \x93€\x94:\npartito, {totale} {ignoto}".replace("\x93", "“").replace("\x94", "”"))
        self.change_state("spedito")
        _, subject, text = self.message(self.before)
        self.assertIn(": 261101-AAAAAA", subject)
        self.assertTrue(text.startswith("Città “€”:\r\npartito, EUR 1.234,50 {ignoto}\r\n\r\n"), text)
        self.change_state("annullato", messaggio="Spiace,\r\n{codice}")
        self.assertTrue(self.message(self.before + 1)[2].startswith("Spiace,\r\n261101-AAAAAA\r\n"))

    def test_an_empty_text_or_no_tick_sends_nothing(self):
        self.words(o5="", t5="")
        self.assertIn("ora: spedito", self.change_state("spedito").text)
        self.change_state("pagato", scrivi=None)
        self.assertEqual((len(self.shop.mails()), self.annotations("messaggio")), (self.before, []))

    def test_the_shipped_words_come_back(self):
        shipped = self.shown(5, "de")
        self.words("de", t5="Weg ist sie")
        self.assertEqual((self.shown(5, "de"), "Weg" in self.shown(5)), ("Weg ist sie", False))
        page = self.office.ask("testi.php?lingua=de")
        self.office.send(page.form("testi.php"), page, forniti="1")
        self.assertEqual(self.shown(5, "de"), shipped)
        self.words("de", o5="Bestellung {codice}", t5=shipped)
        self.assertEqual(self.shop.rows("SELECT * FROM kv_testi"), [])


class Waiting(Desk):
    def test_notes_are_kept_shown_and_found(self):
        self.add_order("261101-AAAAAA")
        self.add_order("261102-BBBBBB")
        page = self.order_page()
        form = next(f for f in page_forms(page) if "nota" in f["fields"])
        answer = self.office.send(form, page, nota="Telefonato: <b>martedì</b> Ł\r\nrichiamare")
        self.assertIn("&lt;b&gt;martedì&lt;/b&gt; &#321;<br", answer.text)
        self.assertEqual(self.codes("ordini.php?q=marted%C3%AC"), ["261101-AAAAAA"])
        self.assertEqual(self.annotations("nota"), ["Telefonato: <b>martedì</b> Ł\r\nrichiamare"])

    def test_paid_ones_that_are_open_and_those_to_be_compared_by_hand_are_lists(self):
        for code, state, proof in (("A", "nuovo", False), ("B", "nuovo", True), ("C", "pagato", True), ("D", "spedito", False),
                                   ("E", "da verificare", True), ("F", "importo diverso", False), ("G", "annullato", False)):
            self.add_order(code, state=state, extra={"prova": proof}, fields={"Note": '"prova":true'})
        self.assertEqual(self.codes("ordini.php?stato=pagati"), ["C"])
        self.assertEqual(self.codes("ordini.php?stato=confronto"), ["F", "E", "A"])
        self.assertEqual(self.codes("ordini.php?stato=confronto&metodo=Contrassegno"), ["F", "E", "A"])
        self.assertEqual(self.codes("ordini.php?metodo=altro"), [])
        text = re.sub(r"<[^>]+>", " ", self.office.ask("pannello.php").text)
        self.assertRegex(text, r"Pagati, da spedire\s+1\s+ordine\s")
        self.assertRegex(text, r"Da confrontare a mano\s+3\s+ordini")

    def test_an_order_by_a_method_that_proves_nothing_is_to_be_compared(self):
        order(self.shop.visitor(), "41.1", method=2)
        self.assertEqual(len(self.codes("ordini.php?stato=confronto")), 1)

    def test_sales_of_the_last_days_are_bars_and_a_table(self):
        self.assertIn("Nessuna vendita", self.office.ask("pannello.php").text)
        self.add_order("A", total="100")
        self.add_order("B", total="50.25", created="NOW() - INTERVAL 29 DAY")
        self.add_order("C", total="500", state="annullato")
        self.add_order("D", total="900", created="NOW() - INTERVAL 30 DAY")
        text = self.office.ask("pannello.php").text
        bars = re.findall(r'<rect x="(\d+)" y="([\d.]+)" width="14" height="([\d.]+)">', text)
        self.assertEqual(bars, [("3", "59.7", "60.3"), ("583", "0", "120")])
        self.assertIn("2 ordini per EUR&nbsp;150,25, il giorno migliore", text)
        self.assertIn('role="img" aria-labelledby="vendite vendite-dette"', text)
        self.assertEqual(text.split("<details>")[1].split("</details>")[0].count("<tr"), 3)
