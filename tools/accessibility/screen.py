"""A virtual screen with programs that run on a shop, a home of their own, and the servers that their dialogs speak to."""
import json
import os
import pathlib
import shutil
import socket
import sqlite3
import subprocess
import sys
import tempfile
import time

TOOLS = pathlib.Path(__file__).resolve().parents[1]
USER, PASSWORD = "bottega", "segreta"
SERVER_FOLDERS = ("online", "cgi-bin")
CONNECT_SECONDS = 15

CATEGORIES = "Id;Nome\r\n7;Vasi\r\n8;Tazze\r\n"
ORDER = {"id": 7, "codice": "A-7", "creato": "2026-05-04 10:00:00", "modificato": "", "cliente": 0, "nome": "Anna Verdi",
         "email": "anna@clienti.example", "totale": "12.50", "valuta": "EUR", "metodo": "Bonifico", "stato": "nuovo",
         "lingua": "it", "pagamento": "", "riepilogo": "", "campi": {"Citta": "Siena"}, "totali": {"merce": "12.50"},
         "righe": [{"id": 1, "codice": "V1", "testo": "Vaso", "scelte": "", "prima": "Vaso", "scelte_prima": "",
                    "quantita": 1, "importo": "12.50"}], "note": [], "recessi": []}
ARTICLES = "Id;IdCategoria;Codice;Descrizione;iva;Vendita1\r\n1;7;V1;Vaso di vetro;22;12,50\r\n3;8;;Tazza blu;22;4,20\r\n"


class Screen:
    """The programs' environment: a virtual screen, a home, and the program on a new model shop."""

    size = "1280x1024"  # of the screen, in pixels

    def __init__(self, programs):
        self.programs = pathlib.Path(programs).resolve()
        self.home = pathlib.Path(tempfile.mkdtemp(prefix="korvane-access-"))
        self.shop = self.home / "negozio"
        self.started = []
        self.silent = socket.socket()
        self.program = self.log = None
        self.port = 0

    def __enter__(self):
        try:
            self.start()
        except BaseException:
            self.__exit__()
            raise
        return self

    def start(self):
        self.open_screen()
        self.make_shop()
        self.silent.bind(("127.0.0.1", 0))
        self.silent.listen()
        self.connect(self.serve())
        self.write_lists()
        self.keep_order()
        self.run_program(self.shop)

    def open_screen(self):
        """Starts the virtual screen, and names an empty home in the environment `own`."""
        read, write = os.pipe()
        self.started.append(subprocess.Popen(
            ["Xvfb", "-displayfd", str(write), "-screen", "0", self.size + "x24", "-nolisten", "tcp"], pass_fds=[write],
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL))
        os.close(write)
        with os.fdopen(read) as told:
            os.environ["DISPLAY"] = ":" + told.readline().strip()
        os.environ.pop("WAYLAND_DISPLAY", None)
        runtime = self.home / "run"
        runtime.mkdir(mode=0o700)
        fonts = self.home / "fonts.conf"
        subprocess.run([TOOLS / "test-fonts", fonts], check=True)
        self.own = {**os.environ, "HOME": str(self.home), "XDG_DATA_HOME": str(self.home / "data"),
                    "XDG_CONFIG_HOME": str(self.home / "config"), "XDG_RUNTIME_DIR": str(runtime),
                    "FONTCONFIG_FILE": str(fonts),
                    "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1", "QT_QPA_PLATFORM": "xcb", "LANG": "C.UTF-8"}

    def make_shop(self):
        """Makes the model shop."""
        made = subprocess.run([self.programs / "korvane-cli", "new", self.shop], env=self.own, check=False,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        if made.returncode != 0:
            sys.exit(f"no model shop could be made:\n{made.stdout}")

    def serve(self):
        """An FTP server for the shop; its port, once it can be reached."""
        served = self.home / "server"
        for name in SERVER_FOLDERS:
            (served / name).mkdir(parents=True)
        with socket.socket() as free:
            free.bind(("127.0.0.1", 0))
            port = free.getsockname()[1]
        self.started.append(subprocess.Popen(
            [TOOLS / "local-ftp", served, str(port), USER], env={**self.own, "KORVANE_FTP_PASSWORD": PASSWORD},
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL))
        give_up = time.monotonic() + CONNECT_SECONDS
        while time.monotonic() < give_up:
            try:
                socket.create_connection(("127.0.0.1", port)).close()
                return port
            except OSError:
                time.sleep(0.05)
        sys.exit("no FTP server answers")

    def connect(self, port):
        """The shop publishes to the server, and to a web host that takes what it is asked and never answers: the windows
        that wait for it stay for as long as they are looked at."""
        self.port = port
        host = self.silent.getsockname()[1]
        catalogue = sqlite3.connect(self.shop / "catalog.mdb")
        with catalogue:
            catalogue.execute("UPDATE generale SET URL = ?, hostname = '127.0.0.1', username = ?, password = ?, "
                              "folderFTP = 'online', folderCGI = 'cgi-bin'", (f"http://127.0.0.1:{host}", USER, PASSWORD))
        catalogue.close()
        self.use_server(False)

    def use_server(self, is_silent):
        """The file server of the next publish run: the shop's own, or one that takes the call and never greets."""
        port = self.silent.getsockname()[1] if is_silent else self.port
        (self.shop / "firewall.net").write_bytes(b"MODE: 1\r\nFPRT: %d\r\n" % port)

    def write_lists(self):
        """Files that dialogs ask for: those of an accounting program, a sheet, and both lists of one-time passwords."""
        accounting = self.home / "orsa"
        accounting.mkdir()
        (accounting / "Categoria.csv").write_bytes(CATEGORIES.encode())
        (accounting / "Articoli.csv").write_bytes(ARTICLES.encode())
        # Where they are: the entry of the import is off on a machine that doesn't know it.
        settings = self.home / "config" / "korvane"
        settings.mkdir(parents=True, exist_ok=True)
        (settings / "korvane.ini").write_text(f"[orsa2000/pathRete]\r\npathRete={accounting}\r\n", encoding="utf-8")
        # The options that the dialogs of the import begin with: a price list to write is among them.
        (self.shop / "og.ini").write_bytes(b"1100100\r\n")
        (self.shop / "og3.ini").write_bytes(b"11001001100\r\n")
        (self.home / "foglio.csv").write_bytes(b"Codice;Titolo;Prezzo\r\nV1;Vaso di vetro;12,50\r\nV2;Vaso;quattro\r\n")
        (self.home / "a.ric").write_bytes(b"uno\r\ndue\r\n")
        (self.home / "a.ris").write_bytes(b"tre\r\nquattro\r\n")
        (self.home / "esportato").mkdir()
        # A picture that nothing shows, for the purge to list.
        shutil.copy(next((self.shop / "work").glob("*.*")), self.shop / "work" / "di_troppo_0001.jpg")

    def keep_order(self):
        """An order that was fetched before."""
        kept = sqlite3.connect(self.shop / "ordini.db")
        with kept:
            kept.execute("CREATE TABLE ordini (riga INTEGER PRIMARY KEY, id INTEGER NOT NULL, codice TEXT NOT NULL, "
                         "creato TEXT NOT NULL, nome TEXT, totale INTEGER, valuta TEXT, stato TEXT, visto INTEGER, "
                         "cerca TEXT, dati TEXT, UNIQUE (id, codice))")
            kept.execute("CREATE TABLE annotato (nome TEXT PRIMARY KEY, valore TEXT)")
            kept.execute("INSERT INTO ordini (id, codice, creato, nome, totale, valuta, stato, visto, cerca, dati) "
                         "VALUES (7, 'A-7', ?, ?, 125000, 'EUR', 'nuovo', 1, 'anna verdi', ?)",
                         (ORDER["creato"], ORDER["nome"], json.dumps(ORDER)))
        kept.close()

    def run_program(self, *shop):
        """Starts the window, on a shop or on the one that was open last."""
        self.log = open(self.home / "log", "w", encoding="utf-8")
        self.program = subprocess.Popen([self.programs / "korvane", *shop], env=self.own,
                                        stdin=subprocess.DEVNULL, stdout=self.log, stderr=subprocess.STDOUT)
        self.started.append(self.program)

    def damage_shop(self):
        """Makes the catalogue one that can't be opened."""
        (self.shop / "catalog.mdb").write_bytes(b"no database" * 400)

    def __exit__(self, *_):
        for process in reversed(self.started):
            process.kill()
            process.wait()
        self.silent.close()
        shutil.rmtree(self.home, ignore_errors=True)
