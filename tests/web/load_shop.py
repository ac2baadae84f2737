"""A served shop whose catalogue is loaded again and again beside its visitors, with PHP killed in the middle."""
import http.client
import os
import pathlib
import re
import signal
import threading
import time

PAGE = "cat007.php?n=1"
# What a visitor may meet while a process of the server dies: no answer at all.
NO_ANSWER = (OSError, ValueError, http.client.HTTPException)


class LoadedShop:
    """Loads for a served shop. `seen` counts whole answers, `away` those that never came, `bad` holds all others."""

    def __init__(self, served):
        self.served = served
        self.seen = self.away = 0
        self.bad = []
        self.lock = threading.Lock()
        served.korvane("export-sql")
        online = served.shop / "online"
        self.full = {name: (online / name).read_bytes() for name in ("dbdel.sql", "db.sql")}
        self.word = self.full["db.sql"].split(b"\r\n", 1)[0].decode()[1:]
        self.wanted = served.visitor().ask(PAGE).text.count("<article")

    def load(self, delete, insert, script="updatedb.php"):
        """Has the host load two texts; None gives the whole shop. Its answer."""
        for name, text in (("dbdel.sql", delete), ("db.sql", insert)):
            head = f"#{self.word}\r\n\r\n".encode()
            (self.served.shop / "online" / name).write_bytes(
                self.full[name] if text is None else head + text.encode("cp1252"))
        return self.served.visitor().ask(script, {"rnd": "x", "sec": self.word}).text.strip()

    def load_and_kill(self, seconds):
        """Starts a full load and kills PHP so many seconds later."""
        timer = threading.Timer(seconds, self.kill_php)
        timer.start()
        try:
            self.load(None, None)
        except NO_ANSWER:
            pass
        timer.join()

    def is_whole(self, page):
        return (page.status, page.text.count("<article"), page.text.count("</html>")) == (200, self.wanted, 1)

    def visit(self, ended, least):
        """Asks for a page until `ended` is set, `least` times at least. A killed process gives no answer or a 502."""
        visitor = self.served.visitor()
        count = 0
        while count < least or not ended.is_set():
            try:
                page = visitor.ask(PAGE)
            except NO_ANSWER:
                page = None
            with self.lock:
                if page is None or page.status == 502:
                    self.away += 1
                    continue
                self.seen += 1
                if not self.is_whole(page):
                    self.bad.append((page.status, len(page.body)))
            count += 1
            if count >= least and least > 100:
                return

    def row(self, number, title="Titolo provvisorio"):
        """An INSERT for an article as the build writes it, with another title."""
        names = [row[0] for row in self.served.rows("SHOW COLUMNS FROM articoli")]
        values = dict(zip(names, self.served.rows(f"SELECT * FROM articoli WHERE ID = {number}")[0]))
        values["plain_titolo"] = title
        quoted = [f" {values[name]}" if name in ("ID", "sottopagina") else "NULL" if values[name] is None else
                  "'" + values[name].replace("\\", "\\\\").replace("'", "\\'").replace("\r", "\\r").replace("\n", "\\n") + "'"
                  for name in names]
        return ("LOCK TABLES articoli WRITE;\r\nINSERT INTO articoli\r\nVALUES (\r\n" + ", \r\n".join(quoted)
                + " );\r\n\r\nUNLOCK TABLES;\r\n")

    def kill_php(self):
        """kill -9 of the workers of this shop's PHP, and waits until they have ended: a killed one that has not been given
        its turn yet still takes a request with it."""
        killed = []
        for entry in pathlib.Path("/proc").glob("[0-9]*"):
            try:
                command = (entry / "cmdline").read_bytes()
                parent = re.search(r"PPid:\s*(\d+)", (entry / "status").read_text()).group(1)
                master = pathlib.Path("/proc", parent, "cmdline").read_bytes()
            except OSError:
                continue
            if b"php-fpm: pool" in command and str(self.served.home).encode() in master:
                os.kill(int(entry.name), signal.SIGKILL)
                killed.append(entry / "stat")
        end = time.monotonic() + 60
        while time.monotonic() < end and any(map(self.runs, killed)):
            time.sleep(0.002)

    @staticmethod
    def runs(stat):
        """Whether a process has not ended, by its file in /proc."""
        try:
            return stat.read_text().rpartition(")")[2].split()[0] not in "ZX"
        except OSError:
            return False
