#!/usr/bin/env python3
"""Who gets into the back office and who doesn't: backoffice_access_test.py KORVANE_CLI"""
import re

from backoffice_case import OFFICE, Case, main, page_forms
from served_shop import order

SCRIPT = "<script>alert('x')</script>"
INJECTIONS = ["' OR 1=1 -- ", "\\", "%", "\" UNION SELECT pw FROM kv_clienti -- ", "1; DROP TABLE kv_ordini"]


class Access(Case):
    def test_the_right_user_and_password_lead_to_the_summary_under_a_fresh_session(self):
        self.office.ask("index.php")
        before = dict(self.office.cookies)
        page = self.enter()
        self.assertTrue(page.address.endswith("/pannello.php"))
        self.assertEqual(page.status, 200)
        self.assertNotEqual(before, self.office.cookies)
        answer = self.shop.visitor("/" + OFFICE).ask("index.php")
        cookie = answer.headers["Set-Cookie"]
        for part in ("kvstore_backoffice", "HttpOnly", "SameSite=Strict", "path=/scripts/backoffice/"):
            self.assertIn(part, cookie)
        self.assertIn("default-src 'none'", answer.headers["Content-Security-Policy"])

    def test_wrong_access_data_open_nothing(self):
        for user, password in (("bottega", "no"), ("no", "bottega-locale"), ("bottega", ""), ("", "")):
            page = self.enter(user, password)
            self.assertIn("Nome utente o password errati", page.text)
        self.assertTrue(self.office.ask("ordini.php").address.endswith("/index.php"))

    def test_after_five_wrong_answers_even_the_right_one_is_refused_until_the_window_passes(self):
        for _ in range(5):
            self.assertIn("errati", self.enter("bottega", "sbagliata").text)
        self.assertIn("Troppi tentativi", self.enter().text)
        another = self.shop.visitor("/" + OFFICE)
        self.assertIn("Troppi tentativi", self.enter(visitor=another).text)
        self.shop.execute("UPDATE kv_tentativi SET quando = quando - INTERVAL 16 MINUTE")
        self.assertTrue(self.enter().address.endswith("/pannello.php"))
        self.assertEqual(self.shop.rows("SELECT COUNT(*) FROM kv_tentativi WHERE quando > NOW() - INTERVAL 15 MINUTE"),
                         [["0"]])

    def test_no_page_shows_anything_without_access(self):
        self.add_order("261101-AAAAAA")
        for name in ("pannello", "ordini", "ordine", "ordini_csv", "clienti", "cliente", "disponibilita", "richieste",
                     "stampa", "testi", "recessi"):
            page = self.office.ask(name + ".php?codice=261101-AAAAAA&id=1", follow=False)
            self.assertEqual((page.status, page.headers["Location"], page.body), (303, "index.php", b""), name)

    def test_a_session_left_alone_ends(self):
        self.enter()
        token = next(iter(self.office.cookies.values()))
        path = self.shop.home / "sessions" / ("sess_" + token)
        text = path.read_text()
        self.assertIn('s:5:"visto";i:', text)
        path.write_text(re.sub(r'"visto";i:(\d+)', lambda m: f'"visto";i:{int(m.group(1)) - 1801}', text))
        page = self.office.ask("ordini.php")
        self.assertTrue(page.address.endswith("/index.php"))
        self.assertIn("scaduta", page.text)

    def test_leaving_takes_the_form_with_the_token_and_ends_the_session(self):
        page = self.enter()
        self.office.ask("esci.php")
        self.assertTrue(self.office.ask("ordini.php").address.endswith("/ordini.php"))
        self.office.send(page.form("esci"), page)
        self.assertTrue(self.office.ask("ordini.php").address.endswith("/index.php"))

    def test_a_session_of_the_shop_opens_nothing(self):
        customer = self.shop.visitor()
        customer.ask("login.php")
        session = next(value for (_, name), value in customer.cookies.items() if "sessione" in name)
        for key in list(self.office.cookies):
            self.office.cookies[key] = session
        self.assertTrue(self.office.ask("ordini.php").address.endswith("/index.php"))


class Tokens(Case):
    def test_a_form_without_the_token_of_the_session_changes_nothing(self):
        self.add_order("261101-AAAAAA")
        number = self.add_customer("anna@example.org", approved=0)
        self.enter()
        for address, fields in (
                ("ordine.php?codice=261101-AAAAAA", {"prima": "nuovo", "stato": "spedito"}),
                ("clienti.php", {"id": number}),
                (f"cliente.php?id={number}", {"azione": "elimina"}),
                ("ordine.php?codice=261101-AAAAAA", {"nota": "x"}),
                ("testi.php?lingua=it", {"o5": "x", "t5": "x"}), ("testi.php", {"forniti": "1"}),
                ("disponibilita.php", {"soglia": "9"}),
                (f"cliente.php?id={number}", {"azione": "password", "pw": "nuova-password"}),
                ("disponibilita.php", {"c[0]": "41", "p[0]": "1|", "q[0]": "1", "d[0]": "1"}),
                ("richieste.php", {"id": number}), ("esci.php", {})):
            for token in (None, "", "0" * 32):
                sent = dict(fields) if token is None else {**fields, "gettone": token}
                page = self.office.ask(address, sent)
                self.assertEqual(page.status, 403, address)
                self.assertIn("scaduta", page.text)
        self.assertEqual(self.shop.rows("SELECT stato FROM kv_ordini"), [["nuovo"]])
        self.assertEqual(self.shop.rows("SELECT approvato, pw FROM kv_clienti"), [["0", "x"]])
        self.assertEqual(self.shop.rows("SELECT * FROM kv_disponibilita"), [])
        for table in ("kv_richieste", "kv_annotazioni", "kv_testi", "kv_stato WHERE nome = 'soglia_scorte'"):
            self.assertEqual(self.shop.rows("SELECT * FROM " + table), [])
        self.assertTrue(self.office.ask("ordini.php").address.endswith("/ordini.php"))


class Visitors(Case):
    def test_what_customers_write_is_shown_and_not_run(self):
        self.enter()
        buyer = self.shop.visitor()
        fields = ("Nome", "RagioneSociale", "PartitaIVA", "Indirizzo", "CAP", "Citta", "Provincia", "Telefono", "Note")
        page = order(buyer, "41.1", Cognome='"><img src=x onerror=alert(1)>', **dict.fromkeys(fields, SCRIPT))
        self.assertIn("thankyou", page.address)
        code = self.shop.rows("SELECT codice FROM kv_ordini")[0][0]
        number = self.add_customer("x@example.org", name="<script>alert(1)</script>")
        for column in ("cognome", "rsoc", "piva", "indirizzo", "cap", "citta", "provincia", "paese", "telefono"):
            self.shop.execute(f"UPDATE kv_clienti SET {column} = '<script>x'")
        self.shop.execute("INSERT INTO kv_richieste (email, creato, gettone, scade, stato) VALUES"
                          " ('<script>@example.org', NOW(), 'x', NOW(), 'nuova')")
        for address in ("pannello.php", "ordini.php", "ordini.php?q=" + "%3Cscript%3E", f"ordine.php?codice={code}",
                        f"stampa.php?codice={code}&cosa=ordine", f"stampa.php?codice={code}&cosa=consegna",
                        f"stampa.php?codice={code}&cosa=ricevuta", "recessi.php", "recessi.php?stato=%3Cscript%3E",
                        "ordini.php?metodo=%3Cscript%3E", "testi.php?lingua=%3Cscript%3E",
                        "clienti.php", f"cliente.php?id={number}", "richieste.php", "clienti.php?q=%22%3E%3Cscript%3E",
                        f"cliente.php?id={number}&elimina=1", "disponibilita.php?q=%3Cscript%3E"):
            text = self.office.ask(address).text
            self.assertNotIn("<script>", text, address)
            self.assertNotIn("<img", text, address)
        page = self.office.ask(f"cliente.php?id={number}")
        form = next(form for form in page_forms(page) if form["fields"].get("azione") == "esporta")
        headers = self.office.send(form, page).headers
        self.assertEqual((headers["X-Content-Type-Options"], headers["Content-Disposition"].split(";")[0]),
                         ("nosniff", "attachment"))

    def test_sql_in_a_search_is_a_text_like_any_other(self):
        self.enter()
        self.add_order("261101-AAAAAA")
        self.add_customer("anna@example.org")
        for text in INJECTIONS:
            value = "".join(f"%{byte:02X}" for byte in text.encode())
            for address in ("ordini.php?q=", "ordini.php?stato=", "ordini.php?da=", "ordini.php?p=",
                            "ordine.php?codice=", "ordini_csv.php?q=", "ordini.php?metodo=", "testi.php?lingua=",
                            "stampa.php?cosa=ordine&codice=", "clienti.php?q=", "cliente.php?id=",
                            "disponibilita.php?q=",
                            "disponibilita.php?tipo=", "disponibilita.php?vedi=", "disponibilita.php?tipo=O&q=",
                            "richieste.php?q="):
                page = self.office.ask(address + value)
                self.assertIn(page.status, (200, 404), address + text)
            self.assertEqual(self.codes("ordini.php?q=" + value), [], text)
        self.assertEqual(len(self.codes("ordini.php")), 1)

    def test_lists_in_place_of_texts_are_no_fault(self):
        self.enter()
        for address in ("ordini.php?q[]=1&da[]=2&p[]=3&stato[]=x", "ordine.php?codice[]=1", "cliente.php?id[]=1",
                        "clienti.php?q[]=1&attesa[]=1", "disponibilita.php?tipo[]=O&q[]=1&vedi[]=1",
                        "richieste.php?q[]=1"):
            self.assertIn(self.office.ask(address).status, (200, 404), address)


class Outage(Case):
    def test_without_the_database_there_is_a_page_and_no_detail(self):
        page = self.shop.shop / "scripts/kvdb.php"
        text = page.read_bytes()
        page.write_bytes(text.replace(b"\r\nlocalhost\r\n", b"\r\nlocalhost:/nessuno\r\n"))
        try:
            visitor = self.shop.visitor("/" + OFFICE)
            first = visitor.ask("index.php")
            answer = visitor.send(first.form("index.php"), first, utente="bottega", password="x")
            self.assertEqual(answer.status, 503)
            self.assertIn("non è raggiungibile", answer.text)
            self.assertIn("<html", answer.text)
            self.assertNotIn("nessuno", answer.text)
        finally:
            page.write_bytes(text)
            (self.shop.home / "log/php.log").write_text("")


if __name__ == "__main__":
    main()
