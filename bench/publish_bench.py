#!/usr/bin/env python3
"""publish_bench.py KORVANE_CLI [--quick | --whole]: a publish to pyftpdlib beside `lftp mirror -R`, over one connection
and over four, on loopback and with 20 ms to and fro.

The folder holds the model shop and 2,000 files of 8 KiB (--quick: 200; with the distance 60, all of them only with
--whole, which takes half an hour). Three runs each: all of it, nothing changed, 5 % changed. Seconds; those of
korvane-cli include making the SQL files and asking a host that isn't there to load them. The distance is a relay before
each server: delaying a network device takes a part of the kernel that not every machine has, and a relay is the same for
both. With it, what was sent is sent once more by a bare script: DELE, EPSV, STOR. At last 10,000 files (--quick: 1,000)
of which nothing changed: commands, each of which waits for its reply, and data connections.
"""
import os
import pathlib
import random
import shutil
import socket
import sqlite3
import subprocess
import sys
import tempfile
import time

SOURCES = pathlib.Path(__file__).resolve().parents[1]
sys.path.insert(0, str(SOURCES / "tests/servers"))
from distant_server import DistantServer  # noqa: E402  (the path above comes first)
from ftp_servers import PASSWORD, USER, FtpServer  # noqa: E402

FILE_SIZE = 8192
FOLDERS = ("online", "scripts")
DISTANCE = 0.02  # seconds to and fro
DISTANT_FILES = 60
UNCHANGED_FILES, UNCHANGED_SIZE = 10000, 64
MEASURED_TYPES = ".bin."
# At most this much of what the other one takes, over one connection and over four, with the distance.
DISTANT_BARS = {1: 0.85, 4: 1.0}
BARE_BAR = 1.05
MOST_COMMANDS, MOST_DATA_CONNECTIONS = 8, 0


def verdict(value, bar):
    return "bar %g  %s" % (bar, "met" if value <= bar else "MISSED")


class BareScript:
    """The least that an upload over FTP takes when the old file is deleted first: no client around it."""

    def __init__(self, port):
        self.control = socket.create_connection(("127.0.0.1", port))
        self.replies = self.control.makefile("rb")
        self.reply()

    def reply(self):
        while True:
            line = self.replies.readline()
            if line[3:4] == b" ":
                return line

    def command(self, text):
        self.control.sendall(text.encode() + b"\r\n")
        return self.reply()

    def store(self, path):
        self.command("DELE " + path.name)
        port = int(self.command("EPSV").split(b"|||")[1].split(b"|")[0])
        with socket.create_connection(("127.0.0.1", port)) as data:
            self.command("STOR " + path.name)
            data.sendall(path.read_bytes())
        self.reply()

    def send(self, folders):
        begin = time.monotonic()
        for command in ("USER " + USER, "PASS " + PASSWORD, "TYPE I"):
            self.command(command)
        for name, paths in folders.items():
            self.command("CWD /" + name)
            for path in paths:
                self.store(path)
        self.command("QUIT")
        return time.monotonic() - begin


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

    def write(self, numbers, size=FILE_SIZE):
        for number in numbers:
            (self.shop / ("online/misura%05d.bin" % number)).write_bytes(self.chance.randbytes(size))

    def send_bare(self, server):
        """Sends what the last publish has sent."""
        table = sqlite3.connect(self.shop / "kvftp.mdb")
        keys = [row[0].split("/")[1:] for row in table.execute("SELECT nome FROM file")]
        table.close()
        return BareScript(server.port).send({name: [self.shop / name / key[1] for key in keys if key[0] == name]
                                             for name in FOLDERS})

    def publish(self, server, connections, types=""):
        catalogue = sqlite3.connect(self.shop / "catalog.mdb")
        with catalogue:
            catalogue.execute("UPDATE generale SET URL = 'http://127.0.0.1:1', hostname = '127.0.0.1', username = ?, "
                              "password = ?, folderFTP = 'online', folderCGI = 'scripts'", (USER, PASSWORD))
        catalogue.close()
        (self.shop / "firewall.net").write_text("MODE: 1\r\nFPRT: %s\r\n" % server.port)
        wanted = "TYPE: %s\r\n" % types if types else ""
        (self.shop / "kvftp.ini").write_text("%sSHOP: 0\r\nCONN: %d\r\n" % (wanted, connections))
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

    def empty_homes(self):
        """Folders for two servers without a file, of which the shop remembers nothing."""
        homes = [self.folder / name for name in ("korvane", "lftp")]
        for home in homes:
            shutil.rmtree(home, ignore_errors=True)
            for name in FOLDERS:
                (home / name).mkdir(parents=True)
        table = sqlite3.connect(self.shop / "kvftp.mdb")
        with table:
            table.execute("DELETE FROM file")
        table.close()
        return homes

    def measure(self, connections):
        homes = self.empty_homes()
        with FtpServer("pyftpdlib", homes[0]) as ours, FtpServer("pyftpdlib", homes[1]) as theirs:
            self.compare(homes, (ours, theirs), connections, "")

    def measure_distant(self, connections):
        homes = self.empty_homes()
        with FtpServer("pyftpdlib", homes[0]) as one, FtpServer("pyftpdlib", homes[1]) as other, \
                DistantServer(one.port, DISTANCE) as ours, DistantServer(other.port, DISTANCE) as theirs:
            self.compare(homes, (ours, theirs), connections, " 20 ms away")

    def compare(self, homes, servers, connections, where):
        for name in ("all", "nothing changed", "5 % changed"):
            if name.startswith("5"):
                self.write(range(0, self.files, 20))
            seconds = self.publish(servers[0], connections), self.mirror(servers[1], connections)
            for home in homes:
                if len(list((home / "online").glob("misura*.bin"))) != self.files:
                    raise SystemExit("%s does not hold all files" % home)
            ratio = seconds[0] / seconds[1]
            bar = "  " + verdict(ratio, DISTANT_BARS[connections]) if where and name == "all" else ""
            print("publish%s, %d connections, %-16s %6.2f s   lftp %6.2f s   ratio %.2f%s"
                  % (where, connections, name, *seconds, ratio, bar), flush=True)
            if where and name == "all" and connections == 1:
                bare = self.send_bare(servers[0])
                ratio = seconds[0] / bare
                print("publish%s, %d connections, %-16s %6.2f s   bare %6.2f s   ratio %.2f  %s"
                      % (where, connections, name, seconds[0], bare, ratio, verdict(ratio, BARE_BAR)), flush=True)

    def measure_unchanged(self, files):
        """What a publish of many files says to the server when nothing has changed. The SQL files stay out: a host that
        isn't there has not loaded them, so they go again each time."""
        self.write(range(files), UNCHANGED_SIZE)
        homes = self.empty_homes()
        with FtpServer("pyftpdlib", homes[0]) as server, DistantServer(server.port, 0) as counted:
            self.publish(counted, 1, MEASURED_TYPES)
            first = counted.commands
            counted.commands = counted.data_connections = 0
            seconds = self.publish(counted, 1, MEASURED_TYPES)
            print("publish, nothing changed of %d files  %6.2f s   commands %d (%d at first)  %s   data connections %d  %s"
                  % (files, seconds, counted.commands, first, verdict(counted.commands, MOST_COMMANDS),
                     counted.data_connections, verdict(counted.data_connections, MOST_DATA_CONNECTIONS)), flush=True)

    def thin_out(self, files):
        """Leaves so many of the files that were written."""
        for number in range(files, self.files):
            (self.shop / ("online/misura%05d.bin" % number)).unlink()
        self.files = min(self.files, files)


def main():
    folder = pathlib.Path(tempfile.mkdtemp(prefix="korvane-publish-bench-"))
    try:
        bench = Bench(str(pathlib.Path(sys.argv[1]).resolve()), folder, 200 if "--quick" in sys.argv else 2000)
        bench.prepare()
        for connections in (1, 4):
            bench.measure(connections)
        if "--whole" not in sys.argv:
            bench.thin_out(DISTANT_FILES)
        for connections in (1, 4):
            bench.measure_distant(connections)
        bench.measure_unchanged(UNCHANGED_FILES // 10 if "--quick" in sys.argv else UNCHANGED_FILES)
    finally:
        shutil.rmtree(folder)


if __name__ == "__main__":
    main()
