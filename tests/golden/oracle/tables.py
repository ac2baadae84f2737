"""The rows of the build database and of the tag database, and their text."""
from article import LISTINI, VARIANTS
from figures import trimmed

WORDS = """titolo plain_titolo sottotitolo plain_sottotitolo cart_articolo offerta iva descrizione note
java_acquista""".split()
AMOUNTS = ["implistino" + n for n in LISTINI] + ["importo" + n for n in LISTINI]
DERIVED = (["ID", "novita", "catID", "correlazione", "codice"] + AMOUNTS + ["scq" + n for n in LISTINI] +
           """scqperc0 scqperc1 scqart0 scqart1 titolo plain_titolo sottotitolo plain_sottotitolo cart_articolo
           immagine1 immagine2 immagine3 offerta iva listino prezzo cambio cart_prezzo cart_iva cart_peso descrizione
           note""".split() + VARIANTS + ["cart_opzione1", "cart_opzione2", "cart_opzione3", "cart_opzione4",
                                         "contatore", "java_acquista"])
PAGE_TAGS = """titolo note descrizione immagine sottopagine reparti repartimenu elenco vetrina search_maxart lingua1
lingua2 lingua3 lingua4 home1 home2 condizioni recesso datipers testo1 testo2 paesi pagamento java_zona java_importi
java_permessi java_iva java_iva_spese java_importi_peso java_tipopeso java_aliquotaspese java_qminima java_minimo
CGIsearch CGIordine email username password negozio java_valuta email_ordini perl_path java_ivacompresa merchantid
urlback urldone testo_contrassegno testo_anticipato foldercgi perl_shopURL perl_cgiURL perl_shopname perl_email
testo_email perl_testo_email valuta perl_mailend firma java_search java_daticliente java_campi java_redirect
java_ANDORsearch java_sepsearch java_carrello IDnegozio IDlingua ric_pagina ric_codice ric_titolo ric_sottotitolo
ric_foto logo1 logo2 meta_keywords meta_description colore0 colore1 colore2 colore3 db_security db_hostname
db_username db_password db_dbname bo_username bo_password compact_privacy_policy php_vars php_globals output login
rifiuto thankyou java_PGAction metodo_pagamento paymsg""".split()
BRIEF_LINE = 118  # bytes of UTF-8
SUFFIXES = ["", "_l2", "_l3", "_l4"]

# Which table carries a column of the derived row: the words of a language, the amounts and the position, the rest.
ARTICLES = ["ID", "pagina", "sottopagina"] + [name for name in DERIVED if name in WORDS]
ORDER = ["ID"] + [name for name in DERIVED if name in AMOUNTS + ["contatore"]]
DETAILS = ["ID", "beforecode", "aftercode"] + [name for name in DERIVED if name not in ARTICLES + ORDER]
COLUMNS = {"categorie": ["ID", "nascosto", "iva"] + ["sconto" + n for n in LISTINI] +
                        ["inaccessibile" + n for n in LISTINI],
           "opcodici": ["ID", "codice", "OpID"]}
COLUMNS |= {"opzioni" + x: ["ID", "nomeopzione", "opzione"] for x in SUFFIXES}
COLUMNS |= {"articoli" + x: ARTICLES for x in SUFFIXES} | {"dettaglio": DETAILS, "ordinamento": ORDER}


class BuildTables:
    def __init__(self, shop, departments):
        self.shop, self.articles_of_page = shop, []
        self.rows = {name: [] for name in COLUMNS}
        self.rows["categorie"] = departments
        in_first_slot = {row.get("opzione1" + ("_" + n if n else "")) for row in shop.rows("articoli") for n in LISTINI}
        self.rows["opcodici"] = [
            {"ID": row["ID"], "codice": row["codice"].strip(" "), "OpID": row["OpID"]}
            for row in shop.rows("dettagliop")
            if row.get("codice") and row.get("OpID") != 1 and row.get("OpID") in in_first_slot - {None}]

    def add_articles(self, suffix, root, n, rows, cells):
        for row, (before, after) in zip(rows, cells):
            self.rows["articoli" + suffix].append(row | {"pagina": root, "sottopagina": n})
            if suffix == "":
                self.rows["dettaglio"].append(row | {"beforecode": before, "aftercode": after})
                self.rows["ordinamento"].append(row)

    def sql_tables(self):
        """(name, columns, rows) of each table."""
        return [(name, columns, self.rows[name]) for name, columns in COLUMNS.items()]

    def source_tables(self, page_row):
        kept = {name: value for name, value in page_row.items() if value}
        return [("categoria", PAGE_TAGS, [kept]), ("articoli", DERIVED, self.articles_of_page)]


def rows_text(table, columns, rows, only=None, ids=None, brief=False):
    """Rows by ID, one column a line; columns without a value are left out, and columns of a family in a row (prezzo1,
    prezzo2 ...) with equal values share a line. A text of several lines follows below its name. only: the columns to
    show; ids: the rows to show, in a table that has IDs. brief: several columns a line, and no row that has nothing to
    show but its ID."""
    shown = [name for name in columns if only is None or name in only]
    text = ""
    for row in sorted(rows, key=lambda row: (isinstance(row.get("ID"), str), row.get("ID") or 0)):
        if ids is not None and "ID" in columns and str(row.get("ID")) not in ids:
            continue
        fields = joined([(name, value_text(row[name])) for name in shown if row.get(name) is not None])
        if not brief:
            text += "[%s]\n" % table + "".join(field + "\n" for field in fields) + "\n"
        elif any(not field.startswith("ID=") for field in fields):
            text += brief_text(table, fields)
    return text


def joined(lines):
    """`name=value` of each column; three and more of a family in a row with equal values are one."""
    fields, at = [], 0
    while at < len(lines):
        end = at + 1
        while end < len(lines) and lines[end][1] == lines[at][1] and stem(lines[end][0]) == stem(lines[at][0]):
            end += 1
        end = end if end - at > 2 else at + 1
        name = lines[at][0] + (".." + lines[end - 1][0] if end - at > 1 else "")
        fields.append(name + lines[at][1])
        at = end
    return fields


def brief_text(table, fields):
    """A row with as many columns to a line as it can hold; a text of several lines is on lines of its own."""
    lines = ["[%s]" % table]
    full = False
    for n, field in enumerate(fields):
        longer = lines[-1] + (" | " if n else " ") + field
        if n and (full or "\n" in field or len(longer.encode("utf-8")) > BRIEF_LINE):
            lines.append(field)
        else:
            lines[-1] = longer
        full = "\n" in field
    return "\n".join(lines) + "\n"


def stem(name):
    return name.rstrip("0123456789_")


def value_text(value):
    if not isinstance(value, str):
        return "=" + trimmed(value)
    shown = "".join(x if ord(x) >= 32 or x in "\r\n" else "\\x%02x" % ord(x) for x in value)
    lines = shown.split("\r\n")
    lines = [line.replace("\r", "\\x0d").replace("\n", "\\x0a") for line in lines]
    return "=" + lines[0] if len(lines) == 1 else ":" + "".join("\n  |" + line for line in lines)


assert len(PAGE_TAGS) == 97
