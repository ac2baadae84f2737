#!/usr/bin/env python3
"""Fills the payment modules of the data tree: fill_modules.py NEW_CODE

NEW_CODE is new/code of the data tree, packed already. In each module the placeholders of form.kpg and of each
<name>.new (# and a key) take the values that conf.ini is shipped with, which gives <module>.kpg beside the folder and
<name>.php: the module before the merchant has entered anything.
"""

import pathlib
import sys

SCRIPT_KEYS = ("php", "php(default)", "php(sel)", "action")


def settings(conf):
    """The account values in the order of the file; the keys that name scripts are no placeholders."""
    pairs = (line.split(b"=", 1) for line in conf.read_bytes().splitlines() if b"=" in line)
    return {key: value for key, value in pairs if key.decode() not in SCRIPT_KEYS}


def fill(template, target, values):
    """Writes the filled template; a target whose bytes are right already keeps its date."""
    data = template.read_bytes()
    for key, value in values.items():
        data = data.replace(b"#" + key, value)
    if not target.is_file() or target.read_bytes() != data:
        target.write_bytes(data)


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    for form in sorted(pathlib.Path(sys.argv[1]).glob("*/form.kpg")):
        module = form.parent
        values = settings(module / "conf.ini")
        fill(form, module.parent / (module.name + ".kpg"), values)
        for script in sorted(module.glob("*.new")):
            fill(script, script.with_suffix(".php"), values)


main()
