#!/usr/bin/env python3
"""Every dump that the export makes is loaded into a MariaDB server and read back.

    mariadb_round_trip.py PROGRAM    PROGRAM FOLDER writes one folder for each shop: sql.mdb, and for each way of
                                     exporting it a folder with the published files.

Statements are split as the shop's own loader does it and run in the strictest mode; a warning is a failure. Each value
is then compared with what the SQLite file holds, computed here a second time: line ends folded in pairs, characters
outside the code page as references, numbers as the digits that are written.
"""
import collections
import functools
import os
import re
import shutil
import sqlite3
import struct
import subprocess
import sys
import tempfile

from mariadb_server import Server
from mysql_wire import ServerError


def statements(path, sec):
    """The statements of a file, and its separator."""
    with open(path, "rb") as file:
        lines = file.read().split(b"\r\n")
    assert lines[0] == b"#" + sec, "%s: the head is %r" % (path, lines[0])
    separator, start = b";", 1
    if lines[1].startswith(b"#QS="):
        separator, start = lines[1][4:], 2
    made, statement = [], []
    for line in lines[start:]:
        if not line.endswith(separator):
            statement.append(line)
            continue
        made.append(b"\r\n".join(statement + [line[:-len(separator)]]).strip())
        statement = []
    assert not b"".join(statement).strip(), "%s: an incomplete statement at the end" % path
    return made


def to_code_page(text):
    try:
        return text.encode("cp1252")
    except UnicodeEncodeError:
        pass
    out = bytearray()
    for x in text:
        try:
            out += x.encode("cp1252")
        except UnicodeEncodeError:
            out += bytes([ord(x)]) if ord(x) in (0x81, 0x8D, 0x8F, 0x90, 0x9D) else b"&#%d;" % ord(x)
    return bytes(out)


def folded(text):
    return re.sub("\r\n|\n\r|\r", lambda found: "\n", text)


@functools.lru_cache(None)
def first_word(kind):
    return kind.split("(")[0].upper()


def wanted(kind, field):
    """What the server has to hold for a field of a column declared as `kind`."""
    if field is None:
        return None
    word = first_word(kind)
    if word in ("TEXT", "LONGTEXT"):
        held = to_code_page(folded(field))
        return held.rstrip(b" ") if word == "TEXT" else held  # CHAR is read without the spaces at its end
    if word in ("BLOB", "LONGBLOB"):
        return bytes(field)
    if word == "DATETIME":
        return field.encode()
    if word == "BOOLEAN":
        return b"1" if field else b"0"
    if word == "MONEY_INTEGER":
        return b"%s%d.%04d" % (b"-" if field < 0 else b"", abs(field) // 10000, abs(field) % 10000)
    if word == "FLOAT":
        return struct.unpack("f", struct.pack("f", float("%.6e" % field)))[0]
    if word == "DOUBLE":
        return float("%.14e" % field)
    return b"%d" % field


def selection(kind, name):
    """A single is shown by the server with six digits; as a double it has all of them."""
    name = b"`" + name + b"`"
    return b"CAST(%s AS DOUBLE)" % name if kind.startswith("FLOAT") else name


def found(kind, field):
    if field is None or not kind.startswith(("FLOAT", "DOUBLE")):
        return field
    return struct.unpack("f", struct.pack("f", float(field)))[0] if kind.startswith("FLOAT") else float(field)


RESERVED = {"order": "_order", "group": "_group", "key": "_key"}


# A host's database may hold its texts in either; the way of exporting must not matter to that.
CHARSETS = {"plain": b"latin1", "locked": b"utf8mb4", "marked": b"utf8mb4", "locked-marked": b"latin1"}


class RoundTrip:
    def __init__(self, server):
        self.connection = server.connect()
        self.values = self.dumps = self.count = 0
        self.faults = []

    def run(self, statement, where):
        self.count += 1
        try:
            if self.connection.execute(statement):
                shown = self.connection.rows(b"SHOW WARNINGS")
                self.faults.append("%s: %r\n  %r" % (where, shown, statement[:300]))
        except ServerError as error:
            self.faults.append("%s: %s\n  %r" % (where, error, statement[:300]))

    def fresh_database(self, charset):
        for statement in (b"DROP DATABASE IF EXISTS kv", b"CREATE DATABASE kv CHARACTER SET " + charset, b"USE kv",
                          b"SET sql_mode = 'TRADITIONAL'", b"SET NAMES latin1"):
            self.connection.execute(statement)

    def load(self, folder, sec, charset, again):
        """Loads all languages; `again`: drops them as the next publishing does, and loads them once more."""
        self.fresh_database(charset)
        names = sorted(name for name in os.listdir(folder) if re.fullmatch(r"db(_l\d)?\.sql", name))
        for kind in ("db", "dbdel", "db") if again else ("db",):
            for name in names:
                path = os.path.join(folder, kind + name[2:])
                for statement in statements(path, sec):
                    self.run(statement, path)
        self.dumps += len(names)

    def compare(self, database, where, languages):
        local = sqlite3.connect("file:%s?mode=ro" % database, uri=True)
        tables = [row[0] for row in local.execute(
            "SELECT name FROM sqlite_schema WHERE type = 'table' AND name NOT GLOB 'sqlite_*' ORDER BY rowid")]
        for table in tables:
            suffix = re.search("_l[234]", table)
            if (int(suffix[0][2]) if suffix else 1) > languages:
                continue
            columns = [(row[1], row[2]) for row in local.execute('PRAGMA table_info("%s")' % table)]
            rows = local.execute('SELECT * FROM "%s" NOT INDEXED' % table).fetchall()
            self.compare_table(table, columns, rows, where)
        local.close()

    def compare_table(self, table, columns, rows, where):
        names = [to_code_page(RESERVED.get(name.lower(), name).replace(" ", "_")) for name, _ in columns]
        fields = b", ".join(selection(kind, name) for name, (_, kind) in zip(names, columns))
        there = self.connection.rows(b"SELECT %s FROM `%s`" % (fields, RESERVED.get(table, table).encode()))
        if len(rows) != len(there):
            self.faults.append("%s: %s has %d rows, not %d" % (where, table, len(there), len(rows)))
            return
        kinds = [kind for _, kind in columns]
        mine = [tuple(wanted(kind, field) for kind, field in zip(kinds, row)) for row in rows]
        theirs = [tuple(found(kind, field) for kind, field in zip(kinds, row)) for row in there]
        self.values += len(mine) * len(columns)
        # A table has no order of its own. Where rows differ, both sides are sorted to say which.
        if collections.Counter(mine) == collections.Counter(theirs):
            return
        for left, right in zip(sorted(mine, key=repr), sorted(theirs, key=repr)):
            for (name, _), a, b in zip(columns, left, right):
                if a != b:
                    self.faults.append("%s: %s.%s is %r, not %r" % (where, table, name, b, a))


def main(program):
    folder = tempfile.mkdtemp(prefix="korvane-dumps-")
    subprocess.run([program, folder], check=True)
    with Server() as server:
        trip = RoundTrip(server)
        for shop in sorted(os.listdir(folder)):
            for way in sorted(os.listdir(os.path.join(folder, shop))):
                path = os.path.join(folder, shop, way)
                if not os.path.isdir(path):
                    continue
                languages = len([name for name in os.listdir(path) if name.startswith("dbdel")])
                charset = CHARSETS[way]
                trip.load(path, b"abcdefghijklmnopqrst", charset, again=way == "locked-marked")
                trip.compare(os.path.join(folder, shop, "sql.mdb"), path, languages)
        trip.connection.close()
        for fault in trip.faults[:20]:
            print(fault)
        print("%d dumps loaded with %d statements, %d values compared, %d faults" %
              (trip.dumps, trip.count, trip.values, len(trip.faults)))
        if trip.faults or not trip.values:
            raise SystemExit(1)
    shutil.rmtree(folder)


if __name__ == "__main__":
    main(sys.argv[1])
