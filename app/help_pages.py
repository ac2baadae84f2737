"""Makes the help pages: puts the text of each page into the one frame that they share.

    python3 help_pages.py FROM TO

FROM/cornice.htm is the frame; {{titolo}} in it is the page's heading, {{radice}} the way from the page up to the
folder of help, {{testo}} the page. Every other .htm below FROM is a page, which starts with its <h1>. The link of the
frame that leads to the page itself is marked as the current one. Other files are copied.
"""
import pathlib
import re
import shutil
import sys

FRAME = "cornice.htm"


def page_of(frame, text, path):
    """The whole page of a text; path: its path below the folder of help, with slashes."""
    heading = re.match(r"<h1>([^<]*)</h1>", text)
    if heading is None:
        raise SystemExit(f"{path}: a page starts with its <h1>")
    page = frame.replace(f'"{{{{radice}}}}{path}"', f'"{{{{radice}}}}{path}" aria-current="page"')
    page = page.replace("{{radice}}", "../" * path.count("/")).replace("{{titolo}}", heading[1])
    return page.replace("{{testo}}", text.rstrip("\n"))


def main(source, target):
    frame = (source / FRAME).read_text(encoding="utf-8")
    shutil.rmtree(target, ignore_errors=True)
    for file in sorted(source.rglob("*")):
        path = file.relative_to(source).as_posix()
        if file.is_dir() or path == FRAME:
            continue
        made = target / path
        made.parent.mkdir(parents=True, exist_ok=True)
        if file.suffix == ".htm":
            made.write_text(page_of(frame, file.read_text(encoding="utf-8"), path), encoding="utf-8")
        else:
            shutil.copyfile(file, made)


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    main(pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]))
