#!/usr/bin/env python3
"""What others try on a shop, and what it keeps to itself: server_security.py KORVANE_CLI"""
import concurrent.futures
import email
import re
import urllib.parse

from shop_case import Case, cart_cookie, cart_number, enter, mail_after, mail_text, main, order, register, send, served_lines, shop, token

SCRIPT = "<script>alert(1)</script>"
STRINGS = ["'", "1' OR '1'='1", "1; DROP TABLE articoli", "\\", "\"><script>alert(1)</script>", "<img src=x onerror=alert(1)>",
           "${phpinfo()}", "<?php echo 1 ?>", "%00", "../../../etc/passwd", "{{7*7}}", "-1 UNION SELECT 1,2,3", "9" * 400]
# What no page may show: markup that a visitor sent, words of SQL, of PHP's errors, of the machine.
SHOWN = re.compile(r"<script>alert|<img src=x|SQL syntax|Fatal error|Warning:|Notice:|mysqli|/tmp/|on line \d")


class Parameters(Case):
    """Every value of a request, filled with what should do harm."""

    def check(self, page, what):
        self.assertLess(page.status, 500, what)
        self.assertIsNone(SHOWN.search(page.text), what)

    def test_no_address_of_a_page_breaks_it(self):
        pages = [("cat007.php", "n"), ("cat007.php", "prod"), ("kvsearch.php", "q"), ("kvsearch.php", "p"), ("login.php", "m"),
                 ("login.php", "t"), ("login.php", "g"), ("updatedb.php", "w"), ("index.php", "Lingua"), ("cat007.php", "PageRoot"),
                 ("kvsuggerisci.php", "q"), ("kvsitemap.php", "p"), ("kvrecesso.php", "passo"), ("cart.php", "paese"),
                 ("cat007.php", "ordine"), ("cat007.php", "da"), ("cat007.php", "v1")]
        for page, name in pages:
            for text in STRINGS:
                for field in (name, name + "[]", name + "[x][y]"):
                    address = page + "?" + urllib.parse.urlencode({field: text}, encoding="cp1252")
                    self.check(self.visitor.ask(address, follow=False), address)
        self.assertGreater(self.count("articoli"), 0)

    def test_an_address_of_what_there_is_not_is_not_found(self):
        wanted = self.visitor.ask("cat007.php").text.count("<article")
        self.assertEqual(self.visitor.ask("cat007.php?n=").text.count("<article"), wanted)
        for number in ("0", "-1", "99", "1 OR 1=1", "a", "01", "9" * 30):
            for field in ("n", "prod"):
                page = self.visitor.ask(f"cat007.php?{field}=" + urllib.parse.quote(number))
                self.assertEqual((page.status, page.text.count("<article")), (404, 0), number)
                self.assertIn("Questa pagina non esiste", page.text)
                self.assertEqual((page.text.count("<!DOCTYPE"), page.text.count("</html>")), (1, 1))

    def test_no_cookie_breaks_a_page(self):
        number = cart_number()
        for name in ("kvstore_cart" + number, "kvstore_sessione" + number, "kvstore_disp", "kvstore_cliente"):
            for text in [text for text in STRINGS if ";" not in text] + ["1.1_" * 900, "1.1.zzzzzz", "x" * 300, "../x"]:
                visitor = shop().visitor()
                visitor.cookies["/", name] = urllib.parse.quote(text, safe="/.'\\<>(){}")
                for page in ("cart.php", "order.php", "login.php"):
                    self.check(visitor.ask(page, follow=False), f"{page} {name}={text}")

    def test_no_field_of_the_login_forms_breaks_them(self):
        for action in ("entra", "registra", "dati", "password", "richiedi", "ripristina", "esci", "'"):
            for text in STRINGS:
                shop().execute("DELETE FROM kv_tentativi")
                fields = {name: text for name in ("email", "pw", "nome", "cognome", "privacy", "g", "dopo", "attuale", "paese")}
                self.check(send(self.visitor, action, **fields), f"{action} {text}")

    def test_no_field_of_the_order_form_breaks_it(self):
        for text in STRINGS:
            for name in ("Dettaglio", "Metodo", "LSStato", "Paese", "Nome", "Email", "Note", "Totale", "gettone"):
                self.check(order(self.visitor, self.cart, **{name: text}), f"{name} {text}")

    def test_no_field_of_the_plain_forms_of_cart_and_withdrawal_breaks_them(self):
        fields = {"compra": f"{self.article}.1", "qt1": "1"}
        for text in STRINGS:
            for name in ("compra", "qt1", "qt1[]", "op11", "q", "q[x]", "togli", "togli[]", "ripeti"):
                self.check(self.visitor.ask("kvcarrello.php", {**fields, name: text}, follow=False), f"{name} {text}")
            page = self.visitor.ask("kvrecesso.php")
            for name in ("codice", "email", "azione", "riga[0]", "pezzi", "gettone[]"):
                self.check(self.visitor.send(page.form("kvrecesso"), page, **{name: text}), f"{name} {text}")

    def test_an_address_that_asks_for_a_list_is_no_text(self):
        page = self.visitor.ask("logcheck.php", [("azione[]", "entra"), ("gettone[]", token(self.visitor)), ("email[]", "x")])
        self.check(page, "lists")

    def test_scripts_that_are_parts_of_others_say_nothing(self):
        names = ["kvdb", "kvcontext", "kvprice", "kvarticle", "kvvariant", "kvcart", "kvtotals", "kvtables", "kvload", "kvmail",
                 "kvmailtesto", "kvaccount", "kvutf8", "kvupgrade", "kvstock", "kvplain", "kvpaesi",
                 "kvregister", "kvlimits", "kvpay", "kvfind", "kvfound", "kvset", "kvsequence", "kvindex", "kvreindex", "kvshadow",
                 "lognew", "output", "funcs"]
        for name in names:
            page = self.visitor.ask(name + ".php", follow=False)
            self.assertEqual((page.status, page.text.strip()), (200, ""), name)


class Words(Case):
    """What a visitor wrote, shown again."""

    def test_a_search_shows_its_words_as_text(self):
        page = self.visitor.ask("kvsearch.php?" + urllib.parse.urlencode({"q": '"><b>' + SCRIPT}))
        self.assertIn("&quot;&gt;&lt;b&gt;&lt;script&gt;", page.text)
        self.assertNotIn(SCRIPT, page.text)

    def test_a_customers_name_is_shown_as_text(self):
        register(self.visitor, nome=SCRIPT, cognome='"onfocus="alert(1)')
        page = self.visitor.ask("login.php")
        self.assertIn("&lt;script&gt;alert(1)", page.text)
        self.assertNotIn(SCRIPT, page.text)
        self.assertNotIn('"onfocus', page.text)

    def test_a_customers_name_cannot_leave_the_cookie_of_the_order_form(self):
        register(self.visitor, nome='"; alert(1); //', cognome="</script>" + SCRIPT)
        cart_cookie(self.visitor, self.cart)
        page = self.visitor.ask("order.php").text
        self.assertRegex(page, r'kvstore_cliente=nome=%22%3B%20alert%281%29%3B%20%2F%2F\|cognome=%3C%2Fscript%3E')
        self.assertNotIn(SCRIPT, page)

    def test_an_orders_words_are_shown_as_text(self):
        page = order(self.visitor, self.cart, Nome=SCRIPT, Note="<b>" + SCRIPT)
        self.assertIn("thankyou", page.address)
        self.assertIn("&lt;b&gt;&lt;script&gt;", page.text)
        self.assertNotIn(SCRIPT, page.text)

    def test_a_character_beyond_the_pages_coding_arrives_whole(self):
        page = order(self.visitor, self.cart, Cognome="Wałęsa")
        self.assertIn("Wa&#322;&#281;sa", page.text)
        mail = email.message_from_string(shop().mails()[-1])
        self.assertIn("Wałęsa", mail_text(mail))

    def test_a_new_line_in_a_field_opens_no_header_of_a_mail(self):
        before = len(shop().mails())
        order(self.visitor, self.cart, Email="ada@example.org\r\nBcc: spia@example.org")
        self.assertEqual(len(shop().mails()), before)
        order(self.visitor, self.cart, Nome="Ada\r\nBcc: spia@example.org", Cognome="a\rb\nc")
        for text in shop().mails()[before:]:
            mail = email.message_from_string(text)
            self.assertNotIn("Bcc", mail)
            self.assertEqual(len(mail.get_all("To")), 1)
        self.assertEqual(len(shop().mails()), before + 2)

    def test_a_message_of_the_address_is_a_number(self):
        page = self.visitor.ask("login.php?m=" + urllib.parse.quote(SCRIPT) + "&t=" + urllib.parse.quote(SCRIPT))
        self.assertNotIn("avviso", re.sub(r"\.avviso[^}]*}", "", page.text).replace("kv-avviso", ""))


class Forgery(Case):
    """Orders and forms that the shop's own pages never sent."""

    def test_a_total_that_was_changed_makes_no_order(self):
        page = order(self.visitor, self.cart, Totale="1")
        self.assertIn("messaggio", page.address)
        self.assertEqual(self.count("kv_ordini"), 0)

    def test_prices_in_the_cart_text_are_no_part_of_it(self):
        line = served_lines(self.visitor, self.cart)[0]
        for text in (f"{self.cart}.....1", f"{self.article}.0.01", '[{"id":12,"q":1,"importo":0.01}]', "12.-1", "12.1e9"):
            order(self.visitor, self.cart, Dettaglio=text)
        self.assertEqual(self.count("kv_ordini"), 0)
        order(self.visitor, self.cart, prezzo="1", importo="1", Importo="1", totale="1")
        data = shop().rows("SELECT dati FROM kv_ordini")[0][0]
        self.assertIn(f'"merce":{line["p"] / 100:g}', data)

    def test_a_sum_beyond_what_an_order_can_hold_is_refused_in_words(self):
        price = shop().rows(f"SELECT importo FROM ordinamento WHERE ID = {self.article}")[0][0]
        shop().execute(f"UPDATE ordinamento SET importo = 600000 WHERE ID = {self.article}")
        try:
            page = order(self.visitor, "_".join([f"{self.article}.99999"] * 200), method=2)
        finally:
            shop().execute(f"UPDATE ordinamento SET importo = {price} WHERE ID = {self.article}")
        self.assertIn("Indicare una quantità valida.", page.text)
        self.assertEqual(self.count("kv_ordini"), 0)

    def test_a_country_of_another_zone_is_refused(self):
        order(self.visitor, self.cart, LSStato="1", Paese="Svizzera")
        self.assertEqual(self.count("kv_ordini"), 0)

    def test_a_method_that_the_zone_forbids_is_refused(self):
        page = order(self.visitor, self.cart, Metodo="1", LSStato="2", Paese="Francia")
        self.assertIn("messaggio", page.address)
        order(self.visitor, self.cart, Metodo="9")
        order(self.visitor, self.cart, Metodo="0")
        self.assertEqual(self.count("kv_ordini"), 0)

    def test_the_name_of_the_method_is_the_shops(self):
        order(self.visitor, self.cart, Metodo="2", NomePagamento="Gratis")
        self.assertEqual(shop().rows("SELECT metodo FROM kv_ordini"), [["Bonifico anticipato"]])

    def test_an_order_without_the_forms_token_is_refused(self):
        for wrong in (None, "", "0" * 32, token(shop().visitor())):
            order(self.visitor, self.cart, gettone=wrong)
        self.assertEqual(self.count("kv_ordini"), 0)

    def test_a_login_form_without_its_token_changes_nothing(self):
        register(self.visitor)
        for action in ("dati", "password", "esci"):
            self.visitor.ask("logcheck.php", {"azione": action, "nome": "X", "cognome": "Y", "gettone": "0" * 32})
        self.assertEqual(shop().rows("SELECT nome FROM kv_clienti"), [["Ada"]])
        self.assertIn("ada@example.org", self.visitor.ask("login.php").text)
        other = shop().visitor()
        other.ask("logcheck.php", {"azione": "registra", "email": "b@example.org", "pw": "x" * 8, "nome": "a",
                                   "cognome": "b", "privacy": "1"})
        self.assertEqual(self.count("kv_clienti"), 1)

    def test_a_form_sent_twice_makes_one_order(self):
        first = order(self.visitor, self.cart)
        again = self.visitor.ask("kvorder.php", self.fields(first))
        self.assertEqual(again.address, first.address)
        self.assertEqual(self.count("kv_ordini"), 1)

    def fields(self, page):
        return dict(self.sent, Dettaglio=self.cart)

    def setUp(self):
        super().setUp()
        self.sent = {}
        ask = self.visitor.ask

        def remember(address, fields=None, **options):
            if fields and "Dettaglio" in fields:
                self.sent = dict(fields)
            return ask(address, fields, **options)
        self.visitor.ask = remember

    def test_a_form_sent_twice_at_once_makes_one_order(self):
        order(self.visitor, self.cart, Metodo="0")
        cart_cookie(self.visitor, self.cart)
        fields = dict(self.sent, Metodo="2", gettone=token(self.visitor, "order.php"))
        with concurrent.futures.ThreadPoolExecutor(6) as pool:
            pages = list(pool.map(lambda n: shop_post(self.visitor, fields), range(6)))
        self.assertEqual(self.count("kv_ordini"), 1)
        self.assertEqual({page.address.rsplit("/", 1)[1] for page in pages}, {"thankyou2.php"})


def shop_post(visitor, fields):
    """The form sent by a second click: the same cookies, a connection of its own."""
    other = shop().visitor()
    other.cookies = dict(visitor.cookies)
    return other.ask("kvorder.php", fields)


class Sessions(Case):
    def session(self, visitor):
        return visitor.cookies.get(("/", "kvstore_sessione" + cart_number()))

    def test_a_plain_visit_gets_no_cookie(self):
        for page in ("index.php", "cat007.php", "cart.php", "kvsearch.php?q=vaso"):
            self.assertNotIn("Set-Cookie", self.visitor.ask(page).headers, page)

    def test_the_session_cookie_is_for_this_shop_and_not_for_scripts(self):
        line = self.visitor.ask("login.php").headers["Set-Cookie"]
        self.assertIn("HttpOnly", line)
        self.assertIn("SameSite=Lax", line)
        self.assertIn("path=/", line)

    def test_a_session_number_that_somebody_gave_is_not_taken(self):
        number = "a" * 32
        self.visitor.cookies["/", "kvstore_sessione" + cart_number()] = number
        self.visitor.ask("login.php")
        self.assertNotEqual(self.session(self.visitor), number)

    def test_the_session_number_changes_with_the_login(self):
        register(shop().visitor())
        self.visitor.ask("login.php")
        before = self.session(self.visitor)
        enter(self.visitor)
        self.assertIn("ada@example.org", self.visitor.ask("login.php").text)
        self.assertNotEqual(self.session(self.visitor), before)
        thief = shop().visitor()
        thief.cookies["/", "kvstore_sessione" + cart_number()] = before
        self.assertNotIn("ada@example.org", thief.ask("login.php").text)

    def test_a_password_is_stored_as_its_hash(self):
        register(self.visitor, pw="una-\0parola-lunga")
        self.assertRegex(shop().rows("SELECT pw FROM kv_clienti")[0][0], r"^\$2y\$|^\$argon2")
        self.assertIn("index.php", enter(shop().visitor()).address, "a zero byte is no part of it")

    def test_a_changed_password_ends_the_other_sessions(self):
        register(self.visitor)
        other = shop().visitor()
        enter(other)
        send(other, "password", attuale="una-parola-lunga", pw="unaltra-parola")
        self.assertIn("ada@example.org", other.ask("login.php").text)
        self.assertNotIn("ada@example.org", self.visitor.ask("login.php").text)

    def test_a_password_is_changed_by_who_knows_the_old_one(self):
        register(self.visitor)
        send(self.visitor, "password", attuale="sbagliata", pw="unaltra-parola")
        self.assertIn("index.php", enter(shop().visitor()).address)

    def test_five_wrong_passwords_close_the_account_to_that_address(self):
        register(shop().visitor())
        for _ in range(5):
            self.assertIn("m=1", enter(self.visitor, password="sbagliata").address)
        self.assertIn("m=6", enter(self.visitor).address)
        self.assertIn("m=6", enter(shop().visitor()).address)
        register(shop().visitor(), "bea@example.org")
        self.assertIn("index.php", enter(shop().visitor(), "bea@example.org").address)
        shop().execute("UPDATE kv_tentativi SET quando = quando - INTERVAL 16 MINUTE")
        self.assertIn("index.php", enter(shop().visitor()).address)

    def test_many_passwords_at_once_are_counted_each(self):
        register(shop().visitor())
        visitors = [shop().visitor() for _ in range(12)]
        tokens = [token(visitor) for visitor in visitors]

        def attempt(number):
            return visitors[number].ask("logcheck.php", {"azione": "entra", "email": "ada@example.org", "pw": "sbagliata",
                                                         "gettone": tokens[number]}).address
        with concurrent.futures.ThreadPoolExecutor(12) as pool:
            answers = list(pool.map(attempt, range(12)))
        self.assertLessEqual(sum("m=1" in answer for answer in answers), 7)

    def test_leaving_ends_the_session(self):
        register(self.visitor)
        before = self.session(self.visitor)
        send(self.visitor, "esci")
        self.assertNotIn("ada@example.org", self.visitor.ask("login.php").text)
        self.visitor.cookies["/", "kvstore_sessione" + cart_number()] = before
        self.assertNotIn("ada@example.org", self.visitor.ask("login.php").text)

    def test_pages_with_a_token_cannot_be_framed_or_kept(self):
        headers = self.visitor.ask("login.php").headers
        self.assertEqual(headers["X-Frame-Options"], "SAMEORIGIN")
        self.assertIn("no-store", headers["Cache-Control"])


class ForgottenPasswords(Case):
    def link(self):
        return re.search(r"http\S+", self.mail).group(0)

    def ask_for(self, address="ada@example.org", mailed=True):
        before = len(shop().mails())
        answer = send(shop().visitor(), "richiedi", email=address)
        self.mail = mail_after(before) if mailed else ""
        return answer

    def choose(self, link, password="unaltra-parola"):
        visitor = shop().visitor()
        page = visitor.ask(link)
        form = page.form("logcheck")
        return visitor.send(form, page, pw=password) if "g" in form["fields"] else page

    def test_a_new_password_is_chosen_by_the_link_of_the_mail(self):
        register(self.visitor)
        self.ask_for()
        self.assertIn("m=9", self.choose(self.link()).address)
        self.assertIn("index.php", enter(shop().visitor(), password="unaltra-parola").address)
        self.assertEqual(self.count("kv_richieste", "stato = 'usata'"), 1)

    def test_the_link_is_good_once(self):
        register(self.visitor)
        self.ask_for()
        link = self.link()
        self.choose(link)
        self.choose(link, "terza-parola")
        self.assertIn("m=1", enter(shop().visitor(), password="terza-parola").address)

    def test_the_link_is_good_for_an_hour(self):
        register(self.visitor)
        self.ask_for()
        shop().execute("UPDATE kv_richieste SET scade = scade - INTERVAL 61 MINUTE")
        self.choose(self.link())
        self.assertIn("m=1", enter(shop().visitor(), password="unaltra-parola").address)

    def test_the_database_holds_no_token(self):
        register(self.visitor)
        self.ask_for()
        secret = self.link().rsplit("=", 1)[1]
        self.assertEqual(self.count("kv_richieste", f"gettone = '{secret}'"), 0)
        self.assertEqual(self.count("kv_richieste", f"gettone = SHA2('{secret}', 256)"), 1)

    def test_an_unknown_address_gets_the_same_answer_and_no_mail(self):
        register(self.visitor)
        known = self.ask_for()
        before = len(shop().mails())
        unknown = self.ask_for("nessuno@example.org", mailed=False)
        self.assertEqual(known.address, unknown.address)
        register(shop().visitor(), "bea@example.org")
        self.assertEqual([mail for mail in shop().mails()[before:] if "To: nessuno" in mail], [])

    def test_a_mailbox_is_not_flooded(self):
        register(self.visitor)
        before = len(shop().mails())
        answers = [self.ask_for(mailed=number < 3).address for number in range(6)]
        self.assertEqual(["m=6" in answer for answer in answers], [False] * 3 + [True] * 3)
        self.assertEqual(len(shop().mails()) - before, 3)


if __name__ == "__main__":
    main()
