#!/usr/bin/env python3
"""publish_bench.py KORVANE_CLI [--quick]: a publish to pyftpdlib on loopback beside `lftp mirror -R`, over one connection
and over four.

The folder holds the model shop and 2,000 files of 8 KiB (--quick: 200). Three runs each: all of it, nothing changed, 5 %
changed. Seconds; those of korvane-cli include making the SQL files and asking a host that isn't there to load them.
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

SOURCES = pathlib.Path(__file__).resolve().parents[1]
sys.path.insert(0, str(SOURCES / "tests/servers"))
from ftp_servers import PASSWORD, USER, FtpServer  # noqa: E402  (the path above comes first)

FILE_SIZE = 8192
FOLDERS = ("online", "scripts")


class Bench:
    def __init__(self, program, folder, files):
        self.program, self.folder, self.files = program, folder, files
        self.shop = folder / "negozio"
        self.chance = random.Random(20240229)
        self.environment = {**os.environ, "XDG_DATA_HOME": str(folder / "data"),
                            "XDG_CONFIG_HOME": str(folder / "config")}

    def korvane(self, *words, check=True):
        return subprocess.run([self.program, *words, str(self.shop)], env=self.environment, capture_output=True,
                              stdin=subprocess.DEVNULL, check=check)

    def prepare(self):
        self.korvane("new")
        self.korvane("build")
        self.write(range(self.files))

    def write(self, numbers):
        for number in numbers:
            (self.shop / ("online/misura%05d.bin" % number)).write_bytes(self.chance.randbytes(FILE_SIZE))

    def publish(self, server, connections):
        catalogue = sqlite3.connect(self.shop / "catalog.mdb")
        with catalogue:
            catalogue.execute("UPDATE generale SET URL = 'http://127.0.0.1:1', hostname = '127.0.0.1', username = ?, "
                              "password = ?, folderFTP = 'online', folderCGI = 'scripts'", (USER, PASSWORD))
        catalogue.close()
        (self.shop / "firewall.net").write_text("MODE: 1\r\nFPRT: %s\r\n" % server.port)
        (self.shop / "kvftp.ini").write_text("SHOP: 0\r\nCONN: %d\r\n" % connections)
        begin = time.monotonic()
        done = self.korvane("publish", check=False)
        if b"File inviati" not in done.stdout or b"non inviato" in done.stdout:
            raise SystemExit((done.stdout[-500:] + done.stderr).decode())
        return time.monotonic() - begin

    def mirror(self, server, connections):
        script = "set cmd:fail-exit yes; set ftp:ssl-allow no; open -u %s,%s -p %s 127.0.0.1; " % (USER, PASSWORD,
                                                                                                 server.port)
        for name in FOLDERS:
            script += "mirror -R --parallel=%d %s %s; " % (connections, self.shop / name, name)
        begin = time.monotonic()
        subprocess.run(["lftp", "-c", script], check=True, capture_output=True, stdin=subprocess.DEVNULL)
        return time.monotonic() - begin

    def measure(self, connections):
        homes = [self.folder / ("%s%d" % (name, connections)) for name in ("korvane", "lftp")]
        for home in homes:
            for name in FOLDERS:
                (home / name).mkdir(parents=True)
        table = sqlite3.connect(self.shop / "kvftp.mdb")
        with table:
            table.execute("DELETE FROM file")
        table.close()
        with FtpServer("pyftpdlib", homes[0]) as ours, FtpServer("pyftpdlib", homes[1]) as theirs:
            for name in ("all", "nothing changed", "5 % changed"):
                if name.startswith("5"):
                    self.write(range(0, self.files, 20))
                seconds = self.publish(ours, connections), self.mirror(theirs, connections)
                for home in homes:
                    if len(list((home / "online").glob("misura*.bin"))) != self.files:
                        raise SystemExit("%s does not hold all files" % home)
                print("publish, %d connections, %-16s %6.2f s   lftp %6.2f s   ratio %.2f"
                      % (connections, name, *seconds, seconds[0] / seconds[1]), flush=True)


def main():
    folder = pathlib.Path(tempfile.mkdtemp(prefix="korvane-publish-bench-"))
    try:
        bench = Bench(str(pathlib.Path(sys.argv[1]).resolve()), folder, 200 if "--quick" in sys.argv else 2000)
        bench.prepare()
        for connections in (1, 4):
            bench.measure(connections)
    finally:
        shutil.rmtree(folder)


if __name__ == "__main__":
    main()
