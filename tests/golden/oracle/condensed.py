"""What a golden case shows of what a build leaves, and what it holds by its digest alone.

A case shows the parts that it is about. All else is in the part `want-digest`: name, size, SHA-256. A part may be shown
in pieces: by the flags `only=a,b` (columns) and `rows=1,cat001` (IDs) of a dump, then in its brief form, and
`lines=1-3,7` of a file, of a text, or of what those two show. The whole of a file is then in `want-digest` all the same,
and the whole of a dump is in `want-rows`, for each table that has rows: name of the dump, table, number of rows, SHA-256
of the table's dump. What the further languages have of a file or table follows on its line, after the end of its name.
"""
import hashlib
import re
from dataclasses import dataclass

from txtar import Part

EXCERPTS = ("lines", "only", "rows")


@dataclass
class Produced:
    """A file, text or dump: its part as a whole and the bytes that a digest is of. A dump has `tables`, triples of
    name, number of rows and text, and `show`, which makes the text of some columns and IDs."""
    whole: Part
    content: bytes = b""
    tables: list = None
    show: object = None


def is_wanted(part):
    return part.name.startswith("want/") or part.name in ("want-rows", "want-digest")


def flag_value(part, name):
    return next((flag[len(name) + 1:] for flag in part.flags if flag.startswith(name + "=")), None)


def excerpt_flags(part):
    return [flag for flag in part.flags if flag.split("=")[0] in EXCERPTS]


def numbered(ranges):
    """The line numbers of `1-3,7`."""
    numbers = set()
    for piece in ranges.split(","):
        first, _, last = piece.partition("-")
        numbers.update(range(int(first), int(last or first) + 1))
    return numbers


def shown(produced, wanted):
    """The part as the flags of the wanted one show it."""
    flags, text = excerpt_flags(wanted), produced.whole.text
    if flags and produced.show:
        only, ids = flag_value(wanted, "only"), flag_value(wanted, "rows")
        text = produced.show(only and only.split(","), ids and ids.split(","))
    lines = flag_value(wanted, "lines")
    if lines:
        kept = numbered(lines)
        text = "".join(line + "\n" for n, line in enumerate(text.split("\n")[:-1], 1) if n in kept)
    return Part(produced.whole.name, produced.whole.flags + flags, text)


def digest(content):
    return hashlib.sha256(content).hexdigest()


def grouped(entries):
    """A line for each (name, rest), but one line for what differs in the end of the language alone."""
    lines = {}
    for name, rest in entries:
        of_language = re.fullmatch(r"(.*)(_l[234])(\.[^. /]*)?", name)
        first = of_language and of_language.group(1) + (of_language.group(3) or "")
        if first in lines:
            lines[first] += " %s %s" % (of_language.group(2), rest)
        else:
            lines[name] = "%s %s" % (name, rest)
    return "".join(line + "\n" for line in lines.values())


def condensed(parts, produced):
    """The wanted parts of a case, in the form in which `parts` want them."""
    wanted = {part.name: part for part in parts}
    out, rows, digests = [], [], []
    for one in produced:
        name = one.whole.name[len("want/"):].replace(" ", "%20")
        part = wanted.get(one.whole.name)
        if part:
            out.append(shown(one, part))
        if part and not excerpt_flags(part):
            continue
        if one.tables:
            rows += [("%s %s" % (name, table), "%d %s" % (count, digest(text.encode("utf-8"))))
                     for table, count, text in one.tables]
        else:
            digests.append((name, "%d %s" % (len(one.content), digest(one.content))))
    if rows:
        out.append(Part("want-rows", [], grouped(rows)))
    if digests:
        out.append(Part("want-digest", [], grouped(digests)))
    return out
