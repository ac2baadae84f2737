#!/usr/bin/env python3
"""update_bench.py KORVANE_CLI [--quick]: how long the host's updatedb.php takes to load a difference of 1 % of
the articles beside all of them, with PHP and MariaDB on this machine. 100,000 articles in two languages, some minutes
(--quick: 2,000); the better of three loads each, in seconds and in processor time of PHP and MariaDB.
"""
import os
import pathlib
import re
import sqlite3
import sys
import time
import urllib.parse
import urllib.request

SOURCES = pathlib.Path(__file__).resolve().parents[1]
sys.path.insert(0, str(SOURCES / "tests/web"))
from served_shop import ServedShop  # noqa: E402  (the path above comes first)

ROUNDS = 3
BAR = 0.1  # of a full load
LARGE, SMALL = 100000, 2000  # articles
EVERY_RECORD, CHANGED_RECORDS = "-1", "0"


def multiply_articles(wanted):
    def change(catalogue):
        catalogue.execute("WITH RECURSIVE n(i) AS (VALUES (1) UNION ALL SELECT i + 1 FROM n WHERE i < ?) INSERT INTO "
                          "articoli (titolo, titolo_l2, catID, prezzo) SELECT 'Articolo ' || i, 'Article ' || i, catID, "
                          "prezzo + i * 100 FROM n, (SELECT catID, prezzo FROM articoli LIMIT 1)", (wanted,))
    return change


def processor_seconds(pid):
    """Of a process and its children, those that ended included. Source: proc(5), fields 14 to 17 of stat."""
    fields = pathlib.Path(f"/proc/{pid}/stat").read_text().rsplit(")", 1)[1].split()
    children = pathlib.Path(f"/proc/{pid}/task/{pid}/children").read_text().split()
    return sum(map(int, fields[11:15])) / os.sysconf("SC_CLK_TCK") + sum(map(processor_seconds, children))


class UpdateBench:
    def __init__(self, live, articles):
        self.live, self.articles = live, articles
        self.shop = live.shop
        status = live.host("status", "--home", live.home)
        self.servers = re.findall(r"^(?:PHP-FPM|MariaDB) runs, process (\d+)$", status, re.M)

    def worked(self):
        """Processor time of PHP and MariaDB so far."""
        return sum(map(processor_seconds, self.servers))

    def make_sql(self, records):
        """The SQL files of the last build, whole or as a difference; the host reads them where they are."""
        (self.shop / "kvftp.ini").write_text("OPDB: %s\r\n" % records)
        self.live.run(self.live.program, "publish", self.shop, "--dry-run")

    def load(self):
        """Seconds that the host takes for all languages, and its processor time."""
        catalogue = sqlite3.connect(self.shop / "catalog.mdb")
        token = catalogue.execute("SELECT db_security FROM generale").fetchone()[0]
        catalogue.close()
        body = urllib.parse.urlencode({"rnd": "abcdefghijklmnopqrst", "sec": token}).encode()
        begin, worked = time.monotonic(), self.worked()
        for script in sorted(path.name for path in (self.shop / "online").glob("updatedb*.php")):
            with urllib.request.urlopen(self.live.base + "/" + script, body, timeout=3600) as answer:
                said = answer.read().decode("cp1252").strip()
                if said != "OK":
                    raise SystemExit("%s: %s" % (script, said))
        return time.monotonic() - begin, self.worked() - worked

    def best(self, records):
        loads = []
        for _ in range(ROUNDS):
            self.make_sql(records)
            self.last_sql = (self.shop / "online/db.sql").read_bytes()
            loads.append(self.load())
        return [min(column) for column in zip(*loads)]

    def publish(self):
        """By hand: the host's folder is the shop's own. From then on a difference can be made."""
        (self.shop / "kvftp.ini").write_text("OPDB: %s\r\nDISA: -1\r\n" % EVERY_RECORD)
        self.live.run(self.live.program, "publish", self.shop, "--answer", "yes")

    def measure(self):
        whole = self.best(EVERY_RECORD)
        self.publish()
        self.live.change(lambda catalogue: catalogue.execute("UPDATE articoli SET prezzo = prezzo + 10000 WHERE ID % 100 = 0"))
        self.live.korvane("build")
        # The same rows each time: those that are there are deleted before they are inserted.
        part = self.best(CHANGED_RECORDS)
        if b"CREATE TABLE" in self.last_sql:
            raise SystemExit("no difference was made")
        # The bar is that of a large shop: in a small one most of a load is what every load takes.
        for name, all_rows, changed in zip(("seconds", "processor"), whole, part):
            verdict = "  bar %g  %s" % (BAR, "met" if changed <= BAR * all_rows else "MISSED") if self.articles >= LARGE else ""
            print("update of %d articles, %-9s all %6.2f s   1 %% changed %5.2f s   ratio %.3f%s"
                  % (self.articles, name, all_rows, changed, changed / all_rows, verdict), flush=True)


def main():
    articles = SMALL if "--quick" in sys.argv[2:] else LARGE
    live = ServedShop(str(pathlib.Path(sys.argv[1]).resolve()), multiply_articles(articles))
    try:
        UpdateBench(live.open(), articles).measure()
    finally:
        live.close()


if __name__ == "__main__":
    main()
