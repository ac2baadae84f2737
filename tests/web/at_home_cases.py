"""No page of the shop asks another host for anything, and none sets a cookie that the shop doesn't need."""
import html.parser
import re
import urllib.parse

from served_shop import order
from shop_case import Case, shop

# What makes a browser ask for something by itself: element and attribute.
LOADING = {("script", "src"), ("img", "src"), ("img", "srcset"), ("source", "src"), ("source", "srcset"), ("iframe", "src"),
           ("video", "src"), ("video", "poster"), ("audio", "src"), ("embed", "src"), ("object", "data"), ("input", "src")}
LOADING_LINKS = {"stylesheet", "icon", "preload", "prefetch", "preconnect", "dns-prefetch", "modulepreload", "manifest"}
# The cart, and the session of those who order, sign in or write to the shop.
NEEDED = re.compile(r"kvstore_(?:cart|sessione)\d+$")


class Loads(html.parser.HTMLParser):
    """The addresses that a page loads."""

    def __init__(self, text):
        super().__init__()
        self.found = []
        self.feed(text)

    def handle_starttag(self, tag, attributes):
        values = dict(attributes)
        for name, value in attributes:
            if (tag, name) in LOADING and value:
                self.found += [part.split()[0] for part in value.split(",")] if name == "srcset" else [value]
        if tag == "link" and LOADING_LINKS & set((values.get("rel") or "").lower().split()):
            self.found.append(values.get("href") or "")


class AtHome(Case):
    def pages(self):
        """Every page of the shop that has an address of its own, by the files that the build wrote."""
        names = sorted(path.name for path in (shop().shop / "online").glob("*.php"))
        return [name for name in names if b"</html>" in (shop().shop / "online" / name).read_bytes()] + ["kvrecesso.php"]

    def hosts(self, page):
        base = urllib.parse.urlsplit(page.address).netloc
        found = Loads(page.text).found + re.findall(r"(?:@import\s+|url\()[\"']?(https?://[^\"')\s]+)", page.text)
        return {host for host in (urllib.parse.urlsplit(urllib.parse.urljoin(page.address, one)).netloc for one in found)
                if host not in ("", base)}

    def test_no_page_loads_from_another_host_or_sets_a_cookie_of_no_use(self):
        pages = self.pages()
        self.assertGreater(len(pages), 100)
        visitor = shop().visitor()
        for name in pages:
            page = visitor.ask(name)
            self.assertEqual(self.hosts(page), set(), name)
        order(visitor, self.cart, method=2)
        self.assertEqual([name for path, name in visitor.cookies if not NEEDED.match(name)], [])

    def test_scripts_and_styles_name_no_other_host(self):
        for path in sorted((shop().shop / "online").iterdir()):
            if path.suffix in (".js", ".css"):
                text = re.sub(r"/\*.*?\*/|(?m:^\s*//.*$)", "", path.read_text("cp1252"), flags=re.S)
                self.assertNotRegex(text, r"https?://(?!www\.bottega\.example|www\.w3\.org/)", path.name)

    def test_a_visit_without_an_order_sets_no_cookie(self):
        visitor = shop().visitor()
        for name in ("index", "cat007", "condizioni", "recesso", "datipers", "search"):
            visitor.ask(name + ".php")
        self.assertEqual(visitor.cookies, {})
