"""Pictures as rows of red, green and blue bytes."""

import gi

gi.require_version("GdkPixbuf", "2.0")
from gi.repository import GdkPixbuf  # noqa: E402


def read_png(path):
    picture = GdkPixbuf.Pixbuf.new_from_file(str(path))
    data, stride, width = picture.get_pixels(), picture.get_rowstride(), picture.get_width()
    rows = [data[row * stride:(row + 1) * stride] for row in range(picture.get_height())]
    if not picture.get_has_alpha():
        return [row[:3 * width] for row in rows]
    return [_without_transparency(row[:4 * width]) for row in rows]


def _without_transparency(line):
    colours = bytearray(len(line) // 4 * 3)
    colours[0::3], colours[1::3], colours[2::3] = line[0::4], line[1::4], line[2::4]
    return bytes(colours)


def pixel(rows, x, y):
    return tuple(rows[y][3 * x:3 * x + 3])


def drawn(rows):
    """Left, top, width and height of what is not black, None when everything is."""
    lines = [y for y, row in enumerate(rows) if any(row)]
    if not lines:
        return None
    left = min(len(rows[y]) - len(rows[y].lstrip(b"\0")) for y in lines) // 3
    right = (max(len(rows[y].rstrip(b"\0")) for y in lines) + 2) // 3
    return left, lines[0], right - left, lines[-1] - lines[0] + 1
