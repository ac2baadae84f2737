"""tests/tools/within.py ends a driver that hangs, with all that it started, and says what that was; and no server of a
test's own outlives its driver.

    python3 within_test.py BUILD
"""
import json
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import time
import unittest

SCRIPT = pathlib.Path(__file__).with_name("within.py")
BUILD = sys.argv.pop(1)
LONG = "1000"
# A server in a session of its own, deaf to SIGTERM, and a driver that waits for ever.
HANGING = "setsid sh -c \"trap '' TERM; echo \\$\\$; exec sleep 1001\" & sleep 1002"


def start(*words):
    return subprocess.Popen([sys.executable, "-B", SCRIPT, LONG, *words], stdout=subprocess.PIPE, text=True)


def is_there(pid):
    try:
        return pathlib.Path(f"/proc/{pid}/stat").read_text().rpartition(")")[2].split()[0] not in "ZX"
    except OSError:
        return False


class Within(unittest.TestCase):
    def ended(self, which):
        """What is printed and the status, when a driver that hangs gets a signal, and the number of its server."""
        one = start("sh", "-c", HANGING)
        server = int(one.stdout.readline())
        self.addCleanup(lambda: is_there(server) and os.kill(server, signal.SIGKILL))
        one.send_signal(which)
        told, _ = one.communicate(timeout=300)
        self.assertFalse(is_there(server))
        return told, one.returncode

    def test_a_driver_that_ends_in_time_gives_its_words_and_its_status(self):
        one = start("sh", "-c", "echo done; exit 7")
        self.assertEqual((one.communicate(timeout=300)[0], one.returncode), ("done\n", 7))

    def test_a_driver_that_a_signal_ended_has_failed(self):
        one = start("sh", "-c", "kill -SEGV $$")
        one.communicate(timeout=300)
        self.assertEqual(one.returncode, 128 + signal.SIGSEGV)

    def test_a_driver_that_hangs_is_told_and_ends_with_its_servers(self):
        told, status = self.ended(signal.SIGALRM)
        self.assertEqual(status, 124)
        self.assertIn("sh did not end within 1000 s; running were:\n", told)
        self.assertIn("sleep 1001", told)
        self.assertIn("sleep 1002", told)

    def test_whoever_ends_the_run_ends_its_servers(self):
        self.assertEqual(self.ended(signal.SIGTERM), ("", 128 + signal.SIGTERM))

    def test_a_run_that_is_killed_by_force_ends_its_servers(self):
        self.assertEqual(self.ended(signal.SIGKILL), ("", -signal.SIGKILL))

    def test_a_server_does_not_outlive_its_driver(self):
        one = start("sh", "-c", "setsid sleep 1003 >/dev/null & echo $!")
        server = int(one.communicate(timeout=300)[0])
        self.assertEqual(one.returncode, 0)
        self.assertFalse(is_there(server))


# A driver of servers that waits for ever, started by hand.
DRIVER = """
import sys, time
from own_server import OwnServer
class Idle(OwnServer):
    def words(self):
        return [sys.executable, "-m", "http.server", "--bind", "127.0.0.1", str(self.port)]
with Idle() as server:
    print(server.process.pid, server.folder, flush=True)
    time.sleep(1004)
"""


class OwnServers(unittest.TestCase):
    def test_a_server_ends_with_a_driver_that_is_killed_by_force(self):
        one = subprocess.Popen([sys.executable, "-B", "-c", DRIVER], stdout=subprocess.PIPE, text=True,
                               env={**os.environ, "PYTHONPATH": str(SCRIPT.parents[1] / "servers")})
        number, folder = one.stdout.readline().split()
        self.addCleanup(shutil.rmtree, folder)
        self.assertTrue(is_there(int(number)))
        one.kill()
        one.communicate(timeout=300)
        give_up = time.monotonic() + 300
        while is_there(int(number)) and time.monotonic() < give_up:
            time.sleep(0.02)
        self.assertFalse(is_there(int(number)), "the server is still there")


class Limits(unittest.TestCase):
    def test_every_test_ends_within_twenty_minutes(self):
        listing = subprocess.run(["ctest", "--show-only=json-v1"], cwd=BUILD, check=True, capture_output=True, text=True,
                                 timeout=300).stdout
        tests = [test for test in json.loads(listing)["tests"] if not test["name"].endswith("_NOT_BUILT")]
        self.assertGreater(len(tests), 30)
        for test in tests:
            with self.subTest(test["name"]):
                limits = [one["value"] for one in test["properties"] if one["name"] == "TIMEOUT"]
                self.assertTrue(limits and limits[0] <= 1200, limits)


if __name__ == "__main__":
    unittest.main()
