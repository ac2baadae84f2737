#!/usr/bin/env python3
"""Computes what a build of each golden case must leave, straight from the rules and from the case's inputs.

derive.py CASE...                rewrites the wanted parts of these cases, each shown as the case shows it now
derive.py --print CASE...        prints the cases with the parts that are wanted
derive.py --check CASE...        fails, with the differences, when a wanted part isn't what the rules give
derive.py --whole FOLDER CASE    writes every wanted part as a whole below FOLDER, also those that the case digests
"""
import difflib
import pathlib
import sys

from build import Build
from condensed import Produced, condensed, is_wanted
from dump import export
from shop import Shop
from tables import rows_text
from txtar import Part, base_of, bytes_part, parse, read, show, with_base


def text_produced(name, text):
    text = text if not text or text.endswith("\n") else text + "\n"
    return Produced(Part(name, [], text), text.encode("utf-8"))


def rows_produced(name, tables):
    def text(only=None, ids=None):
        return "".join(rows_text(*table, only, ids, brief=True) for table in tables)
    dumps = [(table[0], len(table[2]), rows_text(*table)) for table in tables if table[2]]
    return Produced(Part(name, [], "".join(dump[2] for dump in dumps)), tables=dumps, show=text)


def messages_text(build):
    lines = ["outcome: " + ("Done" if build.done else "Failed")]
    lines += ["[%s] %s" % (icon, text.replace("\n", "\n  ")) for icon, text in build.messages]
    return "\n".join(lines) + "\n"


def produced_parts(parts):
    """Everything that the builds of a case leave."""
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
    produced = [text_produced("want/messages.txt", log)]
    if build.log is not None:
        produced.append(text_produced("want/kvftp.dat", "\n".join(build.log)))
    if build.done:
        produced.append(rows_produced("want/db/sql.txt", build.tables.sql_tables()))
        produced.append(rows_produced("want/source.txt", build.tables.source_tables(build.row)))
    for folder, files in (("online", shop.online), ("scripts", shop.scripts)):
        produced += [Produced(bytes_part("want/%s/%s" % (folder, name), files[name]), files[name])
                     for name in sorted(files)]
    return produced


def derive(path, text):
    comment, parts = parse(text)
    base = base_of(path, parts)
    inputs = [part for part in parts if not is_wanted(part)]
    whole = with_base(parts, base)
    return show(comment, inputs + [part for part in condensed(whole, produced_parts(whole)) if part not in base])


def write_whole(folder, path):
    _, parts = parse(read(path))
    for produced in produced_parts(with_base(parts, base_of(path, parts))):
        target = pathlib.Path(folder) / produced.whole.name
        target.parent.mkdir(parents=True, exist_ok=True)
        target.write_text(produced.whole.text, encoding="utf-8", newline="")


def main(arguments):
    mode = arguments.pop(0) if arguments and arguments[0].startswith("--") else ""
    if mode == "--whole" and len(arguments) == 2:
        write_whole(*arguments)
        return 0
    failed = False
    for path in arguments:
        old = read(path)
        new = derive(path, old)
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
