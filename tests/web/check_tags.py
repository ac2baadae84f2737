#!/usr/bin/env python3
"""Checks the tags of the shipped web data: check_tags.py APP

Every language tag that template, code, backoffice and the payment modules use must be defined, once and with a text,
in every language module, as must the words that the build asks for itself; every word must be safe inside a script
and a page; every page tag must be a column of the page tag row. The build token may occur in updatedb.php alone:
any other page would change with each build. Every template package has the same pages and a preview, a note, the
menu, the showcase cell and the five colours; the parts that its pages and styles name are beside it or in
template/parts, and every one of them is used.
"""

import pathlib
import re
import sys

ASKED_BY_BUILD = {"pay_ok", "pay_ko", "carrello_iva", "listino_obbligatorio"}
ASKED_BY_PATCHES = {"carrello_articolo", "carrello_iva_spedizione", "sconto", "ordine_email"}
PAGE_TAGS = set("""
titolo note descrizione immagine sottopagine reparti repartimenu elenco vetrina search_maxart lingua1 lingua2 lingua3
lingua4 home1 home2 condizioni recesso datipers testo1 testo2 paesi pagamento java_zona java_importi java_permessi
java_iva java_iva_spese java_importi_peso java_tipopeso java_aliquotaspese java_qminima java_minimo CGIsearch CGIordine
email username password negozio java_valuta email_ordini perl_path java_ivacompresa merchantid urlback urldone
testo_contrassegno testo_anticipato foldercgi perl_shopURL perl_cgiURL perl_shopname perl_email testo_email
perl_testo_email valuta perl_mailend firma java_search java_daticliente java_campi java_redirect java_ANDORsearch
java_sepsearch java_carrello IDnegozio IDlingua ric_pagina ric_codice ric_titolo ric_sottotitolo ric_foto logo1 logo2
meta_keywords meta_description colore0 colore1 colore2 colore3 db_security db_hostname db_username db_password
db_dbname bo_username bo_password compact_privacy_policy php_vars php_globals output login rifiuto thankyou
java_PGAction metodo_pagamento paymsg legale_sede legale_piva legale_registro
""".split())
PACKAGE_FILES = {"kvan_preview.svg", "kvan_note.txt", "kvan_menu.ini", "kvan_vet.ini", "kvan_offerta.svg",
                 "kvan_novita.svg", "colours.txt"}
FOLDERS = ("template", "code", "backoffice", "new/code")
FORBIDDEN = re.compile(r'["<>&$\\]')


def module(path):
    """The texts of a language module and the names that it defines twice."""
    texts, double, name = {}, [], None
    for line in path.read_text(encoding="utf-8").splitlines():
        start = re.fullmatch(r"<<4-(.*)>>", line.strip())
        if start:
            name = start.group(1)
            if name in texts:
                double.append(name)
            texts.setdefault(name, [])
        elif name is not None and line and not line.startswith(("/", "[")):
            texts[name].append(line)
    return texts, double


def sources(app):
    for folder in FOLDERS:
        for path in sorted((app / folder).rglob("*")):
            if path.is_file():
                yield path, path.read_text(encoding="utf-8")


def package_faults(templates):
    """What a template package lacks of what the others have, or names without having it."""
    packages = sorted(path.parent for path in templates.glob("*/modello1.htm"))
    pages = {package: {path.name for path in package.glob("*.htm")} for package in packages}
    all_pages = set().union(*pages.values())
    shared = {path.stem: path for path in templates.glob("parts/*.part")}
    used = set()
    for package in packages:
        missing = (all_pages - pages[package]) | {name for name in PACKAGE_FILES if not (package / name).is_file()}
        yield from (f"{package.name}: {name} is missing" for name in sorted(missing))
        colours = re.findall(r"^([0-9]) [0-9A-F]{6} ", (package / "colours.txt").read_text(), re.MULTILINE)
        if colours != list("01234"):
            yield f"{package.name}/colours.txt: the colours 0 to 4 are wanted, not {' '.join(colours)}"
        parts = dict(shared, **{path.stem: path for path in package.glob("parts/*.part")})
        for path in [*package.rglob("*.htm"), *package.rglob("*.css"), *parts.values()]:
            for name in re.findall(r"{{(.*?)}}", path.read_text(encoding="utf-8")):
                used.add(parts.get(name))
                if name not in parts and path not in shared.values():
                    yield f"{path.relative_to(templates)}: no part is named {name}"
    for path in templates.rglob("*.part"):
        if path not in used:
            yield f"{path.relative_to(templates)}: no page uses it"


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    app = pathlib.Path(sys.argv[1])
    faults = []
    used = {name: "the build" for name in ASKED_BY_BUILD | ASKED_BY_PATCHES}
    for path, text in sources(app):
        below = path.relative_to(app)
        for kind, name in re.findall(r"<<([0-9])-((?:(?!>>).)*)>>", text):
            if kind == "4":
                used.setdefault(name, str(below))
            elif kind in "13" and name not in PAGE_TAGS:
                faults.append(f"{below}: no page tag is named {name}")
            if kind == "1" and name == "db_security" and path.name != "updatedb.php":
                faults.append(f"{below}: holds the build token, so it would change with each build")
    faults += package_faults(app / "template")
    modules = sorted((app / "languages").glob("*.lng"))
    for path in modules:
        texts, double = module(path)
        faults += [f"{path.name}: {name} is defined twice" for name in double]
        faults += [f"{path.name}: {name} is missing, used by {where}"
                   for name, where in sorted(used.items()) if name not in texts]
        faults += [f"{path.name}: {name} has no text" for name, lines in texts.items() if not lines]
        faults += [f"{path.name}: {name} is used nowhere" for name in sorted(set(texts) - set(used))]
        faults += [f"{path.name}: {name} holds a character that breaks a script or a page"
                   for name, lines in texts.items() if FORBIDDEN.search("\n".join(lines))]
    if not modules:
        faults.append("no language modules")
    print("\n".join(faults) if faults else f"{len(used)} language tags in {len(modules)} modules")
    sys.exit(1 if faults else 0)


main()
