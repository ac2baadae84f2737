"""The withdrawal function: with the code of an order and its mail address, without an account."""
import concurrent.futures
import json
import re

from shop_case import CustomerCase, article, mail_text, order, shop


class Withdrawals(CustomerCase):
    def setUp(self):
        super().setUp()
        self.other = article("PA-001")
        order(shop().visitor(), f"{self.article}.3_{self.other}.1", method=2)
        self.code = shop().rows("SELECT codice FROM kv_ordini")[0][0]
        self.sent = len(shop().mails())

    def form(self, page, action):
        """The form of a page that asks for an action."""
        form = page.form("kvrecesso")
        self.assertEqual(form["fields"]["azione"], action)
        return form

    def look(self, visitor=None, code=None, address="anna@example.org", suffix="", **fields):
        visitor = visitor or self.visitor
        page = visitor.ask(f"kvrecesso{suffix}.php")
        return visitor.send(self.form(page, "cerca"), page, codice=code or self.code, email=address, **fields)

    def choose(self, page, pieces, visitor=None):
        """Ticks lines: pieces by line number."""
        fields = {f"riga[{line}]": "1" for line in pieces} | {f"pezzi[{line}]": str(n) for line, n in pieces.items()}
        return (visitor or self.visitor).send(self.form(page, "scegli"), page, **fields)

    def confirm(self, page, visitor=None):
        return (visitor or self.visitor).send(self.form(page, "conferma"), page)

    def withdraw(self, pieces, visitor=None):
        return self.confirm(self.choose(self.look(visitor), pieces, visitor), visitor)

    def entries(self):
        return [(number, state, [(line["n"], line["quantita"]) for line in json.loads(lines)]) for number, state, lines in
                shop().rows("SELECT numero, stato, REPLACE(righe, '\\\\u', '') FROM kv_recessi ORDER BY id")]

    def test_every_page_leads_to_it(self):
        for name in ("index", "cat007", "cart", "login", "condizioni", "recesso", "search", "messaggio"):
            for suffix in ("", "_l2", "_l3", "_l4"):
                self.assertIn(f'href="kvrecesso{suffix}.php"', self.visitor.ask(f"{name}{suffix}.php").text, name + suffix)

    def test_chosen_pieces_are_entered_and_both_get_the_receipt(self):
        page = self.choose(self.look(), {0: 2})
        self.assertIn("Conferma il recesso", page.text)
        self.assertEqual(self.entries(), [])
        page = self.confirm(page)
        self.assertEqual(self.entries(), [(self.code + "-R1", "ricevuto", [(0, 2)])])
        self.assertIn(self.code + "-R1", page.text)
        self.assertRegex(page.text, r"Ricevuto il: \d\d/\d\d/\d{4} \d\d:\d\d:\d\d \(UTC[+-]\d+:\d\d\)")
        mails = shop().mails()[self.sent:]
        self.assertEqual([re.search(r"^To: (\S+)", mail, re.M).group(1) for mail in mails],
                         ["anna@example.org", "ordini@bottega.example"])
        for mail in mails:
            self.assertIn("2 x ", mail_text(mail))
            self.assertRegex(mail_text(mail), r"Ricevuto il: \d\d/\d\d/\d{4} \d\d:\d\d:\d\d")

    def test_a_withdrawal_is_a_change_of_its_order(self):
        shop().execute("UPDATE kv_ordini SET modificato = '2026-01-01'")
        self.withdraw({0: 1})
        self.assertEqual(shop().rows("SELECT COUNT(*) FROM kv_ordini WHERE modificato > '2026-01-02'"), [["1"]])

    def test_address_and_code_are_taken_whatever_their_case(self):
        self.assertIn("passo=scegli", self.look(code=self.code.lower(), address="ANNA@Example.org").address)

    def test_each_language_has_its_words(self):
        for suffix, words in (("", "Trova l'ordine"), ("_l2", "Find the order"), ("_l3", "Trouver la commande"),
                              ("_l4", "Bestellung suchen")):
            page = self.visitor.ask(f"kvrecesso{suffix}.php")
            self.assertIn(words.replace("'", "&#039;"), page.text)
            self.assertIn('href="kvrecesso_l3.php"' if suffix != "_l3" else 'href="kvrecesso.php"', page.text)
            self.assertIn(f"passo=scegli", self.look(shop().visitor(), suffix=suffix).address)

    def test_a_foreign_address_and_an_unknown_code_get_one_answer(self):
        answers = {re.sub(r'value="[0-9a-f]{32}"', "", self.look(shop().visitor(), code, address).text)
                   for code, address in ((self.code, "altra@example.org"), ("261122-FFFFFF", "anna@example.org"))}
        self.assertEqual(len(answers), 1)
        self.assertIn("Nessun ordine con questo codice", answers.pop())

    def test_codes_cannot_be_guessed_without_end(self):
        for number in range(21):
            page = self.look(shop().visitor(), code=f"261122-{number:06X}")
        self.assertIn("Troppi tentativi", page.text)

    def test_a_form_without_its_token_enters_nothing(self):
        page = self.choose(self.look(), {0: 1})
        form = self.form(page, "conferma")
        self.visitor.send(form, page, gettone="0" * 32)
        shop().visitor().send(form, page)
        self.assertEqual(self.entries(), [])

    def test_the_second_step_cannot_be_skipped(self):
        page = self.look()
        self.visitor.send(dict(self.form(page, "scegli")), page, azione="conferma", **{"riga[0]": "1"})
        self.assertEqual(self.entries(), [])

    def test_more_than_was_ordered_cannot_be_given_back(self):
        page = self.look()
        for pieces in ({0: 4}, {0: 0}, {0: -1}, {7: 1}, {}):
            answer = self.choose(page, pieces)
            self.assertIn("passo=scegli", answer.address)
        self.assertEqual(self.entries(), [])

    def test_a_form_sent_twice_leads_to_its_one_receipt(self):
        page = self.choose(self.look(), {0: 1})
        form = self.form(page, "conferma")
        for _ in range(2):
            answer = self.visitor.send(form, page)
            self.assertIn(self.code + "-R1", answer.text)
        self.assertEqual(len(self.entries()), 1)
        self.assertEqual(len(shop().mails()) - self.sent, 2)

    def test_what_is_left_can_be_given_back_later_and_no_more(self):
        self.withdraw({0: 2})
        page = self.look()
        self.assertIn('name="pezzi[0]" min="1" max="1"', page.text)
        self.withdraw({0: 1, 1: 1}, shop().visitor())
        self.assertEqual([number for number, state, lines in self.entries()], [self.code + "-R1", self.code + "-R2"])
        self.assertIn("è già stato ricevuto", self.look().text)

    def test_of_two_at_a_time_one_gets_the_last_piece(self):
        visitors = [shop().visitor() for _ in range(4)]
        pages = [self.choose(self.look(visitor), {1: 1}, visitor) for visitor in visitors]
        with concurrent.futures.ThreadPoolExecutor(4) as pool:
            list(pool.map(self.confirm, pages, visitors))
        self.assertEqual(len(self.entries()), 1)

    def test_a_session_withdraws_from_the_order_it_proved_alone(self):
        order(shop().visitor(), f"{self.article}.1", method=2, Email="bruno@example.org")
        foreign = shop().rows("SELECT codice FROM kv_ordini ORDER BY id DESC LIMIT 1")[0][0]
        page = self.look()
        page = self.visitor.send(self.form(page, "scegli"), page, codice=foreign, email="bruno@example.org",
                                 **{"riga[0]": "1", "pezzi[0]": "1"})
        self.visitor.send(self.form(page, "conferma"), page, codice=foreign)
        self.assertEqual([number for number, state, lines in self.entries()], [self.code + "-R1"])

    def test_who_may_be_late_is_told_so_and_the_entry_says_it(self):
        shop().execute("UPDATE kv_ordini SET creato = NOW() - INTERVAL 15 DAY")
        page = self.look()
        self.assertIn("Sono passati più di 14 giorni", page.text)
        self.confirm(self.choose(page, {0: 1}))
        self.assertEqual(shop().rows("SELECT tardi FROM kv_recessi"), [["1"]])
        self.assertIn("Sono passati più di 14 giorni", mail_text(shop().mails()[-2]))

    def test_who_is_in_time_for_sure_is_not_told_to_be_late(self):
        shop().execute("UPDATE kv_ordini SET creato = NOW() - INTERVAL 13 DAY")
        self.withdraw({0: 1})
        self.assertEqual(shop().rows("SELECT tardi FROM kv_recessi"), [["0"]])

    def test_nobody_withdraws_when_all_periods_are_over_or_the_order_was_cancelled(self):
        for change, words in (("creato = NOW() - INTERVAL 15 MONTH", "è scaduto"), ("creato = NOW(), stato = 'annullato'",
                                                                                  "è stato annullato")):
            page = self.look(shop().visitor())
            visitor = shop().visitor()
            step = self.choose(self.look(visitor), {0: 1}, visitor)
            shop().execute(f"UPDATE kv_ordini SET {change}")
            self.assertIn(words, self.confirm(step, visitor).text)
            self.assertIn(words, self.look(shop().visitor()).text)
            shop().execute("UPDATE kv_ordini SET creato = NOW(), stato = 'nuovo'")
        self.assertEqual(self.entries(), [])
