"""Small random shops and visitors, the same ones in each run: `make_shop` draws a shop, `fill` writes it into a fresh
catalogue, `make_cases` draws its visitors with their carts."""
import itertools
import random
import sqlite3
import time
from dataclasses import dataclass, field
from fractions import Fraction

LISTINI = range(10)
ZONES = range(1, 9)
SHOPS, CASES = 10, 100
MODULES = ("Contrassegno", "Pagamento anticipato", "Contrassegno", "Pagamento anticipato")
VAT = (0, 4, 5, 5.5, 8.1, 10, 20, 22)
MEASURES = ("kg", "l", "m", "pz")
PAST_DAYS = 20  # between the first published price and today
PERCENT = (0, 2.5, 5, 10, 12.5, 15.75, 20, 33.33, 50)


@dataclass
class Value:
    id: int
    price: int  # ten-thousandths, may be negative
    weight: Fraction
    code: str


@dataclass
class Department:
    id: str
    vat: float
    discounts: list  # percent by listino, None: the shop's


@dataclass
class Article:
    id: int
    department: Department
    position: int  # on its page, from 1
    weight: Fraction
    prices: list
    offers: list
    offer_prices: list
    quantity_discount: list
    quantities: tuple
    percents: tuple
    variants: list  # by listino: four numbers of variants, 0 for none
    content: tuple = None  # ten-thousandths and measure, None: no unit price
    past: list = None  # by listino: the two prices of the twenty days before today, none for a new article


@dataclass
class ZoneRow:
    allowed: bool
    amounts: list
    costs: list
    weights: list
    weight_costs: list


@dataclass
class Shop:
    number: int
    template: str
    vat_included: bool
    decimals: bool
    decimals2: bool
    notation: int
    second: bool
    exchange: str
    by_weight: bool
    show_differences: bool
    discount: float
    shipping_vat: float
    methods: list  # the numbers of the active ones
    label: str = "EUR"
    label2: str = "USD"
    thresholds: list = field(default_factory=list)
    percents: list = field(default_factory=list)
    zones: dict = field(default_factory=dict)
    zone_vat: dict = field(default_factory=dict)
    departments: list = field(default_factory=list)
    variants: dict = field(default_factory=dict)
    articles: list = field(default_factory=list)


@dataclass
class Line:
    article: Article
    pieces: int
    chosen: dict  # slot from 1: Value

    def weight(self):
        """Of one piece, in ten-thousandths."""
        return max(0, (self.article.weight + sum(value.weight for value in self.chosen.values())) * 10000)


@dataclass
class Case:
    number: int
    listino: int
    guest: bool
    personal: Fraction
    lines: list
    method: int  # 1 to 4, one of the active ones
    zone: int


def thousandths(draw, below):
    return Fraction(draw.randrange(below), 1000)


def price(draw):
    """An amount in ten-thousandths: cents mostly, now and then one that is on the edge of a rounding."""
    kind = draw.randrange(8)
    if kind == 0:
        return draw.randrange(1, 10000000)
    if kind == 1:
        return draw.randrange(1, 100000) * 50
    if kind == 2:
        return draw.randrange(1, 1000) * 10000 + 5000
    if kind == 3:
        return draw.randrange(1000000, 10000000) * 100
    return draw.randrange(1, 50000) * 100


def make_variants(draw):
    """Six variants of two to four values; the first one of the catalogue is no variant."""
    variants, number = {}, 0
    for variant in range(2, 8):
        variants[variant] = []
        for _ in range(draw.randrange(2, 5)):
            number += 1
            difference = draw.choice((0, draw.randrange(-300, 2000) * 100, draw.randrange(-20000, 90000)))
            weight = draw.choice((Fraction(0), thousandths(draw, 900), -thousandths(draw, 90)))
            variants[variant].append(Value(number, difference, weight, draw.choice(("", f"V{number}"))))
    return variants


def offer_price(draw, full, offered):
    """One of four offers is at the list price. A price kept ready for the next offer is none of today."""
    if not offered and draw.random() >= .2:
        return None
    return full if draw.random() < .25 else max(1, int(full * draw.uniform(.4, 1.1)))


def make_article(draw, number, department, position, variants):
    prices = [price(draw) for _ in LISTINI]
    offers = [draw.random() < .25 for _ in LISTINI]
    slots = [[draw.choice(sorted(variants)) if draw.random() < .22 else 0 for _ in range(4)] for _ in LISTINI]
    return Article(
        id=number, department=department, position=position, weight=thousandths(draw, 4000), prices=prices,
        offers=offers,
        offer_prices=[offer_price(draw, full, offered) for full, offered in zip(prices, offers)],
        quantity_discount=[draw.random() < .5 for _ in LISTINI],
        quantities=draw.choice(((3, 10), (10, 3), (0, 5), (4, 0), (2, 20))),
        percents=(draw.choice(PERCENT), draw.choice(PERCENT)), variants=slots)


def make_zone_row(draw):
    return ZoneRow(allowed=draw.random() < .8, amounts=[draw.randrange(400) * 10000, draw.randrange(400) * 10000],
                   costs=[draw.randrange(3000) * 100 for _ in range(3)],
                   weights=[thousandths(draw, 60000) * 10000 for _ in range(9)],
                   weight_costs=[draw.randrange(4000) * 100 for _ in range(10)])


def make_shop(number):
    draw = random.Random(20260131 + number)
    shop = Shop(
        number=number, template=("classico", "chiaro")[number % 2], vat_included=number in (0, 3, 4, 7, 9),
        decimals=number not in (2, 5, 9), decimals2=number not in (1, 4), notation=number // 2 % 2,
        second=number in (0, 1, 4, 5, 7), exchange=draw.choice(("0.92", "1.0825", "1936.27", "7.5")),
        by_weight=number in (1, 2, 6, 7, 9), show_differences=number % 3 != 2,
        discount=(0, 5, 0, 3.5, 10, 0, 12.25, 150, 0, 7.5)[number], shipping_vat=draw.choice((0, 4, 10, 20, 22)),
        methods=[(1, 2), (2, 4), (1, 2, 3, 4), (1, 3, 4), (3,)][number % 5])
    shop.thresholds = [draw.choice((0, draw.randrange(2000) * 10000, draw.randrange(90000) * 100)) for _ in LISTINI]
    shop.percents = [draw.choice(PERCENT) for _ in LISTINI]
    for zone in ZONES:
        shop.zone_vat[zone] = draw.random() < .6
        shop.zones[zone] = {method: make_zone_row(draw) for method in range(1, 5)}
        shop.zones[zone][draw.choice(shop.methods)].allowed = True
    shop.variants = make_variants(draw)
    for number in range(1, 6):
        department = Department(f"cat{number:03}", draw.choice(VAT), [draw.choice((None,) + PERCENT) for _ in LISTINI])
        shop.departments.append(department)
        for position in range(1, 11):
            shop.articles.append(make_article(draw, len(shop.articles) + 1, department, position, shop.variants))
    draw_past(shop)
    return shop


def draw_past(shop):
    """Contents and published prices, drawn apart from all else so that shops and visitors stay the same."""
    draw = random.Random(31 + shop.number)
    for article in shop.articles:
        if draw.random() < .5:
            article.content = (draw.choice((1, 500, 2500, 7500, 10000, 33333, draw.randrange(1, 200000))),
                               draw.choice(MEASURES))
        if draw.random() < .7:
            article.past = [(price(draw), price(draw)) for _ in LISTINI]


def make_line(draw, shop, article, listino):
    chosen = {slot: draw.choice(shop.variants[variant])
              for slot, variant in enumerate(article.variants[listino], 1) if variant}
    return Line(article, draw.choice((1, 1, 2, 3, 5, draw.randrange(1, 30))), chosen)


def make_cases(shop, count):
    """So many visitors, for one article after the other, who order it and at times others with it."""
    draw = random.Random(7 + shop.number)
    cases = []
    for number, article in enumerate(itertools.islice(itertools.cycle(shop.articles), count)):
        guest = draw.random() < .3
        listino = 0 if guest else draw.randrange(10)
        personal = Fraction(0) if guest or draw.random() < .6 else Fraction(draw.randrange(1, 3500), 100)
        others = draw.sample([other for other in shop.articles if other is not article], draw.choice((0, 0, 0, 1, 2)))
        lines = [make_line(draw, shop, other, listino) for other in [article] + others]
        zone = draw.choice(ZONES)
        method = draw.choice([method for method in shop.methods if shop.zones[zone][method].allowed])
        cases.append(Case(shop.number * CASES + number, listino, guest, personal, lines, method, zone))
    return cases


def insert(catalogue, table, values):
    marks = ", ".join("?" * len(values))
    catalogue.execute(f"INSERT INTO {table} ({', '.join(values)}) VALUES ({marks})", list(values.values()))


def update(catalogue, table, values):
    catalogue.execute(f"UPDATE {table} SET {', '.join(name + ' = ?' for name in values)}", list(values.values()))


def by_listino(name, values):
    return {name + (str(n) if n else ""): value for n, value in enumerate(values)}


def fill_settings(catalogue, shop):
    update(catalogue, "lingue", {"lingua2": None, "lingua3": None, "lingua4": None})
    update(catalogue, "generale", {
        "template": shop.template, "ivacompresa": shop.vat_included, "decimali1": shop.decimals,
        "decimali2": shop.decimals2,
        "notazione": shop.notation, "valuta1": shop.label, "valuta2": shop.label2, "usa_cambio": shop.second,
        "cambio": float(shop.exchange), "sconto": shop.discount, "minimo": 0, "qminima": 1, "regobbl": 0,
        "regprices": 0,
        "nodiff": shop.show_differences, "showsigns": 1, "vis_sconto": 1, "vis_offerta": 1, "campi_obbligatori": "0",
        **by_listino("importo", shop.thresholds), **by_listino("scimp", shop.percents)})
    update(catalogue, "pagamento", {
        **{f"metodo{m}": MODULES[m - 1] for m in range(1, 5)}, **{f"nome{m}": f"Metodo {m}" for m in range(1, 5)},
        **{f"attivo{m}": m in shop.methods for m in range(1, 5)},
        **{f"ivaok{zone}": shop.zone_vat[zone] for zone in ZONES}, "ivaspese": shop.shipping_vat,
        "imppeso": shop.by_weight, "selezionato": shop.methods[0], "paesesel": 1, "zonasel": 1})


def fill_zones(catalogue, shop):
    catalogue.execute("DELETE FROM paesi")
    for zone in ZONES:
        insert(catalogue, "paesi", {"ID": zone, "strID": str(zone), "paese": f"Paese {zone}", "zona": zone})
        values = {}
        for method, row in shop.zones[zone].items():
            values[f"pag{method}"] = row.allowed
            values.update({f"m{method}imp{i}": amount for i, amount in enumerate(row.amounts, 1)})
            values.update({f"m{method}sp{i}": cost for i, cost in enumerate(row.costs, 1)})
            values.update({f"m{method}peso{i}": float(weight) / 10000 for i, weight in enumerate(row.weights, 1)})
            values.update({f"m{method}spp{i}": cost for i, cost in enumerate(row.weight_costs, 1)})
        update(catalogue, f"zona{zone}", values)


def fill_goods(catalogue, shop):
    catalogue.execute("DELETE FROM opzioni WHERE ID > 1")
    for table in ("articoli", "categorie", "dettagliop"):
        catalogue.execute(f"DELETE FROM {table}")
    for variant, values in shop.variants.items():
        insert(catalogue, "opzioni", {"ID": variant, "nome": f"Variante {variant}"})
        for value in values:
            insert(catalogue, "dettagliop", {
                "ID": value.id, "OpID": variant, "codice": value.code, "testo": f"Valore {value.id}",
                "prezzo": value.price, "peso": float(value.weight), "selezionato": ""})
    for number, department in enumerate(shop.departments, 1):
        insert(catalogue, "categorie", {
            "ID": department.id, "titolo": f"Reparto {number}", "pagina": department.id, "maxarticoli": 20,
            "template": "modello1", "genitore": "###", "hafigli": 0, "ordinamento": number * 5, "livello": 1,
            "contatore": number, "iva": department.vat, "nascosto": 0, **by_listino("sconto", department.discounts)})
    for article in shop.articles:
        variants = {f"opzione{slot}" + (f"_{n}" if n else ""): variant or None
                    for n, slots in enumerate(article.variants) for slot, variant in enumerate(slots, 1)}
        insert(catalogue, "articoli", {
            "ID": article.id, "catID": article.department.id, "codice": f"A-{article.id:03}",
            "titolo": f"Articolo {article.id}", "ordinamento": article.position * 5, "peso": float(article.weight),
            "fuoricatalogo": 0, "inelenco": 0, "scqart0": article.quantities[0], "scqart1": article.quantities[1],
            "scqperc0": article.percents[0], "scqperc1": article.percents[1], **by_listino("prezzo", article.prices),
            **by_listino("offerta", article.offers), **by_listino("offertaprezzo", article.offer_prices),
            **by_listino("scq", article.quantity_discount), **variants})


def fill_units(catalogue, shop):
    catalogue.execute("CREATE TABLE unita (ID INTEGER PRIMARY KEY, contenuto MONEY_INTEGER, misura TEXT(2))")
    for article in shop.articles:
        if article.content:
            insert(catalogue, "unita", {"ID": article.id, "contenuto": article.content[0], "misura": article.content[1]})


def fill_history(folder, shop):
    """What the shop has asked since twenty days, with one change on the way and no reduction."""
    history = sqlite3.connect(folder / "prezzi.mdb")
    with history:
        history.execute("CREATE TABLE prezzi (articolo INTEGER, listino SMALLINT, dal DOUBLE, netto MONEY_INTEGER,"
                        " ridotto BOOLEAN)")
        for article in shop.articles:
            for listino, asked in enumerate(article.past or []):
                for days, amount in zip((PAST_DAYS, PAST_DAYS / 2), asked):
                    # An hour less than whole days: the build comes later.
                    since = time.time() - days * 86400 + 3600
                    insert(history, "prezzi", {"articolo": article.id, "listino": listino, "dal": since,
                                               "netto": amount, "ridotto": 0})
    history.close()


def fill(catalogue, shop):
    fill_settings(catalogue, shop)
    fill_zones(catalogue, shop)
    fill_goods(catalogue, shop)
    fill_units(catalogue, shop)
