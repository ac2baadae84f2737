"""What the search finds in random catalogues, and in which order, beside a literal search of all texts."""
import html
import random
import re
import unicodedata
import urllib.parse

from load_shop import LoadedShop
from shop_case import Case, shop

WORDS = ["tazza", "tazzina", "Stazza", "caffè", "CAFFE", "città", "olio", "l'olio", "dell'Oliva", "blu", "blu-notte", "di", "da",
         "gres", "GR-7", "gres/oro", "007", "12", "più", "Perché", "a", "m²", "straße", "&#945;&#955;&#966;&#945;", "naïve", "pane-e-olio",
         "1,5", "c'è/GR-7-b", "&#945;-12", "a-e", "straße-12"]
REFERENCES = ["", " dell&#39;&egrave;re", "<br>e<b>-olio</b>"]
ASKED = ["tazz", "tazza", "azz", "di", "gres di", "ta da", "caffe", "CAFFÈ olio", "l'olio", "dell'ol", "blu-n", "blu", "007", "gr-7",
         "s/o", "per", "oli di gres", "zzqq", "αλφ", "tra 12", "ane-e-ol", "e-oli",
         "1,5", "l'olio blu-n", "'è/g", "c'è/GR-7-b", "α-1", "ll'er", "sse-1", "b-", "zz'qq", "blu-notte-e", "5€"]
FIELDS = ["plain_titolo", "codice", "plain_sottotitolo", "descrizione", "note"]
SETTINGS = {"all": (b'"all" !== \'any\'', b'"any" !== \'any\''),
            "parts": (b'var sleft = ",#.*"; var sright = "";', b'var sleft = "#"; var sright = "#";')}


def fold(text):
    """A text without case and accents, numeric references as their characters."""
    text = html.unescape(text).lower().replace("ß", "ss")
    return "".join(char for char in unicodedata.normalize("NFD", text) if not unicodedata.combining(char))


def words_of(text):
    return re.findall(r"[^\W_]+", fold(text))


def points_of(article, pattern, piece, whole):
    """The least points of the words of an article that a pattern fits; None where none does."""
    found = []
    for rank, field in ((0, 0), (1, 1), (2, 2), (2, 3), (2, 4)):
        for word in words_of(article[field]):
            if word == piece or not whole and re.fullmatch(pattern, word, re.S):
                # A word counts where it is best in the article.
                best = min(r for r, f in ((0, 0), (1, 1), (2, 2), (2, 3), (2, 4)) if word in words_of(article[f]))
                kind = 0 if whole or word == piece else 1 if word.startswith(piece) else 2
                found.append(best * 3 + kind)
    return min(found) if found else None


def parts_of(word, least):
    """The parts of so many characters that a request word asks for, by pattern: its ends may be in longer words."""
    pieces = words_of(word)
    return {("" if n else ".*") + re.escape(piece) + (".*" if n == len(pieces) - 1 else ""): piece
            for n, piece in enumerate(pieces) if len(piece) >= least}


def points_of_words(article, words, parts):
    """The points of each part that some words ask for; None for one that the article lacks."""
    # Single characters count where there is nothing longer.
    pieces, shorts = ({pattern: piece for word in words for pattern, piece in parts_of(word, least).items()} for least in (2, 1))
    return [points_of(article, pattern, piece, not parts or pattern == re.escape(piece))
            for pattern, piece in (pieces or shorts).items()]


def points_of_marked(article, word, parts):
    """The points of a word with marks as a list of one; None where the article lacks one of its parts."""
    points = points_of_words(article, [word], parts)
    return [None if None in points else sum(points)]


def literal(articles, request, all_words, parts):
    """The numbers of the articles that a request finds, in the order of results."""
    asked = request.split()
    marked = [word for word in asked if re.search(r"[\W_]", fold(word))]
    edge = "" if parts else r"(?![^\W_])"
    found = []
    for number, article in articles.items():
        text = fold(" ".join(article))
        absent = [word for word in marked if not re.search(edge.replace("!", "<!") + re.escape(fold(word)) + edge, text)]
        if all_words and absent:
            continue
        points = points_of_words(article, asked if all_words else [word for word in asked if word not in marked], parts)
        for word in [] if all_words else marked:
            points += [None] if word in absent else points_of_marked(article, word, parts)
        hits = [one for one in points if one is not None]
        if len(hits) == len(points) if all_words else hits:
            found.append((sum(hits) - 100 * len(hits), fold(article[0])[:60].rstrip(), number))
    return [number for _, _, number in sorted(found)]


class RandomCatalogues(Case):
    """Each catalogue comes by a load: first whole, then by differences with articles changed, gone and come again."""

    @classmethod
    def setUpClass(cls):
        cls.loaded = LoadedShop(shop())
        cls.draw = random.Random(20261123)
        cls.columns = [row[0] for row in shop().rows("SHOW COLUMNS FROM articoli")]
        cls.rows = {row[0]: dict(zip(cls.columns, row)) for row in shop().rows("SELECT * FROM articoli")}
        cls.codes = dict(shop().rows("SELECT ID, codice FROM dettaglio"))
        cls.open = [row[0] for row in shop().rows("SELECT dettaglio.ID FROM dettaglio INNER JOIN categorie ON categorie.ID = catID"
                                                  " WHERE inaccessibile + nascosto = 0")]
        cls.links = {f"{page}.php?n={part}&prod={position}": number for number, page, part, position in shop().rows(
            "SELECT articoli.ID, pagina, sottopagina, contatore FROM articoli INNER JOIN ordinamento USING (ID)")}
        cls.script = shop().shop / "online/kvsearch.php"
        cls.former = cls.script.read_bytes()

    @classmethod
    def tearDownClass(cls):
        cls.script.write_bytes(cls.former)
        assert cls.loaded.load(None, None) == "OK"

    def drawn(self, most):
        return " ".join(self.draw.choice(WORDS) for _ in range(self.draw.randint(1, most)))

    def change(self, numbers):
        """Gives some articles other texts and has them loaded."""
        for number in numbers:
            row = self.rows[number]
            row.update(plain_titolo=self.drawn(3), plain_sottotitolo=self.drawn(2), descrizione=f"<p>{self.drawn(5)}{self.draw.choice(REFERENCES)}</p>", note=self.drawn(2))
            self.codes[number] = self.draw.choice(["GR-7", "007", "TAZZ-12", "A", "Z9"])
            shop().execute(f"UPDATE dettaglio SET codice = '{self.codes[number]}' WHERE ID = {number}")
        listed = ", ".join(f"'{number}'" for number in numbers)
        self.assertEqual(self.loaded.load(f"DELETE FROM articoli WHERE ID IN ({listed});\r\n", self.inserts(numbers)), "OK")

    def inserts(self, numbers):
        text = lambda value: "NULL" if value is None else "'" + re.sub(r"(['\\])", r"\\\1", value).replace("\n", "\\n").replace("\r", "\\r") + "'"
        return "".join("INSERT INTO articoli\r\nVALUES ( " + ", ".join(text(self.rows[number][name]) for name in self.columns) + " );\r\n"
                       for number in numbers)

    def found(self, request, page=1):
        asked = urllib.parse.urlencode({"q": request, "p": page, "_charset_": "UTF-8"})
        text = self.visitor.ask("kvsearch.php?" + asked).text
        links = re.findall(r'<a href="([^"]*\?n=[^"]*)">', "".join(re.findall(r'<li class="risultato">.*?</li>', text, re.S)))
        return int(re.search(r"Articoli trovati: (\d+)", text).group(1)), [self.links[link.replace("&amp;", "&")] for link in links]

    def compare(self, requests, gone=(), all_words=True, parts=True):
        text = re.sub(rb'\(int\) "10"', b'(int) "500"', self.former)
        text = text if all_words else text.replace(*SETTINGS["all"])
        self.script.write_bytes(text if parts else text.replace(*SETTINGS["parts"]))
        articles = {number: [self.codes[number] if name == "codice" else re.sub("<[^>]*>", " ", self.rows[number][name]) for name in FIELDS]
                    for number in sorted(set(self.open) - set(gone), key=int)}
        for request in requests:
            wanted = literal({int(number): texts for number, texts in articles.items()}, request, all_words, parts)
            self.assertEqual(self.found(request), (len(wanted), [str(number) for number in wanted]), (request, all_words, parts))

    def test_the_search_finds_what_a_literal_one_finds_in_its_order(self):
        numbers = sorted(self.rows, key=int)
        create = re.search(r"CREATE TABLE articoli\r\n.*?;\r\n", self.loaded.full["db.sql"].decode("cp1252"), re.S).group()
        self.change(numbers)
        self.assertEqual(self.loaded.load("DROP TABLE articoli;\r\n", create + self.inserts(numbers)), "OK")
        self.compare(ASKED)
        self.compare(["tazz", "olio", "gres di", "l'olio", "l'oli", "e-olio", "pane-e-olio"], parts=False)
        self.compare(["tazz 007", "oli di gres", "caffe", "l'olio blu", "ane-e-o gr-7 di", "zz'qq 1,5"], all_words=False)
        for _ in range(2):
            self.change(self.draw.sample(numbers, 9))
            self.compare(self.draw.sample(ASKED, 6))
        gone = self.draw.sample(self.open, 5)
        listed = ", ".join(f"'{number}'" for number in gone)
        self.assertEqual(self.loaded.load(f"DELETE FROM articoli WHERE ID IN ({listed});\r\n", ""), "OK")
        self.compare(["di", "tazz", "olio gres"], gone)
        self.change(gone)
        self.compare(["di", "tazz", "olio gres"])
        self.script.write_bytes(self.former)
        whole = [number for page in range(1, 9) for number in self.found("di", page)[1]]
        self.compare(["di"])
        self.assertEqual(whole[:len(set(whole))], self.found("di")[1])


__all__ = ["RandomCatalogues"]
