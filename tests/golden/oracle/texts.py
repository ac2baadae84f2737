"""The text forms of what the merchant typed, and the names that are computed."""
import re

LETTERS = ("Á Aacute Â Acirc À Agrave Å Aring Ã Atilde Ä Auml Æ AElig É Eacute Ê Ecirc È Egrave Ë Euml Í Iacute "
           "Î Icirc Ì Igrave Ï Iuml Ó Oacute Ô Ocirc Ò Ograve Õ Otilde Ö Ouml Ú Uacute Û Ucirc Ù Ugrave Ü Uuml "
           "Ý Yacute á aacute â acirc à agrave å aring ã atilde ä auml æ aelig é eacute ê ecirc è egrave ë euml "
           "í iacute î icirc ì igrave ï iuml ó oacute ô ocirc ò ograve õ otilde ö ouml ú uacute û ucirc ù ugrave "
           "ü uuml ý yacute ÿ yuml Ç Ccedil ç ccedil Ñ Ntilde Ø Oslash ø oslash Ð ETH ð eth Þ THORN þ thorn "
           "ß szlig").split()
ENTITIES = dict(zip(LETTERS[0::2], LETTERS[1::2]))
assert len(ENTITIES) == 61


def testo_html(text, entities=True):
    text = text or ""
    if re.search("<.*>", text, re.S):
        return text
    text = text.replace("\r\n", "<BR>")
    if entities:
        text = "".join("&%s;" % ENTITIES[x] if x in ENTITIES else x for x in text)
    return text


def togli_tag(text):
    at = text.find(">")
    while at >= 0:
        start = text.rfind("<", 0, at)
        if start >= 0:
            text = text[:start] + text[at + 1:]
            at = text.find(">", start)
        else:
            at = text.find(">", at + 1)
    return text


def testo_js(text):
    out = ""
    for x in text:
        if x in "'\\":
            out += "\\" + x
        elif x in "[]|£":
            out += " "
        else:
            out += {'"': "%22", "%": "%25", ";": ","}.get(x, x)
    return out


def cart_articolo(code, title):
    code, title = togli_tag(code or ""), togli_tag(title or "")
    return testo_js(title if code == "" else code + " " + title)


def escape_php(text):
    return (text or "").replace('"', '\\"').replace("'", "\\'")


def put_link(text, link, outside):
    if not text or not link:
        return text
    return '<a href="%s"%s>%s</a>' % (link, ' target="_blank"' if outside else "", text)


def put_on_click(text, script):
    return '<a href="#" onClick="%s">%s</a>' % (script, text) if text and script else text


def file_lingua(name, suffix):
    dot = name.rfind(".")
    return name if dot < 0 else name[:dot] + suffix + name[dot:]


def put_ext(name):
    low = name.lower()
    if low.endswith(".htm") and not re.fullmatch(r"results.*\.htm", low, re.S):
        return name[:name.rfind(".")] + ".php"
    return name


def page_file(stem, n, suffix):
    return "%s%s.php?n=%d" % (stem, suffix, n)


def address(url, folder):
    """The public address: scheme added, slashes trimmed, folder after it."""
    url, folder = (url or "").strip(" "), (folder or "").strip(" ")
    if "://" not in url:
        url = "http://" + url
    url = url[:-1] if url.endswith("/") else url
    folder = folder[:-1] if folder.endswith("/") else folder
    folder = folder[1:] if folder.startswith("/") else folder
    return url + "/" + folder if folder else url


def like(name, pattern):
    """File name patterns with "*" and digits as "#", case ignored."""
    form = re.escape(pattern).replace(r"\*", ".*").replace(r"\#", "[0-9]")
    return re.fullmatch(form, name, re.I | re.S) is not None


def is_page(name):
    return like(name, "*.*htm*")


def can_copy(name):
    low = name.lower()
    return not (low.startswith("kvan_col_") or low.endswith((".php", ".kpg", ".pl")) or like(low, "js#.js") or
                low in ("kvan_preview.jpg", "kvan_note.txt") or is_page(low))
