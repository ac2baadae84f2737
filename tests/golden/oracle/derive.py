#!/usr/bin/env python3
"""Works out what a build of each golden case must leave behind, straight from the rules and from the case's inputs.

derive.py CASE...          rewrites the wanted parts of these cases
derive.py --print CASE...  prints the cases with the parts that are wanted
derive.py --check CASE...  fails, with the differences, when a wanted part isn't what the rules give
"""
import difflib
import sys

from build import Build
from dump import export
from shop import Shop
from txtar import Part, bytes_part, parse, show


def only_columns(flags):
    for flag in flags:
        if flag.startswith("only="):
            return flag[5:].split(",")
    return None


def text_part(name, text, flags=()):
    return Part(name, list(flags), text if not text or text.endswith("\n") else text + "\n")


def messages_text(build):
    lines = ["outcome: " + ("Done" if build.done else "Failed")]
    lines += ["[%s] %s" % (icon, text.replace("\n", "\n  ")) for icon, text in build.messages]
    return "\n".join(lines) + "\n"


def wanted_parts(parts):
    flags = {part.name: part.flags for part in parts}
    shop, log = Shop(parts), ""
    for step in shop.steps:
        if step == "build":
            build = Build(shop)
            build.run()
            log += messages_text(build)
        elif step == "export":
            export(build, shop.online)
        else:
            shop.apply(step)
    wanted = [text_part("want/messages.txt", log)]
    if build.log is not None:
        wanted.append(text_part("want/kvftp.dat", "\n".join(build.log)))
    if build.done:
        for name, make in (("want/db/sql.txt", build.tables.sql_text),
                           ("want/source.txt", lambda only: build.tables.source_text(build.row, only))):
            kept = [flag for flag in flags.get(name, []) if flag.startswith("only=")]
            wanted.append(text_part(name, make(only_columns(kept)), kept))
    for folder, files in (("online", shop.online), ("scripts", shop.scripts)):
        wanted += [bytes_part("want/%s/%s" % (folder, name), files[name]) for name in sorted(files)]
    return wanted


def derive(text):
    comment, parts = parse(text)
    return show(comment, [part for part in parts if not part.name.startswith("want/")] + wanted_parts(parts))


def main(arguments):
    mode = arguments.pop(0) if arguments and arguments[0].startswith("--") else ""
    failed = False
    for path in arguments:
        with open(path, encoding="utf-8", newline="") as file:
            old = file.read()
        new = derive(old)
        if mode == "--print":
            sys.stdout.write(new)
        elif mode == "--check":
            difference = list(
                difflib.unified_diff(old.splitlines(), new.splitlines(), path, "by the rules", lineterm=""))
            print("\n".join(difference) if difference else "as the rules give: " + path)
            failed = failed or bool(difference)
        elif new != old:
            with open(path, "w", encoding="utf-8", newline="") as file:
                file.write(new)
    return 1 if failed or not arguments else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
