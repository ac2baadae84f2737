"""The option lists of the variants that articles use."""
from article import VARIANTS
from catalogue import View
from figures import Single, money, trimmed

CODES = [("%", "%25"), ("[", "%5B"), ("]", "%5D"), ("|", "%7C"), ("?", "%3F"), ("#", "%23"), ("=", "%3D"),
         ("<", "%3C"), (">", "%3E")]


def strip_codice(text):
    text = text.replace("|", " ")
    for letter in '?#=<>"':
        text = text.replace(letter, "")
    return text


def interpreta_codice(text):
    for letter, code in CODES:
        text = text.replace(letter, code)
    return text


def used_variants(shop):
    """The numbers in the order in which they are met: slot by slot, and in a slot price list by price list."""
    numbers = []
    for slot in "1234":
        for name in [name for name in VARIANTS if name.startswith("opzione" + slot)]:
            for number in sorted({row.get(name) or 0 for row in shop.rows("articoli")}):
                if number > 1 and number not in numbers:
                    numbers.append(number)
    return numbers


def shown_name(shop, number, language):
    row = next((row for row in shop.rows("opzioni") if row["ID"] == number), None)
    name = "" if row is None else View("opzioni", row, language).text("nome")
    return strip_codice(name.split("|", 1)[0])


def difference_mode(settings):
    if not settings["nodiff"]:
        return 1
    return 0 if settings["showsigns"] else 3


def option(row, name, mode, currency):
    text, code = strip_codice(row.text("testo")).strip(" "), row.text("codice").strip(" ")
    price = row["prezzo"] if row["prezzo"] is not None else money(0)
    selected = row.text("selezionato").strip(" ") != ""
    text += " *" if selected else ""
    if text == "":
        return ""
    label = name + ": " + (strip_codice(code) + " " if code else "") + text
    difference = ""
    if price != 0 and mode != 1:
        sign = " ( - " if price < 0 else (" ( " if mode == 3 else " ( + ")
        difference = sign + currency.labels[0] + "<<importo>> )"
    return '<option %svalue="<<%s>>=%s#%s|%s">%s%s</option>' % (
        "selected " if selected else "", currency.for_script(price), trimmed(Single(row["peso"] or 0)),
        interpreta_codice(code), label, text, difference)


def variant_rows(shop, language, settings, currency):
    rows = []
    for number in used_variants(shop):
        name = shown_name(shop, number, language)
        details = [View("dettagliop", row, language) for row in shop.rows("dettagliop") if row.get("OpID") == number]
        options = "".join(option(row, name, difference_mode(settings), currency) for row in details)
        rows.append({"ID": number, "nomeopzione": name, "opzione": options})
    return rows
