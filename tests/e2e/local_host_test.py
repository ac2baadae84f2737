"""tools/local-host by itself: what it says when something is missing, and that it never leaves a server running."""
import os
import pathlib
import shutil
import signal
import socket
import sqlite3
import subprocess
import sys
import tempfile
import time
import unittest
import urllib.request

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent / "support"))
from processes import processes_below  # noqa: E402  (the path above comes first)

PROGRAM = pathlib.Path(__file__).resolve().parents[2] / "tools" / "local-host"
CLI = sys.argv.pop(1)


def host(*words, **more):
    return subprocess.run([PROGRAM, *map(str, words)], capture_output=True, text=True, check=False, timeout=1200,
                          stdin=subprocess.DEVNULL, **more)


class LocalHost(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        # A space and an accent, as folders of merchants have them.
        cls.root = pathlib.Path(tempfile.mkdtemp(prefix="korvane-")) / "città vecchia"
        cls.root.mkdir()
        cls.shop = cls.root / "shop"
        environment = {**os.environ, "XDG_DATA_HOME": str(cls.root / "data"), "XDG_CONFIG_HOME": str(cls.root / "conf")}

        def run(*words):
            subprocess.run(words, check=True, capture_output=True, env=environment)
        run(CLI, "new", cls.shop)
        cls.unprepared = cls.root / "unprepared"
        shutil.copytree(cls.shop, cls.unprepared)
        cls.address = subprocess.run([PROGRAM, "prepare", cls.shop], check=True, capture_output=True,
                                     text=True).stdout.strip()
        run(CLI, "build", cls.shop)
        run(CLI, "export-sql", cls.shop)
        cls.home = cls.root / "home"

    @classmethod
    def tearDownClass(cls):
        host("stop", "--home", cls.home)
        shutil.rmtree(cls.root.parent)

    def tearDown(self):
        host("stop", "--home", self.home)
        self.assertEqual(processes_below(self.home), [])

    def start(self):
        started = host("start", self.shop, "--home", self.home)
        self.assertEqual(started.returncode, 0, started.stderr)
        return started.stdout

    def get(self, path):
        try:
            with urllib.request.build_opener(urllib.request.ProxyHandler({})).open(self.address + path) as answer:
                return answer.status, answer.read().decode("cp1252")
        except urllib.error.HTTPError as error:
            return error.code, ""

    def test_a_shop_is_served_with_its_back_office_and_nothing_private(self):
        words = self.start()
        self.assertIn(f"shop {self.address}\nbackoffice {self.address}scripts/backoffice/\nmail {self.home}/mail\n", words)
        loaded = host("load", self.shop, "--home", self.home)
        self.assertEqual(loaded.returncode, 0, loaded.stdout + loaded.stderr)
        answers = [f"updatedb{language}.php: OK\n" for language in ("", "_l2", "_l3", "_l4")]
        self.assertEqual(loaded.stdout, "".join(answers))
        self.assertIn("Bottega Montelune", self.get("")[1])
        self.assertEqual(self.get("scripts/backoffice/")[0], 200)
        security = sqlite3.connect(self.shop / "catalog.mdb").execute("SELECT db_security FROM generale").fetchone()[0]
        private = self.shop / "online" / "private.ini"
        private.write_text("secret")
        for path in (f"{security}.sc", "private.ini", ".htaccess", "scripts/", "../catalog.mdb", "catalog.mdb"):
            self.assertIn(self.get(path)[0], (400, 403, 404), path)
        self.assertEqual((self.home / "log" / "php.log").read_text(), "")

    def test_every_notice_of_php_is_logged_and_none_is_shown(self):
        self.start()
        page = self.shop / "online" / "faulty.php"
        page.write_text("<?php echo 'before', $nowhere, 'after';")
        self.assertEqual(self.get("faulty.php"), (200, "beforeafter"))
        self.assertIn("Undefined variable $nowhere", (self.home / "log" / "php.log").read_text())
        page.unlink()
        (self.home / "log" / "php.log").write_text("")

    def test_each_mail_becomes_a_file(self):
        self.start()
        page = self.shop / "online" / "mail.php"
        page.write_text("<?php foreach (['a', 'b'] as $n) mail(\"$n@shop.example\", $n, \"text $n\");")
        self.get("mail.php")
        page.unlink()
        texts = [(self.home / "mail" / f"000{n}.eml").read_text() for n in (1, 2)]
        self.assertIn("To: a@shop.example", texts[0])
        self.assertIn("text b", texts[1])

    def test_a_host_that_lost_a_server_is_told_and_can_be_started_again(self):
        self.start()
        status = host("status", "--home", self.home)
        self.assertEqual(status.returncode, 0, status.stderr)
        number = int(next(line for line in status.stdout.splitlines() if line.startswith("MariaDB")).split()[-1])
        os.kill(number, signal.SIGKILL)
        time.sleep(0.3)
        self.assertEqual(host("status", "--home", self.home).returncode, 1)
        self.assertIn("stop it first", host("start", self.shop, "--home", self.home).stderr)
        self.assertEqual(host("stop", "--home", self.home).returncode, 0)
        self.start()

    def test_servers_that_are_gone_are_no_obstacle(self):
        self.start()
        for line in host("status", "--home", self.home).stdout.splitlines():
            if " process " in line:
                os.killpg(int(line.split()[-1]), signal.SIGKILL)
        time.sleep(0.3)
        self.start()

    def test_the_host_ends_with_the_program_that_holds_it(self):
        holder = subprocess.Popen([PROGRAM, "start", self.shop, "--home", self.home, "--hold"], stdin=subprocess.PIPE,
                                  stdout=subprocess.PIPE, text=True)
        for line in holder.stdout:
            if line.startswith("mail"):
                break
        self.assertEqual(self.get("condizioni.php")[0], 200)
        holder.stdin.close()
        self.assertEqual(holder.wait(60), 0)
        holder.stdout.close()
        self.assertEqual(processes_below(self.home), [])

    def test_a_taken_port_is_named_and_no_server_is_left(self):
        with socket.socket() as other:
            other.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
            other.bind(("127.0.0.1", int(self.address.rsplit(":", 1)[1].rstrip("/"))))
            other.listen()
            refused = host("start", self.shop, "--home", self.home)
        self.assertEqual(refused.returncode, 1)
        self.assertIn("is not free", refused.stderr)
        self.assertEqual(len(refused.stderr.splitlines()), 1)

    def test_a_missing_server_is_named_with_its_package(self):
        refused = host("start", self.shop, "--home", self.home, env={**os.environ, "PHP_FPM": "php-fpm0.0"})
        self.assertEqual(refused.stderr, "local-host: php-fpm0.0 is missing: install the package php-fpm "
                                         "(tools/install-deps does)\n")

    def test_a_shop_that_is_not_prepared_or_not_there_is_refused(self):
        self.assertIn("run tools/local-host prepare", host("start", self.unprepared, "--home", self.home).stderr)
        self.assertIn("is no shop folder", host("start", self.root, "--home", self.home).stderr)

    def test_a_shop_that_is_set_up_for_a_real_host_is_not_changed(self):
        with sqlite3.connect(self.unprepared / "catalog.mdb") as catalogue:
            catalogue.execute("UPDATE generale SET db_username = 'livia'")
        refused = host("prepare", self.unprepared)
        self.assertEqual(refused.returncode, 1)
        self.assertIn("is set up for www.bottega.example", refused.stderr)


if __name__ == "__main__":
    unittest.main(verbosity=2)
