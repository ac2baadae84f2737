#!/usr/bin/env python3
"""tools/run-demo, which `make demo` runs: the shop is online by FTP at an address that answers, and Ctrl-C leaves
nothing: demo_test.py KORVANE_CLI"""
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import unittest
import urllib.parse
import urllib.request

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent / "support"))
from processes import processes_below  # noqa: E402  (the path above comes first)

PROGRAM = pathlib.Path(__file__).resolve().parents[2] / "tools" / "run-demo"
CLI = sys.argv.pop(1)
PATIENCE = 1200  # seconds for each thing that is waited for; a machine may do ten at once


class Demo(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="korvane-demo-"))
        environment = {name: value for name, value in os.environ.items() if name not in ("DISPLAY", "WAYLAND_DISPLAY")}
        # A group of its own, to which Ctrl-C goes as it would from a keyboard.
        self.demo = subprocess.Popen([PROGRAM, CLI], env={**environment, "TMPDIR": str(self.folder)}, text=True,
                                     stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                     start_new_session=True)
        self.watch = threading.Timer(PATIENCE, self.demo.terminate)
        self.watch.start()

    def tearDown(self):
        self.watch.cancel()
        if self.demo.poll() is None:
            self.demo.terminate()
            self.demo.wait(PATIENCE)
        self.demo.stdout.close()
        shutil.rmtree(self.folder)

    def said(self):
        """What it has said by the time when all is there; its end comes too when it fails."""
        text = ""
        for line in self.demo.stdout:
            text += line
            if line.startswith("Ctrl-C"):
                break
        return text

    @staticmethod
    def page(address):
        with urllib.request.urlopen(address, timeout=PATIENCE) as answer:
            return answer.status, answer.read().decode("cp1252")

    def test_the_shop_is_online_by_ftp_and_ctrl_c_leaves_nothing(self):
        text = self.said()
        self.assertIn("Ctrl-C stops it", text, "it has come up")
        sent = re.search(r"File inviati: (\d+)", text)
        self.assertGreater(int(sent[1]), 100)
        address = re.search(r"the shop +(http://127\.0\.0\.1:\S+)", text)[1]
        status, page = self.page(address)
        self.assertEqual(status, 200)
        self.assertIn("carrello", page.lower())
        # What is found comes from the database.
        self.assertIn("Tazzina da caff", self.page(urllib.parse.urljoin(address, "kvsearch.php?q=piattino"))[1])
        os.killpg(self.demo.pid, signal.SIGINT)
        self.assertEqual(self.demo.wait(PATIENCE), 0)
        self.assertEqual(processes_below(self.folder), [])
        self.assertEqual(list(self.folder.iterdir()), [])


if __name__ == "__main__":
    unittest.main(verbosity=2)
