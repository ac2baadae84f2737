"""The text form of a golden case: a comment, then parts, each after a line `-- name flags --`.

Text parts are UTF-8 with LF and stand for Windows-1252 bytes with CR LF. Flags: `hex` (bytes as hexadecimal digits),
`escapes` (`\\xNN` is that byte; a line end is still CR LF), `noeol` (the last line end isn't part of the file),
and those of an excerpt, see condensed.py. A space in a name is written `%20`.

A part `base NAME` names the case `base/NAME.txt`, beside the folder of the case: its parts hold where the case has none of
that name, and its rows come before those of the case. A base may have a base, and wanted parts like any case. A part
`files` has a file a line, `name | first line | second line`, with cells as in rows; of a .gif they are hexadecimal.
"""
import pathlib
import re
from dataclasses import dataclass, field

from rowtext import split_cells

MARKER = re.compile(r"^-- (\S+)((?: [^ ]+)*) --$")


@dataclass
class Part:
    name: str
    flags: list = field(default_factory=list)
    text: str = ""


def parse(text):
    """(comment, parts) of a case."""
    comment, parts, current = [], [], None
    for line in text.split("\n")[:-1] if text.endswith("\n") else text.split("\n"):
        found = MARKER.match(line)
        if found:
            current = Part(found.group(1).replace("%20", " "), found.group(2).split())
            parts.append(current)
        elif current is None:
            comment.append(line + "\n")
        else:
            current.text += line + "\n"
    return "".join(comment), parts


def read(path):
    with open(path, encoding="utf-8", newline="") as file:
        return file.read()


def base_of(path, parts):
    """The parts of a case's base and of the bases of that."""
    name = next((part.flags[0] for part in parts if part.name == "base"), None)
    if name is None:
        return []
    base = pathlib.Path(path).parent.parent / "base" / (name + ".txt")
    _, own = parse(read(base))
    return with_base(own, base_of(base, own))


def file_part(line):
    name, *cells = split_cells(line)
    lines = [cell[1:-1] if len(cell) > 1 and cell[0] == cell[-1] == '"' else cell for cell in cells]
    return Part(name, ["hex"] if name.lower().endswith(".gif") else [], "".join(line + "\n" for line in lines))


def with_files(parts):
    return [one for part in parts
            for one in (map(file_part, part.text.splitlines()) if part.name == "files" else [part])]


def with_base(parts, base):
    parts = with_files(parts)
    own = {part.name for part in parts}
    rows = [part.text for part in base + parts if part.name == "rows"]
    kept = [part for part in base if part.name not in own] + parts
    return [part for part in kept if part.name != "rows"] + ([Part("rows", [], "\n".join(rows))] if rows else [])


def show(comment, parts):
    pieces = [comment]
    for part in parts:
        pieces.append("-- " + " ".join([part.name.replace(" ", "%20")] + part.flags) + " --\n" + part.text)
    return "".join(pieces)


def from_cp1252(data):
    """Every byte has a character: the five free codes become the control characters of the same number."""
    return "".join(bytes([b]).decode("cp1252") if b not in (0x81, 0x8D, 0x8F, 0x90, 0x9D) else chr(b) for b in data)


def to_cp1252(text):
    """A character outside the code page becomes a decimal reference."""
    out = bytearray()
    for letter in text:
        if ord(letter) in (0x81, 0x8D, 0x8F, 0x90, 0x9D):
            out.append(ord(letter))
            continue
        try:
            out += letter.encode("cp1252")
        except UnicodeEncodeError:
            out += b"&#%d;" % ord(letter)
    return bytes(out)


def part_bytes(part):
    """The bytes of the file that a part stands for."""
    if "hex" in part.flags:
        return bytes.fromhex("".join(part.text.split()))
    text = part.text[:-1] if "noeol" in part.flags else part.text
    pieces = re.split(r"\\x([0-9a-fA-F]{2})", text) if "escapes" in part.flags else [text]
    out = b""
    for i, piece in enumerate(pieces):
        out += bytes([int(piece, 16)]) if i % 2 else to_cp1252(piece.replace("\n", "\r\n"))
    return out


def bytes_part(name, data):
    """The part that stands for these bytes, in the plainest form that can hold them."""
    if name.lower().endswith((".gif", ".jpg", ".png")):
        digits = data.hex()
        return Part(name, ["hex"], "".join(digits[i:i + 100] + "\n" for i in range(0, len(digits), 100)))
    flags, lines = [], []
    for line in from_cp1252(data).split("\r\n"):
        odd = re.sub(r"[\x00-\x08\x0a-\x1f\x7f-\x9f]|\\(?=x[0-9a-fA-F]{2})|^-(?=- .* --$)",
                     lambda found: "\\x%02x" % ord(found.group()), line)
        if odd != line and "escapes" not in flags:
            flags.append("escapes")
        lines.append(odd)
    if "escapes" not in flags:
        lines = from_cp1252(data).split("\r\n")
    if lines[-1] != "":
        flags.append("noeol")
        lines.append("")
    return Part(name, flags, "\n".join(lines))
