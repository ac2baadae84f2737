"""The catalogue as a case gives it, see rowtext.py; `{n}` is the number of the row among its copies. A column that isn't
named is null, but for an automatic key, which counts on. Reading through a language shows that language's columns under
bare names."""
import re
from decimal import Decimal

from figures import Single, money
from rowtext import read_blocks

FLAGS = """codincart serverNT decimali1 decimali2 ivacompresa ricercaparole elenco_foto elenco_codice elenco_titolo
elenco_sottotitolo vis_offerta vis_sconto autoredirect checkcookies usa_cambio vis_percrep nodiff cercacodice regobbl
subtitleincart regprices singleitem_search singleitem_vet showsigns reglist searchusesCGI hafigli inaccessibile
nascosto linkesterno offerta scq novita popup fuoricatalogo inelenco attivo1 attivo2 attivo3 attivo4
alfabetico ivaok pag""".split()
MONEY = "minimo importo prezzo offertaprezzo".split()
SINGLES = "cambio sconto scimp iva scqperc0 scqperc1 peso ivaspese".split()
NUMBERS = """imgX0 imgY0 imgX1 imgY1 imgX2 imgY2 notazione operatorericerca livelliaperti colonnevetrina vetsize
vetopzioni ricartperpag qminima maxarticoli ordinamento livello contatore scqart0 scqart1 opzione1 opzione2 opzione3
opzione4 OpID paesesel zonasel imppeso zona""".split()
# Families with a digit after the name: price lists, the taxed zones, the methods of a zone.
FAMILIES = "prezzo offerta offertaprezzo scq sconto inaccessibile scimp importo ivaok pag".split()
# The costs of a method in a zone: m2imp1, m3spp10, m1peso9.
ZONE_COST = re.compile(r"m[1-4](imp|spp?|peso)\d+")
BY_TABLE = {("articoli", "ID"): "number", ("opzioni", "ID"): "number", ("dettagliop", "ID"): "number",
            ("paesi", "ID"): "number", ("generale", "affiancati"): "number", ("pagamento", "selezionato"): "number"}
BY_LANGUAGE = {
    "generale": """testo1 testo2 home1 home2 condizioni datipers recesso titolo testo_email keywords content
        contrassegno anticipato rifiutato""".split(),
    "categorie": "titolo descrizione note immagine1 imgX1 imgY1".split(),
    "articoli": "titolo sottotitolo descrizione note".split(),
    "pagamento": "nome1 nome2 nome3 nome4".split(),
    "opzioni": ["nome"],
    "dettagliop": ["testo"],
}


def kind_of(table, column):
    """The value kind of a column: its bare name decides, but for the few that differ between tables."""
    if (table, column) in BY_TABLE:
        return BY_TABLE[table, column]
    if cost := ZONE_COST.fullmatch(column):
        return "single" if cost.group(1) == "peso" else "money"
    bare = re.sub(r"_(l[234]|[1-9])$", "", column)
    family = re.sub(r"[1-9]$", "", bare)
    for kind, names in (("flag", FLAGS), ("money", MONEY), ("single", SINGLES), ("number", NUMBERS)):
        if bare in names or (family in FAMILIES and family in names):
            return kind
    return "text"


def value_of(table, column, text):
    if text == "null":
        return None
    if len(text) > 1 and text[0] == text[-1] == '"':
        text = text[1:-1]
    kind = kind_of(table, column)
    return {"text": str, "flag": lambda x: {"true": True, "false": False}[x], "money": lambda x: money(Decimal(x)),
            "single": Single, "number": int}[kind](text)


def read_rows(text):
    """{table: [row]} of the rows part."""
    tables = {}
    for table, count, row in read_blocks(text):
        for n in range(1, count + 1):
            made = {column: value_of(table, column, value.replace("{n}", str(n))) for column, value in row.items()}
            rows = tables.setdefault(table, [])
            if "ID" not in made and (table, "ID") in BY_TABLE:
                made["ID"] = max((other["ID"] for other in rows), default=0) + 1
            rows.append(made)
    return tables


class View:
    """A row as one language sees it. An absent column is null."""

    def __init__(self, table, row, language):
        self.row, self.words, self.language = row, BY_LANGUAGE.get(table, []), language

    def __getitem__(self, column):
        if column in self.words and self.language > 1:
            column = "%s_l%d" % (column, self.language)
        return self.row.get(column)

    def text(self, column):
        value = self[column]
        return "" if value is None else str(value)
