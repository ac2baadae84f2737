"""The copy of a shop that `tools/local-host view` builds: whole enough to be built, and without a way back into the shop."""
import sqlite3
import sys
import tempfile
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(sys.argv.pop(1)) / "tools"))

from localhost.failure import HostError  # noqa: E402  (the path above comes first)
from localhost.view import copy_shop  # noqa: E402


class CopyOfAShop(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.shop = Path(folder.name) / "negozio"
        self.copy = Path(folder.name) / "copia"
        for name in ("work", "online", "scripts", "db", "backup", "code/js"):
            (self.shop / name).mkdir(parents=True)
        for name in ("work/vaso.jpg", "online/index.php", "backup/catalog-1.mdb", "code/js/kv.js", "new.mdb",
                     "kvftp.mdb", "kvftp.ini", "kvftp.dat", "kvftp1.log", "firewall.net", "catalog.001"):
            (self.shop / name).write_text(name)
        catalogue = sqlite3.connect(self.shop / "catalog.mdb")
        with catalogue:
            catalogue.execute("CREATE TABLE generale (siteonline TEXT, sitescript TEXT)")
            catalogue.execute("INSERT INTO generale VALUES ('/srv/www', '/srv/cgi')")
        catalogue.close()

    def names(self):
        return sorted(str(path.relative_to(self.copy)) for path in self.copy.rglob("*") if path.is_file())

    def test_it_has_what_a_build_reads_and_neither_outputs_nor_passwords(self):
        copy_shop(self.shop, self.copy)
        self.assertEqual(self.names(), ["catalog.mdb", "code/js/kv.js", "kvftp.mdb", "new.mdb"])
        for output in ("online", "scripts", "db"):
            self.assertTrue((self.copy / output).is_dir(), output)

    def test_its_pictures_are_those_of_the_shop(self):
        copy_shop(self.shop, self.copy)
        self.assertEqual((self.copy / "work/vaso.jpg").read_text(), "work/vaso.jpg")

    def test_it_is_built_into_folders_of_its_own(self):
        copy_shop(self.shop, self.copy)
        catalogue = sqlite3.connect(self.copy / "catalog.mdb")
        self.assertEqual(catalogue.execute("SELECT * FROM generale").fetchall(), [(None, None)])
        catalogue.close()

    def test_a_former_copy_goes_and_the_shops_pictures_stay(self):
        copy_shop(self.shop, self.copy)
        (self.copy / "online/alt.php").write_text("x")
        copy_shop(self.shop, self.copy)
        self.assertFalse((self.copy / "online/alt.php").exists())
        self.assertTrue((self.shop / "work/vaso.jpg").exists())

    def test_a_folder_that_is_no_shop_is_told(self):
        with self.assertRaises(HostError):
            copy_shop(self.shop / "work", self.copy)


if __name__ == "__main__":
    unittest.main()
