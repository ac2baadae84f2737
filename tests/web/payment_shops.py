"""The shops of payment_modules_test.py: which modules they have, with which accounts and services, and how they are
made. `Setting` is the one shop that is rebuilt for each group of modules, `Case` the tests' common ground."""
import os
import shutil
import unittest

from gateway_stand_in import Gateway, Service
from served_shop import PATIENCE, SOURCES, Forms, ServedShop, order

SCRIPT_KEYS = ("php(default)", "php", "php(sel)", "action")
CENTS = "importo = Math.round(importo1 * 100);"
ODD = "Nego'zio \"7\" \\$x"  # of a merchant's code: nothing in it may be special to a script or a page

# The modules as the merchant enters them, four to a shop: (module, account values in the dialog's order, module keys of
# a mode that replace the shipped ones, service). "@" stands for the address of the module's own service.
SELLA = {"comp": ["php(default)=gestpaycomp", "php=s2scomp"], "otp": ["php(default)=gestpayotp", "php=s2sotp"],
         "crypt": ["php(default)=gestpaycrypt", "php=s2scrypt"]}
SELLA_ACCOUNT = {"mid": "9000001", "val": "242", "lan": "idlan=1", "tid": "3"}


def signed(merchant="1234567", extra=None, prefix=""):
    return Service(merchant, "978", {**(extra or {}), "notifica": None}, "primo&segreto", "secondo=segreto",
                   prefix=prefix)


def card(prefix="0"):
    return {"mid": "1234567", "val": "978", "url": "@", "java": CENTS, "ss1": "primo&segreto",
            "ss2": "secondo=segreto", "cod": prefix}


def sella(mode):
    extra = {"terminale": "3", "idlan": "it", **({"otp": None} if mode == "otp" else {})}
    service = Service("9000001", "242", extra, kind=mode if mode != "comp" else "fields")
    if mode == "otp":
        # The shop's own addresses come after the password.
        service.extra["notifica"] = None
    return "Banca Sella", SELLA_ACCOUNT, SELLA[mode], service


def plain(name):
    return name, {"mid": ODD}, None, Service(ODD, "EUR")


def cilme(new):
    account = {"mid": "CM1", "val": "EUR", "java": CENTS, "alias": "il-mio-alias", "newsys": str(int(new))}
    first, second = Service("CM1", "EUR", {"alias": "il-mio-alias"}), Service("il-mio-alias", "EUR", {"codice": "CM1"})
    return "Cilme", account, None, second if new else first


SHOPS = [
    [("Bankpass", {**card("1"), "con": "D", "aut": "I", "test": ""}, None,
      signed(extra={"contabilizzazione": "D", "autorizzazione": "I"}, prefix="Ordine ")),
     ("Telepay Light", card(), None, signed()), ("Cartafacile", card("1"), None, signed(prefix="Ordine ")),
     ("SysPay", {"mid": ODD, "rec": "ricevute", "url": "", "dev": "@"}, None,
      Service(ODD, "EUR", {"notifica": None}, "ricevute", "ricevute", receipt=True))],
    [("Omnipay", {"sto": ODD, "key": "chiave'$x"}, None,
      Service(ODD, "EUR", {"notifica": None}, "chiave'$x", "chiave'$x")),
     ("Cariverona", {"ncom": "C1", "ncto": "77", "user": "utente", "pass": "parola", "segr": "segreto"}, None,
      Service("C1", "EUR", {"conto": "77", "utente": "utente", "notifica": None}, "segreto", "segreto",
              unsent={"parola": "parola"})),
     ("Paypal", {"mid": "cassa@negozio.example", "val": "USD"}, None,
      Service("cassa@negozio.example", "USD", kind="button")), cilme(False)],
    [plain("AuthorizeNet"), plain("Planet Payment"), plain("Shopla"), plain("Consorzio Triveneto")],
    [sella("comp"), cilme(True), ("Contrassegno", {"info": "Si paga al corriere||<b>in contanti</b>"}, None, None),
     ("Pagamento anticipato", {"info": "IBAN: IT60 'X' \"Y\" $z||Causale & codice"}, None, None)],
    [sella("otp")], [sella("crypt")],
]


def key(name):
    return name.lower().replace(" ", "-")


def fill(code, module, account, mode):
    """Writes conf.ini and fills the templates, as the module's dialog does on OK."""
    folder = code / module
    conf = folder / "conf.ini"
    kept = mode or [line for line in conf.read_text("cp1252").splitlines() if line.split("=")[0] in SCRIPT_KEYS]
    lines = kept + [f"{name}={value}" for name, value in account.items()]
    conf.write_bytes("".join(line + "\r\n" for line in lines).encode("cp1252"))
    values = dict(account)
    if "info" in values:
        values["info"] = values["info"].replace("||", "\r\n").replace("|", "\r\n")
    form = "newform.kpg" if values.get("newsys") == "1" else "form.kpg"
    targets = {folder / form: code / f"{module}.kpg"}
    targets.update({path: path.with_suffix(".php") for path in folder.glob("*.new")})
    for template, target in targets.items():
        text = template.read_bytes()
        for name, value in values.items():
            text = text.replace(b"#" + name.encode(), value.encode("cp1252"))
        target.write_bytes(text)


def load_passwords(shop, requests, responses):
    """Loads the two lists of one-time passwords, as the program's own window does."""
    service = SHOPS[4][0][3]
    service.otp_in, service.otp_out = set(requests), list(responses)
    rows = [f"('{word}',1)" for word in requests] + [f"('{word}',2)" for word in responses] + ["('stop',3)"]
    shop.execute("CREATE TABLE IF NOT EXISTS kv_OTP (pwd varchar(50) binary NOT NULL default '', pwdtype tinyint(4) NOT"
                 " NULL default '0', UNIQUE KEY pwd (pwd), KEY pwdtype (pwdtype))",
                 "DELETE FROM kv_OTP", "INSERT IGNORE kv_OTP (pwd,pwdtype) VALUES " + ",".join(rows))


class Setting:
    """One shop with its services. The servers start once and serve whatever was built last."""

    shop = None
    gateway = None
    date = 1_700_000_000

    @classmethod
    def start(cls, program):
        cls.shop = ServedShop(program)
        cls.shop.open()
        # The kv_ tables are made by the first order.
        order(cls.shop.visitor(), "41.1")
        load_passwords(cls.shop, ["RIC1", "RIC2"], ["RIS1", "RIS2"])
        services = {key(name): service for methods in SHOPS[:4] for name, *_, service in methods if service}
        cls.gateway = Gateway(services, cls.shop.base + "/")
        cls.number = None

    @classmethod
    def build(cls, number):
        """Has the servers serve the shop of that number, built when it is wanted first and then put aside."""
        if cls.number == number:
            return
        online, aside = cls.shop.shop / "online", cls.shop.work / f"online-{number}"
        if cls.number is not None:
            online.rename(cls.shop.work / f"online-{cls.number}")
        cls.number = number
        shop, gateway = cls.shop, cls.gateway
        methods = SHOPS[number]
        for name, _, _, service in methods:
            if service:
                gateway.services[key(name)] = service
        # Where a notice goes that the form doesn't name: the script after the last module key of Banca Sella.
        gateway.notices = {"banca-sella": f"{shop.base}/{methods[0][2][-1].split('=')[1]}.php"} if methods[0][2] else {}
        if aside.is_dir():
            aside.rename(online)
            return
        online.mkdir(exist_ok=True)
        (shop.shop / "work/kvservizi.php").write_text("<?php\nreturn [" + "".join(
            f"'{name}' => '{gateway.base}{key(name)}'," for name in
            ("Paypal", "AuthorizeNet", "Banca Sella", "Cariverona", "Cilme", "Consorzio Triveneto", "Omnipay",
             "Planet Payment", "Shopla")) + "];\n")
        shutil.copy(SOURCES / "tests/web/GestPayCrypt.inc.php", shop.shop / "work")
        for name, account, mode, _ in methods:
            values = {k: gateway.base + key(name) if v == "@" else v for k, v in account.items()}
            fill(shop.shop / "code", name, values, mode)
            if name in ("Contrassegno", "Pagamento anticipato"):
                # The first text is in its column too, as after OK; the column of the second one was emptied since.
                column, text = ("contrassegno", values["info"].replace("||", "\r\n")) if name == "Contrassegno" \
                    else ("anticipato", None)
                shop.change(lambda catalogue, column=column, text=text: catalogue.execute(
                    f"UPDATE generale SET {column} = ?, {column}_l2 = NULL", (text,)))
        cls.offer([name for name, *_ in methods])

    @classmethod
    def offer(cls, names):
        """Builds the shop with these modules as its methods, available everywhere."""
        def choose(catalogue):
            for n in range(1, 5):
                name = names[n - 1] if n <= len(names) else ""
                catalogue.execute(f"UPDATE pagamento SET metodo{n} = ?, attivo{n} = ?, nome{n} = ?, nome{n}_l2 = ?,"
                                  " selezionato = 1", (name, n <= len(names), name, name))
                for zone in range(1, 9):
                    catalogue.execute(f"UPDATE zona{zone} SET pag{n} = 1")
        cls.shop.change(choose)
        cls.shop.korvane("build")
        (cls.shop.shop / "online/kvlimiti.php").write_text(PATIENCE)
        # PHP keeps a script that it has compiled until the file's date is another one, in whole seconds.
        cls.date += 10
        for path in (cls.shop.shop / "online").glob("*.php"):
            os.utime(path, (cls.date, cls.date))


class Case(unittest.TestCase):
    def setUp(self):
        self.shop, self.gateway = Setting.shop, Setting.gateway
        self.addCleanup(self.check_log)

    def check_log(self):
        complaints = self.shop.log()
        (self.shop.home / "log/php.log").write_text("")
        self.assertEqual(complaints, "")

    def order(self, number, method, suffix=""):
        """A fresh shopper with an order by the method of that number: the shopper, the page, the order's code."""
        Setting.build(number)
        self.shop.execute("DELETE FROM kv_tentativi")
        shopper = self.shop.visitor()
        page = order(shopper, "41.1", method, suffix=suffix)
        self.assertIn(f"thankyou{method}{suffix}.php", page.address, page.text)
        return shopper, page, self.shop.rows("SELECT codice FROM kv_ordini ORDER BY id DESC LIMIT 1")[0][0]

    def state(self, code):
        return tuple(self.shop.rows(f"SELECT stato, pagamento FROM kv_ordini WHERE codice = '{code}'")[0])

    def cents(self, code):
        return self.shop.rows(f"SELECT totale FROM kv_ordini WHERE codice = '{code}'")[0][0].replace(".", "")

    def to_service(self, shopper, page, name):
        """Follows the forms of the payment page to the service; the number of the payment there."""
        form = payment_form(page)
        if not form["action"].startswith(self.gateway.base):
            page = shopper.send(form, page)
            form = payment_form(page)
        self.assertEqual(form["action"], self.gateway.base + key(name))
        answer = shopper.send(form, page)
        self.assertEqual(answer.status, 200, f"{name}: {answer.text}")
        return answer.text

    def finish(self, shopper, name, number, outcome):
        self.gateway.answers.clear()
        return shopper.ask(f"{self.gateway.base}{key(name)}/{number}/{outcome}")


def payment_form(page):
    """The one form of class pagamento."""
    forms = [f for f in Forms(page.text).forms if f["method"] == "post" and "kvsearch" not in f["action"]]
    assert len(forms) == 1, f"{len(forms)} forms on {page.address}:\n{page.text}"
    return forms[0]


def numbered(wanted):
    """Shop, method and name of the modules for which `wanted` holds."""
    return [(shop, method, entry) for shop, methods in enumerate(SHOPS) for method, entry in enumerate(methods, 1)
            if entry[3] and wanted(entry[3])]
