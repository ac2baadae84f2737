#!/usr/bin/env python3
"""A shop is published to real FTP servers: ftp_publish.py KORVANE_CLI

The folder that the FTP server writes to is the document root of a web host with PHP and MariaDB, so that at the end of
each publish the shop is live.
"""
import os
import pathlib
import random
import shutil
import sqlite3
import subprocess
import sys
import tempfile
import time
import unittest

HERE = pathlib.Path(__file__).resolve().parent
sys.path[:0] = [str(HERE), str(HERE.parent / "web")]
from faulty_gate import DATA_FAULTS, FAULTS, HARMLESS, FaultyGate  # noqa: E402  (the paths above come first)
from ftp_servers import PASSWORD, USER, FtpServer  # noqa: E402
from mariadb_round_trip import RoundTrip  # noqa: E402
from online_update import Host  # noqa: E402
from served_shop import ServedShop  # noqa: E402
from ssh_and_socks import AskingSshServer, Dante, Microsocks, SshServer  # noqa: E402

KORVANE = ""
WALK_ROUNDS = int(os.environ.get("KORVANE_TEST_ROUNDS", "5"))
KILL_ROUNDS = int(os.environ.get("KORVANE_TEST_KILLS", "10"))
WALK_SEED = int(os.environ.get("KORVANE_TEST_SEED", "20240229"))


class Publishing(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.live = ServedShop(KORVANE).open()
        cls.folder = pathlib.Path(tempfile.mkdtemp(prefix="korvane-publish-"))
        cls.shop = cls.folder / "negozio"
        shutil.copytree(cls.live.shop, cls.shop)

    @classmethod
    def tearDownClass(cls):
        cls.live.close()
        shutil.rmtree(cls.folder)

    def setUp(self):
        """Nothing is known of the server, and the shop is built."""
        for name in ("db/last.mdb", "kvftp.ini"):
            (self.shop / name).unlink(missing_ok=True)
        table = sqlite3.connect(self.shop / "kvftp.mdb")
        with table:
            table.execute("DELETE FROM file")
        table.close()
        self.build()

    def korvane(self, *words):
        return subprocess.run([KORVANE, *words, str(self.shop)], env=self.live.environment, capture_output=True,
                              text=True, stdin=subprocess.DEVNULL, check=False)

    def build(self):
        done = self.korvane("build")
        self.assertEqual(done.returncode, 0, done.stderr)

    def change(self, statement, *values):
        catalogue = sqlite3.connect(self.shop / "catalog.mdb")
        with catalogue:
            catalogue.execute(statement, values)
        catalogue.close()

    def point_at(self, server, **keys):
        self.change("UPDATE generale SET hostname = '127.0.0.1', username = ?, password = ?, folderFTP = 'online', "
                    "folderCGI = 'scripts'", USER, PASSWORD)
        keys = {"MODE:": "1", "FPRT:": server.port, **{name + ":": value for name, value in keys.items()}}
        (self.shop / "firewall.net").write_text("".join("%s %s\r\n" % pair for pair in keys.items()))

    def sent(self, done):
        """Names of the files that a run has sent."""
        return [line for line in done.stdout.splitlines() if not line.startswith("File inviati")]

    def host_faults(self, database):
        """How the host's tables differ from those of a database of the shop."""
        trip = RoundTrip(Host(self.live))
        trip.compare(self.shop / "db" / database, "host", 1 + len(list((self.shop / "online").glob("updatedb_l*.php"))))
        trip.connection.close()
        return trip.faults[:5]

    def assert_live(self):
        for folder in ("online", "scripts"):
            listed = [line[1:] for line in (self.shop / "kvftp.dat").read_text("cp1252").splitlines() if len(line) > 1]
            for path in map(pathlib.Path, listed):
                if path.parent != self.shop / folder or path.suffix == ".sql":
                    continue
                self.assertEqual((self.live.shop / folder / path.name).read_bytes(), path.read_bytes(), path.name)
        self.assertEqual(self.host_faults("sql.mdb"), [])

    def assert_last_is_on_the_host(self):
        """The base of the next difference, where there is one, is what the host holds."""
        if (self.shop / "db/last.mdb").exists():
            self.assertEqual(self.host_faults("last.mdb"), [])

    def draw_settings(self, chance):
        settings = ["OPDB: 0", "SAFE: %d" % chance.randint(0, 1), "HASH: %d" % chance.randint(0, 1),
                    "CONN: %d" % chance.randint(1, 4), "PULI: 1"]
        (self.shop / "kvftp.ini").write_text("".join(line + "\r\n" for line in settings))
        return settings

    def assert_published(self, *words):
        done = self.korvane("publish", *words)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        for text in (done.stdout, done.stderr, (self.shop / "kvftp1.log").read_text("cp1252")):
            self.assertNotIn(PASSWORD, text)
        self.assert_live()
        return self.sent(done)

    def empty_host(self):
        for name in ("online", "scripts"):
            for path in (self.live.shop / name).iterdir():
                if path.is_file():
                    path.unlink()

    def publish_twice(self, server, *words, **keys):
        """A first publish, one without a change, and one after a change of price."""
        self.empty_host()
        self.point_at(server, **keys)
        first = self.assert_published(*words)
        self.assertGreater(len(first), 100)
        again = self.assert_published(*words)
        self.assertTrue(again and all(name.endswith(".sql") for name in again), again)
        self.change("UPDATE articoli SET prezzo = prezzo + 10000 WHERE ID = (SELECT MIN(ID) FROM articoli)")
        self.build()
        third = self.assert_published(*words)
        self.assertLess(len(third), len(first) / 2)

    def test_over_pyftpdlib_in_the_clear_passive_and_active(self):
        for mode in ("1", "0"):
            with self.subTest(mode=mode), FtpServer("pyftpdlib", self.live.shop) as server:
                self.setUp()
                self.publish_twice(server, **{"MODE": mode})

    def test_over_pyftpdlib_with_tls(self):
        with FtpServer("pyftpdlib", self.live.shop, tls=True) as server:
            self.publish_twice(server, "--answer", "yes", TLSM=2)

    def test_over_proftpd_which_wants_one_session_for_both_connections(self):
        with FtpServer("proftpd", self.live.shop) as server:
            self.publish_twice(server, "--answer", "yes", TLSM=2)
            self.assertIn("AUTH TLS", (self.shop / "kvftp1.log").read_text("cp1252"))

    def test_over_a_server_that_speaks_the_newest_tls_alone(self):
        with FtpServer("proftpd", self.live.shop, newest=True) as server:
            self.publish_twice(server, "--answer", "yes")

    def test_over_openssh_whose_key_is_asked_about_once(self):
        with SshServer(self.live.shop) as server:
            self.empty_host()
            self.point_at(server, PROT=1)
            refused = self.korvane("publish")
            self.assertEqual(refused.returncode, 1)
            self.assertIn("La chiave del server 127.0.0.1 non è ancora conosciuta", refused.stderr)
            first = self.assert_published("--answer", "yes")
            self.assertGreater(len(first), 100)
            self.change("UPDATE articoli SET prezzo = prezzo + 10000 WHERE ID = (SELECT MIN(ID) FROM articoli)")
            self.build()
            (self.shop / "kvftp.ini").write_text("SAFE: 1\r\nCONN: 3\r\n")
            again = self.assert_published()
            self.assertLess(len(again), len(first) / 2)

    def test_an_ssh_server_that_asks_for_the_password_gets_it_as_the_answer(self):
        with AskingSshServer(self.live.shop) as server:
            self.point_at(server, PROT=1)
            # No folder to publish to: who is told so is in.
            self.change("UPDATE generale SET folderFTP = 'manca'")
            (self.live.work / "config/korvane/known_hosts").unlink(missing_ok=True)
            done = self.korvane("publish", "--answer", "yes", "--answer", "no")
            self.assertEqual(done.returncode, 1, done.stderr)
            self.assertIn("La cartella specificata (manca)", done.stderr)
            self.assertNotIn(PASSWORD, (self.shop / "kvftp1.log").read_text("cp1252") + done.stderr)

    def test_through_socks_servers(self):
        with FtpServer("pyftpdlib", self.live.shop) as server, Dante() as open_proxy, Microsocks() as proxy:
            login = {"USER": USER, "PASS": PASSWORD}
            for kind, through, more in ((1, open_proxy, {}), (2, open_proxy, {}), (2, proxy, login)):
                with self.subTest(kind=kind, through=through.words()[0]):
                    self.point_at(server, TYPE=kind, HOST="127.0.0.1", PORT=through.port, **more)
                    self.assert_published()
            self.point_at(server, TYPE=2, HOST="127.0.0.1", PORT=proxy.port)
            refused = self.korvane("publish")
            self.assertEqual(refused.returncode, 1)
            self.assertIn("il firewall non apre la connessione: richiede un utente e una password", refused.stderr)

    def publish_and_kill(self, words, seconds):
        """A publish that is killed after that time, unless it is over by then."""
        running = subprocess.Popen([KORVANE, "publish", *words, str(self.shop)], env=self.live.environment,
                                   stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        try:
            running.wait(seconds)
        except subprocess.TimeoutExpired:
            running.kill()
        running.wait()

    def test_after_a_kill_at_any_moment_the_next_run_brings_everything_right(self):
        chance = random.Random(WALK_SEED)
        with FtpServer("pyftpdlib", self.live.shop) as server:
            self.publish_twice(server)
            # A run of an untouched shop takes as long as the machine makes it; one with changes somewhat longer.
            started = time.monotonic()
            self.assert_published()
            longest = 2 * (time.monotonic() - started)
            for number in range(KILL_ROUNDS):
                with self.subTest(round=number, seed=WALK_SEED, settings=self.draw_settings(chance)):
                    self.change("UPDATE articoli SET prezzo = prezzo + 10000, titolo = 'Giro ' || ?", number)
                    self.build()
                    self.publish_and_kill(chance.choice([[], ["--all"]]), chance.uniform(0, longest))
                    self.assert_last_is_on_the_host()
                    # The host may still be loading what the killed run has told it to; a run that meets that says so.
                    for _ in range(10):
                        if self.korvane("publish").returncode == 0:
                            break
                        self.assert_last_is_on_the_host()
                    self.assert_last_is_on_the_host()
                    self.assert_published()

    def walk_edits(self, chance):
        """A few edits such as a merchant makes; the catalogue stays one that can be built."""
        catalogue = sqlite3.connect(self.shop / "catalog.mdb")
        articles = [row[0] for row in catalogue.execute("SELECT ID FROM articoli ORDER BY ID")]
        with catalogue:
            for number in chance.sample(articles, min(3, len(articles))):
                act = chance.choice(["price", "title", "delete", "copy", "department"])
                if act == "price":
                    catalogue.execute("UPDATE articoli SET prezzo = prezzo + 10000 WHERE ID = ?", (number,))
                elif act == "title":
                    catalogue.execute("UPDATE articoli SET titolo = substr(titolo || ?, -50) WHERE ID = ?",
                                      (chance.choice([" è", "'", "\\", ' "x"', " €"]), number))
                elif act == "delete" and len(articles) > 10:
                    catalogue.execute("DELETE FROM articoli WHERE ID = ?", (number,))
                elif act == "copy":
                    catalogue.execute("INSERT INTO articoli (titolo, catID, prezzo) SELECT titolo, catID, prezzo FROM "
                                      "articoli WHERE ID = ?", (number,))
                else:
                    catalogue.execute("UPDATE categorie SET titolo = substr(titolo || ?, -30) WHERE ID = (SELECT catID "
                                      "FROM articoli WHERE ID = ?)", (chance.choice("abc"), number))
        catalogue.close()

    def publish_through_a_fault(self, server, chance, fault):
        """A publish that meets a fault at a random command or data connection: it says so, and nothing claims success.
        True when it has failed."""
        settings = self.shop / "kvftp.ini"
        usual = settings.read_text()
        settings.write_text("%sWAIT: 5\r\nRETR: %d\r\n" % (usual, chance.random() < 0.2))
        most = 6 if fault in DATA_FAULTS else 60
        with FaultyGate(server.port, chance.randint(1, most), fault, chance.randint(0, 3000)) as gate:
            self.point_at(gate)
            done = self.korvane("publish")
            self.point_at(server)
        settings.write_text(usual)
        self.assertNotIn(PASSWORD, done.stdout + done.stderr)
        # One that was over before the fault, or has met it where nothing was to be lost, has done all that it was to do.
        if done.returncode == 0:
            self.assert_live()
            return False
        self.assertTrue(gate.fired, fault)
        self.assertNotIn(fault, HARMLESS)
        self.assertIn("Errore:", done.stderr, fault)
        self.assertNotIn("terminato", done.stdout + done.stderr, fault)
        return True

    @staticmethod
    def faults(chance):
        """Faults without an end; none comes again before each of the others has come."""
        while True:
            yield from chance.sample(FAULTS, len(FAULTS))

    def test_a_random_walk_of_edits_keeps_the_live_shop_equal_to_the_build(self):
        chance = random.Random(WALK_SEED)
        faults, met = self.faults(chance), {}
        with FtpServer("pyftpdlib", self.live.shop) as server:
            self.empty_host()
            self.point_at(server)
            self.assert_published()
            for number in range(WALK_ROUNDS):
                with self.subTest(round=number, seed=WALK_SEED):
                    self.draw_settings(chance)
                    self.walk_edits(chance)
                    self.build()
                    if chance.random() < 0.5:
                        fault = next(faults)
                        met.setdefault(fault, []).append(self.publish_through_a_fault(server, chance, fault))
                    self.assert_published("--answer", "yes")
        print("faults, and how many of the runs that met them failed:",
              ", ".join("%s %d of %d" % (name, sum(runs), len(runs)) for name, runs in sorted(met.items())), flush=True)

    def test_a_certificate_that_nobody_has_signed_is_refused_by_default(self):
        with FtpServer("proftpd", self.live.shop) as server:
            self.point_at(server)
            done = self.korvane("publish")
            self.assertEqual(done.returncode, 1)
            self.assertIn("Il certificato del server 127.0.0.1 non è valido", done.stderr)
            self.assertNotIn("USER", (self.shop / "kvftp1.log").read_text("cp1252"))

    def test_a_server_without_tls_is_left_when_that_is_required(self):
        with FtpServer("pyftpdlib", self.live.shop) as server:
            self.point_at(server, TLSM=2)
            done = self.korvane("publish")
            self.assertEqual(done.returncode, 1)
            self.assertIn("il server non offre una connessione cifrata (TLS)", done.stderr)

    def test_a_folder_that_is_missing_is_made_after_the_question(self):
        with FtpServer("pyftpdlib", self.live.shop) as server:
            self.point_at(server)
            self.change("UPDATE generale SET folderCGI = 'nuova/cartella'")
            self.assertEqual(self.korvane("publish").returncode, 1)
            self.assertFalse((self.live.shop / "nuova").exists())
            done = self.korvane("publish", "--answer", "yes")
            self.assertEqual(done.returncode, 0, done.stderr)
            self.assertTrue((self.live.shop / "nuova/cartella/bo.css").is_file())


if __name__ == "__main__":
    KORVANE = sys.argv.pop(1)
    unittest.main(verbosity=2)
