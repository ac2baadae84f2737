#!/usr/bin/env python3
"""What keeps programs from filling a shop with orders, mails and attempts: server_limits.py KORVANE_CLI"""
import email
import re

from served_shop import PATIENCE, mail_html
from shop_case import Case, ask_to_register, enter, mail_after, mail_text, main, order, register, send, shop


class Limits(Case):
    """The shop with the limits that it ships with."""

    def setUp(self):
        super().setUp()
        (shop().shop / "online/kvlimiti.php").write_text("<?php return ['tempo_minimo' => 0];\n")

    def tearDown(self):
        (shop().shop / "online/kvlimiti.php").write_text(PATIENCE)
        super().tearDown()

    def test_the_eleventh_order_of_an_address_waits(self):
        for number in range(11):
            page = order(shop().visitor(), self.cart, method=2, Email=f"persona{number}@example.org")
            self.assertEqual("thankyou" in page.address, number < 10, number)
        self.assertIn("quarto d'ora", page.text)
        shop().execute("UPDATE kv_tentativi SET quando = quando - INTERVAL 16 MINUTE")
        self.assertIn("thankyou", order(self.visitor, self.cart, method=2).address)

    def test_the_sixth_order_that_writes_to_one_address_waits(self):
        before = len(shop().mails())
        for number in range(6):
            page = order(shop().visitor(), self.cart, method=2, Email="Vittima@example.org")
        self.assertNotIn("thankyou", page.address)
        self.assertEqual((self.count("kv_ordini"), len(shop().mails()) - before), (5, 10))

    def test_a_merchant_can_set_other_limits(self):
        (shop().shop / "online/kvlimiti.php").write_text("<?php return ['tempo_minimo' => 0, 'ordini' => [1, 15]];\n")
        self.assertIn("thankyou", order(shop().visitor(), self.cart, method=2).address)
        self.assertNotIn("thankyou", order(shop().visitor(), self.cart, method=2).address)

    def test_a_form_that_came_too_quickly_is_not_taken(self):
        (shop().shop / "online/kvlimiti.php").unlink()
        self.assertIn("troppo in fretta", order(self.visitor, self.cart, method=2).text)
        self.assertIn("m=14", ask_to_register(shop().visitor()).address)
        self.assertEqual((self.count("kv_ordini"), self.count("kv_richieste")), (0, 0))

    def test_a_field_that_nobody_sees_gives_programs_away(self):
        order(self.visitor, self.cart, method=2, kv_sito="http://example.org")
        ask_to_register(shop().visitor(), kv_sito="http://example.org")
        self.assertEqual((self.count("kv_ordini"), self.count("kv_richieste")), (0, 0))

    def test_the_first_mail_to_a_stranger_holds_nothing_that_was_typed(self):
        words = {"Nome": "Compra-subito", "Cognome": "casino.example", "Note": "http://casino.example", "CAP": "casino",
                 "Indirizzo": "casino 1", "Citta": "casino", "Telefono": "casino", "RagioneSociale": "casino"}
        before = len(shop().mails())
        order(self.visitor, self.cart, method=2, **words)
        mails = {mail["To"]: mail_text(mail) for mail in
                 map(email.message_from_string, shop().mails()[before:])}
        self.assertNotIn("casino", mails["anna@example.org"])
        self.assertNotIn("Compra", mails["anna@example.org"])
        html = next(mail_html(text) for text in shop().mails()[before:] if "To: anna@" in text)
        self.assertNotRegex(html, "casino|Compra")
        self.assertIn("casino.example", mails["ordini@bottega.example"])
        shop().execute("UPDATE kv_ordini SET stato = 'spedito'")
        before = len(shop().mails())
        order(shop().visitor(), self.cart, method=2, **words)
        self.assertTrue(any("To: anna@" in text and "casino" in mail_text(text)
                            for text in shop().mails()[before:]))

    def test_a_customer_whose_address_is_proven_gets_the_whole_order(self):
        register(self.visitor)
        before = len(shop().mails())
        order(self.visitor, self.cart, method=2, Email="ada@example.org", Nome="Ada-Lucia")
        self.assertIn("Ada-Lucia", mail_after(before))

    def test_passwords_sprayed_over_many_accounts_are_stopped(self):
        answers = [enter(shop().visitor(), f"persona{n}@example.org", "Primavera2026").address for n in range(24)]
        self.assertEqual(["m=6" in answer for answer in answers], [False] * 20 + [True] * 4)

    def waits_from(self, attempt, number):
        """Whether each of one more attempts than this number, made with what `attempt` is given, has to wait."""
        answers = [attempt(n).address for n in range(number + 1)]
        self.assertEqual(["m=6" in answer for answer in answers], [False] * number + [True])

    def test_registrations_wait_by_address_whether_complete_or_not(self):
        self.waits_from(lambda n: ask_to_register(shop().visitor(), f"persona{n}@example.org", pw="corta"), 20)

    def test_one_mailbox_gets_three_mails_of_registrations(self):
        before = len(shop().mails())
        self.waits_from(lambda n: ask_to_register(shop().visitor(), "Vittima@example.org"), 3)
        mail_after(before + 2)
        self.assertEqual(len(shop().mails()) - before, 3)

    def test_wishes_for_passwords_wait_by_address_whoever_they_are_for(self):
        self.waits_from(lambda n: send(shop().visitor(), "richiedi", email=f"persona{n}@example.org"), 20)

    def test_links_of_mails_cannot_be_guessed_without_end(self):
        self.waits_from(lambda n: send(shop().visitor(), "conferma" if n % 2 else "ripristina", r=f"{n:048x}", g=f"{n:048x}",
                                       pw="x" * 8), 20)

    def test_an_account_of_ones_own_does_not_reset_the_count(self):
        register(shop().visitor())
        for n in range(19):
            enter(shop().visitor(), f"persona{n}@example.org", "Primavera2026")
        self.assertIn("index.php", enter(shop().visitor()).address)
        enter(shop().visitor(), "persona20@example.org", "Primavera2026")
        self.assertIn("m=6", enter(shop().visitor(), "persona21@example.org", "Primavera2026").address)

    def test_a_wish_for_a_password_is_answered_before_anything_tells_whether_the_address_is_known(self):
        register(shop().visitor())
        before = len(shop().mails())
        # Each mail takes as long as a slow server's.
        sink = shop().home / "conf/sendmail"
        text = sink.read_text()
        sink.write_text(text.replace("\n", "\nsleep 2\n", 1))
        try:
            pages = [send(shop().visitor(), "richiedi", email=address) for address in ("ada@example.org", "no@example.org")]
            self.assertEqual(len(shop().mails()), before)
        finally:
            mail_after(before)
            sink.write_text(text)
        self.assertEqual(*(re.sub(r'name="gettone" value="\w+"', '', page.text) for page in pages))
        self.assertEqual(len(shop().mails()), before + 1)


if __name__ == "__main__":
    main()
