"""Size and first pixel of a GIF, read straight from its blocks, and the image tags."""
from figures import hashes


def gif_size(data):
    """(width, height), None when the bytes are no GIF."""
    if data is None or data[:4] != b"GIF8" or len(data) < 10:
        return None
    return int.from_bytes(data[6:8], "little"), int.from_bytes(data[8:10], "little")


def first_pixel(data):
    """#RRGGBB of the pixel at (0, 0), for an image that covers it."""
    at, table = 13, data[13:]
    if data[10] & 0x80:
        at += 3 * 2 << (data[10] & 7)
    while data[at] == 0x21:  # extensions: label, then blocks up to an empty one
        at += 2
        while data[at]:
            at += 1 + data[at]
        at += 1
    flags, at = data[at + 9], at + 10
    if flags & 0x80:
        table = data[at:]
        at += 3 * 2 << (flags & 7)
    least, at, stream = data[at], at + 1, b""
    while data[at]:
        stream += data[at + 1:at + 1 + data[at]]
        at += 1 + data[at]
    bits, position = int.from_bytes(stream, "little"), 0
    while True:
        code = bits >> position & (1 << least + 1) - 1
        position += least + 1
        if code != 1 << least:  # after the clear codes comes the first pixel itself
            return "#" + table[3 * code:3 * code + 3].hex().upper()


def crea_tag_img(name, data):
    size = gif_size(data)
    return '<img src="%s" height="%d" width="%d">' % (name, size[1], size[0]) if size else '<img src="%s">' % name


def picture_tag(name, width, height):
    if not name:
        return ""
    sizes = ' width="%s" height="%s"' % (hashes(width), hashes(height)) if width else ""
    return '<img border="0" src="%s"%s>' % (name, sizes)
