"""What a case gives: the rows, the files of both folders, the settings, the steps."""
import re

from catalogue import read_rows, value_of
from txtar import from_cp1252, part_bytes

FOLDERS = ("template", "code", "shopcode", "backoffice", "languages", "tags", "work")


class Shop:
    def __init__(self, parts):
        self.files = {folder: {} for folder in FOLDERS}  # folder -> name -> bytes
        self.tables, self.settings, self.steps = {}, {}, ["build"]
        self.no_lock = False
        for part in parts:
            folder, _, name = part.name.partition("/")
            if part.name == "rows":
                self.tables = read_rows(part.text)
            elif part.name == "settings":
                self.settings = dict(line.split("=", 1) for line in part.text.splitlines())
            elif part.name == "builds":
                self.steps = [line for line in part.text.splitlines() if line.strip()]
            elif part.name == "kvftp.ini":
                self.no_lock = any(line.upper().startswith("LOCK:") and line[5:].strip(" ") == "0"
                                   for line in part.text.splitlines())
            elif folder in FOLDERS:
                self.files[folder][name] = part_bytes(part)
        for table, row in (("generale", {}), ("pagamento", {}), ("lingue", {"lingua1": "italiano"})):
            self.tables.setdefault(table, [row])
        self.online, self.scripts = {}, {}

    def rows(self, table):
        return self.tables.get(table, [])

    def one(self, table):
        return self.tables[table][0]

    def languages(self):
        """The codes in use: the first empty one ends the list."""
        codes = []
        for n in (1, 2, 3, 4):
            code = self.one("lingue").get("lingua%d" % n)
            if not code:
                break
            codes.append(code)
        return codes

    def package(self):
        return {name: data for name, data in self.files["template"].items() if "/" not in name}

    def package_of(self, code):
        found = {}
        for name, data in self.files["template"].items():
            if name.startswith(code + "/"):
                found[name[len(code) + 1:]] = data
        return found

    def text_file(self, folder, name):
        data = self.files[folder].get(name)
        return None if data is None else from_cp1252(data)

    def apply(self, step):
        """`set TABLE KEY COLUMN = VALUE` (KEY is an ID, or * for every row), `setting KEY = VALUE`."""
        words, value = step.split(" = ", 1)
        if words.startswith("setting "):
            self.settings[words.split()[1]] = value
            return
        _, table, key, column = words.split()
        for row in self.rows(table):
            if key in ("*", str(row.get("ID"))):
                row[column] = value_of(table, column, value)


def listing(names):
    return sorted(names, key=str.lower)


def is_model(name):
    return re.fullmatch(r"modello.*\.htm", name, re.I | re.S) is not None
