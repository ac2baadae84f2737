#!/usr/bin/env python3
"""Visitors of ten small random shops, a hundred in each unless told: the page of an article, the cart in the browser, the
order that the server stores and a calculation apart from all three must agree to the last unit.
  price_oracle.py KORVANE_CLI [--shops 0,3,7] [--visitors 20]
"""
import argparse
import concurrent.futures
import html
import json
import pathlib
import re
import shutil
import sqlite3
import subprocess
import sys
import threading
from fractions import Fraction

from oracle_prices import Rules
from oracle_shops import CASES, SHOPS, fill, fill_history, make_cases, make_shop
from served_shop import PATIENCE, SHOPPER, ServedShop, Visitor
from mysql_wire import Connection  # found by the path that served_shop adds

HERE = pathlib.Path(__file__).resolve().parent
VISITS = 3  # in chromium, of each shop
PASSWORD = "una-parola-lunga"


class Browser:
    """The scripts of the shops, run by Node and by chromium."""

    def __init__(self):
        self.process = subprocess.Popen(["node", str(HERE / "oracle_browser.mjs")], stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE)
        self.lock = threading.Lock()

    def ask(self, **request):
        with self.lock:
            self.process.stdin.write(json.dumps(request).encode() + b"\n")
            self.process.stdin.flush()
            answer = self.process.stdout.readline()
        if not answer:
            raise AssertionError("the browser's side has ended")
        return json.loads(answer)

    def close(self):
        self.process.stdin.close()
        self.process.wait()


class Street:
    """The shops, all on one host: the first at its root, the others in folders and with databases of their own."""

    def __init__(self, program, numbers):
        self.served = ServedShop(program)
        self.shops = [make_shop(number) for number in numbers]
        self.folders = {shop.number: self.served.work / f"shop{shop.number}" for shop in self.shops}
        self.folders[numbers[0]] = self.served.shop
        for shop in self.shops[1:]:
            shutil.copytree(self.served.shop, self.folders[shop.number])
        for shop in self.shops:
            self.prepare(shop)

    def name(self, shop):
        return "" if shop is self.shops[0] else f"shop{shop.number}"

    def online(self, shop):
        return self.served.shop / "online" / self.name(shop)

    def address(self, shop):
        return f"{self.served.base}/{self.name(shop)}".rstrip("/") + "/"

    def prepare(self, shop):
        catalogue = sqlite3.connect(self.folders[shop.number] / "catalog.mdb")
        with catalogue:
            fill(catalogue, shop)
            if self.name(shop):
                self.online(shop).mkdir()
                catalogue.execute("UPDATE generale SET cartella = ?, siteonline = ?, db_dbname = ?",
                                  (self.name(shop), str(self.online(shop)), self.name(shop)))
        catalogue.close()
        fill_history(self.folders[shop.number], shop)
        self.served.run(self.served.program, "build", self.folders[shop.number])
        self.served.run(self.served.program, "export-sql", self.folders[shop.number])
        (self.online(shop) / "kvlimiti.php").write_text(PATIENCE)

    def open(self):
        self.served.start()
        # Nobody reads the mails of these orders: keeping each would take longer than all the rest.
        (self.served.home / "conf/sendmail").write_text("#!/bin/sh\nwhile read -r line; do :; done\n")
        connection = self.connect()
        for shop in self.shops:
            if self.name(shop):
                connection.execute(f"CREATE DATABASE {self.name(shop)}".encode())
                connection.execute(f"GRANT ALL ON {self.name(shop)}.* TO negozio@localhost".encode())
        connection.close()
        for shop in self.shops:
            catalogue = sqlite3.connect(self.folders[shop.number] / "catalog.mdb")
            word = catalogue.execute("SELECT db_security FROM generale").fetchone()[0]
            catalogue.close()
            answer = Visitor(self.address(shop)).ask("updatedb.php", {"rnd": "x", "sec": word}).text
            if answer != "OK":
                raise AssertionError(f"{shop}: {answer}")

    def connect(self, shop=None):
        connection = Connection(str(self.served.home / "run/mysql.sock"))
        connection.execute(b"SET NAMES latin1")
        if shop:
            connection.execute(b"USE " + (self.name(shop) or "negozio").encode())
        return connection


class Counter:
    """The visitors of one shop, one after the other, and what they found."""

    def __init__(self, street, shop, browser, visitors):
        self.street, self.shop, self.browser, self.visitors = street, shop, browser, visitors
        self.rules = Rules(shop)
        self.base = street.address(shop)
        self.database = street.connect(shop)
        self.guest, self.customer = Visitor(self.base), Visitor(self.base)
        self.differing = []

    def register(self):
        page = self.customer.ask("login.php")
        # The first attempt makes the tables. Nobody reads mails here, so the customer is there without one.
        self.customer.send(page.form("logcheck"), page, azione="entra", email="ada@example.org", pw=PASSWORD)
        print_hash = f"echo password_hash('{PASSWORD}', PASSWORD_DEFAULT);"
        known = subprocess.run(["php", "-r", print_hash], capture_output=True, text=True, check=True).stdout
        self.database.execute("INSERT INTO kv_clienti (email, pw, nome, cognome, creato) VALUES ('ada@example.org',"
                              f" '{known}', 'Ada', 'Neri', NOW())".encode())
        page = self.customer.ask("login.php")
        self.customer.send(page.form("logcheck"), page, azione="entra", email="ada@example.org", pw=PASSWORD)

    def run(self):
        self.register()
        self.cart_name = "kvstore_cart" + re.search(r"idnegozio\s*=\D*(\d+)", self.guest.ask("js0.js").text).group(1)
        cases = make_cases(self.shop, self.visitors)
        self.orders = {}
        for place, case in enumerate(cases):
            self.act(case, place % (len(cases) // VISITS) == 0)
        for name, total, data in self.database.rows(b"SELECT email, totale, dati FROM kv_ordini"):
            self.orders[name.decode()] = (total.decode(), json.loads(data))
        for case in cases:
            self.compare_order(case)
        self.database.close()
        return len(cases), self.differing

    def expect(self, case, what, found, wanted):
        if found != wanted:
            self.differing.append(f"shop {self.shop.number}, case {case.number}, listino {case.listino}, personal "
                                  f"{float(case.personal)}: {what} is {found!r}, {wanted!r} by the rules\n  "
                                  + "\n  ".join(str(line) for line in case.lines))

    def act(self, case, in_chromium):
        visitor = self.guest if case.guest else self.customer
        if not case.guest:
            own = f"listino = {case.listino}, sconto = {float(case.personal)}"
            self.database.execute(f"UPDATE kv_clienti SET {own}".encode())
        purchases = [self.see(visitor, case, line) for line in case.lines]
        cart = "_".join(".".join([str(line.article.id), str(line.pieces), *bought["keys"].values()])
                        for line, bought in zip(case.lines, purchases))
        visitor.cookies["/", self.cart_name] = cart
        position = self.shop.methods.index(case.method) + 1
        page = visitor.ask("order.php")
        seen = self.browser.ask(cart={"folder": str(self.street.online(self.shop)), "page": page.text,
                                      "cookie": f"{self.cart_name}={cart}", "method": position, "zone": case.zone})
        self.compare_cart(case, seen)
        if in_chromium:
            self.visit(case, visitor, purchases)
        sent = {**SHOPPER, "Dettaglio": cart, "Metodo": str(position), "LSStato": str(case.zone),
                "Paese": f"Paese {case.zone}", "Email": f"{case.number}@example.org",
                "Totale": str(seen["totals"]["totale"])}
        form = page.form("kvorder")
        form["fields"].pop("senza_script")
        answer = visitor.ask("kvorder.php", {**form["fields"], **sent}, follow=False)
        self.expect(case, "the order's answer", answer.headers["Location"], f"thankyou{position}.php")
        visitor.cookies.pop(("/", self.cart_name), None)

    def see(self, visitor, case, line):
        """Reads an article's page; the purchase of it as the browser makes it, with the keys of the chosen values."""
        article = line.article
        address = f"{article.department.id}.php?n=1&prod={article.position}"
        text = visitor.ask(address).text
        part = text[text.index("<article"):text.index("</article>")]
        self.compare_page(case, article, part)
        keys = dict.fromkeys(range(1, 5), "")
        for slot, value in line.chosen.items():
            select = re.search(rf'<select name="op{slot}{article.position}">(.*?)</select>', part, re.S).group(1)
            keys[slot] = self.find_value(case, article, select, value)
        return {"address": self.base + address, "position": article.position, "keys": keys, "pieces": line.pieces}

    def find_value(self, case, article, select, value):
        """The key of a value in a selector; the difference that it shows is compared on the way."""
        for price, key, text in re.findall(r'<option value="([-\d.]*)=[^"]*" data-k="(\w+)">([^<]*)<', select):
            if text.split(" (")[0] == f"Valore {value.id}":
                wanted = self.rules.difference(article, case.listino, value)
                decimals = 2 if self.shop.decimals else 0
                self.expect(case, f"the difference of {text}", price, f"{wanted / self.rules.scale:.{decimals}f}")
                if self.shop.show_differences and value.price != 0:
                    shown = self.rules.text(abs(wanted))
                    self.expect(case, "its text", text.split(" (")[1], f" {'-' if value.price < 0 else '+'} {shown} )")
                return key
        raise AssertionError(f"no {value} in {select}")

    def compare_page(self, case, article, part):
        asked, full = self.rules.asked_price(article, case.listino), self.rules.list_price(article, case.listino)
        price = re.search(r'class="prezzo">([^<]*)<', part).group(1)
        self.expect(case, "the page's price", html.unescape(price), self.rules.text(self.rules.shown(asked)))
        struck = re.search(r"<s>([^<]*)</s>", part)
        wanted = self.rules.text(self.rules.shown(full)) if self.rules.is_reduced(article, case.listino) else None
        self.expect(case, "the struck price", struck and struck.group(1), wanted)
        second = re.search(r'class="nota(?: \w+)?">(USD[^<]*)<', part)
        wanted = self.rules.second_text(Fraction(asked, 10000)) if self.shop.second else None
        self.expect(case, "the second currency", second and second.group(1), wanted)
        for kind, wanted in (("unitario", self.rules.unit_text(article, case.listino)),
                             ("minimo", self.rules.lowest_text(article, case.listino))):
            note = re.search(rf'class="nota {kind}">([^<]*)<', part)
            self.expect(case, f"the note {kind}", html.unescape(note.group(1)) if note and note.group(1) else None, wanted)

    def compare_cart(self, case, seen):
        pieces = [self.rules.piece(line, case.listino) for line in case.lines]
        self.expect(case, "the cart's prices", seen["pieces"], pieces)
        self.expect(case, "the cart's texts", seen["texts"], [self.cart_text(piece) for piece in pieces])
        self.expect(case, "the cart's totals", seen["totals"], {**self.rules.totals(case), "ammesso": True})

    def cart_text(self, units):
        text = self.rules.text(units)
        if self.shop.second:
            text += f" ({self.rules.second_text(Fraction(units, self.rules.scale))})"
        return text

    def compare_order(self, case):
        stored = self.orders.get(f"{case.number}@example.org")
        wanted = self.rules.totals(case)
        if stored is None:
            self.expect(case, "the order", stored, wanted)
            return
        self.expect(case, "the order's total", stored[0], f"{wanted['totale'] / self.rules.scale:.2f}")
        totals = {name: round(amount * self.rules.scale) for name, amount in stored[1]["totali"].items()}
        self.expect(case, "the order's totals", totals, wanted)
        prices = [round(line["importo"] * self.rules.scale) for line in stored[1]["righe"]]
        self.expect(case, "the order's prices", prices, [self.rules.piece(line, case.listino) for line in case.lines])

    def visit(self, case, visitor, purchases):
        cookies = [{"name": name, "value": value, "domain": "127.0.0.1", "path": path}
                   for (path, name), value in visitor.cookies.items() if name != self.cart_name]
        seen = self.browser.ask(visit={
            "cookies": cookies, "purchases": purchases, "cartPage": self.base + "cart.php",
            "orderPage": self.base + "order.php", "country": f"Paese {case.zone}", "method": f"Metodo {case.method}"})
        totals = self.rules.totals(case)
        totals["sconto"] *= -1
        shown = [name for name in totals if totals[name] or name in ("merce", "spese", "totale")]
        self.expect(case, "the faults met", seen["faults"], [])
        self.expect(case, "the cart page", seen["lines"],
                    [self.cart_text(self.rules.piece(line, case.listino)) for line in case.lines])
        self.expect(case, "the order page", seen["totals"], [self.cart_text(totals[name]) for name in shown])


def main(program, numbers, visitors):
    street = Street(program, numbers)
    browser = Browser()
    passed = False
    try:
        street.open()
        counters = [Counter(street, shop, browser, visitors) for shop in street.shops]
        # As many at a time as the host has PHP processes.
        with concurrent.futures.ThreadPoolExecutor(4) as pool:
            found = list(pool.map(Counter.run, counters))
        cases, differing = sum(count for count, _ in found), [text for _, texts in found for text in texts]
        print("\n".join(differing[:8] + [f"{cases} visitors, {len(differing)} disagreements"]))
        complaints = street.served.log()
        print(complaints, end="")
        passed = not differing and complaints == ""
    finally:
        browser.close()
        street.served.close(keep=not passed)
    return 0 if passed else 1


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    parser.add_argument("program")
    parser.add_argument("--shops", default=",".join(map(str, range(SHOPS))))
    parser.add_argument("--visitors", type=int, default=CASES)
    options = parser.parse_args()
    sys.exit(main(options.program, [int(number) for number in options.shops.split(",")], options.visitors))
