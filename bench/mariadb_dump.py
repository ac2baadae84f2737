#!/usr/bin/env python3
"""mariadb_dump.py LOADFILE: loads a dump into a server of its own and prints the seconds of the fastest of five runs of
mariadb-dump over it, and the bytes that it wrote."""
import os
import subprocess
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "servers"))
from mariadb_server import Server, program  # noqa: E402


def load(connection, path):
    for statement in (b"CREATE DATABASE kv CHARACTER SET latin1", b"USE kv", b"SET NAMES latin1", b"SET autocommit = 0"):
        connection.execute(statement)
    lines = []
    with open(path, "rb") as file:
        next(file)
        for line in file:
            lines.append(line)
            if line.endswith(b";\r\n"):
                connection.execute(b"".join(lines).strip()[:-1])
                lines = []
    connection.execute(b"COMMIT")


def main(path):
    with Server() as server:
        connection = server.connect()
        load(connection, path)
        seconds, out = [], os.path.join(server.folder, "dump.sql")
        for _ in range(5):
            with open(out, "wb") as file:
                start = time.monotonic()
                subprocess.run([program("mariadb-dump"), "--no-defaults", "--socket=" + server.socket, "--user=root",
                                "--skip-extended-insert", "--default-character-set=latin1", "kv"], stdout=file, check=True)
                seconds.append(time.monotonic() - start)
        print(min(seconds), os.path.getsize(out))
        connection.close()


if __name__ == "__main__":
    main(sys.argv[1])
