"""The page tag row: the columns that every page of a language has, and those of a department."""
from article import LISTINI
from cart import cart_columns
from figures import Single, hashes, money, plain
from images import picture_tag
from pages import CRLF
from server import server_columns
from texts import address, escape_php, file_lingua, put_ext

CARRELLO = CRLF.join([
    '<script language="JavaScript">', "<!--", 'document.cookie = "kvstore_disp=<?php echo $cartdisp; ?>";',
    'document.cookie = "kvstore_cliente=<?php echo $ordercliente; ?>";', "var scl = <?php echo $scontocliente; ?>;",
    "MostraCarrello(<?php echo $listino; ?>);", "//-->", "</script>"])


def shop_number(url, suffix):
    return str(sum(ord(letter) * place for place, letter in enumerate(url[7:], 1))) + suffix


def redirect(settings):
    text = CRLF + "autoredirect = 1;" if settings["autoredirect"] else ""
    return text + (CRLF + "checkcookies = 1;" if settings["checkcookies"] else "")


def logo(settings, i):
    name = settings.text("immagine%d" % i)
    if not name:
        return ""
    return '<img border="0" src="%s" width="%s" height="%s">' % (
        name, hashes(settings["imgX%d" % i]), hashes(settings["imgY%d" % i]))


def common_columns(run):
    """The columns that are equal in the row of a department and of the shop."""
    settings, suffix = run.settings, run.suffix
    shop_url = address(settings["URL"], settings["cartella"])
    row = {name: run.html(settings[name]) for name in
           ("home1", "home2", "condizioni", "recesso", "datipers", "testo1", "testo2")}
    row |= {"testo_contrassegno": run.html(settings["contrassegno"]),
            "testo_anticipato": run.html(settings["anticipato"]), "rifiuto": run.html(settings["rifiutato"])}
    row |= {name: settings.text(name) for name in ("email", "username", "password", "email_ordini", "merchantid")}
    row |= {name: escape_php(settings[name]) for name in
            ("db_hostname", "db_username", "db_password", "db_dbname", "bo_username", "bo_password")}
    row |= {name: file_lingua(settings.text(name), suffix) for name in ("CGIsearch", "CGIordine")}
    row |= {"ric_" + name: "$arg%d" % i for i, name in
            enumerate(("pagina", "codice", "titolo", "sottotitolo", "foto"), 1)}
    for column, name in (("urlback", "/payerr.htm"), ("urldone", "/payok.htm")):
        row[column] = put_ext(file_lingua(shop_url + name, suffix))
    for column, script in (("output", "output"), ("login", "lognew")):
        row[column] = CRLF.join(["<?php", 'include "%s%s.php";' % (script, suffix), "?>"])
    row |= {
        "java_aliquotaspese": plain(Single((run.payment["ivaspese"] or 0) / 100)),
        "java_qminima": plain(settings["qminima"] or 0),
        "java_minimo": plain(settings["minimo"] or money(0)),
        "negozio": settings.text("titolo").replace('"', "'"),
        "perl_path": settings.text("perl"),
        "java_ivacompresa": "1" if settings["ivacompresa"] else "0",
        "foldercgi": settings.text("folderCGI").strip(" "),
        "perl_shopURL": shop_url, "perl_cgiURL": address(settings["URL"], settings["cartellaCGI"]),
        "valuta": run.currency.labels[0],
        "firma": settings.text("firma_email"),
        "java_search": "return SubmitSearchForm(1)", "java_daticliente": "CaricaDati()",
        "java_redirect": redirect(settings),
        "java_ANDORsearch": "any" if settings["operatorericerca"] == 1 else "all",
        "java_sepsearch": 'var sleft = "#"; var sright = "#";' if settings["ricercaparole"]
                          else 'var sleft = ",#.*"; var sright = "";',
        "java_carrello": CARRELLO,
        "IDnegozio": shop_number(shop_url, suffix), "IDlingua": suffix,
        "logo1": logo(settings, 0), "logo2": logo(settings, 1),
        "meta_keywords": settings.text("keywords"), "meta_description": settings.text("content"),
        "db_security": run.token, "compact_privacy_policy": escape_php(settings["p3p"]),
    }
    row |= {"colore%d" % i: run.colours[i] for i in range(4)}
    return row | cart_columns(run) | server_columns(run)


def pager(page):
    """The PHP that links the sub-pages; `page` is the stem with the language suffix."""
    return CRLF + CRLF.join([
        "<?php", "if ($mp > 1) {", "for ($np = 1; $np <= $mp; $np++) {", "if ($np != $sp) {", "?>",
        '<A HREF="%s.php?n=<?php echo $np; ?>"><?php echo $np; ?></A>' % page, "<?php", "}", "else {", "?>",
        "<B><?php echo $np; ?></B>", "<?php", "}", 'if ($np<>$mp) {print " - ";}', "}", "}", "?>"])


def department_columns(run, department):
    row = common_columns(run)
    row |= {name: run.html(department[name]) for name in ("titolo", "note", "descrizione")}
    row["sottopagine"] = pager(department.text("pagina") + run.suffix)
    row["immagine"] = picture_tag(department["immagine0"], department["imgX0"], department["imgY0"])
    row["meta_keywords"] += ", korvane"
    row["php_vars"] = ('SetVariables("%s");' % department["ID"] + CRLF + "if ($inaccessibile[$listino]) { "
                       'header("Location: login$Lingua.php?m=11"); }' + CRLF)
    row["elenco"] = "<<1-elenco>>"
    return row


def stored_department(row, shop_factor):
    """The copy of a department in the build database."""
    stored = {"ID": row["ID"], "nascosto": bool(row.get("nascosto")), "iva": Single((row.get("iva") or 0) / 100)}
    for n in LISTINI:
        percent = row.get("sconto" + n)
        stored["sconto" + n] = shop_factor if percent is None else Single((100 - percent) / 100 * shop_factor)
    return stored | {"inaccessibile" + n: bool(row.get("inaccessibile" + n)) for n in LISTINI}
