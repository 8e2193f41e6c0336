#!/usr/bin/env python3
"""Writes the example documents of this folder: a letter, a two-page report and a landscape table.

    make-examples.py            writes them beside this script
    make-examples.py --check    says whether the files beside this script are what it would write

The same bytes come out on every machine: nothing is compressed, no date is taken from the clock, and the one
picture is computed with the four basic operations alone.
"""

import sys
import tempfile
from pathlib import Path

HERE = Path(__file__).resolve().parent

A4 = (595, 842)
A4_LANDSCAPE = (842, 595)
LEFT, RIGHT = 64, 531

NAVY = (0.10, 0.20, 0.33)
TEAL = (0.11, 0.47, 0.53)
AMBER = (0.87, 0.55, 0.16)
INK = (0.13, 0.14, 0.16)
GREY = (0.45, 0.48, 0.52)
PALE = (0.93, 0.95, 0.96)
RULE = (0.78, 0.81, 0.84)
WHITE = (1, 1, 1)

# Advance widths of the characters 32 to 126, in thousandths of the font size.
WIDTHS = {
    "Helvetica": """278 278 355 556 556 889 667 191 333 333 389 584 278 333 278 278 556 556 556 556 556 556 556
        556 556 556 278 278 584 584 584 556 1015 667 667 722 722 667 611 778 722 278 500 667 556 833 722 778 667
        778 722 667 611 722 667 944 667 667 611 278 278 278 469 556 333 556 556 500 556 556 278 556 556 222 222
        500 222 833 556 556 556 556 333 500 278 556 500 722 500 500 500 334 260 334 584""",
    "Helvetica-Bold": """278 333 474 556 556 889 722 238 333 333 389 584 278 333 278 278 556 556 556 556 556 556
        556 556 556 556 333 333 584 584 584 611 975 722 722 722 722 667 611 778 722 278 556 722 611 833 722 778
        667 778 722 667 611 722 667 944 667 667 611 333 278 333 584 556 333 556 611 556 611 556 333 611 611 278
        278 556 278 889 611 611 611 611 389 556 333 611 556 778 556 556 500 389 280 389 584""",
    "Times-Roman": """250 333 408 500 500 833 778 180 333 333 500 564 250 333 250 278 500 500 500 500 500 500 500
        500 500 500 278 278 564 564 564 444 921 722 667 667 722 611 556 722 722 333 389 722 611 889 722 722 556
        722 667 556 611 722 722 944 722 722 611 333 278 333 469 500 333 444 500 444 500 444 333 500 500 278 278
        500 278 778 500 500 500 500 333 389 278 500 500 722 500 500 444 480 200 480 541""",
}
WIDTHS = {font: [int(width) for width in widths.split()] for font, widths in WIDTHS.items()}
FONT_NAMES = {"Helvetica": "F1", "Helvetica-Bold": "F2", "Times-Roman": "F3"}
# Of the characters beyond ASCII only these are used; the widths are the same in all three fonts to a hair.
BEYOND_ASCII = {"\u2013": 556, "\u2019": 240, "\u00b0": 400, "\u00b1": 584, "\u00b7": 278}


def text_width(text, font, size):
    return sum(BEYOND_ASCII[c] if c in BEYOND_ASCII else WIDTHS[font][ord(c) - 32] for c in text) * size / 1000


def wrap(text, font, size, width):
    lines = [""]
    for word in text.split():
        longer = f"{lines[-1]} {word}".lstrip()
        if lines[-1] and text_width(longer, font, size) > width:
            lines.append(word)
        else:
            lines[-1] = longer
    return lines


def literal(text):
    """A literal string as it stands in the file, in the Windows code page that the fonts are declared with."""
    escaped = text.replace("\\", r"\\").replace("(", r"\(").replace(")", r"\)")
    return b"(" + escaped.encode("cp1252") + b")"


def number(value):
    return f"{value:.2f}".rstrip("0").rstrip(".") if value else "0"


class Canvas:
    """Collects the drawing operators of one page; the origin is the lower left corner, the unit a point."""

    def __init__(self):
        self.operators = []

    def put(self, *operands):
        self.operators.append(b" ".join(o if isinstance(o, bytes) else
                                        o.encode() if isinstance(o, str) else number(o).encode() for o in operands))

    def content(self):
        return b"\n".join(self.operators) + b"\n"

    def fill(self, colour):
        self.put(*colour, "rg")

    def stroke(self, colour, width):
        self.put(*colour, "RG", width, "w")

    def box(self, x, y, width, height, colour):
        self.fill(colour)
        self.put(x, y, width, height, "re f")

    def frame(self, x, y, width, height, colour, line=0.5):
        self.stroke(colour, line)
        self.put(x, y, width, height, "re S")

    def line(self, x1, y1, x2, y2, colour=RULE, width=0.5):
        self.stroke(colour, width)
        self.put(x1, y1, "m", x2, y2, "l S")

    def disc(self, x, y, radius, colour):
        k = 0.5523 * radius
        self.fill(colour)
        self.put(x + radius, y, "m", x + radius, y + k, x + k, y + radius, x, y + radius, "c",
                 x - k, y + radius, x - radius, y + k, x - radius, y, "c",
                 x - radius, y - k, x - k, y - radius, x, y - radius, "c",
                 x + k, y - radius, x + radius, y - k, x + radius, y, "c f")

    def curve(self, start, pieces, colour, width):
        self.stroke(colour, width)
        self.put("1 J 1 j", *start, "m")
        for piece in pieces:
            self.put(*piece, "c")
        self.put("S")

    def text(self, x, y, text, font="Helvetica", size=10, colour=INK, align="left"):
        width = text_width(text, font, size)
        x -= {"left": 0, "right": width, "centre": width / 2}[align]
        self.fill(colour)
        self.put("BT", f"/{FONT_NAMES[font]}", size, "Tf", x, y, "Td", literal(text), "Tj ET")

    def paragraph(self, x, y, text, font="Times-Roman", size=11.5, width=RIGHT - LEFT, leading=16.5, colour=INK):
        """Writes wrapped text with its first base line at y; gives the base line after the last."""
        for line in wrap(text, font, size, width):
            self.text(x, y, line, font, size, colour)
            y -= leading
        return y

    def emblem(self, x, y, size, colour, wave):
        """The sign of the trust: a disc with two waves."""
        self.disc(x, y, size, colour)
        for shift in (0.22, -0.22):
            top, step, lift = y + shift * size, size * 0.32, size * 0.24
            start = (x - 2 * step, top)
            pieces = [(left, top + lift, left + step, top + lift, left + step, top)
                      if i % 2 == 0 else
                      (left, top - lift, left + step, top - lift, left + step, top)
                      for i, left in enumerate(x + (i - 2) * step for i in range(4))]
            self.curve(start, pieces, wave, size * 0.12)


class Document:
    """A PDF file: objects numbered from 1, one cross-reference table of a single subsection."""

    def __init__(self, title, subject):
        self.objects = []
        self.catalog = self.reserve()
        self.info = self.add(b"<<\n/Title " + literal(title) + b"\n/Subject " + literal(subject) +
                             b"\n/Author (North Quay Harbour Trust)\n/Creator (make-examples.py)"
                             b"\n/CreationDate (D:20260401090000Z)\n>>")
        self.pages = self.reserve()
        self.fonts = self.add(b"<<\n" + b"".join(
            b"/%s << /Type /Font /Subtype /Type1 /BaseFont /%s /Encoding /WinAnsiEncoding >>\n" %
            (name.encode(), font.encode()) for font, name in FONT_NAMES.items()) + b">>")
        self.kids = []

    def reserve(self):
        self.objects.append(None)
        return len(self.objects)

    def add(self, body):
        self.objects.append(body)
        return len(self.objects)

    def add_stream(self, entries, data):
        return self.add(b"<< %s/Length %d >>\nstream\n%s\nendstream" % (entries, len(data), data))

    def add_page(self, canvas, size, images=()):
        contents = self.add_stream(b"", canvas.content())
        pictures = b"".join(b" /%s %d 0 R" % (name, image) for name, image in images)
        resources = b"/Font %d 0 R" % self.fonts + (b" /XObject <<%s >>" % pictures if pictures else b"")
        self.kids.append(self.add(
            b"<<\n/Type /Page\n/Parent %d 0 R\n/MediaBox [0 0 %d %d]\n/Resources << %s >>\n/Contents %d 0 R\n>>" %
            (self.pages, *size, resources, contents)))

    def to_bytes(self):
        self.objects[self.catalog - 1] = b"<<\n/Type /Catalog\n/Pages %d 0 R\n/Lang (en)\n>>" % self.pages
        self.objects[self.pages - 1] = b"<<\n/Type /Pages\n/Kids [%s]\n/Count %d\n>>" % (
            b" ".join(b"%d 0 R" % kid for kid in self.kids), len(self.kids))
        # The bytes above 127 in the second line tell transfer programs that this is no text.
        data = b"%PDF-1.4\n%\xe2\xe3\xcf\xd3\n"
        entries = [b"0000000000 65535 f \n"]
        for i, body in enumerate(self.objects, start=1):
            entries.append(b"%010d 00000 n \n" % len(data))
            data += b"%d 0 obj\n%s\nendobj\n" % (i, body)
        return data + b"xref\n0 %d\n%strailer\n<<\n/Size %d\n/Root %d 0 R\n/Info %d 0 R\n>>\nstartxref\n%d\n%%%%EOF\n" % (
            len(entries), b"".join(entries), len(entries), self.catalog, self.info, len(data))


def footer(canvas, left, right, edge_left=LEFT, edge_right=RIGHT):
    canvas.line(edge_left, 52, edge_right, 52)
    canvas.text(edge_left, 38, left, size=8, colour=GREY)
    canvas.text(edge_right, 38, right, size=8, colour=GREY, align="right")


def cover_letter():
    document = Document("Tide gauges, spring 2026", "Cover letter")
    page = Canvas()
    page.box(0, 828, A4[0], 14, NAVY)
    page.emblem(LEFT + 19, 776, 19, TEAL, WHITE)
    page.text(LEFT + 50, 781, "North Quay Harbour Trust", "Helvetica-Bold", 17, NAVY)
    page.text(LEFT + 50, 765, "Survey Office \u00b7 4 Signal Steps \u00b7 North Quay", size=9, colour=GREY)
    page.line(LEFT, 742, RIGHT, 742, TEAL, 1)

    y = 704
    for line in ("Ms. Ada Brandt", "Coastal Library", "12 Mill Lane", "Eastmere"):
        page.text(LEFT, y, line, "Times-Roman", 11.5)
        y -= 15.5
    page.text(RIGHT, 704, "1 April 2026", "Times-Roman", 11.5, align="right")

    page.text(LEFT, 606, "Tide gauges, spring 2026", "Helvetica-Bold", 12, NAVY)
    y = 576
    for paragraph in (
            "Dear Ms. Brandt,",
            "thank you for keeping a shelf for our soundings. As promised, here is what the nine gauges of the "
            "bay told us between January and March, together with the chart that we drew from it.",
            "The short report comes first. It explains how we measured, how often the water stood above the "
            "quay mark, and where the sand has moved since the autumn. The table that follows lists every "
            "gauge with its position and its highest reading, so that your readers can check our sums.",
            "The three documents were written on three different machines, as usual. You asked for a single file "
            "that prints in one go: letter, report, table, in this order. The file names begin with 1, 2 and 3, "
            "and joining them in the order of their names does the rest.",
            "We will be glad to hear from anyone who remembers the high water of 1953.",
    ):
        y = page.paragraph(LEFT, y, paragraph) - 8.5
    page.text(LEFT, y - 4, "With kind regards", "Times-Roman", 11.5)
    y -= 46
    page.curve((LEFT + 4, y), [(LEFT + 14, y + 34, LEFT + 26, y + 36, LEFT + 22, y + 6),
                               (LEFT + 20, y - 8, LEFT + 36, y + 22, LEFT + 46, y + 14),
                               (LEFT + 52, y + 9, LEFT + 40, y - 2, LEFT + 54, y + 1),
                               (LEFT + 68, y + 4, LEFT + 66, y + 22, LEFT + 76, y + 12),
                               (LEFT + 84, y + 2, LEFT + 96, y + 8, LEFT + 128, y + 14)], NAVY, 1.3)
    page.text(LEFT, y - 24, "Jonas Reed", "Times-Roman", 11.5)
    page.text(LEFT, y - 39, "Head of the Survey Office", "Times-Roman", 11.5, GREY)
    page.text(LEFT, 86, "Enclosed", "Helvetica-Bold", 8.5, NAVY)
    page.text(LEFT + 52, 86, "2-report.pdf (two pages), 3-stations.pdf (one page)", size=8.5, colour=GREY)
    footer(page, "North Quay Harbour Trust", "Page 1 of 1")
    document.add_page(page, A4)
    return document.to_bytes()


MONTHS = "Apr May Jun Jul Aug Sep Oct Nov Dec Jan Feb Mar".split()
HIGH_WATERS = (3, 2, 1, 1, 2, 5, 9, 12, 14, 17, 11, 6)


def bar_chart(page, x, y, width, height):
    """Days above the quay mark, a bar a month; the last three months are the ones reported on."""
    top = 20
    for mark in range(0, top + 1, 5):
        level = y + height * mark / top
        page.line(x, level, x + width, level, RULE, 0.4 if mark else 1)
        page.text(x - 7, level - 3, str(mark), size=8, colour=GREY, align="right")
    slot = width / len(MONTHS)
    for i, (month, days) in enumerate(zip(MONTHS, HIGH_WATERS)):
        left, tall = x + slot * (i + 0.2), height * days / top
        page.box(left, y, slot * 0.6, tall, AMBER if i >= len(MONTHS) - 3 else TEAL)
        page.text(left + slot * 0.3, y + tall + 4, str(days), "Helvetica-Bold", 8, align="centre")
        page.text(left + slot * 0.3, y - 13, month, size=8, colour=GREY, align="centre")


CHART_WIDTH, CHART_HEIGHT = 280, 180
# Headlands, banks and hollows of the sea bed: strength, centre, radius, in samples of the chart.
BED = ((4.5, 8, 176, 60), (5, 284, 170, 46), (2.2, 150, 184, 40), (7.5, 114, 98, 30), (8.2, 208, 84, 34),
       (-3, 168, 108, 34), (-2, 60, 84, 50), (1.6, 40, 26, 44))
STATIONS = (("A1", 34, 118), ("A2", 82, 132), ("B1", 122, 104), ("B2", 166, 128), ("C1", 236, 112), ("C2", 204, 82),
            ("D1", 104, 62), ("D2", 158, 40), ("E1", 244, 36))


def depth_level(column, row):
    """The palette index 0 (deep) to 15 (dry land) of one sample."""
    north = row / CHART_HEIGHT
    level = 0.7 + 13 * north * north * north
    for strength, x, y, radius in BED:
        slope = 1 + ((column - x) * (column - x) + (row - y) * (row - y)) / (radius * radius)
        level += strength / (slope * slope)
    return min(15, max(0, int(level)))


def chart_palette():
    deep, shallow = (13, 50, 84), (190, 226, 226)
    sand, land = (238, 222, 180), (166, 178, 120)
    colours = [[a + (b - a) * i // 11 for a, b in zip(deep, shallow)] for i in range(12)]
    colours += [[a + (b - a) * i // 3 for a, b in zip(sand, land)] for i in range(4)]
    return colours


def add_depth_chart(document):
    """The chart as a picture of 16 colours, two samples a byte; row 0 of the bed is the lower edge."""
    samples = bytearray()
    for row in range(CHART_HEIGHT - 1, -1, -1):
        for column in range(0, CHART_WIDTH, 2):
            samples.append(depth_level(column, row) << 4 | depth_level(column + 1, row))
    palette = "".join(f"{part:02x}" for colour in chart_palette() for part in colour).encode()
    return document.add_stream(
        b"/Type /XObject /Subtype /Image /Width %d /Height %d /BitsPerComponent 4\n"
        b"/ColorSpace [/Indexed /DeviceRGB 15 <%s>]\n" % (CHART_WIDTH, CHART_HEIGHT, palette), bytes(samples))


def report_head(page, title):
    page.box(0, 776, A4[0], 66, NAVY)
    page.emblem(LEFT + 15, 809, 15, WHITE, NAVY)
    page.text(LEFT + 42, 803, title, "Helvetica-Bold", 17, WHITE)
    page.text(RIGHT, 804, "Spring 2026", size=10, colour=RULE, align="right")


def report_first_page():
    page = Canvas()
    report_head(page, "Tide gauges of the bay")
    wide = (RIGHT - LEFT - 24) / 3
    for i, (figure, label) in enumerate((("34", "days above the quay mark"), ("3.42 m", "highest water, 14 January"),
                                         ("9 of 9", "gauges without a gap"))):
        x = LEFT + i * (wide + 12)
        page.box(x, 690, wide, 62, PALE)
        page.box(x, 690, 3, 62, AMBER if i == 0 else TEAL)
        page.text(x + 15, 722, figure, "Helvetica-Bold", 20, NAVY)
        page.text(x + 15, 703, label, size=8.5, colour=GREY)

    page.text(LEFT, 656, "A wet winter, and a quiet end", "Helvetica-Bold", 13, NAVY)
    y = 634
    for paragraph in (
            "From January to March the water stood above the quay mark on 34 days, one day in three. Most of "
            "them fell into January, when three storms met the spring tides. By the middle of March the bay "
            "had calmed, and the last week passed without a single reading above the mark.",
            "All gauges are floats in a pipe, read every ten minutes and levelled against the brass bolt in "
            "the harbour wall at the beginning of each month. A reading is good to \u00b1 2 cm. Short waves are "
            "averaged over two minutes; a ship that passes close by still shows as a small tooth in the curve.",
    ):
        y = page.paragraph(LEFT, y, paragraph) - 8.5

    page.text(LEFT, y - 14, "Days above the quay mark", "Helvetica-Bold", 11, NAVY)
    page.text(RIGHT, y - 14, "April 2025 \u2013 March 2026", size=9, colour=GREY, align="right")
    bar_chart(page, LEFT + 22, y - 222, RIGHT - LEFT - 22, 176)
    y -= 254
    page.box(LEFT + 22, y - 1, 8, 8, AMBER)
    page.text(LEFT + 35, y, "the months of this report", size=8.5, colour=GREY)
    page.box(LEFT + 162, y - 1, 8, 8, TEAL)
    page.text(LEFT + 175, y, "the nine months before", size=8.5, colour=GREY)
    page.paragraph(LEFT, y - 26, "The pattern of the year is an old one: the mark is rarely reached in summer, and the "
                   "count rises with the first autumn gales. What is new is how high it rises.")
    footer(page, "Tide gauges of the bay, spring 2026", "Page 1 of 2")
    return page


def report_second_page():
    page = Canvas()
    report_head(page, "Where the sand went")
    width = RIGHT - LEFT
    height = width * CHART_HEIGHT / CHART_WIDTH
    bottom = 746 - height
    page.put("q", width, 0, 0, height, LEFT, bottom, "cm /Chart Do Q")
    page.frame(LEFT, bottom, width, height, NAVY, 0.8)
    scale = width / CHART_WIDTH
    for name, column, row in STATIONS:
        x, y = LEFT + column * scale, bottom + row * scale
        page.disc(x, y, 5.4, WHITE)
        page.disc(x, y, 3.4, AMBER)
        page.box(x + 8, y - 4.6, 17, 11.5, WHITE)
        page.text(x + 16.5, y - 2, name, "Helvetica-Bold", 8.5, NAVY, align="centre")

    y = bottom - 22
    step = 13
    for i, colour in enumerate(chart_palette()):
        page.box(LEFT + i * step, y, step, 9, [part / 255 for part in colour])
    page.frame(LEFT, y, 16 * step, 9, RULE)
    page.text(LEFT, y - 12, "12 m deep", size=8, colour=GREY)
    page.text(LEFT + 12 * step, y - 12, "low water", size=8, colour=GREY, align="centre")
    page.text(LEFT + 16 * step, y - 12, "dry", size=8, colour=GREY, align="right")
    page.text(RIGHT, y + 1, "Sea bed on 20 March 2026; the discs are the gauges.", size=8.5, colour=GREY, align="right")

    y -= 48
    page.text(LEFT, y, "Two banks instead of one", "Helvetica-Bold", 13, NAVY)
    y -= 22
    for paragraph in (
            "The chart joins the depths below the gauges with 212 soundings from the boat. In autumn a single bank "
            "lay across the middle of the bay. The winter has cut it in two: the western half moved towards gauge "
            "B1 and grew by almost a metre, the eastern half lies flat and wide around C2.",
            "The channel between them is deep enough for the ferry at any tide. We advise nevertheless to keep "
            "the old buoys until the soundings are repeated in June, since young banks are known to wander.",
            "The table in the next document lists all gauges with their positions and readings.",
    ):
        y = page.paragraph(LEFT, y, paragraph) - 8.5
    footer(page, "Tide gauges of the bay, spring 2026", "Page 2 of 2")
    return page


def report():
    document = Document("Tide gauges of the bay, spring 2026", "Report")
    document.add_page(report_first_page(), A4)
    chart = add_depth_chart(document)
    document.add_page(report_second_page(), A4, [(b"Chart", chart)])
    return document.to_bytes()


# Name, place, latitude and longitude in minutes beyond 54 N and 8 E, depth, mean, highest, day of the highest,
# days above the mark.
READINGS = (
    ("A1", "Western Mole, head", 11.42, 21.07, 6.4, 1.61, 3.28, "14 Jan", 30),
    ("A2", "Western Mole, root", 11.58, 21.93, 3.1, 1.63, 3.31, "14 Jan", 31),
    ("B1", "Old Fish Quay", 11.21, 22.60, 2.2, 1.66, 3.37, "14 Jan", 33),
    ("B2", "Ferry Stage", 11.52, 23.41, 5.0, 1.66, 3.42, "14 Jan", 34),
    ("C1", "Eastern Mole", 11.30, 24.72, 4.3, 1.64, 3.35, "14 Jan", 32),
    ("C2", "Lantern Bank", 10.96, 24.13, 1.8, 1.60, 3.22, "15 Jan", 29),
    ("D1", "Pilot Dolphin", 10.71, 22.29, 7.7, 1.57, 3.15, "14 Jan", 27),
    ("D2", "Mid-channel Buoy", 10.44, 23.26, 10.9, 1.55, 3.09, "15 Jan", 25),
    ("E1", "Outer Beacon", 10.39, 24.88, 11.6, 1.52, 3.02, "15 Jan", 22),
)
COLUMNS = (("Gauge", 60, "left"), ("Place", 112, "left"), ("Latitude", 330, "right"), ("Longitude", 418, "right"),
           ("Depth (m)", 492, "right"), ("Mean (m)", 562, "right"), ("Highest (m)", 640, "right"),
           ("On", 706, "right"), ("Days above", 782, "right"))


def stations():
    document = Document("Gauges and readings, spring 2026", "Table")
    page = Canvas()
    left, right, row_height = 48, 794, 30
    page.box(0, 581, A4_LANDSCAPE[0], 14, NAVY)
    page.emblem(left + 17, 538, 17, TEAL, WHITE)
    page.text(left + 46, 540, "Gauges and readings", "Helvetica-Bold", 17, NAVY)
    page.text(left + 46, 524, "January to March 2026, heights above chart datum", size=9, colour=GREY)

    y = 474
    page.box(left, y, right - left, 28, NAVY)
    for title, x, align in COLUMNS:
        page.text(x, y + 10, title, "Helvetica-Bold", 9.5, WHITE, align)
    for i, (gauge, place, north, east, depth, mean, highest, day, days) in enumerate(READINGS):
        y -= row_height
        if i % 2:
            page.box(left, y, right - left, row_height, PALE)
        top = highest == max(reading[6] for reading in READINGS)
        cells = (gauge, place, f"54\u00b0 {north:05.2f}\u2019 N", f"8\u00b0 {east:05.2f}\u2019 E", f"{depth:.1f}",
                 f"{mean:.2f}", f"{highest:.2f}", day, str(days))
        for (title, x, align), cell in zip(COLUMNS, cells):
            strong = title == "Gauge" or (top and title == "Highest (m)")
            colour = AMBER if top and title == "Highest (m)" else NAVY if title == "Gauge" else INK
            page.text(x, y + 11, cell, "Helvetica-Bold" if strong else "Helvetica", 10, colour, align)
    page.line(left, y, right, y, NAVY, 1)
    y -= 24
    for note in ("Depth below the gauge at low water. Mean and highest water over all ten-minute readings, "
                 "good to \u00b1 2 cm.",
                 "Days above: days with at least one reading above the quay mark, 2.60 m."):
        page.text(left, y, note, size=8.5, colour=GREY)
        y -= 13
    footer(page, "North Quay Harbour Trust, Survey Office", "Page 1 of 1", left, right)
    document.add_page(page, A4_LANDSCAPE)
    return document.to_bytes()


EXAMPLES = {"1-cover-letter.pdf": cover_letter, "2-report.pdf": report, "3-stations.pdf": stations}


def write_examples(folder):
    for name, make in EXAMPLES.items():
        (Path(folder) / name).write_bytes(make())


def outdated_examples():
    with tempfile.TemporaryDirectory() as fresh:
        write_examples(fresh)
        return [name for name in EXAMPLES
                if not (HERE / name).is_file() or (HERE / name).read_bytes() != (Path(fresh) / name).read_bytes()]


def main(arguments):
    if arguments == []:
        write_examples(HERE)
        return 0
    if arguments == ["--check"]:
        outdated = outdated_examples()
        for name in outdated:
            print(f"{name} is not what make-examples.py writes; run it and commit the result")
        return 1 if outdated else 0
    print(__doc__)
    return 2


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
