#!/usr/bin/env python3
"""Every payment module from the order to the money: payment_modules_test.py KORVANE_CLI

The modules are filled as their dialogs do it, shops are built with four of them at a time, orders are placed over HTTP
and the forms followed to a payment service of the test's own (gateway_stand_in.py)."""
import os
import re
import shutil
import subprocess
import sys
import unittest

from gateway_stand_in import post, sealed, signature
from payment_shops import ODD, SCRIPT_KEYS, SHOPS, Case, Setting, load_passwords, numbered, payment_form
from served_shop import SOURCES, mail_text, order

PROGRAM = sys.argv[1] if len(sys.argv) > 1 else ""


def setUpModule():
    Setting.start(PROGRAM)


def tearDownModule():
    if Setting.gateway:
        Setting.gateway.close()
    Setting.shop.close(keep=Setting.shop.log() != "")


class Confirming(Case):
    """Modules whose service tells the shop of the payment."""

    def each(self):
        for number, method, entry in numbered(lambda s: s.notice_key or s.kind in ("otp", "crypt")):
            yield number, method, entry[0], entry[3]

    def test_a_payment_marks_the_order_and_leads_to_the_page_of_success(self):
        for number, method, name, service in self.each():
            with self.subTest(module=name, mode=service.kind):
                shopper, page, code = self.order(number, method)
                payment = self.to_service(shopper, page, name)
                sent = service.order(self.gateway.payments[int(payment)][1])
                self.assertTrue(sent[0].endswith(code))
                self.assertEqual(sent[1].replace(".", ""), self.cents(code))
                self.assertEqual(self.state(code), ("nuovo", ""))
                page = self.finish(shopper, name, payment, "OK")
                self.assertEqual(self.gateway.answers, [(200, "OK")])
                self.assertEqual(self.state(code), ("pagato", f"{name} T{payment}"))
                self.assertIn("/payok.php", page.address)
                again = shopper.ask(f"thankyou{method}.php")
                self.assertIn("andato a buon fine", again.text)
                self.assertNotIn('name="kvPagamento"', again.text)

    def test_a_failed_payment_marks_the_order_and_may_be_tried_again(self):
        for number, method, name, service in self.each():
            with self.subTest(module=name, mode=service.kind):
                if service.kind == "otp":
                    continue  # its passwords are few: tested by itself
                shopper, page, code = self.order(number, method)
                back = self.finish(shopper, name, self.to_service(shopper, page, name), "KO")
                self.assertEqual(self.gateway.answers, [(200, "OK")])
                self.assertEqual(self.state(code), ("rifiutato", ""))
                self.assertIn("/payerr.php", back.address)
                page = shopper.ask(f"thankyou{method}.php")
                payment = self.to_service(shopper, page, name)
                self.finish(shopper, name, payment, "OK")
                self.assertEqual(self.state(code), ("pagato", f"{name} T{payment}"))


class Notices(Case):
    """What somebody else says of a payment."""

    SCRIPTS = {"Bankpass": "bpurlms", "Telepay Light": "tlurlms", "Cartafacile": "cfurlms", "SysPay": "syspayurlms",
               "Omnipay": "omniend", "Cariverona": "cariverona"}

    def each(self):
        for number, method, entry in numbered(lambda s: s.notice_key):
            code = self.order(number, method)[2]
            script = f"{self.shop.base}/{self.SCRIPTS[entry[0]]}.php"
            told = {"negozio": entry[3].merchant, "ordine": code, "importo": self.cents(code),
                    "valuta": entry[3].currency, "transazione": "T-1", "esito": "OK"}
            yield script, told, entry[3].notice_key, code

    def send(self, script, told, secret, **changes):
        fields = {**told, **changes}
        return post(script, {**fields, "firma": signature(fields, secret)})

    def test_a_notice_without_the_right_signature_is_refused(self):
        for script, told, secret, code in self.each():
            with self.subTest(script):
                self.assertEqual(self.send(script, told, "indovinata"), (403, "KO"))
                self.assertEqual(self.send(script, told, ""), (403, "KO"))
                self.assertEqual(post(script, {**told, "firma": ""}), (403, "KO"))
                good = signature(told, secret)
                for name, value in (("importo", "1"), ("esito", "KO"), ("transazione", "T-2"), ("ordine", "no")):
                    self.assertEqual(post(script, {**told, name: value, "firma": good}), (403, "KO"))
                self.assertEqual(post(script, {**told, "firma[]": good})[0], 403)
                self.assertEqual(self.state(code), ("nuovo", ""))

    def test_another_shop_order_amount_or_currency_is_refused_even_when_signed(self):
        for script, told, secret, code in self.each():
            with self.subTest(script):
                for changes, status in (({"negozio": "altro"}, 403), ({"ordine": "no"}, 404), ({"ordine": ""}, 404),
                                        ({"importo": "1"}, 409), ({"importo": told["importo"] + ".0"}, 409),
                                        ({"valuta": "840"}, 409), ({"valuta": ""}, 409), ({"esito": "FORSE"}, 409),
                                        ({"transazione": ""}, 409)):
                    self.assertEqual(self.send(script, told, secret, **changes), (status, "KO"), changes)
                    differs = "importo" in changes or "valuta" in changes
                    self.assertEqual(self.state(code), ("importo diverso" if differs else "nuovo", ""))
                    self.shop.execute("UPDATE kv_ordini SET stato = 'nuovo'")
                self.send(script, told, secret, importo="1", esito="KO")
                self.assertEqual(self.state(code), ("nuovo", ""))

    def test_a_notice_counts_once(self):
        for script, told, secret, code in self.each():
            with self.subTest(script):
                self.assertEqual(self.send(script, told, secret), (200, "OK"))
                paid = ("pagato", self.state(code)[1])
                self.assertEqual(self.send(script, told, secret), (200, "OK"))
                self.assertEqual(self.send(script, told, secret, esito="KO"), (409, "KO"))
                self.assertEqual(self.send(script, told, secret, transazione="T-2"), (409, "KO"))
                self.assertEqual(self.state(code), paid)
                for state in ("annullato", "nuovo", "spedito"):
                    self.shop.execute(f"UPDATE kv_ordini SET stato = '{state}' WHERE codice = '{code}'")
                    self.assertEqual(self.send(script, told, secret), (200, "OK"))
                    self.assertEqual(self.state(code), (state, paid[1]))

    def test_money_for_a_cancelled_order_is_noted_and_leaves_its_state(self):
        for script, told, secret, code in self.each():
            with self.subTest(script):
                self.shop.execute(f"UPDATE kv_ordini SET stato = 'annullato' WHERE codice = '{code}'")
                self.assertEqual(self.send(script, told, secret, esito="KO", transazione="T-0"), (200, "OK"))
                self.assertEqual(self.state(code), ("annullato", ""))
                self.assertEqual(self.send(script, told, secret), (200, "OK"))
                self.assertEqual(self.state(code)[0], "annullato")
                self.assertIn("T-1", self.state(code)[1])

    def test_a_forged_receipt_of_the_way_back_is_a_payment_not_made(self):
        shopper, page, code = self.order(0, 4)
        told = {"negozio": ODD, "ordine": code, "importo": self.cents(code), "valuta": "EUR", "transazione": "T",
                "esito": "OK", "firma": signature({}, "ricevute")}
        query = "&".join(f"{name}={value}" for name, value in told.items() if name != "negozio")
        self.assertIn("/payerr.php", shopper.ask("syspayrec.php?negozio=x&" + query).address)
        self.assertIn("/payerr.php", shopper.ask("syspayback.php").address)
        self.assertEqual(self.state(code), ("nuovo", ""))


class Sella(Case):
    def test_one_time_passwords_are_used_once_and_without_one_there_is_no_payment(self):
        service = SHOPS[4][0][3]
        self.order(4, 1)
        load_passwords(self.shop, ["RIC8", "RIC9"], ["RIS7", "RIS8", "RIS9"])
        shopper, page, code = self.order(4, 1)
        self.finish(shopper, "Banca Sella", self.to_service(shopper, page, "Banca Sella"), "KO")
        self.assertEqual(self.state(code), ("rifiutato", ""))
        told = {"negozio": service.merchant, "ordine": code, "importo": self.cents(code), "valuta": "242",
                "transazione": "T", "esito": "OK"}
        script = self.shop.base + "/s2sotp.php"
        for otp in ("", "RIS9", "inventata", "RIC9"):
            self.assertEqual(post(script, {**told, "otp": otp})[0], 403, otp)
        for change in ({"importo": "1"}, {"valuta": "1"}):
            self.assertEqual(post(script, {**told, **change, "otp": "RIS8"})[0], 409)
        self.assertEqual(post(script, {**told, "negozio": "altro", "otp": "RIS8"})[0], 403)
        self.assertEqual(self.state(code), ("importo diverso", ""))
        self.shop.execute("UPDATE kv_ordini SET stato = 'rifiutato'")
        page = shopper.ask("thankyou1.php")
        payment = self.to_service(shopper, page, "Banca Sella")
        self.finish(shopper, "Banca Sella", payment, "OK")
        self.assertEqual(self.state(code), ("pagato", f"Banca Sella T{payment}"))
        shopper, page, code = self.order(4, 1)
        page = shopper.send(payment_form(page), page)
        self.assertIn("non è ancora attivo", page.text)
        self.assertEqual(self.shop.rows("SELECT pwd FROM kv_OTP ORDER BY pwd"), [["RIS7"], ["stop"]])

    def test_a_sealed_notice_of_another_amount_or_shop_is_refused(self):
        shopper, page, code = self.order(5, 1)
        total = self.shop.rows(f"SELECT totale FROM kv_ordini WHERE codice = '{code}'")[0][0]
        good = {"shop": "9000001", "currency": "242", "order": code, "amount": total, "transaction": "T",
                "result": "OK"}
        script = self.shop.base + "/s2scrypt.php"
        for changes, status in (({"amount": "0.01"}, 409), ({"currency": "1"}, 409), ({"order": "no"}, 404)):
            self.assertEqual(post(script, {"a": "9000001", "b": sealed({**good, **changes})}), (status, "KO"))
        self.assertEqual(post(script, {"a": "altro", "b": sealed(good)}), (403, "KO"))
        self.assertEqual(post(script, {"a": "9000001", "b": sealed(good) + "0"}), (403, "KO"))
        self.assertEqual(self.state(code), ("importo diverso", ""))
        self.assertEqual(post(script, {"a": "9000001", "b": sealed(good)}), (200, "OK"))
        self.assertEqual(self.state(code), ("pagato", "Banca Sella T"))

    def test_the_compatible_mode_leaves_the_order_to_be_checked(self):
        shopper, page, code = self.order(3, 1)
        back = self.finish(shopper, "Banca Sella", self.to_service(shopper, page, "Banca Sella"), "OK")
        self.assertIn("/payok.php", back.address)
        self.assertEqual(self.state(code), ("da verificare", ""))


class Forms_(Case):
    """Modules that bring a form alone, and what holds for all forms."""

    def test_the_service_gets_the_order_and_nothing_marks_it_as_paid(self):
        for number, method, (name, _, _, service) in numbered(lambda s: s.kind in ("fields", "button") and not s.key):
            if name == "Banca Sella":
                continue
            with self.subTest(module=name):
                shopper, page, code = self.order(number, method)
                payment = self.to_service(shopper, page, name)
                sent = service.order(self.gateway.payments[int(payment)][1])
                self.assertEqual((sent[0], sent[1].replace(".", "")), (code, self.cents(code)))
                self.assertIn("/payok.php", self.finish(shopper, name, payment, "OK").address)
                self.assertEqual(self.state(code), ("nuovo", ""))

    def test_the_second_language_has_its_own_scripts_and_pages(self):
        shopper, page, code = self.order(0, 1, suffix="_l2")
        self.assertEqual(payment_form(page)["action"], "bankpass_l2.php")
        payment = self.to_service(shopper, page, "Bankpass")
        fields = self.gateway.payments[int(payment)][1]
        self.assertEqual((fields["lingua"], fields["notifica"]), ("en", self.shop.base + "/bpurlms_l2.php"))
        self.assertIn("/payok_l2.php", self.finish(shopper, "Bankpass", payment, "OK").address)
        self.assertEqual(self.state(code)[0], "pagato")

    def test_a_script_takes_neither_an_old_page_nor_a_form_of_another_session(self):
        shopper, page, code = self.order(0, 1)
        form = payment_form(page)
        for changes in ({"importo": "1"}, {"ordine": "000000-000000"}, {"gettone": "0" * 32}, {"gettone": None}):
            answer = shopper.send(form, page, **changes)
            self.assertIn("/messaggio.php", answer.address, changes)
        self.assertIn("/messaggio.php", shopper.ask("bankpass.php").address)
        self.assertIn("/messaggio.php", self.shop.visitor().send(form, page).address)

    def test_the_eleventh_start_of_one_payment_waits(self):
        shopper, page, code = self.order(0, 1)
        answers = [shopper.send(payment_form(page), page) for _ in range(11)]
        self.assertEqual(["/messaggio.php" in answer.address for answer in answers], [False] * 10 + [True])
        self.assertEqual(self.state(code), ("nuovo", ""))

    def test_a_merchants_code_is_never_taken_from_the_browser(self):
        shopper, page, code = self.order(3, 1)
        page = shopper.send(payment_form(page), page, negozio="altro", terminale="99", valuta="1", conto="x")
        fields = payment_form(page)["fields"]
        self.assertEqual((fields["negozio"], fields["terminale"], fields["valuta"]), ("9000001", "3", "242"))

    def test_offline_methods_show_the_merchants_words_and_end_there(self):
        for method, words, plain in ((3, "<p>Si paga al corriere<br><b>in contanti</b></p>", "in contanti"),
                                     (4, "IBAN: IT60 'X' \"Y\" $z<br>Causale &amp; codice</p>", "Causale & codice")):
            Setting.build(3)
            before = len(self.shop.mails())
            shopper, page, code = self.order(3, method)
            self.assertEqual(page.text.count(words), 1)
            self.assertEqual([mail_text(mail).count(plain) for mail in self.shop.mails()[before:]], [1, 1])
            self.assertIn(code, page.text)
            self.assertNotIn('name="kvPagamento"', page.text)
            self.assertEqual(self.state(code), ("nuovo", ""))

    def test_without_an_order_a_page_of_payment_offers_nothing(self):
        Setting.build(0)
        page = self.shop.visitor().ask("thankyou1.php")
        self.assertNotIn("kvPagamento", page.text)

    def test_only_encrypted_services_and_those_of_this_machine_are_sent_to(self):
        Setting.build(0)
        wanted = {"https://banca.example/paga": 1, "https://banca.example:8443/x?y=1": 1, "http://127.0.0.1:8080/p": 1,
                  "http://localhost/": 1, "http://[::1]:80/": 1, "http://banca.example/": 0, "": 0,
                  "http://127.0.0.1.banca.example/": 0, "http://127.0.0.1@banca.example/": 0, "javascript:alert(1)": 0,
                  "https://banca.example/\"><script>": 0, "https://banca.example\n.it/": 0, "ftp://127.0.0.1/": 0}
        code = "include $argv[1]; foreach (array_slice($argv, 2) as $a) { echo (int) kvIsServiceAllowed($a); }"
        told = subprocess.run(["php", "-n", "-r", code, "--", str(self.shop.shop / "online/kvpay.php"), *wanted],
                              capture_output=True, text=True, check=True).stdout
        self.assertEqual(told, "".join(str(one) for one in wanted.values()))


class Shipped(unittest.TestCase):
    """The modules as they come with the program."""

    TABLE = {
        "Telepay Light": ("mid val url java ss1 ss2 cod", "mid val url ss1 ss2 java cod", "telepay tlurlms"),
        "Banca Sella": ("mid val lan tid", "mid tid val lan", "s2scrypt s2sotp"),
        "AuthorizeNet": ("mid", "mid", ""), "Planet Payment": ("mid", "mid", ""),
        "Contrassegno": ("info", "info", ""), "Pagamento anticipato": ("info", "info", ""),
        "Cilme": ("mid val java alias newsys", "mid val java alias", ""),
        "Cartafacile": ("mid val url java ss1 ss2 cod", "mid val url ss1 ss2 java cod", "cartafacile cfurlms"),
        "Omnipay": ("sto key", "sto key", "omniend"), "Paypal": ("mid val", "mid val", ""),
        "Consorzio Triveneto": ("mid", "mid", ""), "Shopla": ("mid", "mid", ""),
        "Cariverona": ("ncom ncto user pass segr", "ncom ncto user pass segr", "cariverona"),
        "Bankpass": ("mid val url java ss1 ss2 con aut cod test", "mid val url ss1 ss2 con aut java cod",
                     "bankpass bpurlms"),
        "SysPay": ("mid rec url dev", "mid rec url dev", "syspay"),
    }
    CODE = SOURCES / "app/new/code"

    def test_every_module_has_its_keys_in_order_its_placeholders_and_its_scripts(self):
        self.assertEqual({path.name for path in self.CODE.iterdir() if path.is_dir()}, set(self.TABLE))
        for name, (keys, placeholders, scripts) in self.TABLE.items():
            folder = self.CODE / name
            lines = [line.split("=", 1)[0] for line in (folder / "conf.ini").read_text().splitlines()]
            self.assertEqual([one for one in lines if one not in SCRIPT_KEYS], keys.split(), name)
            self.assertEqual({path.stem for path in folder.glob("*.new")}, set(scripts.split()), name)
            used = set()
            for path in [*folder.glob("*.new"), *folder.glob("*.kpg")]:
                used |= set(re.findall(r"#([a-z]\w*)", path.read_text()))
            self.assertEqual(used, set(placeholders.split()), name)
            named = {line.split("=", 1)[1] for line in (folder / "conf.ini").read_text().splitlines()
                     if line.split("=")[0].startswith("php")}
            there = {path.stem for path in [*folder.glob("*.new"), *folder.glob("*.php")]}
            self.assertLessEqual(named, there, name)
            for path in [*folder.glob("*.new"), *folder.glob("*.php")]:
                self.assertEqual(path.read_text().splitlines()[1], "// ***1.0.7***", path.name)

    def test_a_module_that_was_never_configured_tells_the_visitor_so(self):
        shop = Setting.shop
        Setting.number = None
        # The next opening of the shop brings the modules as they are shipped.
        shutil.rmtree(shop.shop / "code")
        online = [name for name in self.TABLE if name not in ("Contrassegno", "Pagamento anticipato")]
        for first in range(0, len(online), 4):
            names = online[first:first + 4]
            Setting.offer(names)
            shop.execute("DELETE FROM kv_tentativi")
            for method, name in enumerate(names, 1):
                shopper = shop.visitor()
                page = order(shopper, "41.1", method)
                if 'name="kvPagamento"' in page.text:
                    page = shopper.send(payment_form(page), page)
                self.assertIn("non è ancora attivo", page.text, name)
                self.assertNotIn('name="kvPagamento"', page.text, name)


if "KORVANE_SEND_PASSWORDS" in os.environ:
    import one_time_passwords

    class LoadedPasswords(one_time_passwords.Passwords):
        """Here, for the shop of this module."""


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[2:])
