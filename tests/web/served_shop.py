"""The model shop of a test: built by the program in a folder of its own, served by tools/local-host, and visited by
plain HTTP. `ServedShop` is the shop with its servers, `Visitor` somebody with cookies, `Page` what they get."""
import email
import html.parser
import http.client
import os
import pathlib
import re
import shutil
import sqlite3
import subprocess
import sys
import tempfile
import time
import urllib.parse

SOURCES = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(SOURCES / "tests/servers"))
from mysql_wire import Connection  # noqa: E402  (the path above comes first)


class Forms(html.parser.HTMLParser):
    """The forms of a page: dictionaries with action, method and fields; buttons with a name count when asked for."""

    def __init__(self, text):
        super().__init__()
        self.forms = []
        self.select = None
        self.option = None
        self.feed(text)

    def handle_data(self, data):
        # An option without a value has that of its text.
        if self.option:
            self.forms[-1]["fields"][self.option] = data.strip()
            self.option = None

    def handle_starttag(self, tag, attributes):
        values = dict(attributes)
        if tag == "form":
            self.forms.append({"action": values.get("action", ""), "method": values.get("method", "get"), "fields": {}})
        if not self.forms:
            return
        fields = self.forms[-1]["fields"]
        name = values.get("name")
        if tag == "input" and name and values.get("type") not in ("submit", "button"):
            if values.get("type") not in ("checkbox", "radio") or "checked" in values:
                fields[name] = values.get("value", "on" if values.get("type") == "checkbox" else "") or ""
        elif tag == "textarea" and name:
            fields[name] = ""
        elif tag == "select":
            self.select = name
        elif tag == "option" and self.select and ("selected" in values or self.select not in fields):
            fields[self.select] = values.get("value", "")
            self.option = None if "value" in values else self.select


class Page:
    def __init__(self, address, answer):
        self.address = address
        self.status = answer.status
        self.headers = answer.headers
        self.body = answer.read()
        self.text = self.body.decode("cp1252", "replace")

    def form(self, part):
        """The first form whose action holds `part`."""
        return next(form for form in Forms(self.text).forms if part in form["action"])


class Visitor:
    """Somebody with cookies. Redirections are followed unless told otherwise."""

    def __init__(self, base):
        self.base = base
        self.cookies = {}

    def ask(self, address, fields=None, follow=True, method=None):
        for _ in range(10):
            address = urllib.parse.urljoin(self.base, address)
            parts = urllib.parse.urlsplit(address)
            connection = http.client.HTTPConnection(parts.hostname, parts.port, timeout=600)
            headers = {"Cookie": "; ".join(f"{name}={value}" for (path, name), value in self.cookies.items()
                                           if parts.path.startswith(path))}
            body = None
            if fields is not None:
                headers["Content-Type"] = "application/x-www-form-urlencoded"
                # As browsers fill this field.
                sent = dict(fields, _charset_="UTF-8") if "_charset_" in fields else fields
                body = urllib.parse.urlencode(sent)
            target = parts.path + ("?" + parts.query if parts.query else "")
            connection.request(method or ("GET" if fields is None else "POST"), target or "/", body, headers)
            page = Page(address, connection.getresponse())
            connection.close()
            self.keep(page)
            if not follow or page.status not in (301, 302, 303):
                return page
            address, fields = urllib.parse.urljoin(address, page.headers["Location"]), None
        raise AssertionError(f"{address} leads round in a circle")

    def keep(self, page):
        for line in page.headers.get_all("Set-Cookie") or []:
            pair, *rest = [part.strip() for part in line.split(";")]
            name, _, value = pair.partition("=")
            options = dict(part.partition("=")[::2] for part in rest)
            key = (options.get("path", "/"), name)
            if value in ("", "deleted"):
                self.cookies.pop(key, None)
            else:
                self.cookies[key] = value

    def send(self, form, page, **changes):
        """Sends a form of a page with some fields changed; None leaves one out."""
        fields = {name: value for name, value in {**form["fields"], **changes}.items() if value is not None}
        return self.ask(urllib.parse.urljoin(page.address, form["action"]), fields)


def mail_text(mail):
    """The words of a mail (its source or the read message): those of its part of plain text where it has several."""
    return mail_part(mail, "text/plain")


def mail_html(mail):
    """The part of a mail that is HTML."""
    return mail_part(mail, "text/html")


def mail_part(mail, kind):
    message = email.message_from_string(mail) if isinstance(mail, str) else mail
    part = next(part for part in message.walk() if part.get_content_type() == kind)
    return part.get_payload(decode=True).decode("utf-8")


SHOPPER = {"Nome": "Anna", "Cognome": "Bianchi", "RagioneSociale": "", "PartitaIVA": "", "Indirizzo": "Via Roma 1",
           "CAP": "20100", "Citta": "Milano", "Provincia": "MI", "Telefono": "02 123456", "Email": "anna@example.org",
           "Note": "", "Privacy": "1", "Maggiorenne": "1"}


def cart_number(visitor):
    """The number at the end of the name of the shop's cart cookie."""
    return re.search(r"idnegozio\s*=\D*(\d+)", visitor.ask("js0.js").text).group(1)


def order(visitor, cart, method=1, suffix="", **fields):
    """Orders what a cart text says ("12.3": three pieces of article 12); the page that the visitor ends on."""
    visitor.cookies["/", "kvstore_cart" + cart_number(visitor)] = cart
    page = visitor.ask(f"order{suffix}.php")
    sent = {"Dettaglio": cart, "Metodo": str(method), "Totale": None, "senza_script": None, **SHOPPER, **fields}
    return visitor.send(page.form("kvorder"), page, **sent)


# The limits of the shop for visitors who are programs: no test waits as long as a person takes to fill a form.
PATIENCE = "<?php return ['tempo_minimo' => 0, 'ordini' => [100000, 15], 'ordini_email' => [100000, 60]];\n"


class ServedShop:
    """The model shop in a fresh folder. `change` gets the open catalogue before the shop is built."""

    def __init__(self, program, change=None):
        self.program = program
        # Not deeper: the name of a socket has at most 107 bytes.
        self.work = pathlib.Path(tempfile.mkdtemp(prefix="korvane-shop-"))
        self.shop = self.work / "negozio"
        self.home = self.work / "host"
        self.holder = None
        self.environment = dict(os.environ, XDG_DATA_HOME=str(self.work / "data"),
                                XDG_CONFIG_HOME=str(self.work / "config"))
        self.korvane("new")
        self.base = self.host("prepare", self.shop).strip().rstrip("/")
        if change:
            self.change(change)

    def run(self, *command):
        done = subprocess.run([str(word) for word in command], env=self.environment, text=True, errors="replace",
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
        if done.returncode != 0:
            raise AssertionError(f"{' '.join(map(str, command))} failed:\n{done.stdout}")
        return done.stdout

    def korvane(self, command):
        return self.run(self.program, command, self.shop)

    def host(self, command, *words):
        return self.run(sys.executable, SOURCES / "tools/local-host", command, *words)

    def change(self, act):
        catalogue = sqlite3.connect(self.shop / "catalog.mdb")
        with catalogue:
            act(catalogue)
        catalogue.close()

    def open(self):
        """Builds the shop, starts its servers and has it load its articles."""
        self.korvane("build")
        self.korvane("export-sql")
        (self.shop / "online/kvlimiti.php").write_text(PATIENCE)
        self.start()
        self.host("load", self.shop, "--home", self.home)
        return self

    def start(self):
        """Starts the servers, which end with this program however it ends."""
        words = [sys.executable, SOURCES / "tools/local-host", "start", self.shop, "--home", self.home, "--hold"]
        self.holder = subprocess.Popen(words, env=self.environment, text=True, stdin=subprocess.PIPE,
                                       stdout=subprocess.PIPE)
        # The last of its lines; without it the host has said on the standard error why it doesn't run.
        if not any(line.startswith("mail ") for line in self.holder.stdout):
            raise AssertionError(f"tools/local-host did not start, status {self.holder.wait(60)}")

    def stop(self):
        """Stops the servers and waits for their end."""
        if self.holder:
            self.holder.stdin.close()
            self.holder.wait(120)
            self.holder.stdout.close()
            self.holder = None

    def close(self, keep=False):
        self.stop()
        if keep:
            print(f"kept: {self.work}", file=sys.stderr)
        else:
            shutil.rmtree(self.work)

    def visitor(self, path=""):
        return Visitor(self.base + path)

    def rows(self, statement):
        """The rows of a query."""
        connection = Connection(str(self.home / "run/mysql.sock"))
        try:
            connection.execute(b"USE negozio")
            connection.execute(b"SET NAMES utf8mb4")
            found = connection.rows(statement.encode())
            return [[None if cell is None else cell.decode() for cell in row] for row in found]
        finally:
            connection.close()

    def execute(self, *statements):
        connection = Connection(str(self.home / "run/mysql.sock"))
        try:
            connection.execute(b"USE negozio")
            connection.execute(b"SET NAMES utf8mb4")
            for statement in statements:
                connection.execute(statement.encode())
        finally:
            connection.close()

    def log(self, name="php.log"):
        return (self.home / "log" / name).read_text(errors="replace")

    def mail_after(self, before):
        """The text of the mail that follows the first `before`; it may be sent after the answer of a page."""
        for _ in range(400):
            if len(self.mails()) > before:
                return mail_text(self.mails()[before])
            time.sleep(0.05)
        raise AssertionError("no mail has come")

    def mails(self):
        return [path.read_text(errors="replace") for path in sorted((self.home / "mail").glob("*.eml"))]
