"""What the tests of the served shop share: one shop for a file of tests, an empty error log after each of them, and the
steps of a customer. A file ends with `main()`, which takes the program from the first argument."""
import contextlib
import json
import re
import sys
import unittest

from served_shop import ServedShop, mail_text, order

__all__ = ["Case", "CustomerCase", "main", "order", "shop", "article", "cart_cookie", "cart_number", "served_lines",
           "register", "ask_to_register", "mail_after", "mail_text", "enter", "send", "token", "own_tables", "plain_article",
           "open_shop"]
TABLES = ("ordini", "recessi", "clienti", "disponibilita", "richieste", "tentativi")
PASSWORD = "una-parola-lunga"


def shop():
    return Case.shop


class Case(unittest.TestCase):
    """Tests on the shop; each ends without a word in PHP's log. `article` has no variants, `cart` holds one of it."""

    shop = None
    article = 0
    cart = ""

    def setUp(self):
        Case.shop.execute(*(f"DELETE FROM kv_{name}" for name in TABLES))
        self.visitor = Case.shop.visitor()

    def tearDown(self):
        words = Case.shop.log()
        (Case.shop.home / "log/php.log").write_text("")
        self.assertEqual(words, "")

    def count(self, table, condition="1=1"):
        return int(Case.shop.rows(f"SELECT COUNT(*) FROM {table} WHERE {condition}")[0][0])


class CustomerCase(Case):
    """Tests with a registered customer and with what an order has stored."""

    def customer(self, **columns):
        """A registered customer whose row has these values."""
        register(self.visitor)
        for name, value in columns.items():
            shop().execute(f"UPDATE kv_clienti SET {name} = {value}")
        return self.visitor

    def order_data(self):
        """The stored data of the latest order."""
        return json.loads(shop().rows("SELECT dati FROM kv_ordini ORDER BY id DESC LIMIT 1")[0][0].replace("\\\\", "\\"))


def article(code):
    """The number of the article that has this code."""
    return int(shop().rows(f"SELECT ID FROM dettaglio WHERE codice = '{code}'")[0][0])


def own_tables():
    """Has the server's own tables made, by the first form that needs them."""
    visitor = Case.shop.visitor()
    page = visitor.ask("login.php")
    visitor.send(page.form("logcheck"), page, email="x@example.org", pw="x" * 8)


def plain_article(above=0):
    """The number of an article that has no variants and no offer, in an open department."""
    return int(Case.shop.rows(
        "SELECT dettaglio.ID FROM dettaglio INNER JOIN ordinamento USING (ID) INNER JOIN categorie ON categorie.ID = catID"
        " WHERE opzione1 < 2 AND opzione2 < 2 AND opzione3 < 2 AND opzione4 < 2 AND implistino = importo AND scq = 0"
        f" AND inaccessibile = 0 AND importo > 10 AND dettaglio.ID > {above} ORDER BY dettaglio.ID LIMIT 1")[0][0])


@contextlib.contextmanager
def open_shop(program):
    """The shop, open with its own tables, for a program without cases; kept where what is done with it fails."""
    Case.shop = ServedShop(program)
    passed = False
    try:
        Case.shop.open()
        own_tables()
        Case.cart = f"{plain_article()}.1"
        yield Case.shop
        passed = True
    finally:
        Case.shop.close(keep=not passed)


def cart_number():
    return re.search(r"idnegozio\s*=\D*(\d+)", Case.shop.visitor().ask("js0.js").text).group(1)


def cart_cookie(visitor, cart):
    """Puts a cart text into the visitor's cookie."""
    visitor.cookies["/", "kvstore_cart" + cart_number()] = cart


def served_lines(visitor, cart, page="cart.php"):
    """What the server tells the cart script of a cart."""
    cart_cookie(visitor, cart)
    found = re.search(r'id="kv-carrello-dati">(.*?)</script>', visitor.ask(page).text, re.S)
    return json.loads(found.group(1))


def token(visitor, page="login.php"):
    return re.search(r'name="gettone" value="([0-9a-f]+)"', visitor.ask(page).text).group(1)


def send(visitor, action, follow=True, page="login.php", **fields):
    """Sends one of the login page's forms."""
    return visitor.ask("logcheck.php", dict(fields, azione=action, gettone=token(visitor, page)), follow=follow)


def ask_to_register(visitor, address="ada@example.org", **fields):
    """Sends the registration form; the page that answers."""
    data = dict({"nome": "Ada", "cognome": "Neri", "pw": PASSWORD, "privacy": "1"}, **fields)
    return send(visitor, "registra", email=address, **data)


def mail_after(before):
    return shop().mail_after(before)


def register(visitor, address="ada@example.org", **fields):
    """Registers a customer by the form and the link of the mail; the page that they end on."""
    before = len(shop().mails())
    answer = ask_to_register(visitor, address, **fields)
    if "m=13" not in answer.address:
        return answer
    link = re.search(r"r=([0-9a-f]{48})", mail_after(before)).group(1)
    page = visitor.ask("login.php?r=" + link)
    return visitor.send(page.form("logcheck"), page)


def enter(visitor, address="ada@example.org", password=PASSWORD, **fields):
    return send(visitor, "entra", email=address, pw=password, **fields)


def main(change=None):
    """Opens the shop (`change` gets its catalogue before the build), runs the tests of the file, closes it again."""
    program = sys.argv[1] if len(sys.argv) > 1 else sys.exit("usage: TEST KORVANE_CLI")
    Case.shop = ServedShop(program, change)
    passed = False
    try:
        Case.shop.open()
        own_tables()
        Case.article = plain_article()
        Case.cart = f"{Case.article}.1"
        passed = unittest.main(argv=sys.argv[:1] + sys.argv[2:], exit=False).result.wasSuccessful()
    finally:
        Case.shop.close(keep=not passed)
    sys.exit(0 if passed else 1)
