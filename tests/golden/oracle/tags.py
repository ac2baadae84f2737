"""Tags and references between files, by plain searches from left to right."""
import re

from tables import PAGE_TAGS
from texts import put_ext


class BrokenTag(Exception):
    """A tag without its closing brackets."""


def normalise(text):
    for old in ("&lt;&lt;", "<&lt;", "&lt;<"):
        text = text.replace(old, "<<")
    for old in ("&gt;&gt;", ">&gt;", "&gt;>"):
        text = text.replace(old, ">>")
    text = text.replace("%3c", "%3C").replace("%3e", "%3E")
    for old in ("%3C%3C", "<%3C", "%3C<"):
        text = text.replace(old, "<<")
    for old in ("%3E%3E", ">%3E", "%3E>"):
        text = text.replace(old, ">>")
    return text


def expand(text, kind, value_of):
    """Replaces every tag of a kind; `value_of` gives the value of a name."""
    text, prefix = normalise(text), "<<%d-" % kind
    at = text.find(prefix)
    while at >= 0:
        start = at + len(prefix)
        end = text.find(">>", start)
        if end < 0:
            raise BrokenTag(text[at:])
        value = value_of(text[start:end])
        text = text[:at] + value + text[end + 2:]
        at = text.find(prefix, at + 1 if value else at)
    return text


def column_value(row, kind, reparto):
    """Values of the kinds 1, 2 and 3: columns by name without regard to case, article columns as PHP calls."""
    columns = {name.lower(): row.get(name) for name in PAGE_TAGS}

    def value_of(name):
        if name == "/COUNTER/":
            return "<?php echo $Contatore; ?>" if reparto else "0"
        if kind == 2:
            return '<?php echo ViewArt("%s"); ?>' % name
        if name.lower() in columns:
            return columns[name.lower()] or ""
        return "<<%d-%s>>" % (kind, name)
    return value_of


def index_value(index, kind, reparto, missing):
    """Values of the kinds 4 and 5: texts of an index, exact in case; `missing` makes the value of an unknown name."""
    def value_of(name):
        if name == "/COUNTER/":
            return "<?php echo $Contatore; ?>" if reparto else "0"
        is_whole = re.fullmatch(r"<<%s.*>>" % ("4-" if kind == 4 else ""), name, re.S)
        whole = name if is_whole else "<<%d-%s>>" % (kind, name)
        return index.get(whole, missing(whole))
    return value_of


def read_sections(text, kind, skip_comments):
    """{whole tag: text} of a language module or a custom tag file; the first of two of one name wins."""
    index, tag, lines = {}, None, []
    body = text[:-2] if text.endswith("\r\n") else text
    for line in body.split("\r\n") + [None]:
        opens = line is not None and re.fullmatch(r"<<%d-.*>>" % kind, line.strip(" "), re.S)
        if line is None or opens:
            if tag is not None:
                index.setdefault(tag, "\r\n".join(lines))
            tag, lines = (line.strip(" ") if opens else None), []
        elif not (skip_comments and (line == "" or line[0] in "/[")):
            lines.append(line)
    return index


REQUIRED = "<<4-listino_obbligatorio>>"
REQUIRED_TEXT = {
    "italiano": "Siamo spiacenti, non sei abilitato ad effettuare acquisti: per maggiori informazioni rivolgiti al "
                "gestore del negozio",
    "francese": "Nous sommes d&eacutesol&eacutes, mais vous n'avez pas la facult&eacute de faire des achats sur ce "
                "site. Pour plus d'information, veuillez contacter nostre service client.",
}
OTHER_TEXT = "Sorry, you're not allowed to buy on this store: please apply to the store manager for further information"


def language_index(text, code):
    if REQUIRED not in text:
        text += "\r\n%s\r\n%s\r\n" % (REQUIRED, REQUIRED_TEXT.get(code.lower(), OTHER_TEXT))
    return read_sections(text, 4, True)


PAIRS = [('"', '"'), ("'", "'"), (" ", " "), ("=", " "), ("=", ">"), (" ", ">")]


def replace_string(text, name):
    """Puts <<1-IDlingua>> into each reference to a file."""
    for shape in ([name, name.replace(" ", "%20")] if " " in name else [name]):
        dot = shape.find(".")
        base, ext = (shape, "") if dot < 0 else (shape[:dot], shape[dot:])
        low = ext.lower()
        if (low == ".htm" or re.match(r"\.htm[^a-z0-9]", low)) and not base.lower().endswith("results"):
            ext = ".php" + ext[4:]
        for opening, closing in PAIRS:
            needle, at = (opening + shape + closing).lower(), 0
            while (at := text.lower().find(needle, at)) >= 0:
                end = at + len(needle)
                text = text[:at + 1] + base + "<<1-IDlingua>>" + ext + text[end - 1:]
                at += 1
    return text


def language_link(file, n, codes, flag_size):
    """The link to the copy of a page in language n; `flag_size` is None when the flag can't be read."""
    name = put_ext(file)
    for i in (2, 3, 4):
        name = name.replace("_l%d." % i, ".") if "_l%d." % i in name else name
    if n > 1:
        dot = name.rfind(".")
        name = name if dot < 0 else name[:dot] + "_l%d" % n + name[dot:]
    if "?n=" in name:
        name = name[:name.index("?n=") + 3] + "<?php echo $sp; ?>"
    code = codes[n - 1]
    if flag_size is None:
        return '<a href="%s">%s</a>' % (name, code)
    return '<a href="%s"><img src="kvan_%s.gif" height="%d" width="%d" border="0"></a>' % (
        name, code, flag_size[1], flag_size[0])
