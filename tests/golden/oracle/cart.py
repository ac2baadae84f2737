"""What the cart in the browser is given: countries, methods, shipping tables, currency, required fields."""
from article import LISTINI
from figures import Single, money, plain, times, trimmed

CRLF = "\r\n"
METHODS = (1, 2, 3, 4)
ZONES = range(1, 9)
SLOTS = 32


def active_methods(payment):
    return [n for n in METHODS if payment["attivo%d" % n]]


def countries(shop, payment):
    rows = list(shop.rows("paesi"))
    if payment["alfabetico"]:
        rows.sort(key=lambda row: (row.get("paese") or "").lower())
    text = '<select size="1" name="LSStato" onChange="SpedPaese()">' + CRLF
    for row in rows:
        chosen = "selected " if is_preselected(row, payment) else ""
        text += '<option %svalue ="%d">%s</option>' % (chosen, row.get("zona") or 0, row.get("paese") or "") + CRLF
    return (text + "</select>" + CRLF).replace("|", '"')


def is_preselected(country, payment):
    return (country.get("strID") or "") == payment.text("paesesel")


def methods(payment):
    text = '<select size="1" name="Pagamento" onChange="SpedPaese()">' + CRLF
    for n in active_methods(payment):
        chosen = "<option selected>" if payment["selezionato"] == n else "<option>"
        text += chosen + payment.text("nome%d" % n) + "</option>" + CRLF
    return text + "</select>"


def starting_slot(shop, payment):
    before = len([n for n in active_methods(payment) if n < (payment["selezionato"] or 0)])
    zone = next((row.get("zona") or 0 for row in shop.rows("paesi") if is_preselected(row, payment)), 0)
    slot = before * 8 + zone
    return str(slot if 1 <= slot <= SLOTS else 1)


def array(name, values):
    return "%s=new Array(%s);" % (name, ",".join(values)) + CRLF


class Shipping:
    """The tables by amount and by weight; `rate` is what the costs are raised by."""

    def __init__(self, shop, payment, currency, rate):
        self.currency, self.factor = currency, Single(1 + rate)
        # The row of a zone and the number of a method for each slot; None for a slot that no method takes.
        self.slots = [None] * SLOTS
        for position, method in enumerate(active_methods(payment)):
            for zone in ZONES:
                self.slots[position * 8 + zone - 1] = (shop.tables.get("zona%d" % zone, [{}])[0], method)

    def amount(self, slot, name):
        if slot is None:
            return money(0)
        value = slot[0].get("m%d%s" % (slot[1], name))
        return money(0) if value is None else value

    def cost(self, amount):
        return self.currency.for_script(times(amount, self.factor))

    def by_amount(self):
        arrays = {name: [] for name in ("impord1", "impspese1", "impord2", "impspese2", "impspese3")}
        for slot in self.slots:
            first, second = [(self.amount(slot, "imp" + i), self.amount(slot, "sp" + i)) for i in "12"]
            if first[0] > second[0]:
                first, second = second, first
            for i, (limit, cost) in (("1", first), ("2", second)):
                arrays["impord" + i].append(trimmed(limit))
                arrays["impspese" + i].append(self.cost(cost))
            arrays["impspese3"].append(self.cost(self.amount(slot, "sp3")))
        return "".join(array(name, values) for name, values in arrays.items())

    def by_weight(self):
        weights, costs = [[] for _ in range(9)], [[] for _ in range(10)]
        for slot in self.slots:
            pairs = [(Single(self.amount(slot, "peso%d" % i)), self.amount(slot, "spp%d" % i)) for i in range(1, 10)]
            pairs.sort(key=lambda pair: pair[0])
            for i, (weight, cost) in enumerate(pairs + [(0, self.amount(slot, "spp10"))]):
                if i < 9:
                    weights[i].append(trimmed(weight))
                costs[i].append(self.cost(cost))
        text = "".join(array("imppeso%d" % i, weights[i - 1]) + array("impspp%d" % i, costs[i - 1])
                       for i in range(1, 10))
        return text + array("impspp10", costs[9])

    def permissions(self, payment):
        allowed = ["1" if slot[0].get("pag%d" % slot[1]) else "0" for slot in self.slots if slot is not None]
        taxed = ["1" if payment["ivaok%d" % zone] else "0" for zone in ZONES]
        return "var SpOk='%s';" % "".join(allowed) + CRLF + "var IvaOk='%s';" % "".join(taxed)


def currency_script(settings, currency):
    rate = settings["cambio"] or 0
    lines = ['var valuta="%s";' % currency.labels[0], 'var valuta2="%s";' % currency.labels[1],
             "var exch=%s;" % plain(rate if rate != 0 else 1),
             "var SecVal= %d;" % (1 if settings["usa_cambio"] and rate != 0 else 0),
             'var sepmigl="%s";' % currency.sepmigl, 'var sepdec="%s";' % currency.sepdec,
             "var PutDec= %d;" % (1 if currency.places[0] else 0),
             "var PutDec2= %d;" % (1 if currency.places[1] else 0),
             "var scimp = new Array(%s);" % ",".join(plain(settings["importo" + n] or money(0)) for n in LISTINI),
             "var scperc = new Array(%s);" % ",".join(
                 plain((100 - float(settings["scimp" + n] or 0)) / 100) for n in LISTINI)]
    return "".join(line + CRLF for line in lines).replace("|", '"')


def required_fields(settings):
    text = settings.text("campi_obbligatori").strip(" ")
    mask = int(text) if text else 0
    lines = [(mask & 1, "obbl_rsoc = 1;"), (mask & 2, "obbl_piva = 1;"), (mask & 4, "obbl_tel = 1;"),
             (not mask & 8, "obbl_magg = 0;")]
    return CRLF.join(line for wanted, line in lines if wanted)


def cart_columns(run):
    shop, payment, settings = run.shop, run.payment, run.settings
    rate = Single((payment["ivaspese"] or 0) / 100) if settings["ivacompresa"] else 0
    shipping = Shipping(shop, payment, run.currency, rate)
    own = payment["zonasel"]
    free = own in ZONES and not payment["ivaok%d" % own]
    return {"paesi": countries(shop, payment), "pagamento": methods(payment),
            "java_zona": starting_slot(shop, payment), "java_importi": shipping.by_amount(),
            "java_permessi": shipping.permissions(payment), "java_iva": "totiva = 0;" if free else "",
            "java_iva_spese": "spediva = 0;" if free else "", "java_importi_peso": shipping.by_weight(),
            "java_tipopeso": "1" if payment["imppeso"] else "0",
            "java_valuta": currency_script(settings, run.currency), "java_campi": required_fields(settings)}
