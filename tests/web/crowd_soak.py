#!/usr/bin/env python3
"""crowd_soak.py KORVANE_CLI [--seconds N]: a shop under everything at once, for ten minutes unless told otherwise.

Buyers order, visitors search and read, the catalogue is loaded again and again, whole and in part, and the merchant works
through the orders. In the end pieces, orders and mails have to agree to the last one: what was in stock is what is left
and what was ordered and not cancelled, each order was told to one buyer, each has its mails, no page was bad, and PHP
had nothing to say under its strictest reporting.
"""
import email
import email.header
import json
import random
import sys
import threading
import time
import urllib.parse

from load_shop import LoadedShop
from served_shop import Visitor, order
from shop_case import Case, open_shop, plain_article

WORDS = ("alba", "tazz", "gres", "olio", "PI-00", "l'olio", "caff\u00e8", "zzqq", "di", "a-b")
LEAST_SECONDS = 5


class Crowd:
    """Threads on one shop; `failures` holds what went wrong, `told` the orders that buyers were thanked for."""

    def __init__(self, served, seconds):
        self.served = served
        self.loaded = LoadedShop(served)
        self.until = time.monotonic() + seconds
        self.lock = threading.Lock()
        self.failures = []
        self.told = self.refused = self.searches = self.loads = self.changes = 0
        self.stock = {}
        above = 0
        for pieces in (40, 200, 1000, 100000):
            above = plain_article(above)
            self.stock[above] = pieces
        served.execute("DELETE FROM kv_disponibilita", *(
            f"INSERT INTO kv_disponibilita VALUES ('A', '{number}', 1, {pieces})" for number, pieces in self.stock.items()))

    def note(self, **counts):
        with self.lock:
            for name, count in counts.items():
                setattr(self, name, getattr(self, name) + count)

    def repeat(self, act, chance):
        """Acts until the time is over; a failure ends the thread and is kept."""
        try:
            while time.monotonic() < self.until and not self.failures:
                act(chance)
        except Exception as failure:  # pylint: disable=broad-except
            with self.lock:
                self.failures.append(f"{act.__name__}: {failure!r}")

    def buy(self, chance):
        numbers = chance.sample(sorted(self.stock), chance.randint(1, 2))
        cart = "_".join(f"{number}.{chance.randint(1, 3)}" for number in numbers)
        try:
            page = order(self.served.visitor(), cart, method=2)
        except StopIteration:  # no form: the order page has sent the visitor back to a cart with too little in stock
            self.note(refused=1)
            return
        thanked = "thankyou" in page.address
        # What runs out while the form is filled leads to the cart too.
        if not thanked and "cart" not in page.address and "messaggio" not in page.address:
            raise AssertionError(f"{page.status} {page.address}")
        self.note(told=thanked, refused=not thanked)

    def search(self, chance):
        page = self.served.visitor().ask("kvsearch.php?" + urllib.parse.urlencode({"q": chance.choice(WORDS)}))
        if page.status != 200 or page.text.count("</html>") != 1:
            raise AssertionError(f"{page.status} {page.text[:200]}")
        self.note(searches=1)

    def load(self, chance):
        whole = chance.random() < 0.5
        answer = (self.loaded.load(None, None) if whole
                  else self.loaded.load("DELETE FROM articoli WHERE ID IN ('1');\r\n", self.loaded.row(1)))
        if answer != "OK":
            raise AssertionError(answer)
        self.note(loads=1)

    def work(self, chance):
        """The merchant changes the state of an order; a cancelled one stays so."""
        office = self.office
        open_orders = self.served.rows("SELECT codice FROM kv_ordini WHERE stato <> 'annullato' ORDER BY id DESC LIMIT 50")
        if not open_orders:
            time.sleep(0.1)
            return
        page = office.ask("ordine.php?codice=" + chance.choice(open_orders)[0])
        answer = office.send(page.form("ordine.php"), page, stato=chance.choice(["pagato", "spedito", "annullato"]))
        if answer.status != 200:
            raise AssertionError(f"{answer.status} {answer.address}")
        office.ask(chance.choice(["ordini.php", "ordini_csv.php?righe=1", "disponibilita.php", "pannello.php"]))
        self.note(changes=1)

    def enter(self):
        self.office = Visitor(self.served.base + "/scripts/backoffice/")
        page = self.office.ask("index.php")
        self.office.send(page.form("index.php"), page, utente="bottega", password="bottega-locale")

    def run(self):
        self.enter()
        ended = threading.Event()
        threads = [threading.Thread(target=self.repeat, args=(act, random.Random(n)))
                   for n, act in enumerate((self.buy, self.buy, self.search, self.load, self.work))]
        reader = threading.Thread(target=self.loaded.visit, args=(ended, 0))
        for thread in [*threads, reader]:
            thread.start()
        for thread in threads:
            thread.join()
        ended.set()
        reader.join()

    def sums(self):
        """Pieces ordered and not cancelled, by article."""
        sums = dict.fromkeys(self.stock, 0)
        for (data,) in self.served.rows("SELECT dati FROM kv_ordini WHERE stato <> 'annullato'"):
            for line in json.loads(data.replace("\\\\", "\\"))["righe"]:
                sums[int(line["scorte"][0][1:])] += line["quantita"]
        return sums

    def count_mails(self):
        """The mails of orders; those that warn the merchant of short stock depend on who reads it when."""
        subjects = (email.message_from_string(mail)["Subject"] for mail in self.served.mails())
        return sum("Scorte in esaurimento" not in str(email.header.make_header(email.header.decode_header(subject)))
                   for subject in subjects)

    def mails(self, wanted):
        """The number of mails, once those that follow an answer are there."""
        for _ in range(50):
            if self.count_mails() >= wanted:
                break
            time.sleep(0.2)
        return self.count_mails()

    def check(self, mails_before, mails_of_order):
        failures = list(self.failures)
        left = {int(key): int(pieces) for key, pieces in self.served.rows("SELECT chiave, quantita FROM kv_disponibilita")}
        agreed = {number: left[number] + count for number, count in self.sums().items()}
        if agreed != self.stock:
            failures.append(f"pieces {agreed}, at the start {self.stock}")
        orders = int(self.served.rows("SELECT COUNT(*) FROM kv_ordini")[0][0])
        if orders != self.told:
            failures.append(f"{orders} orders, {self.told} buyers were thanked")
        messages = int(self.served.rows("SELECT COUNT(*) FROM kv_annotazioni WHERE tipo = 'messaggio'")[0][0])
        wanted = mails_before + mails_of_order * orders + messages
        found = self.mails(wanted)
        if found != wanted:
            failures.append(f"{found} mails, wanted {wanted}")
        failures += [f"bad page {page}" for page in self.loaded.bad]
        failures += [f"left by a load: {row[0]}" for row in self.served.rows("SHOW TABLES LIKE 'kvn\\_%'")]
        if self.served.log() != "":
            failures.append(self.served.log()[:2000])
        print(f"{orders} orders ({self.refused} refused), {self.changes} changes of state, {messages} messages, {self.searches} searches, "
              f"{self.loads} loads, {self.loaded.seen} pages read: {len(failures)} failures")
        return failures


def mails_of_an_order(served):
    """How many mails an order brings, by one that is then forgotten."""
    before = len(served.mails())
    order(served.visitor(), Case.cart, method=2)
    time.sleep(2)
    served.execute("DELETE FROM kv_ordini", "DELETE FROM kv_annotazioni")
    return len(served.mails()) - before


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    seconds = int(sys.argv[sys.argv.index("--seconds") + 1]) if "--seconds" in sys.argv else 600
    with open_shop(sys.argv[1]) as served:
        each = mails_of_an_order(served)
        before = len(served.mails())
        crowd = Crowd(served, max(LEAST_SECONDS, seconds))
        crowd.run()
        failures = crowd.check(before, each)
        if failures:
            sys.exit("\n".join(failures))


if __name__ == "__main__":
    main()
