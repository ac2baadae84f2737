"""The MySQL text of a finished build: for each language a load file and a drop file."""
from article import LISTINI, VARIANTS
from figures import Single, plain
from tables import COLUMNS
from txtar import to_cp1252

CRLF = "\r\n"
# Types by column; the widths are those of the empty build database.
INT, FLAG, MONEY, SINGLE, DOUBLE, MEMO = "INT", "TINYINT", "DECIMAL(20,4)", "FLOAT", "REAL", "LONGTEXT"
WIDTHS = {"catID": 20, "correlazione": 255, "pagina": 100, "nomeopzione": 100, "plain_titolo": 200,
          "plain_sottotitolo": 200, "listino": 100, "prezzo": 100, "cambio": 100, "cart_prezzo": 30, "cart_iva": 30,
          "cart_peso": 30, "contatore": 12} | {"cart_opzione%d" % i: 12 for i in (1, 2, 3, 4)}
TYPES = {"nascosto": FLAG, "novita": FLAG, "OpID": INT, "sottopagina": INT, "scqperc0": DOUBLE, "scqperc1": DOUBLE,
         "scqart0": INT, "scqart1": INT}
for listino in LISTINI:
    TYPES |= {"sconto" + listino: SINGLE, "inaccessibile" + listino: FLAG, "scq" + listino: FLAG,
              "implistino" + listino: MONEY, "importo" + listino: MONEY}
TYPES |= {name: INT for name in VARIANTS} | {name: "CHAR(%d)" % width for name, width in WIDTHS.items()}
OF_TABLE = {("categorie", "ID"): "CHAR(20)", ("categorie", "iva"): SINGLE, ("opcodici", "codice"): "CHAR(255)",
            ("dettaglio", "codice"): "CHAR(50)"}


def type_of(table, column):
    return OF_TABLE.get((table, column)) or (INT if column == "ID" else TYPES.get(column, MEMO))


def keys_of(table):
    return [["ID"]] + ([["pagina", "sottopagina"]] if table.startswith("articoli") else [])


def quoted(text):
    """Line ends fold in pairs: the one of the other kind directly after a line end is dropped, once."""
    out, before = "", ""
    for x in text:
        if x in "\r\n":
            if before and before != x:
                before = ""
                continue
            out, before = out + "\\n", x
            continue
        before = ""
        out += {"\0": "\\0", "\b": "\\b", "\t": "\\t", "'": "\\'", '"': '\\"', "\\": "\\\\"}.get(x, x)
    return "'" + out + "'"


def value(kind, field):
    if field is None:
        return "NULL"
    if kind == FLAG:
        return "1" if field else "0"
    if kind == MEMO or kind.startswith("CHAR"):
        return quoted(field)
    return plain(Single(field) if kind == SINGLE else field)


class Dump:
    def __init__(self, run, separator, lock):
        self.run, self.separator, self.lock = run, separator, lock

    def tables_of(self, suffix):
        return [name for name in COLUMNS if (suffix in name if suffix else "_l" not in name)]

    def head(self):
        lines = ["#" + self.run.token]
        return lines + (["#QS=" + self.separator] if self.separator != ";" else [])

    def drop_file(self, suffix):
        lines = self.head()
        for table in self.tables_of(suffix):
            lines += ["", "DROP TABLE " + table + self.separator]
        return to_cp1252("".join(line + CRLF for line in lines))

    def load_file(self, suffix):
        lines = self.head()
        for table in self.tables_of(suffix):
            lines += self.definition(table) + self.rows(table)
        return to_cp1252("".join(line + CRLF for line in lines))

    def definition(self, table):
        inside = [name + " " * (66 - len(name)) + type_of(table, name) for name in COLUMNS[table]]
        inside += ["KEY (%s)" % ", ".join(key) for key in keys_of(table)]
        inside = [line + "," for line in inside[:-1]] + inside[-1:]
        return ["", "CREATE TABLE " + table, "("] + inside + [")" + self.separator, ""]

    def rows(self, table):
        rows, lines = self.run.tables.rows[table], []
        if not rows:
            return lines
        for row in rows:
            fields = [value(type_of(table, name), row.get(name)) for name in COLUMNS[table]]
            if len(fields) <= 3:
                lines.append("INSERT INTO %s VALUES (%s)" % (table, ", ".join(fields)) + self.separator)
                continue
            lines += ["INSERT INTO " + table, "VALUES ("] + [field + ", " for field in fields[:-1]]
            lines += [fields[-1] + " )" + self.separator, ""]
        if self.lock:
            lines = ["LOCK TABLES %s WRITE" % table + self.separator] + lines
            lines += ["UNLOCK TABLES" + self.separator]
        return lines


def export(run, online):
    """Puts the published files into the online folder."""
    own = run.setting("QS2")
    dump = Dump(run, own if own.startswith(";") else ";", not run.shop.no_lock)
    for n in range(1, len(run.codes) + 1):
        suffix = "" if n == 1 else "_l%d" % n
        online["db%s.sql" % suffix] = dump.load_file(suffix)
        online["dbdel%s.sql" % suffix] = dump.drop_file(suffix)
