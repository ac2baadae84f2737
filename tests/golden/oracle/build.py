"""A build, step by step, over files in memory."""
import pages
import tags
from article import Currency, custom_cell, derived_row, list_entry, plain_cell, shop_factor, target
from catalogue import View
from figures import is_numeric
from gateways import UNREADABLE, module_scripts, read_kpg, read_kpg_action
from images import first_pixel, gif_size
from navigation import Navigation, menu_sections
from pages import PageRefused
from pagetags import common_columns, department_columns, stored_department
from pools import SCRIPTS, make_pools
from server import settings_block
from shop import is_model, listing
from showcase import showcase
from tables import BuildTables
from texts import can_copy, file_lingua, is_page, like, page_file, put_ext, testo_html
from txtar import from_cp1252, to_cp1252
from variants import variant_rows

TOKEN = "abcdefghijklmnopqrst"  # of a random source that counts up from 0
ONLINE, SCRIPT_FOLDER = "<shop>/online/", "<shop>/scripts/"
MISSING = ("Il file %s non è presente nel template selezionato.\n"
           "Selezionare un altro template per il sito o un altro modello per i reparti.")
CLOSING = ("In seguito agli errori verificatisi, il contenuto della cartella '<shop>/online'\n"
           "potrebbe essere corrotto: evitare di trasferirne il contenuto online.\n"
           "Risolvere il problema, ricostruire il negozio e solo successivamente aggiornare il sito.")
FINISHED = "Creazione del negozio terminata. Aggiornare il sito per rendere effettive le modifiche."
# The words that switch the interpretation of custom tags on, in a memo column.
TRUE_WORDS = ("1", "-1", "true", "vero")


class Build:
    def __init__(self, shop):
        self.shop, self.token, self.log = shop, TOKEN, None
        self.messages, self.done = [], False
        self.codes = shop.languages()
        self.package = shop.package()
        settings = View("generale", shop.one("generale"), 1)
        self.shop_factor, self.currency = shop_factor(settings), Currency(settings)
        self.php_globals = settings_block(self, settings)
        self.custom = {}
        if settings.text("personaltags").lower() in TRUE_WORDS:
            for name in ("shoptag.tag", "personal.tag"):
                text = shop.text_file("tags", name)
                self.custom = tags.read_sections(text, 5, False) | self.custom if text else self.custom

    def setting(self, key):
        return self.shop.settings.get(key, "")

    def html(self, text):
        return testo_html(text, self.setting("MacCodes") != "off")

    def word(self, name):
        return self.words.get("<<4-%s>>" % name, "<<4-%s>>" % name)

    def run(self):
        online = self.shop.online
        for name in [name for name in online if like(name, "*.sc")]:
            del online[name]
        online[TOKEN + ".sc"] = b"%d\r\n" % len(self.codes)
        missing = [code for code in self.codes if code + ".lng" not in self.shop.files["languages"]]
        if missing:
            self.messages.append(("Exclamation", "\n".join(
                ["I seguenti moduli linguistici non sono stati trovati:"] + missing + [
                    "", "Per costruire il negozio è necessario installare i moduli linguistici mancanti,",
                    'oppure cambiare le lingue selezionate (menu "File/Configura lingue")'])))
            return
        self.log = ["#<shop>/source.mdb"]
        self.tables = BuildTables(self.shop, [stored_department(row, self.shop_factor)
                                              for row in self.shop.rows("categorie")])
        try:
            for self.language in range(1, len(self.codes) + 1):
                self.build_language()
        except PageRefused as refusal:
            self.messages += [("Exclamation", str(refusal)), ("Exclamation", CLOSING)]
            return
        self.finish()

    def build_language(self):
        self.suffix = "" if self.language == 1 else "_l%d" % self.language
        code = self.codes[self.language - 1]
        self.pool, self.scripts = make_pools(self.shop, code)
        self.words = tags.language_index(self.shop.text_file("languages", code + ".lng"), code)
        cell = from_cp1252(self.pool.get("kvan_vet.ini", b""))
        self.cell = cell.replace("\r", "").replace("\n", "").strip(" ")
        self.cells, self.site_list = [], "<BR>"
        self.colours = [first_pixel(self.pool["kvan_col_%d.gif" % i]) for i in range(5)]
        self.settings = View("generale", self.shop.one("generale"), self.language)
        self.payment = View("pagamento", self.shop.one("pagamento"), self.language)
        self.tables.rows["opzioni" + self.suffix] = variant_rows(self.shop, self.language, self.settings, self.currency)
        departments = sorted(self.shop.rows("categorie"), key=lambda row: (row["livello"], row["ordinamento"]))
        departments = [View("categorie", row, self.language) for row in departments]
        menu = self.pool.get("kvan_menu.ini")
        self.navigation = Navigation(departments, self.suffix, self.colours[4],
                                     menu_sections(None if menu is None else from_cp1252(menu)))
        if self.setting("XMLmenu") != "0":
            self.copy_online(file_lingua("shopmenu.xml", self.suffix), to_cp1252(self.navigation.xml()))
        for department in departments:
            self.build_department(department)
        self.shop_pages()
        self.scripts_and_resources()

    # A department.

    def columns_of(self, department):
        columns = self.settings["affiancati"] or 0
        own = department["affiancati"]
        if own is not None and is_numeric(own):
            columns = int(own)
        return columns if 1 <= columns <= 6 else 1

    def articles_of(self, department):
        rows = [row for row in self.shop.rows("articoli")
                if row["catID"] == department["ID"] and not row.get("fuoricatalogo")]
        return [View("articoli", row, self.language) for row in sorted(rows, key=lambda row: row["ordinamento"])]

    def build_department(self, department):
        model = department.text("template") + ".htm"
        model = model if is_model(model) else "modello1.htm"
        articles, size = self.articles_of(department), department["maxarticoli"] or 0
        # A department without a limit has pages of 200, and its articles are anchors of them.
        size = size if size >= 1 else 200
        entries = ""
        for n in range(1, max(1, (len(articles) - 1) // size + 1) + 1):
            here = articles[(n - 1) * size:n * size]
            page = page_file(department.text("pagina"), n, self.suffix)
            self.row = department_columns(self, department) | self.navigation_columns(department)
            self.set_language_links(page)
            rows = []
            for position, article in enumerate(here, 1):
                rows.append(derived_row(self, article, department, position))
                address = target(page, position, size)
                entry = list_entry(self, article, address)
                entries += entry
                if article["inelenco"]:
                    self.site_list += entry
                    self.cells.append(custom_cell(self, article, address, self.cell) if self.cell
                                      else plain_cell(self, article, address))
            self.tables.articles_of_page = rows
            text = self.first_pass(model, page, self.columns_of(department), rows, n)
            first = text if n == 1 else first
        shown = any(self.settings["elenco_" + x] for x in ("foto", "codice", "titolo"))
        self.row["elenco"] = entries if shown else ""
        # The first pass hands over a file: its text with a line end, in the code page.
        name = page[:page.index("?")]
        self.write(name, pages.plain_page(self, from_cp1252(to_cp1252(first + "\r\n")), name, self.suffix, True))

    def first_pass(self, model, page, columns, rows, n):
        if model not in self.pool:
            raise PageRefused(MISSING % model)
        root = page[:page.index(".php")]
        text = pages.department_page(self, from_cp1252(self.pool[model]), "<shop>/tmp/1/" + model, root, columns,
                                     bool(rows))
        cells = [pages.cell_code(columns, i, i == len(rows)) for i in range(1, len(rows) + 1)]
        self.tables.add_articles(self.suffix, root, n, rows, cells)
        self.log.append("#" + ONLINE + root + ".php")
        return text

    def navigation_columns(self, department):
        """The tree and the drop-down, and the texts around the title of a department."""
        links, menu = self.navigation.tree(department, self.settings["livelliaperti"] or 0)
        row = {"reparti": links, "repartimenu": menu}
        if department is not None and self.settings["vis_percrep"]:
            row["titolo"] = self.navigation.title(department, self.setting("MacCodes") != "off")
        return row

    def set_language_links(self, file):
        """The links of a page to its other languages; without a file there are none."""
        for i in (1, 2, 3, 4):
            self.row["lingua%d" % i] = ""
            if file and i <= len(self.codes) and i != self.language:
                flag = self.shop.files["languages"].get(self.codes[i - 1] + ".gif")
                self.row["lingua%d" % i] = tags.language_link(file, i, self.codes, gif_size(flag))

    # The pages of the shop.

    def shop_pages(self):
        self.row = common_columns(self) | self.navigation_columns(None)
        self.row |= {"search_maxart": self.settings.text("ricartperpag"), "elenco": self.site_list,
                     "vetrina": showcase(self.settings, self.cells), "php_vars": ""}
        for name in listing(name for name in self.pool if is_page(name)):
            output = put_ext(file_lingua(name, self.suffix))
            low = name.lower()
            self.set_language_links("" if low in ("results.htm", "thankyou.htm") else output)
            if low == "thankyou.htm":
                self.thankyou_pages(name)
            elif low == "paymsg.htm":
                for page in ("payok", "payerr"):
                    output = put_ext(file_lingua(page + ".htm", self.suffix))
                    self.row["paymsg"] = self.word("pay_ok" if page == "payok" else "pay_ko")
                    self.set_language_links(output)
                    self.online_page(self.pool, name, output)
                self.row["paymsg"] = ""
            elif not is_model(name):
                self.online_page(self.pool, name, output)

    def thankyou_pages(self, name):
        count = 0
        for i in (1, 2, 3, 4):
            if not self.payment["attivo%d" % i]:
                continue
            count += 1
            output = put_ext(file_lingua("thankyou%d.htm" % count, self.suffix))
            self.row["metodo_pagamento"] = self.payment.text("nome%d" % i)
            method = self.payment.text("metodo%d" % i)
            self.row["thankyou"] = read_kpg(self.shop, method)
            if self.row["thankyou"] == UNREADABLE:
                self.row["thankyou"] = ""
                self.messages.append(("Exclamation", "Impossibile trovare il file '%s.kpg'" % method))
            self.row["java_PGAction"] = read_kpg_action(self.shop, method, self.suffix)
            self.set_language_links(output)
            first = pages.plain_page(self, from_cp1252(self.pool[name]), name, self.suffix)
            between = from_cp1252(to_cp1252(first + "\r\n"))
            self.write(output, pages.plain_page(self, between, "thankyou.tmp", self.suffix, True))
            self.log.append("#" + ONLINE + output)
            self.install_scripts(method)
        self.row |= {"metodo_pagamento": "", "thankyou": "", "java_PGAction": ""}

    def install_scripts(self, method):
        for name, data in module_scripts(self.shop, method):
            if data is None:
                self.messages += [("Exclamation", MISSING % name),
                                  ("Exclamation", "Errore nell'elaborazione del file " + name)]
            else:
                self.online_page({name: data}, name, file_lingua(name, self.suffix))

    def online_page(self, pool, name, output):
        self.write(output, pages.plain_page(self, from_cp1252(pool[name]), name, self.suffix))
        self.log.append("#" + ONLINE + output)

    def write(self, name, text):
        self.shop.online[name] = to_cp1252(text + "\r\n")

    # Scripts and resources.

    def scripts_and_resources(self):
        backoffice = self.shop.files["backoffice"]
        for name in listing(backoffice):
            data = backoffice[name]
            if name.lower().endswith((".php", ".htm")):
                data = to_cp1252(pages.plain_page(self, from_cp1252(data), name, "") + "\r\n")
            self.put_script(name, data)
        for pattern in SCRIPTS:
            for name in listing(name for name in self.scripts if like(name, pattern)):
                if pattern != "*.pl":
                    self.online_page(self.scripts, name, file_lingua(name, self.suffix))
                elif name.lower() not in ("kvorder.pl", "kvsearch.pl"):
                    text = pages.plain_page(self, from_cp1252(self.scripts[name]), name, self.suffix)
                    self.put_script(name, to_cp1252(text + "\r\n"))
        for name in listing(name for name in self.pool if can_copy(name)):
            self.copy_online(file_lingua(name, self.suffix), self.pool[name])
        self.log += ["#" + ONLINE + file_lingua(name, self.suffix) for name in ("db.sql", "dbdel.sql")]

    def put_script(self, name, data):
        self.shop.scripts[name] = data
        self.log.append("#" + SCRIPT_FOLDER + name)

    def copy_online(self, name, data):
        self.shop.online[name] = data
        self.log.append("#" + ONLINE + name)

    def finish(self):
        for name in listing(self.shop.files["work"]):
            self.copy_online(name, self.shop.files["work"][name])
        for code in self.codes:
            flag = self.shop.files["languages"].get(code + ".gif")
            if flag is not None:
                self.copy_online("kvan_%s.gif" % code, flag)
        self.log.append("#")
        self.messages.append(("Information", FINISHED))
        self.done = True
