"""The text form of a golden case: a comment, then parts, each after a line `-- name flags --`.

Text parts are UTF-8 with LF and stand for Windows-1252 bytes with CR LF. Flags: `hex` (bytes as hexadecimal digits),
`escapes` (`\\xNN` is that byte; a line end is still CR LF), `noeol` (the last line end isn't part of the file),
and those of an excerpt, see condensed.py. A space in a name is written `%20`.
"""
import re
from dataclasses import dataclass, field

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
