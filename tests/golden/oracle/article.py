"""One article: its derived row, its entry in the lists and its showcase cell."""
from figures import Single, hashes, masked, money, plain, rounded2, times, trimmed
from images import crea_tag_img, picture_tag
from texts import cart_articolo, file_lingua, put_link, put_on_click

LISTINI = [""] + [str(n) for n in range(1, 10)]
VARIANTS = ["opzione%d%s" % (slot, "_" + n if n else "") for n in LISTINI for slot in (1, 2, 3, 4)]


class Currency:
    """Labels and number formats of the shop."""

    def __init__(self, settings):
        self.labels = [settings.text(name).strip(" ") + " " for name in ("valuta1", "valuta2")]
        self.places = [2 if settings[name] else 0 for name in ("decimali1", "decimali2")]
        self.sepdec, self.sepmigl = (".", ",") if settings["notazione"] == 1 else (",", ".")

    def amount(self, value, which=0):
        swap = {".": self.sepdec, ",": self.sepmigl}
        digits = masked(value, self.places[which], True)
        return self.labels[which] + "".join(swap.get(x, x) for x in digits)

    def for_script(self, value):
        return masked(value, self.places[0], False)


def shop_factor(settings):
    """The shop discount as a factor; out of 0 to 100 it is no discount."""
    percent = settings["sconto"]
    return Single((100 - typed(percent)) / 100) if percent is not None and 0 <= percent <= 100 else Single(1)


def typed(percent):
    """The number of a percentage's text: what the merchant typed, not what a single keeps of it."""
    return float(trimmed(percent))


def department_factor(percent, shop):
    return shop if percent is None else Single((100 - percent) / 100 * shop)


def rate(department):
    return Single((department["iva"] or 0) / 100)


def percent_text(value, currency):
    return " -" + plain(rounded2(value)).replace(".", currency.sepdec) + "% "


def price_columns(run, article, department, mark):
    """The columns offerta, iva, listino, prezzo, cambio, cart_prezzo, cart_iva."""
    settings, currency = run.settings, run.currency
    included, vat_rate = bool(settings["ivacompresa"]), rate(department)
    factor = department_factor(department["sconto"], run.shop_factor)
    listed = article["prezzo"] if article["prezzo"] is not None else money(0)
    offered = article["offertaprezzo"]

    def with_vat(amount):
        return amount + times(amount, vat_rate) if included else amount

    row = {"offerta": mark, "iva": ""}
    if not included and vat_rate != 0:
        row["iva"] = "+ " + run.word("carrello_iva") + plain(Single(vat_rate * 100)) + "%"
    price = with_vat(listed)
    row["listino"] = text = currency.amount(price)
    if offered is not None:
        row["listino"], before, price = "<strike>" + text + "</strike>", price, with_vat(offered)
        if settings["vis_sconto"] and before > price and before != 0:
            row["offerta"] += percent_text((1 - float(price) / float(before)) * 100, currency)
    elif factor != 1:
        row["listino"], price = "<strike>" + text + "</strike>", with_vat(times(listed, factor))
        if settings["vis_sconto"]:
            row["offerta"] = percent_text(100 - 100 * factor, currency)
    row["prezzo"] = currency.amount(price)
    row["cart_prezzo"] = currency.for_script(price)
    row["cart_iva"] = "0" if included else trimmed(vat_rate)
    row["cambio"] = ""
    if settings["usa_cambio"] and (settings["cambio"] or 0) > 0:
        row["cambio"] = currency.amount(float(price) / settings["cambio"], 1)
    return row


def images_of(article):
    return [picture_tag(article["immagine%d" % i], article["imgX%d" % i], article["imgY%d" % i]) for i in (0, 1, 2)]


def image_columns(article):
    tags, link, outside = images_of(article), article.text("link"), article["linkesterno"]
    popup = bool(article["popup"])
    first = put_link(tags[0], link, outside)
    if popup and article.text("immagine1"):
        width = 600 if article["imgX1"] is None else article["imgX1"]
        height = 350 if article["imgY1"] is None else article["imgY1"]
        first = put_on_click(tags[0], "javascript:PopupImage('%s',%d,%d); return false;" % (
            article["immagine1"], width, height))
    return {"immagine1": first, "immagine2": tags[1] if popup else put_link(tags[1], link, outside),
            "immagine3": put_link(tags[2], link, outside)}


def derived_row(run, article, department, position):
    """The derived article row, by column name."""
    link, outside = article.text("link"), article["linkesterno"]
    mark = ""
    if run.settings["vis_offerta"]:
        name = file_lingua("kvan_offerta.gif", run.suffix)
        mark = crea_tag_img(name, run.package.get(name))
    row = {"ID": article["ID"], "novita": bool(article["novita"])}
    row |= {name: article.text(name) for name in ("catID", "correlazione", "codice", "descrizione", "note")}
    for n in LISTINI:
        row["implistino" + n] = article["prezzo" + n] or money(0)
        row["importo" + n] = article[("offertaprezzo" if article["offerta" + n] else "prezzo") + n] or money(0)
        row["scq" + n] = bool(article["scq" + n])
    for i in "01":
        row["scqperc" + i] = (100 - float(article["scqperc" + i] or 0)) / 100
        row["scqart" + i] = article["scqart" + i] or 0
    for name in ("titolo", "sottotitolo"):
        row["plain_" + name] = article.text(name)
        row[name] = put_link(run.html(article[name]), link, outside)
    row["cart_articolo"] = cart_articolo(article["codice"], article["titolo"])
    row |= image_columns(article)
    row |= price_columns(run, article, department, mark)
    row["cart_peso"] = trimmed(Single(article["peso"] or 0))
    row |= {name: article[name] or 0 for name in VARIANTS}
    row["contatore"] = hashes(position)
    row |= {"cart_opzione%d" % i: "op%d%d" % (i, position) for i in (1, 2, 3, 4)}
    row["java_acquista"] = (
        "javascript:window.status='';Acquista('{cart_articolo}','{cart_prezzo}','{cart_iva}',"
        "document.itemsform.qt{contatore}.value,'{cart_opzione1}','{cart_opzione2}','{cart_opzione3}','{cart_peso}')\""
        " onMouseOver=\"window.status=''; return true").format(**row)
    return row


def target(page, position, page_size):
    """The article's own address: its anchor, unless it is alone on its page."""
    return page if page_size == 1 else "%s#%d" % (page, position)


def list_entry(run, article, address):
    settings = run.settings
    text = ""
    if settings["elenco_codice"]:
        text += article.text("codice")
        text += "<BR>" if settings["elenco_titolo"] or settings["elenco_sottotitolo"] else ""
    if settings["elenco_titolo"]:
        text += run.html(article["titolo"]) + ("<BR>" if settings["elenco_sottotitolo"] else "")
    if settings["elenco_sottotitolo"]:
        text += run.html(article["sottotitolo"])
    photo = images_of(article)[2] + "<BR>" if settings["elenco_foto"] else ""
    return '<a href="%s">%s%s</a><BR>&nbsp;<BR>' % (address, photo, text)


def plain_cell(run, article, address):
    settings, tag = run.settings, images_of(article)[2]
    cell = '<a href="%s">' % address
    cell += " " + tag[:-1] + settings.text("vetalignstyle") + "></a>" if tag else "</a>"
    if settings["singleitem_vet"]:
        cell = cell.replace("#", "&prod=")
    shown = settings["vetopzioni"] or 0
    cell += "<BR><B>%s</B>" % run.html(article["titolo"]) if shown & 1 else ""
    cell += "<BR>" + run.html(article["sottotitolo"]) if shown & 2 else ""
    cell += "<BR>" + run.html(article["descrizione"]) if shown & 4 else ""
    cell += "<BR><?php echo ArtPrice(%d); ?>" % article["ID"] if shown & 8 else ""
    return cell + ("<BR><?php echo ArtCambio(%d); ?>" % article["ID"] if shown & 16 else "")


def custom_cell(run, article, address, cell):
    words = {"code": "codice", "title": "titolo", "subtitle": "sottotitolo", "description": "descrizione"}
    for word, column in words.items():
        cell = cell.replace("%" + word + "_html", run.html(article[column]))
    cell = cell.replace("%link", address.replace("#", "&prod=") if run.settings["singleitem_vet"] else address)
    for word, column in words.items():
        cell = cell.replace("%" + word, article.text(column))
    for i in (0, 1, 2):
        name, width, height = (article[x + str(i)] for x in ("immagine", "imgX", "imgY"))
        sized = name and width
        cell = cell.replace("%%image%d" % (i + 1), name or "")
        cell = cell.replace("%%x%d" % (i + 1), hashes(width) if sized else "0")
        cell = cell.replace("%%y%d" % (i + 1), hashes(height) if sized else "0")
    for word, function in (("price", "ArtPrice"), ("change", "ArtCambio"), ("offer", "VetOfferta")):
        cell = cell.replace("%" + word, "<?php echo %s(%d); ?>" % (function, article["ID"]))
    return cell
