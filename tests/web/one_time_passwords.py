"""The lists of one-time passwords from the bank's two files to a payment: they are sent over real FTP servers, loaded by
the host, read back from its table and used. A part of payment_modules_test.py, whose shop and services it shares;
KORVANE_SEND_PASSWORDS names the program that sends."""
import os
import pathlib
import re
import shutil
import sqlite3
import subprocess
import sys
import tempfile

from payment_shops import SHOPS, Case
from served_shop import SOURCES

sys.path.insert(0, str(SOURCES / "tests/servers"))
from faulty_gate import FaultyGate  # noqa: E402  (the path above comes first)
from ftp_servers import PASSWORD, USER, FtpServer  # noqa: E402

DONE = "Aggiornamento password completato."
SCRIPT = re.compile(r"^[a-z]{20}\.php$")


class Passwords(Case):
    def setUp(self):
        super().setUp()
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="korvane-passwords-"))
        self.addCleanup(shutil.rmtree, self.folder)
        # The merchant's own copy: the folders of the host are another machine's.
        self.own = self.folder / "negozio"
        (self.own / "online").mkdir(parents=True)
        shutil.copy(self.shop.shop / "catalog.mdb", self.own)
        self.host = self.shop.shop / "online"
        self.shop.execute("DROP TABLE IF EXISTS kv_OTP")

    def point_at(self, port, **keys):
        catalogue = sqlite3.connect(self.own / "catalog.mdb")
        with catalogue:
            catalogue.execute("UPDATE generale SET hostname = '127.0.0.1', username = ?, password = ?, "
                              "folderFTP = 'online', cartella = '', URL = ?", (USER, PASSWORD, self.shop.base))
        catalogue.close()
        keys = {"MODE:": "1", "FPRT:": port, **{name + ":": value for name, value in keys.items()}}
        (self.own / "firewall.net").write_text("".join("%s %s\r\n" % pair for pair in keys.items()))

    def send(self, operation, requests, responses, *words):
        """What the user is told, line by line."""
        for name, passwords, end in (("a.ric", requests, "\r"), ("a.ris", responses, "\r\n")):
            (self.folder / name).write_bytes("".join(word + end for word in passwords).encode())
        done = subprocess.run([os.environ["KORVANE_SEND_PASSWORDS"], str(self.own), operation,
                               str(self.folder / "a.ric"), str(self.folder / "a.ris"), *map(str, words)],
                              capture_output=True, text=True, stdin=subprocess.DEVNULL, check=True)
        self.assertEqual(list((self.own / "online").iterdir()), [], "the script stays here")
        self.assertEqual(sorted(path.name for path in self.folder.glob("a.*")), ["a.ric", "a.ris"])
        return done.stdout.splitlines()

    def table(self):
        kinds = {"1": [], "2": [], "3": []}
        for word, kind in self.shop.rows("SELECT pwd, pwdtype FROM kv_OTP ORDER BY pwd"):
            kinds[kind].append(word)
        return kinds

    def scripts(self):
        return [path.name for path in self.host.iterdir() if SCRIPT.match(path.name)]

    def test_are_replaced_appended_and_listed_again_without_a_double(self):
        for kind, keys in (("pyftpdlib", {}), ("proftpd", {"TLSM": 2})):
            with self.subTest(server=kind), FtpServer(kind, self.shop.shop) as server:
                self.point_at(server.port, **keys)
                self.assertEqual(self.send("replace", ["R1", "", "R2"], ["S1"])[-2:], [DONE, "OK"])
                self.assertEqual(self.table(), {"1": ["R1", "R2"], "2": ["S1"], "3": ["stop"]})
                self.assertEqual(self.send("append", ["R2", "R3"], ["S1", "S2"])[-2:], [DONE, "OK"])
                both = {"1": ["R1", "R2", "R3"], "2": ["S1", "S2"], "3": ["stop"]}
                self.assertEqual(self.table(), both)
                self.assertEqual(self.send("append", ["R2", "R3"], ["S1", "S2"])[-2:], [DONE, "OK"])
                self.assertEqual(self.table(), both)
                self.assertEqual(self.send("replace", ["R9"], ["S9"])[-2:], [DONE, "OK"])
                self.assertEqual(self.table(), {"1": ["R9"], "2": ["S9"], "3": ["stop"]})
                self.assertEqual(self.scripts(), [])
                for log in self.own.glob("kvftp*.log"):
                    self.assertNotIn(PASSWORD, log.read_text("cp1252"))

    def test_leave_no_script_on_the_server_once_the_run_after_a_fault_is_over(self):
        with FtpServer("pyftpdlib", self.shop.shop) as server:
            for command in (3, 8, 10, 12, 14, 17):
                with FaultyGate(server.port, command) as gate, self.subTest(command=command):
                    self.point_at(gate.port)
                    self.send("replace", ["R1"], ["S1"])
                    self.assertTrue(gate.fired)
                    self.point_at(server.port)
                    self.assertEqual(self.send("replace", ["R2"], ["S2"])[-1], "OK")
                    self.assertEqual(self.scripts(), [])
                    self.assertFalse((self.own / "kvotp.dat").exists())

    def test_a_quote_in_a_password_is_told_by_the_host_and_nothing_is_loaded(self):
        with FtpServer("pyftpdlib", self.shop.shop) as server:
            self.point_at(server.port)
            self.assertNotIn("OK", self.send("replace", ["o'neil"], ["S1"]))
            self.assertEqual(self.table(), {"1": [], "2": [], "3": []})
            self.assertEqual(self.send("replace", ["R1"], ["S1"])[-1], "OK")
            self.assertEqual(self.scripts(), [])

    def test_are_loaded_too_when_the_merchant_carries_the_script(self):
        self.point_at(1)
        (self.own / "kvftp.ini").write_bytes(b"DISA: -1\r\n")
        told = self.send("replace", ["R1"], ["S1"], self.host)
        self.assertIn("deve essere trasferito manualmente", "\n".join(told))
        self.assertEqual(told[-2:], [DONE, "OK"])
        self.assertEqual(self.table(), {"1": ["R1"], "2": ["S1"], "3": ["stop"]})
        self.assertEqual(self.scripts(), [])

    def test_pay_an_order(self):
        service = SHOPS[4][0][3]
        service.otp_in, service.otp_out = {"PAGA1"}, ["ESITO1"]
        shopper, page, code = self.order(4, 1)
        with FtpServer("pyftpdlib", self.shop.shop) as server:
            self.point_at(server.port)
            self.assertEqual(self.send("replace", ["PAGA1"], ["ESITO1"])[-1], "OK")
        payment = self.to_service(shopper, page, "Banca Sella")
        self.finish(shopper, "Banca Sella", payment, "OK")
        self.assertEqual(self.state(code), ("pagato", f"Banca Sella T{payment}"))
        self.assertEqual(self.table(), {"1": [], "2": [], "3": ["stop"]})
