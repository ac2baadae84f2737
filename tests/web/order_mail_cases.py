"""The mail that confirms an order: its parts, its sender, and what the buyer keeps of the contract."""
import email
import email.header

from served_shop import mail_html
from shop_case import CustomerCase, article, mail_text, order, register, shop


def words_of(header):
    """A header with its encoded words read."""
    return str(email.header.make_header(email.header.decode_header(header)))


class OrderMails(CustomerCase):
    def mail(self, suffix="", visitor=None, **fields):
        """Orders, and gives the mail to the buyer."""
        before = len(shop().mails())
        order(visitor or self.visitor, self.cart, method=2, suffix=suffix, **fields)
        wanted = fields.get("Email", "anna@example.org")
        return next(mail for mail in map(email.message_from_string, shop().mails()[before:]) if mail["To"] == wanted)

    def test_the_terms_and_the_instruction_on_withdrawal_are_attached(self):
        files = {part.get_filename(): part.get_payload(decode=True).decode("utf-8")
                 for part in self.mail().walk() if part.get_filename()}
        self.assertEqual(sorted(files), ["Condizioni di vendita.html", "Diritto di recesso.html"])
        self.assertIn("entro quattordici giorni", files["Diritto di recesso.html"])
        self.assertIn("/kvrecesso.php", files["Diritto di recesso.html"])
        self.assertIn("Livia Sartori", files["Condizioni di vendita.html"])
        for text in files.values():
            self.assertTrue(text.startswith("<!DOCTYPE html>"))
            self.assertNotRegex(text, r"<(?:img|script|link|iframe)\b")

    def test_files_and_words_are_in_the_language_of_the_order(self):
        mail = self.mail("_l4")
        names = sorted(part.get_filename() for part in mail.walk() if part.get_filename())
        self.assertEqual(names, ["Allgemeine Geschäftsbedingungen.html", "Widerrufsrecht.html"])
        self.assertIn('<html lang="de">', mail_html(mail))
        self.assertIn("Italien", mail_text(next(mail for mail in map(email.message_from_string, shop().mails()[-2:])
                                                if mail["To"] == "ordini@bottega.example")))
        self.assertIn("/kvrecesso_l4.php", mail_text(mail))

    def test_text_and_html_say_the_same(self):
        mail = self.mail()
        self.assertEqual([part.get_content_type() for part in mail.walk()][:4],
                         ["multipart/mixed", "multipart/alternative", "text/plain", "text/html"])
        code = shop().rows("SELECT codice FROM kv_ordini")[0][0]
        title = shop().rows(f"SELECT plain_titolo FROM articoli WHERE ID = {self.article}")[0][0]
        amount = shop().rows("SELECT FORMAT(totale, 2, 'it_IT') FROM kv_ordini")[0][0]
        for text in (mail_text(mail), mail_html(mail).replace("&quot;", '"')):
            for word in (code, title, amount, "IBAN: IT60", "kvrecesso.php", "Bottega Montelune"):
                self.assertIn(word, text)
        self.assertIn("<table", mail_html(mail))

    def test_it_comes_from_the_shops_name_and_returns_to_its_address(self):
        mail = self.mail()
        self.assertEqual(words_of(mail["From"]), "Bottega Montelune <ordini@bottega.example>")
        self.assertEqual(mail["Return-Path"], "<ordini@bottega.example>")

    def test_what_a_proven_buyer_typed_is_text_in_html(self):
        register(self.visitor)
        mail = self.mail(visitor=self.visitor, Email="ada@example.org", Nome="<b>Ada</b>", Note='<img src="http://x.example">')
        html = mail_html(mail)
        self.assertIn("&lt;b&gt;Ada&lt;/b&gt;", html)
        self.assertNotRegex(html, r"<(?:img|b)\b")

    def test_the_table_holds_quantities(self):
        self.cart = f"{article('PA-001')}.3_{self.article}.2"
        html = mail_html(self.mail())
        self.assertIn("3 &times; ", html)
        self.assertIn("2 &times; ", html)
