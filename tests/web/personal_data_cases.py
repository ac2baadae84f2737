"""A customer's data: downloaded as JSON, deleted from the account, and what is left in the orders."""
import json

from served_shop import order
from shop_case import PASSWORD, CustomerCase, enter, send, shop

TYPED = ("ada", "anna", "bianchi", "neri", "via roma", "20100", "02 123456", "Suonare due volte".lower())


class PersonalData(CustomerCase):
    def setUp(self):
        super().setUp()
        self.customer()
        order(self.visitor, self.cart, method=2, Email="ada@example.org", Note="Suonare due volte")
        self.code = shop().rows("SELECT codice FROM kv_ordini")[0][0]

    def delete(self, password=PASSWORD, sure="1"):
        fields = {"attuale": password, **({"sicuro": sure} if sure else {})}
        return send(self.visitor, "elimina", **fields)

    def finish(self):
        shop().execute("UPDATE kv_ordini SET stato = 'spedito'")

    def test_the_file_holds_customer_and_orders_but_no_password(self):
        page = send(self.visitor, "esporta")
        self.assertEqual(page.headers["Content-Type"], "application/json; charset=utf-8")
        self.assertIn("attachment", page.headers["Content-Disposition"])
        data = json.loads(page.body.decode("utf-8"))
        self.assertEqual(data["cliente"]["email"], "ada@example.org")
        self.assertNotIn("pw", data["cliente"])
        self.assertEqual([one["codice"] for one in data["ordini"]], [self.code])
        self.assertEqual(data["ordini"][0]["dati"]["campi"]["Note"], "Suonare due volte")
        self.assertEqual(data["recessi"], [])

    def test_the_file_holds_orders_placed_without_the_account_and_no_foreign_one(self):
        order(shop().visitor(), self.cart, method=2, Email="ada@example.org")
        order(shop().visitor(), self.cart, method=2, Email="bruno@example.org")
        data = json.loads(send(self.visitor, "esporta").body)
        self.assertEqual({one["email"] for one in data["ordini"]}, {"ada@example.org"})
        self.assertEqual(len(data["ordini"]), 2)

    def test_nobody_gets_a_file_without_access(self):
        for action in ("esporta", "elimina"):
            page = send(shop().visitor(), action)
            self.assertIn("m=4", page.address)
        self.assertEqual(self.count("kv_clienti"), 1)

    def test_a_form_without_its_token_gives_and_deletes_nothing(self):
        self.finish()
        for action in ("esporta", "elimina"):
            page = self.visitor.ask("logcheck.php", {"azione": action, "attuale": PASSWORD, "sicuro": "1", "gettone": "x"})
            self.assertIn("m=4", page.address)
        self.assertEqual(self.count("kv_clienti"), 1)

    def test_deletion_asks_for_the_password_and_a_tick(self):
        self.finish()
        self.assertIn("m=1", self.delete(password="un'altra-parola").address)
        self.assertIn("m=2", self.delete(sure=None).address)
        self.assertEqual(self.count("kv_clienti"), 1)

    def test_an_order_under_way_keeps_its_customer(self):
        self.assertIn("C&#039;è un ordine in corso", self.delete().text.replace("C'è", "C&#039;è"))
        self.assertEqual(self.count("kv_clienti"), 1)

    def test_deletion_leaves_the_sums_of_the_orders_and_nothing_that_was_typed(self):
        order(shop().visitor(), self.cart, method=2, Email="ada@example.org")
        order(shop().visitor(), self.cart, method=2, Email="bruno@example.org", Nome="Bruno")
        self.finish()
        before = shop().rows("SELECT codice, totale, metodo, stato, creato FROM kv_ordini ORDER BY id")
        self.assertIn("m=15", self.delete().address)
        self.assertEqual(self.count("kv_clienti") + self.count("kv_richieste"), 0)
        self.assertEqual(shop().rows("SELECT codice, totale, metodo, stato, creato FROM kv_ordini ORDER BY id"), before)
        rows = shop().rows("SELECT cliente, nome, email, riepilogo, dati FROM kv_ordini ORDER BY id")
        for row in rows[:2]:
            left = " ".join(row).lower()
            for word in TYPED:
                self.assertNotIn(word, left)
            self.assertIn("paese", left)
        self.assertIn("Bruno", rows[2][1])

    def test_who_deleted_the_account_is_out_and_can_come_back_as_new(self):
        self.finish()
        self.delete()
        self.assertNotIn("ada@example.org", self.visitor.ask("login.php").text)
        self.assertIn("m=1", enter(self.visitor).address)

    def test_anonymous_orders_go_when_their_years_are_over(self):
        order(shop().visitor(), self.cart, method=2, Email="ada@example.org")
        order(shop().visitor(), self.cart, method=2, Email="bruno@example.org")
        self.finish()
        shop().execute("UPDATE kv_ordini SET creato = MAKEDATE(YEAR(NOW()) - 11, 1) WHERE codice = '" + self.code + "'",
                       "UPDATE kv_ordini SET creato = MAKEDATE(YEAR(NOW()) - 11, 1) WHERE email = 'bruno@example.org'")
        self.delete()
        self.assertEqual(shop().rows("SELECT email, codice <> '" + self.code + "' FROM kv_ordini ORDER BY email"),
                         [["", "1"], ["bruno@example.org", "1"]])
