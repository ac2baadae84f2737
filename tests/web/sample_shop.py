#!/usr/bin/env python3
"""Expands the shipped web data with sample values: sample_shop.py APPLICATION_FOLDER OUT [DATABASE_SETTINGS]

A quick look at what templates, scripts, back office and payment modules become, without a catalogue: it is input for
lint.sh and for trying pages in a browser. OUT gets online/ and scripts/ of the template classico, and chiaro/online/
and chiaro/scripts/ of chiaro, in Italian and, with the suffix _l2, in English. DATABASE_SETTINGS is a text
"host,user,password,name".
"""

import pathlib
import re
import sys

ENCODING = "cp1252"
SHIPPING = "".join(f"{name}=new Array({','.join([value] * 32)});\r\n" for name, value in (
    ("impord1", "50"), ("impspese1", "9.00"), ("impord2", "100"), ("impspese2", "5.00"), ("impspese3", "0.00")))
WEIGHTS = "".join(
    f"imppeso{n}=new Array({','.join([str(n)] * 32)});\r\nimpspp{n}=new Array({','.join([str(n + 4)] * 32)});\r\n"
    for n in range(1, 10)) + f"impspp10=new Array({','.join(['20'] * 32)});\r\n"
VALUES = {
    "colore0": "#22303C", "colore1": "#FAF8F4", "colore2": "#1B5E5A", "colore3": "#E4DED2",
    "negozio": "Ceramiche d'Este", "email": "info@shop.example", "email_ordini": "ordini@shop.example",
    "firma": "Ceramiche d'Este\r\nvia Roma 1", "meta_description": "Ceramiche", "meta_keywords": "ceramiche",
    "home1": "Benvenuti", "condizioni": "Condizioni", "datipers": "Dati", "recesso": "Recesso", "rifiuto": "Chiuso",
    "reparti": '<li><a href="cat001.php?n=1">Vasi</a></li>',
    "paesi": '<select size="1" name="LSStato" onChange="SpedPaese()">\r\n<option selected value ="1">Italia</option>'
             '\r\n<option value ="2">Svizzera</option>\r\n</select>',
    "pagamento": '<select size="1" name="Pagamento" onChange="SpedPaese()">\r\n<option selected>Contrassegno</option>'
                 '\r\n<option>Anticipato</option>\r\n</select>',
    "java_zona": "1", "java_importi": SHIPPING, "java_importi_peso": WEIGHTS, "java_tipopeso": "0",
    "java_permessi": f"var SpOk='{'1' * 16}';\r\nvar IvaOk='10111111';", "java_aliquotaspese": " .22",
    "java_qminima": " 0", "java_minimo": " 10", "java_ivacompresa": "1", "java_campi": "obbl_tel = 1;",
    "java_valuta": 'var valuta="EUR ";\r\nvar valuta2="Lit. ";\r\nvar exch= 1;\r\nvar SecVal= 0;\r\n'
                   'var sepmigl=".";\r\nvar sepdec=",";\r\nvar PutDec= 1;\r\nvar PutDec2= 0;\r\n'
                   "var scimp = new Array( 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);\r\n"
                   "var scperc = new Array( 1, .9, 1, 1, 1, 1, 1, 1, 1, 1);",
    "java_search": "return SubmitSearchForm(1)", "java_daticliente": "CaricaDati()", "java_ANDORsearch": "all",
    "java_sepsearch": 'var sleft = ",#.*"; var sright = "";', "search_maxart": "10", "java_PGAction": "kvorder.php",
    "perl_shopURL": "http://localhost:8080", "metodo_pagamento": "Contrassegno", "bo_username": "merchant",
    "bo_password": "let \\'me\\' in", "compact_privacy_policy": "ALL CUR",
    "testo_email": '\r\n$info .= "Ordine " . $codice . " di " . $mail_valuta . $totale_lordo . "\\r\\n";\r\n'
                   '$info .= "" . $riepilogo . "\\r\\n";\r\n',
    "java_carrello": '<script language="JavaScript">\r\n<!--\r\ndocument.cookie = "kvstore_disp=<?php echo $cartdisp; '
                     '?>";\r\ndocument.cookie = "kvstore_cliente=<?php echo $ordercliente; ?>";\r\nvar scl = <?php echo '
                     "$scontocliente; ?>;\r\nMostraCarrello(<?php echo $listino; ?>);\r\n//-->\r\n</script>",
    "php_globals": "\r\n".join((
        "$ivacompresa = 1;", "$visdec = array(1,0, 2);", "$vissconto = 1;", '$valuta = array("EUR ","Lit. ");',
        "$cambio = 0;", "$notazione = 0;", "$regobbl = 0;", "$regpr = 0;",
        '$visofferta = "<img src=\\"kvan_offerta.gif\\" height=\\"20\\" width=\\"28\\">";',
        '$visnovita = "<img src=\\"kvan_novita.gif\\" height=\\"20\\" width=\\"56\\">";',
        "$scontoperc = array(1,.9,1,1,1,1,1,1,1,1);", "$scontoimp = array(0,0,0,0,0,0,0,0,0,0);", "")),
}
PAGE_HEAD = '<?php\r\ninclude("funcs{0}.php");\r\n$Lingua = "{0}";\r\n?>'
ORDER = ('\r\n<?php\r\nif ($cliente==0 && $regobbl) {\r\nheader("Location: login$Lingua.php?m=23");\r\n}\r\n?>'
         '\r\n<?php\r\n$cartdisp = CheckDispCart();\r\nif (is_integer(strpos($cartdisp, "0"))) {\r\n'
         'header("Location: login$Lingua.php?m=53");\r\n}\r\n$ordercliente = LoadDatiCliente();\r\n?>')
CART = '\r\n<?php\r\n$cartdisp = CheckDispCart();\r\n$ordercliente = "";\r\n?>'
DEPARTMENT = """<?php
include("funcs{0}.php");
$sp = $HTTP_GET_VARS['n'];
$Lingua = "{0}";
$PageRoot = "{1}";
$sql = "SELECT * FROM articoli$Lingua WHERE pagina='$PageRoot' ORDER BY sottopagina DESC";
$resultArt = mysql_query($sql);
if (mysql_num_rows($resultArt) == 0) {{
$mp = 1;
}} else {{
$rowArt = mysql_fetch_array($resultArt);
$mp = $rowArt['sottopagina'];
}}
if ($sp < 1 || $sp > $mp) {{$sp = 1;}}
mysql_free_result($resultArt);
$sql = "SELECT *, articoli$Lingua.pagina as 'linkPage' FROM articoli$Lingua INNER JOIN dettaglio USING (ID) INNER JOIN \
ordinamento USING (ID) WHERE articoli$Lingua.pagina='$PageRoot' AND articoli$Lingua.sottopagina=$sp ORDER BY contatore \
+ 0 ASC";
$resultArt = mysql_query($sql);
?>
<?php
SetVariables("cat001");
if ($inaccessibile[$listino]) {{ header("Location: login$Lingua.php?m=11"); }}
?>
""".replace("\n", "\r\n")
LOOP = ('<?php\r\n$Contatore = 0;\r\n$prod=$HTTP_GET_VARS[\'prod\'];\r\nwhile ($rowArt = mysql_fetch_array($resultArt)) '
        "{\r\n$Contatore = $Contatore + 1;\r\n$artID = $rowArt['ID'];\r\nif ($prod == 0) {\r\n"
        'print ViewArt("beforecode");\r\n}\r\nif ($prod == 0 || $prod == $Contatore) {\r\n?>\r\n'
        "<a name=<?php echo $Contatore; ?>></a>")
LOOP_END = '<?php\r\n}\r\nif ($prod == 0) {\r\nprint ViewArt("aftercode");\r\n}\r\n}\r\n?>'
DEPARTMENT_END = "<?php\r\nmysql_free_result($resultArt);\r\n?>"


class Language:
    """One language of the sample shop: its pages, made into OUT/online and OUT/scripts."""

    def __init__(self, application, template, out, suffix, code, values):
        self.application, self.suffix = application, suffix
        self.online, self.scripts = out / "online", out / "scripts"
        self.code = application / "code"
        self.template = application / "template" / template
        self.local = self.template / code
        self.words = self.module(application / "languages" / (code + ".lng"))
        self.values = dict(values, IDlingua=suffix, IDnegozio="4711" + suffix)
        for name, script in (("output", "output"), ("login", "lognew")):
            self.values[name] = f'<?php\r\ninclude "{script}{suffix}.php";\r\n?>'
        self.names = {p.name for p in list(self.template.iterdir()) + list(self.code.iterdir()) if p.is_file()}

    @staticmethod
    def module(path):
        words, name = {}, None
        for line in path.read_text(ENCODING).splitlines():
            start = re.fullmatch(r"<<4-(.*)>>", line.strip())
            if start:
                name = start.group(1)
                words[name] = ""
            elif name and line and not line.startswith(("/", "[")):
                words[name] += line
        return words

    def file_name(self, name):
        stem, dot, extension = name.rpartition(".")
        if name.endswith(".htm") and not name.startswith("results"):
            extension = "php"
        return stem + self.suffix + dot + extension

    def references(self, text):
        return re.sub(r'"([\w.-]+)"', lambda m: f'"{self.file_name(m.group(1))}"' if m.group(1) in self.names
                      else m.group(0), text)

    def expand(self, text, **extra):
        values = dict(self.values, **extra)
        for _ in range(2):
            text = re.sub(r"<<1-([^>]*)>>", lambda m: values.get(m.group(1), ""), text)
        return re.sub(r"<<4-([^>]*)>>", lambda m: self.words.get(m.group(1), m.group(0)), text)

    def write(self, folder, name, text):
        folder.mkdir(parents=True, exist_ok=True)
        (folder / name).write_bytes((text + "\r\n").encode(ENCODING))

    def read(self, path):
        local = self.local / path.name
        return (local if local.is_file() and path.parent == self.template else path).read_bytes().decode(ENCODING)

    def department(self, path, stem):
        text = self.expand(self.references(self.read(path)), titolo="Vasi")
        before, rest = text.split("<KV_START>")
        section, after = rest.split("<KV_END>")
        section = re.sub(r"<<2-([^>]*)>>", r'<?php echo ViewArt("\1"); ?>', section)
        page = DEPARTMENT.format(self.suffix, stem + self.suffix) + before + LOOP + section + LOOP_END + after
        self.write(self.online, stem + self.suffix + ".php", page + DEPARTMENT_END)

    def page(self, path):
        head = PAGE_HEAD.format(self.suffix) + {"order.htm": ORDER, "cart.htm": CART}.get(path.name, "") + "\r\n"
        text = self.references(self.read(path))
        if path.name == "results.htm":
            text = re.sub(r"<<3-ric_(\w+)>>", lambda m: "$arg" + str(
                1 + "pagina codice titolo sottotitolo foto".split().index(m.group(1))), self.expand(text))
            self.write(self.online, self.file_name(path.name), text)
        elif path.name == "thankyou.htm":
            for number, module in enumerate(sorted((self.application / "new/code").glob("*.kpg")), 1):
                fragment = module.read_bytes().decode(ENCODING)
                self.write(self.online, f"thankyou{number}{self.suffix}.php", head + self.expand(text, thankyou=fragment))
        elif path.name == "paymsg.htm":
            for name, word in (("payok", "pay_ok"), ("payerr", "pay_ko")):
                self.write(self.online, f"{name}{self.suffix}.php", head + self.expand(text, paymsg=self.words[word]))
        else:
            self.write(self.online, self.file_name(path.name), head + self.expand(text))

    def build(self):
        for number, path in enumerate(sorted(self.template.glob("modello*.htm")), 1):
            self.department(path, f"cat{number:03}")
        for path in sorted(self.template.iterdir()):
            if path.suffix == ".htm" and not path.name.startswith("modello"):
                self.page(path)
            elif path.is_file() and path.suffix != ".htm" and not path.name.startswith(("kvan_col_", "kvan_preview")):
                self.online.mkdir(parents=True, exist_ok=True)
                source = self.local / path.name
                source = source if source.is_file() else path
                (self.online / self.file_name(path.name)).write_bytes(source.read_bytes())
        for path in sorted(self.code.iterdir()):
            self.write(self.online, self.file_name(path.name), self.expand(self.references(self.read(path))))
        for path in sorted((self.application / "new/code").rglob("*.php")):
            self.write(self.online, self.file_name(path.name), self.expand(self.read(path)))
        for path in sorted((self.application / "backoffice").iterdir()):
            self.write(self.scripts, path.name, self.expand(self.read(path)))


def main():
    if len(sys.argv) not in (3, 4):
        sys.exit(__doc__)
    values = dict(VALUES)
    database = (sys.argv[3] if len(sys.argv) == 4 else "localhost,shop,secret,shop").split(",")
    values.update(zip(("db_hostname", "db_username", "db_password", "db_dbname"), database))
    application, out = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    for template, folder in (("classico", out), ("chiaro", out / "chiaro")):
        for suffix, code in (("", "italiano"), ("_l2", "inglese")):
            Language(application, template, folder, suffix, code, values).build()


main()
