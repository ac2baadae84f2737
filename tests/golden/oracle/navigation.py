"""The departments as a tree of links, as a drop-down, as an XML file, and around a department's title."""
from figures import hashes
from texts import testo_html

CRLF = "\r\n"
ROOT = "###"
XML_HEAD = ['<?xml version="1.0" encoding="ISO-8859-1" ?>', "<!DOCTYPE shopmenu [", "  <!ELEMENT shopmenu (submenu*)>",
            "  <!ELEMENT submenu (menuitem*)>", "  <!ELEMENT menuitem (title*, image*, link*, submenu*)>",
            "  <!ELEMENT title (#PCDATA)>", "  <!ELEMENT image (#PCDATA)>", "  <!ELEMENT link (#PCDATA)>", "]>",
            "<shopmenu>"]


def menu_sections(text):
    """{name: text} of a menu file; None when there is no file, which is another thing than an empty one."""
    if text is None:
        return None
    sections, name = {}, None
    for line in text.split(CRLF):
        trimmed = line.strip(" ")
        if trimmed.startswith("[") and trimmed.endswith("]") and len(trimmed) > 1:
            name = trimmed[1:-1].lower()
            sections[name] = []
        elif name is not None:
            sections[name].append(line)
    for name, lines in sections.items():
        while lines and not lines[0].strip(" "):
            lines.pop(0)
        while lines and not lines[-1].strip(" "):
            lines.pop()
        sections[name] = CRLF.join(lines)
    return sections


class Navigation:
    """`departments` are the views of one language, by level and position."""

    def __init__(self, departments, suffix, colour, sections):
        self.departments, self.suffix, self.colour, self.sections = departments, suffix, colour, sections

    def children(self, key):
        return [row for row in self.departments if row["genitore"] == key]

    def shown_children(self, key):
        return [row for row in self.children(key) if not row["nascosto"]]

    def find(self, key):
        return next((row for row in self.departments if row["ID"] == key), None)

    def link(self, row):
        return row.text("pagina") + self.suffix + ".php?n=1"

    # Which departments the tree shows.

    def open_ids(self, current, open_levels):
        """`current` is None on a page that belongs to no department."""
        if current is None:
            return {row["ID"] for row in self.departments if row["livello"] <= open_levels}
        near = (current["ID"], current["genitore"])
        ids = {row["ID"] for row in self.departments if row["genitore"] in near or row["livello"] <= open_levels}
        above = current["genitore"]
        while above and above != ROOT:
            ids.add(above)
            parent = self.find(above)
            above = parent and parent["genitore"]
        return ids

    # The tree and the drop-down.

    def tree(self, current, open_levels):
        """(tags reparti, repartimenu) of a page."""
        links, options = self.walk(None, ROOT, current and current["ID"], self.open_ids(current, open_levels))
        menu = CRLF.join(['<form name="kvReparti">', '<select name="kvRepartiMenu" onChange="RepGoTo()">',
                          '<option selected value="#"> </option>', options + "</select>", "</form>"])
        return links, menu

    def walk(self, row, key, current, opened):
        link = self.entry(row, key == current) if row is not None and key in opened else ""
        menu = self.option(row) if row is not None else ""
        below = ""
        for child in self.shown_children(key):
            child_link, child_menu = self.walk(child, child["ID"], current, opened)
            below, menu = below + child_link, menu + child_menu
        wrappers = [(self.sections or {}).get(name, "") for name in ("children", "nochildren")]
        wrappers = [wrapper.replace("|", '"') for wrapper in wrappers]
        if row is None or "" in wrappers:
            return link + below, menu
        if link and below:
            link = wrappers[0].replace("%rep", link).replace("%subrep", below)
        elif link:
            link = wrappers[1].replace("%rep", link)
        return link, menu

    def entry(self, row, is_current):
        text = self.plain_entry(row, is_current) if self.sections is None else self.section_entry(row, is_current)
        return text.replace("|", '"')

    @staticmethod
    def indent(level):
        return "&nbsp;" * (2 * (level - 1) - 1) + " " if level > 1 else ""

    def plain_entry(self, row, is_current):
        level, image = row["livello"], row.text("immagine1")
        mark = "&nbsp;&nbsp;" if level > 1 else ("<BR>" if image else "<B>• </B>")
        label = '<font color="%s">###</font>' % self.colour
        label = label.replace("###", row.text("titolo"))
        if image:
            label = '<img src="%s" width="%s" height="%s" border="0">' % (
                image, hashes(row["imgX1"]), hashes(row["imgY1"]))
        label = "<B>%s</B>" % label if is_current else '<a href="%s">%s</a>' % (self.link(row), label)
        return self.indent(level) + mark + label + "<BR>" + CRLF

    def section_entry(self, row, is_current):
        level, image = row["livello"], row.text("immagine1")
        name = ("top " if level == 1 else "") + ("images" if image else "titles") + (" selected" if is_current else "")
        text = self.sections.get(name, "")
        if image:
            text = text.replace("%image", image)
            text = text.replace("%x", hashes(row["imgX1"])).replace("%y", hashes(row["imgY1"]))
        text = text.replace("%title", row.text("titolo")).replace("%link", self.link(row))
        return self.sections.get("tab", "") * (level - 1) + text

    def option(self, row):
        level = row["livello"]
        indent = self.indent(level) + "&nbsp;&nbsp;" if level > 1 else ""
        text = '<option value="%s">%s %s</option>' % (self.link(row), indent, row.text("titolo")) + CRLF
        return text.replace("|", '"')

    # Around the title.

    def title_link(self, row):
        return '<a href="%s">%s</a>' % (self.link(row), row.text("titolo").replace("|", '"'))

    def path(self, row):
        text, above = "", row["genitore"]
        while above and above != ROOT:
            parent = self.find(above)
            if parent is None or parent["genitore"] is None:
                return ""
            if parent["genitore"] and not parent["nascosto"]:
                text = '<font size="1">%s &gt; </font>' % self.title_link(parent) + text
            above = parent["genitore"]
        return "" if above is None else text

    def below(self, row):
        start = '<BR><font size="1">&gt;&gt;&nbsp;</font>'
        links = ['<font face="Arial" size="1">%s | </font>' % self.title_link(child)
                 for child in self.shown_children(row["ID"]) if child["ID"]]
        return start + "".join(links) if links else ""

    def title(self, row, entities):
        return self.path(row) + testo_html(row["titolo"], entities) + self.below(row)

    # The XML menu.

    def xml(self):
        return CRLF.join(XML_HEAD + self.submenu(ROOT, 0) + ["</shopmenu>", ""])

    def submenu(self, key, depth):
        lines = [line for child in self.shown_children(key) for line in self.item(child, depth + 1)]
        indent = "    " * depth + "  "
        return [indent + "<submenu>"] + lines + [indent + "</submenu>"] if lines else []

    def item(self, row, depth):
        indent, image = "    " * depth, row.text("immagine1")
        return ([indent + "<menuitem>"] + (["%s  <image>%s</image>" % (indent, image.replace("|", '"'))] if image else []) +
                ["%s  <title>%s</title>" % (indent, xml_text(row.text("titolo"))),
                 "%s  <link>%s</link>" % (indent, xml_text(self.link(row)))] +
                self.submenu(row["ID"], depth) + [indent + "</menuitem>"])


def xml_text(text):
    return text.replace("|", '"').replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;")
