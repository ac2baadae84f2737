"""One page: tags, generator mark, prologues, and the PHP loop of a department page."""
import re

import tags


CRLF = "\r\n"


class PageRefused(Exception):
    """The page can't be made; its text is what the user is told."""


def php(*lines):
    return CRLF.join(("<?php",) + lines + ("?>",))


def page_prologue(settings, name, suffix):
    text = php('include("funcs%s.php");' % suffix, '$Lingua = "%s";' % suffix)
    if name == "order.htm":
        text += CRLF + php("if ($cliente==0 && $regobbl) {", 'header("Location: login$Lingua.php?m=23");', "}")
        if settings["reglist"] and (settings["regobbl"] or settings["regprices"]):
            text += CRLF + php("if ($cliente > 0 && $listino==0 && $regobbl) {",
                               'header("Location: login$Lingua.php?m=37&t=.37.");', "}")
        text += CRLF + php("$cartdisp = CheckDispCart();", 'if (is_integer(strpos($cartdisp, "0"))) {',
                           'header("Location: login$Lingua.php?m=53");', "}", "$ordercliente = LoadDatiCliente();")
    if name == "cart.htm":
        text += CRLF + php("$cartdisp = CheckDispCart();", '$ordercliente = "";')
    return text


def department_prologue(suffix, root, php_vars):
    return php(
        'include("funcs%s.php");' % suffix, "$sp = $HTTP_GET_VARS['n'];", '$Lingua = "%s";' % suffix,
        '$PageRoot = "%s";' % root,
        "$sql = \"SELECT * FROM articoli$Lingua WHERE pagina='$PageRoot' ORDER BY sottopagina DESC\";",
        "$resultArt = mysql_query($sql);", "if (mysql_num_rows($resultArt) == 0) {", "$mp = 1;", "} else {",
        "$rowArt = mysql_fetch_array($resultArt);", "$mp = $rowArt['sottopagina'];", "}",
        "if ($sp < 1 || $sp > $mp) {$sp = 1;}", "mysql_free_result($resultArt);",
        "$sql = \"SELECT *, articoli$Lingua.pagina as 'linkPage' FROM articoli$Lingua INNER JOIN dettaglio USING (ID) "
        "INNER JOIN ordinamento USING (ID) WHERE articoli$Lingua.pagina='$PageRoot' AND "
        "articoli$Lingua.sottopagina=$sp ORDER BY contatore + 0 ASC\";",
        "$resultArt = mysql_query($sql);") + CRLF + "<?php" + CRLF + php_vars + "?>" + CRLF


def loop_head(columns):
    table = ['if ($prod == 0 ) { echo"<table border=0>"; }'] if columns > 1 else []
    return php("$Contatore = 0;", "$prod=$HTTP_GET_VARS['prod'];", *table,
               "while ($rowArt = mysql_fetch_array($resultArt)) {", "$Contatore = $Contatore + 1;",
               "$artID = $rowArt['ID'];", "if ($prod == 0) {", 'print ViewArt("beforecode");', "}",
               "if ($prod == 0 || $prod == $Contatore) {") + CRLF


def loop_tail(columns):
    table = ['if ($prod == 0 ) { echo"</table>"; }'] if columns > 1 else []
    # Unlike the head, the tail is told without a closing line end.
    return php("}", "if ($prod == 0) {", 'print ViewArt("aftercode");', "}", "}", *table)


EPILOGUE = php("mysql_free_result($resultArt);")


def cell_code(columns, count, last):
    """(beforecode, aftercode) of the article at this count."""
    if columns == 1:
        return "", ""
    width, place = 100 // columns, (count - 1) % columns
    opening, closing = '<td valign=top width=%d%%>' % width, "</td>"
    if place == 0:
        opening = "<tr>" + opening
    elif place == columns - 1:
        opening, closing = "<td valign=top width=%d%%>" % (100 - width * (columns - 1)), "</td></tr>"
    if last and not closing.endswith("</tr>"):
        closing += "</tr>"
    return opening + "<table border=0 width=100%><tr><td valign=top>", "</td></tr></table>" + closing


def with_mark(text, name, reparto):
    """The generator mark before <TITLE> of a page."""
    mark = '<meta name="generator" content="Korvane %s">' % ("x.x.x" if reparto else "<version>")
    title = text.upper().find("<TITLE>")
    if not name.upper().endswith((".HTM", ".HTML")) or title < 0 or mark in text:
        return text
    return text[:title] + mark + CRLF + text[title:]


NEW_NAMES = [("$HTTP_%s_VARS" % old, "$_" + new) for old, new in (
    ("GET", "GET"), ("POST", "POST"), ("COOKIE", "COOKIE"), ("SERVER", "SERVER"))]
NEW_NAMES += [("$HTTP_POST_FILES", "$_FILES"), ("$HTTP_ENV_VARS", "$_ENV")]


def expand_all(run, text, name, reparto):
    text = tags.expand(text, 1, tags.column_value(run.row, 1, reparto))
    text = tags.expand(text, 4, tags.index_value(run.words, 4, reparto, lambda whole: whole))
    if run.custom:
        text = tags.expand(text, 5, tags.index_value(run.custom, 5, reparto, lambda whole: ""))
    if name == "results.htm":
        text = tags.expand(text, 3, tags.column_value(run.row, 3, reparto))
    return text


def prepare(run, text, name, reparto, second):
    """The steps before the page takes its form. What a first pass has made is no template text any more: its PHP
    names stay."""
    text = with_mark(text, name, reparto)
    if run.setting("PHP4.1VARS") == "1" and not second:
        for old, new in NEW_NAMES:
            text = text.replace(old, new)
    return expand_all(run, text, name.lower(), reparto)


def plain_page(run, text, name, suffix, second=False):
    """A static page, a script, a page of the back office, or a second pass."""
    text = prepare(run, text, name, False, second)
    low, trimmed = name.lower(), text.strip(" ")
    if low.endswith((".htm", ".html")) and "results.htm" not in low and not trimmed.startswith("<?php"):
        text = page_prologue(run.settings, low, suffix) + (CRLF if trimmed.startswith("<") else "") + text
    return text


def marker(text, tag, path):
    places = [found.start() for found in re.finditer(re.escape(tag), text.upper())]
    if not places:
        raise PageRefused("Il file '%s' non contiene il tag %s" % (path, tag))
    if len(places) > 1:
        raise PageRefused("Il file '%s' contiene più di un tag %s" % (path, tag))
    return places[0]


def department_page(run, text, path, root, columns, has_rows):
    """The first pass of a department page."""
    text = prepare(run, text, path.rsplit("/", 1)[1], True, False)
    start, end = marker(text, "<KV_START>", path), marker(text, "<KV_END>", path)
    if end < start + len("<KV_START>"):
        raise PageRefused("Nel file '%s' il tag <KV_END> precede il tag <KV_START>" % path)
    section = ""
    if has_rows:
        section = "<a name=<<2-/COUNTER/>>></a>" + text[start + len("<KV_START>"):end]
        section = tags.expand(section, 2, tags.column_value({}, 2, True))
    return (department_prologue(run.suffix, root, run.row.get("php_vars", "")) + text[:start] + loop_head(columns) +
            section + loop_tail(columns) + text[end + len("<KV_END>"):] + EPILOGUE)


