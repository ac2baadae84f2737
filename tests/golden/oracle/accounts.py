#!/usr/bin/env python3
"""What OK of a payment module's dialog writes, computed a second time without the program.

accounts.py --check CASE...: the wanted parts of each case are what the rules give, and PHP accepts each of them.
accounts.py --write CASE...: puts them into the cases.

A case names its module and the fields of the dialog in the part `account`, a text of several lines in `info`, and in
`conf.ini` the settings as they were, where these aren't the shipped ones.
"""
import pathlib
import re
import subprocess
import sys
import tempfile
from dataclasses import dataclass

import txtar

TEMPLATES = pathlib.Path(__file__).resolve().parents[3] / "app" / "new" / "code"
CENTS = "importo = Math.round(importo1 * 100);"


@dataclass
class Module:
    """Keys of conf.ini, placeholders and scripts, each in its order, as words of a text."""
    keys: str
    placeholders: str
    scripts: str = ""
    constants: tuple = ()
    host: str = ""  # of a module with a test server

    def fixed(self):
        return dict(self.constants)


SIGNED = "mid val url java ss1 ss2"
SIGNED_CONSTANTS = (("val", "978"), ("java", CENTS))
MODULES = {
    "Telepay Light": Module(SIGNED + " cod", "mid val url ss1 ss2 java cod", "telepay tlurlms", SIGNED_CONSTANTS,
                            "telepay"),
    "Cartafacile": Module(SIGNED + " cod", "mid val url ss1 ss2 java cod", "cartafacile cfurlms", SIGNED_CONSTANTS,
                          "cartafacile"),
    "Bankpass": Module(SIGNED + " con aut cod test", "mid val url ss1 ss2 con aut java cod", "bankpass bpurlms",
                       SIGNED_CONSTANTS, "bankpass"),
    "Banca Sella": Module("mid val lan tid", "mid tid val lan", "", (("val", "242"),)),
    "Cilme": Module("mid val java alias newsys", "mid val java alias", "", (("val", "EUR"), ("java", CENTS))),
    "Paypal": Module("mid val", "mid val"),
    "Omnipay": Module("sto key", "sto key", "omniend"),
    "Cariverona": Module("ncom ncto user pass segr", "ncom ncto user pass segr", "cariverona"),
    "SysPay": Module("mid rec url dev", "mid rec url dev", "syspay"),
    "Contrassegno": Module("info", "info"),
    "Pagamento anticipato": Module("info", "info"),
}
for one in ("AuthorizeNet", "Planet Payment", "Shopla", "Consorzio Triveneto"):
    MODULES[one] = Module("mid", "mid")

SELLA = {"crypt": ("gestpaycrypt", "s2scrypt"), "otp": ("gestpayotp", "s2sotp"), "compatible": ("gestpaycomp", "s2scomp")}
SYSPAY = {"url": "https://pagamenti.syspay.example/avvio", "dev": "https://prova.syspay.example/avvio"}


def pairs(text):
    return [line.split("=", 1) for line in text.split("\n") if "=" in line]


def template(module, name):
    return (TEMPLATES / module / name).read_text(encoding="utf-8")


def service(host, fields, former):
    """(address of the service, test address) of a module with a test server."""
    production = "https://pagamenti.%s.example/avvio" % host
    test = "https://prova.%s.example/avvio" % host
    old = "https://test.%s.example/" % host
    url = former.get("url", "")
    on = fields.get("use_test", "1" if url not in ("", production) else "0") == "1"
    address = fields.get("test", url if on else former.get("test", ""))
    address = test if address.startswith(old) else address
    return (address if on else production), address, not on or address.startswith("https://prova.%s.example/" % host)


def values(name, module, fields, former):
    held = {key: fields.get(key, former.get(key, "")) for key in module.keys.split()}
    held.update(module.fixed())
    if module.host:
        held["url"], address, prefix = service(module.host, fields, former)
        held["cod"] = "1" if prefix and held["cod"] == "1" else "0"
        if "test" in held:
            held["test"] = address
    if name == "Banca Sella":
        held["lan"] = "idlan=1" if fields["lan"] == "1" else ""
        held["tid"] = held["tid"].strip(" ")
    if name == "SysPay":
        held.update({key: held[key] or constant for key, constant in SYSPAY.items()})
    return held


def kept_lines(name, module, former):
    known = module.keys.split() + (["pwd"] if name == "Banca Sella" else [])
    scripts = [script for mode in SELLA.values() for script in mode] if name == "Banca Sella" else []
    return [(key, value) for key, value in former
            if key not in known and not (key in ("php", "php(default)") and value in scripts)]


def fill(text, order, held):
    """Each placeholder in its turn, values not searched for their own; each text block keeps its end word to itself."""
    def put(source):
        for key in order:
            source = held[key].join(source.split("#" + key))
        return source
    for plain in re.findall(r"<<<'(\w+)'", text):
        used, number, source = plain, 0, text
        while put(source).count(used) != text.count(plain):
            number += 1
            used = "%s_%d" % (plain, number)
            source = text.replace(plain, used)
        text = source
    return put(text)


def derive(parts):
    texts = {part.name: part.text for part in parts}
    fields = dict(pairs(texts["account"]))
    name = fields.pop("module")
    module = MODULES[name]
    if "info" in texts:
        fields["info"] = texts["info"][:-1]
    former = pairs(texts.get("conf.ini", template(name, "conf.ini")))
    held = values(name, module, fields, dict(former))
    lines = kept_lines(name, module, former)
    if name == "Banca Sella":
        lines += zip(("php(default)", "php"), SELLA[fields["mode"]])
    lines += [(key, held[key].replace("\n", "||")) for key in module.keys.split()]
    wanted = {name + "/conf.ini": "".join("%s=%s\n" % line for line in lines)}
    order = module.placeholders.split()
    form = "newform.kpg" if held.get("newsys") == "1" else "form.kpg"
    wanted[name + ".kpg"] = fill(template(name, form), order, held)
    scripts = module.scripts.split()
    if name == "Banca Sella" and fields["mode"] != "compatible":
        scripts, order = [SELLA[fields["mode"]][1]], ["mid"]
    for script in scripts:
        wanted["%s/%s.php" % (name, script)] = fill(template(name, script + ".new"), order, held)
    return wanted


def php_says(wanted):
    """What PHP has against the scripts; empty: nothing."""
    said = ""
    with tempfile.TemporaryDirectory() as folder:
        for number, (name, text) in enumerate(wanted.items()):
            if name.endswith(".ini"):
                continue
            path = pathlib.Path(folder) / ("%d.php" % number)
            path.write_bytes(txtar.to_cp1252(text.replace("\n", "\r\n")))
            run = subprocess.run(["php", "-l", path], capture_output=True, text=True)
            said += "" if run.returncode == 0 else name + ": " + run.stdout + run.stderr
    return said


def main(mode, paths):
    bad = 0
    for path in map(pathlib.Path, paths):
        text = path.read_text(encoding="utf-8")
        comment, parts = txtar.parse(text)
        given = [part for part in parts if not part.name.startswith("want/")]
        wanted = derive(given)
        shown = txtar.show(comment, given + [txtar.Part("want/" + name, [], text) for name, text in wanted.items()])
        if mode == "--write":
            path.write_text(shown, encoding="utf-8")
        complaint = "" if shown == text or mode == "--write" else "the wanted parts differ from what the rules give\n"
        complaint += php_says(wanted)
        if complaint:
            bad += 1
            print("%s: %s" % (path.name, complaint))
    return 1 if bad else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], sys.argv[2:]))
