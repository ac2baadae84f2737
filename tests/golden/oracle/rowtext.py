"""Rows as a case writes them: blocks and tables of cells. The form is told in tests/support/golden_blocks.h."""
import re

SINGLE = re.compile(r"generale|lingue|pagamento|zona\d*")
HEAD = re.compile(r"\[(\w+)(?: x (\d+)|: (.*))?\]")
# A cell, or a column and its value; quoted it goes on to the first quote with a separator or the end after it.
CELL = re.compile(r'( *(?:(?!")(?:(?! = )[^|])* = *)?".*?" *(?=\||$)|[^|]*)(\||$)')
COPIES = "x"


def split_cells(line):
    cells, at = [], 0
    while True:
        found = CELL.match(line, at)
        cells.append(found.group(1).strip(" "))
        if not found.group(2):
            return cells
        at = found.end()


def pair(text):
    column, separator, value = text.partition(" = ")
    if not separator:
        raise ValueError("neither head nor column: " + text)
    return column, value.strip(" ")


def table_row(columns, line):
    cells = split_cells(line)
    if len(cells) != len(columns):
        raise ValueError("not as many cells as columns: " + line)
    row = {column: cell for column, cell in zip(columns, cells) if cell}
    return int(row.pop(COPIES, 1)), row


def read_blocks(text):
    """[(table, number of rows, {column: value as it is written})]"""
    blocks, columns, lines = [], None, iter(text.split("\n"))
    for line in lines:
        if not line.strip() or line.startswith("#"):
            continue
        head = HEAD.fullmatch(line)
        if head:
            table, cells = head.group(1), split_cells(head.group(3) or "")
            columns, every = [cell for cell in cells if " = " not in cell], [pair(cell) for cell in cells if " = " in cell]
            if not head.group(3):
                columns = None
                blocks.append((table, int(head.group(2) or 1), {}))
        elif columns:
            count, row = table_row(columns, line)
            blocks.append((table, count, dict(every) | row))
        elif line.endswith(" <<<"):
            blocks[-1][2][line[:-4]] = "\r\n".join(iter(lambda: next(lines), ">>>"))
        else:
            blocks[-1][2].update(pair(cell) for cell in split_cells(line))
    return join_singles(blocks)


def join_singles(blocks):
    """A table of one row has the columns of all its blocks, the later ones first."""
    joined, first = [], {}
    for table, count, row in blocks:
        if SINGLE.fullmatch(table) and table in first:
            first[table].update(row)
        else:
            first[table] = row
            joined.append((table, count, row))
    return joined
