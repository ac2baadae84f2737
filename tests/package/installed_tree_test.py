#!/usr/bin/env python3
"""What `cmake --install` leaves: exactly the files that are expected, with the rights they should have, papers that
their readers accept, and programs that run from wherever the tree has been moved to.

    installed_tree_test.py BUILD VERSION

Outside share/korvane the names are in expected_files.txt; share/korvane must be the data tree of the build.
"""
import filecmp
import gzip
import os
import pathlib
import shutil
import stat
import subprocess
import sys
import tempfile
import unittest

BUILD = pathlib.Path(sys.argv[1])
VERSION = sys.argv[2]
HERE = pathlib.Path(__file__).resolve().parent
APP = "it.korvane.Korvane"


def run(*command, **options):
    return subprocess.run([str(word) for word in command], check=False, text=True, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, timeout=600, **options)


def names(folder):
    return sorted(str(path.relative_to(folder)) for path in folder.rglob("*") if not path.is_dir())


class InstalledTree(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.home = pathlib.Path(tempfile.mkdtemp(prefix="korvane-install-"))
        # `make install` does the same: folders take their rights from the umask.
        done = run("sh", "-c", 'umask 022 && exec "$@"', "sh", "cmake", "--install", BUILD, "--prefix", "/opt/korvane",
                   env={**os.environ, "DESTDIR": str(cls.home / "dest")})
        cls.tree = cls.home / "dest/opt/korvane"
        if done.returncode != 0:
            raise RuntimeError(done.stdout)

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.home)

    def accepted(self, *command):
        done = run(*command)
        self.assertEqual((done.returncode, done.stdout), (0, ""), command)

    def test_the_files_are_those_expected(self):
        found = [name for name in names(self.tree) if not name.startswith("share/korvane/")]
        self.assertEqual(found, sorted((HERE / "expected_files.txt").read_text(encoding="ascii").split()))

    def test_nothing_is_outside_the_prefix(self):
        outside = [name for name in names(self.home / "dest") if not name.startswith("opt/korvane/")]
        self.assertEqual(outside, [])

    def test_the_data_is_that_of_the_build_byte_by_byte(self):
        built = BUILD / "share/korvane"
        installed = self.tree / "share/korvane"
        self.assertEqual(names(installed), names(built))
        _, differing, unread = filecmp.cmpfiles(built, installed, names(built), shallow=False)
        self.assertEqual((differing, unread), ([], []))

    def test_everyone_may_read_and_only_the_owner_may_write(self):
        for path in [self.tree, *self.tree.rglob("*")]:
            rights = stat.S_IMODE(path.lstat().st_mode)
            program = path.parent == self.tree / "bin"
            wanted = 0o755 if path.is_dir() or program else 0o644
            self.assertEqual(oct(rights), oct(wanted), path)

    def test_a_moved_tree_finds_its_data(self):
        moved = self.home / "elsewhere"
        shutil.copytree(self.tree, moved)
        user = {**os.environ, "HOME": str(self.home), "XDG_DATA_HOME": str(self.home / "data"),
                "XDG_CONFIG_HOME": str(self.home / "config")}
        made = run(moved / "bin/korvane-cli", "new", self.home / "negozio", env=user)
        self.assertEqual(made.returncode, 0, made.stdout)
        self.assertTrue((self.home / "negozio/catalog.mdb").is_file())
        self.assertTrue((self.home / "data/korvane/template").is_dir())

    def test_both_programs_tell_the_version(self):
        for program in ("korvane", "korvane-cli"):
            told = run(self.tree / "bin" / program, "--version")
            self.assertEqual((told.returncode, told.stdout), (0, f"{program} {VERSION}\n"))

    def test_the_desktop_entry_is_valid_and_names_what_is_installed(self):
        entry = self.tree / f"share/applications/{APP}.desktop"
        self.accepted("desktop-file-validate", entry)
        lines = entry.read_text(encoding="utf-8").splitlines()
        self.assertIn(f"Icon={APP}", lines)
        self.assertIn("Exec=korvane %f", lines)

    def test_the_metadata_is_valid_and_tells_the_version(self):
        metadata = self.tree / f"share/metainfo/{APP}.metainfo.xml"
        done = run("appstreamcli", "validate", "--no-net", metadata)
        self.assertEqual(done.returncode, 0, done.stdout)
        self.assertIn(f'<release version="{VERSION}"', metadata.read_text(encoding="utf-8"))

    def test_the_manual_pages_are_well_made(self):
        for program in ("korvane", "korvane-cli"):
            page = self.home / f"{program}.1"
            page.write_bytes(gzip.decompress((self.tree / f"share/man/man1/{program}.1.gz").read_bytes()))
            self.accepted("mandoc", "-T", "lint", page)
            self.assertIn(f'"Korvane {VERSION}"', page.read_text(encoding="utf-8"))

    def test_the_manual_pages_name_every_option_that_the_programs_take(self):
        for program in ("korvane", "korvane-cli"):
            page = gzip.decompress((self.tree / f"share/man/man1/{program}.1.gz").read_bytes()).decode("utf-8")
            usage = run(self.tree / "bin" / program, "--help").stdout
            for option in {word.strip(",[]:.") for word in usage.split() if word.startswith(("--", "[--"))}:
                self.assertIn(option.replace("-", r"\-"), page, program)

    def test_compressed_papers_carry_no_date(self):
        for paper in self.tree.rglob("*.gz"):
            self.assertEqual(paper.read_bytes()[4:8], b"\0\0\0\0", paper)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=0)
