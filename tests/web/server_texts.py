#!/usr/bin/env python3
"""What visitors type, in any script, from the form to mail, back office and file: server_texts.py KORVANE_CLI"""
import email
import json
import re
import subprocess

from shop_case import CustomerCase, enter, mail_text, main, order, register, send, shop, token

GREEK = {"Nome": "Κωνσταντίνος-Παναγιώτης", "Cognome": "Παπαδημητρόπουλος-Οικονομόπουλος",
         "Indirizzo": "Λεωφόρος Αλεξάνδρας και Πανεπιστημίου 128, τρίτος όροφος, διαμέρισμα 14",
         "Citta": "Θεσσαλονίκη", "Note": "Παρακαλώ χτυπήστε δυνατά"}
BULGARIAN = {"Nome": "Александър", "Cognome": "Константинов-Преображенски", "Citta": "Велико Търново",
             "Indirizzo": "булевард „Цар Борис Трети Обединител“ № 215, вход Б, етаж 7, апартамент 42"}


def mails_of(before):
    """The texts of the mails sent since there were `before`, by recipient."""
    mails = [email.message_from_string(text) for text in shop().mails()[before:]]
    return {mail["To"]: mail_text(mail) for mail in mails}


class Texts(CustomerCase):
    def office(self):
        visitor = shop().visitor("/scripts/backoffice/")
        page = visitor.ask("index.php")
        visitor.send(page.form("index.php"), page, utente="bottega", password="bottega-locale")
        return visitor

    def test_names_and_streets_of_other_scripts_arrive_whole(self):
        for person in (GREEK, BULGARIAN):
            before = len(shop().mails())
            page = order(self.visitor, self.cart, method=2, **person)
            code = re.search(r"\d{6}-[0-9A-F]{6}", page.text).group(0)
            fields = json.loads(shop().rows(f"SELECT dati FROM kv_ordini WHERE codice = '{code}'")[0][0])["campi"]
            self.assertEqual({name: fields[name] for name in person}, person)
            row = shop().rows(f"SELECT nome, riepilogo FROM kv_ordini WHERE codice = '{code}'")[0]
            self.assertEqual(row[0], person["Nome"] + " " + person["Cognome"])
            merchant = mails_of(before)["ordini@bottega.example"]
            office = self.office()
            shown = office.ask(f"ordine.php?codice={code}").text
            table = office.ask(f"ordini_csv.php?q={code}").body.decode("utf-8-sig")
            for name in ("Nome", "Cognome", "Indirizzo", "Citta"):
                self.assertIn(person[name], merchant)
                self.assertIn(person[name], row[1])
                self.assertIn(person[name], table)
                self.assertIn(self.references(person[name]), shown)
                self.assertIn(self.references(person[name]), page.text)

    def references(self, text):
        return text.encode("cp1252", "xmlcharrefreplace").decode("cp1252")

    def test_lengths_count_characters(self):
        order(self.visitor, self.cart, Nome="Ж" * 101, Indirizzo="€" * 200, Cognome="😀" * 100)
        fields = self.order_data()["campi"]
        self.assertEqual((fields["Nome"], fields["Indirizzo"], fields["Cognome"]), ("Ж" * 100, "€" * 200, "😀" * 100))

    def test_what_looks_like_a_reference_is_what_was_typed(self):
        page = order(self.visitor, self.cart, Nome="&#65;nna", Cognome="Ł&amp;O")
        self.assertEqual(self.order_data()["campi"]["Nome"], "&#65;nna")
        self.assertIn("&amp;#65;nna &#321;&amp;amp;O", page.text)

    def test_a_form_of_a_merchants_own_template_is_read_in_its_own_way(self):
        page = self.visitor.ask("login.php")
        body = "nome=Zo%EB&cognome=%26%23321%3Buka&citta=Forl%EC&azione=dati&gettone="
        register(self.visitor)
        self.assertEqual(page.status, 200)
        self.raw("logcheck.php", body + token(self.visitor))
        self.assertEqual(shop().rows("SELECT nome, cognome, citta FROM kv_clienti"), [["Zoë", "Łuka", "Forlì"]])

    def raw(self, address, body):
        cookies = "; ".join(f"{name}={value}" for (_, name), value in self.visitor.cookies.items())
        subprocess.run(["curl", "-s", "-o", "/dev/null", "-b", cookies, "-d", body, f"{shop().base}/{address}"], check=True)

    def test_a_customer_reads_back_what_was_typed(self):
        self.customer()
        send(self.visitor, "dati", nome="Божидар", cognome="Ангелов", citta="София", _charset_="")
        self.assertIn('value="' + self.references("София") + '"', self.visitor.ask("login.php").text)
        self.assertIn("%D0%91%D0%BE%D0%B6", self.visitor.ask("order.php").text)

    def test_a_search_in_the_back_office_finds_other_scripts(self):
        order(self.visitor, self.cart, **GREEK)
        self.assertIn("1 ordine", self.office().ask("ordini.php?q=%CE%9A%CF%89%CE%BD%CF%83%CF%84").text)

    def test_a_password_of_an_earlier_shop_still_opens_it(self):
        register(self.visitor, pw="chiàvè-lunga")
        old = subprocess.run(["php", "-r", r'echo password_hash("chi\xE0v\xE8-lunga", PASSWORD_DEFAULT);'],
                             capture_output=True, text=True, check=True).stdout
        self.assertIn("index.php", enter(shop().visitor(), password="chiàvè-lunga").address)
        shop().execute(f"UPDATE kv_clienti SET pw = '{old}'")
        self.assertIn("index.php", enter(shop().visitor(), password="chiàvè-lunga").address)

    def test_tables_of_an_earlier_shop_become_utf_8_with_all_their_words(self):
        order(self.visitor, self.cart)
        register(self.visitor)
        shop().execute("ALTER TABLE kv_ordini CONVERT TO CHARACTER SET latin1",
                       "ALTER TABLE kv_clienti CONVERT TO CHARACTER SET latin1", "DROP TABLE kv_stato",
                       "UPDATE kv_ordini SET nome = 'Zoë &#321;uka', riepilogo = CONCAT(riepilogo, '€ &#945;')",
                       "UPDATE kv_clienti SET citta = '&#1057;&#1086;fia €'")
        order(shop().visitor(), self.cart, **GREEK)
        names = [row[0] for row in shop().rows("SELECT nome FROM kv_ordini ORDER BY id")]
        self.assertEqual(names, ["Zoë Łuka", GREEK["Nome"] + " " + GREEK["Cognome"]])
        self.assertTrue(shop().rows("SELECT riepilogo FROM kv_ordini ORDER BY id")[0][0].endswith("€ α"))
        self.assertEqual(shop().rows("SELECT citta FROM kv_clienti"), [["Соfia €"]])
        self.assertEqual(shop().rows("SELECT DISTINCT TABLE_COLLATION LIKE 'utf8mb4%' FROM information_schema.TABLES WHERE"
                                     " TABLE_NAME IN ('kv_ordini', 'kv_clienti')"), [["1"]])

    def test_the_mails_of_the_shop_keep_the_words_of_its_modules(self):
        before = len(shop().mails())
        order(self.visitor, self.cart, method=2, Nome="Łucja")
        for text in mails_of(before).values():
            self.assertIn("€ ", text)
            self.assertNotIn("\ufffd", text)
            self.assertNotIn("\x1a", text)


if __name__ == "__main__":
    main(lambda catalogue: catalogue.execute("UPDATE generale SET template = 'classico'"))
