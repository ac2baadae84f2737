"""Files that say they are far larger than they are, or go on without end, given to korvane-cli: each is answered by a
message, within the memory that a large but honest file takes.

    python3 bounded_memory_test.py BUILD/bin
"""
import os
import resource
import struct
import subprocess
import sys
import tempfile
import unittest
import zlib
from pathlib import Path

CLI = str(Path(sys.argv.pop(1)) / "korvane-cli")
MIB = 1 << 20
# The pixels of the largest picture take 192 MB, an interlaced PNG of that size 256 more while it is read; a sheet holds
# 128 MiB of texts.
MOST_MIB = 640
# A program that takes more is stopped rather than left to take the machine's memory.
ADDRESSES = 4096 * MIB


def chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def png(width, height, interlaced=0):
    header = struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, interlaced)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(bytes(600_000))) +
            chunk(b"IEND", b""))


def jpeg(width, height):
    tables = b"\xff\xdb\x00\x43\x00" + b"\x01" * 64
    codes = b"".join(b"\xff\xc4\x00\x14" + bytes([kind]) + b"\x01" + bytes(15) + b"\x00" for kind in (0x00, 0x10))
    start = b"\xff\xc0" + struct.pack(">HBHHB", 17, 8, height, width, 3)
    start += b"\x01\x11\x00\x02\x11\x00\x03\x11\x00"
    scan = b"\xff\xda\x00\x0c\x03\x01\x00\x02\x00\x03\x00\x00\x3f\x00"
    return b"\xff\xd8" + tables + codes + start + scan + bytes(300) + b"\xff\xd9"


# A frame of one pixel.
FRAME = b"\x2c\0\0\0\0\x01\0\x01\0\0\x02\x02\x44\x01\0"


def gif(width, height, rest):
    return b"GIF89a" + struct.pack("<HHBBB", width, height, 0x80, 0, 0) + bytes(6) + rest


def deflated(content, times=1):
    """`times` copies of some bytes as a deflated stream, made without the copies, and their length."""
    press = zlib.compressobj(9, zlib.DEFLATED, -15)
    piece = press.compress(content) + press.flush(zlib.Z_FULL_FLUSH)
    return piece * times + b"\x03\x00", len(content) * times


def packed(parts):
    """A zip archive of parts by name: bytes, or a part that a start and copies of a piece make: (start, piece, times).
    Those have no right sum: nobody reads them to their end."""
    body, directory = b"", b""
    for name, content in parts.items():
        total = 0
        if isinstance(content, tuple):
            start, piece, times = content
            head, rest = deflated(start), deflated(piece, times)
            data, length = head[0][:-2] + rest[0], head[1] + rest[1]
        else:
            data, length = deflated(content)
            total = zlib.crc32(content)
        fields = struct.pack("<HHHHHIIIHH", 20, 0, 8, 0, 0x21, total, len(data), length, len(name), 0)
        directory += (b"PK\x01\x02" + struct.pack("<H", 20) + fields + struct.pack("<HHHII", 0, 0, 0, 0, len(body)) +
                      name)
        body += b"PK\x03\x04" + fields + name + data
    return body + directory + b"PK\x05\x06" + struct.pack("<HHHHIIH", 0, 0, len(parts), len(parts), len(directory),
                                                         len(body), 0)


def xlsx(sheet, workbook=b"<workbook><sheets><sheet name='a' id='r1'/></sheets></workbook>"):
    relation = b"<Relationships><Relationship Id='r%d' Type='x/%s' Target='%s'/></Relationships>"
    return packed({b"_rels/.rels": relation % (1, b"officeDocument", b"xl/workbook.xml"), b"xl/workbook.xml": workbook,
                   b"xl/_rels/workbook.xml.rels": relation % (1, b"worksheet", b"sheet1.xml"), b"xl/sheet1.xml": sheet})


class Memory(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.home = Path(folder.name)
        cls.shop = cls.home / "negozio"
        code, said, _ = cls.run_cli("new", cls.shop)
        assert code == 0, said

    @classmethod
    def run_cli(cls, *words):
        """The exit code of korvane-cli, what it said, and the most memory that it held, in MiB."""
        def limit():
            resource.setrlimit(resource.RLIMIT_AS, (ADDRESSES, ADDRESSES))
        with tempfile.TemporaryFile() as said:
            child = subprocess.Popen([CLI, *map(str, words)], stdin=subprocess.DEVNULL, stdout=said, stderr=said,
                                     env={"HOME": str(cls.home), "PATH": os.environ["PATH"]}, preexec_fn=limit)
            _, status, usage = os.wait4(child.pid, 0)
            child.returncode = os.waitstatus_to_exitcode(status)
            said.seek(0)
            return child.returncode, said.read().decode(), usage.ru_maxrss // 1024

    def check(self, words, code, text):
        done, said, peak = self.run_cli(*words)
        self.assertIn(text, said)
        self.assertEqual(done, code, said)
        self.assertLess(peak, MOST_MIB, said)

    def file(self, name, content):
        path = self.home / name
        path.parent.mkdir(exist_ok=True)
        path.write_bytes(content)
        return path

    def check_picture(self, name, content, code=1, text="L'immagine non può essere letta"):
        path = self.file(name, content)
        self.check(["picture", self.shop, path, "--department", "cat001", "--slot", "0", "--fit", "180x135"], code,
                   text)

    def check_sheet(self, name, content):
        self.check(["import-table", self.shop, self.file(name, content)], 1,
                   f'Il foglio "{name}" è troppo grande: dividerlo in più fogli')

    def test_a_picture_that_says_it_is_huge_is_refused(self):
        limit = "punti, in tutto più dei 64 milioni che si possono leggere"
        self.check_picture("a.png", png(60000, 60000), text="60000 x 60000 " + limit)
        self.check_picture("a.jpg", jpeg(65500, 65500), text=limit)
        self.check_picture("a.gif", gif(65535, 65535, FRAME[:5] + b"\xff\xff\xff\xff" + FRAME[9:]), text=limit)

    def test_a_picture_as_large_as_one_may_be_is_refused_without_its_pixels(self):
        self.check_picture("b.png", png(8000, 8000, interlaced=1))
        self.check_picture("b.jpg", jpeg(8000, 8000))

    def test_a_gif_that_never_ends_shows_its_first_frame_or_none(self):
        self.check_picture("frames.gif", gif(1, 1, FRAME * 500_000), 0, "frames_0001.gif 1x1")
        self.check_picture("note.gif", gif(1, 1, b"\x21\xfe" + (b"\xff" + bytes(255)) * 32_000))

    def test_a_packed_sheet_that_unpacks_to_far_more_is_refused(self):
        cell = b"<worksheet><sheetData><row r='1'><c r='A1' t='inlineStr'><is><t>"
        self.check_sheet("testo.xlsx", xlsx((cell, b"a" * MIB, 2048)))
        self.check_sheet("fogli.xlsx", xlsx(b"<worksheet/>", (b"<workbook><sheets>", b"<sheet/>" * 100_000, 1000)))
        spaces = b"<d><body><spreadsheet><table name='a'><table-row><table-cell><p>"
        self.check_sheet("spazi.ods", packed({b"content.xml": (spaces, b"<s c='32768'/>" * 50_000, 1000)}))

    def test_a_line_of_separated_values_without_end_is_refused(self):
        self.check_sheet("riga.csv", b"a;" * (8 * MIB))
        self.file("conti/Categoria.csv", b"Id;Nome\n1;Vasi\n")
        names = b"Id;IdCategoria;Codice;Descrizione;iva;Vendita1\n"
        self.file("conti/Articoli.csv", names + b";" * (32 * MIB) + b"x\n")
        self.check(["import", self.shop, self.home / "conti"], 1, "Non è stato possibile importare i dati")


if __name__ == "__main__":
    unittest.main()
