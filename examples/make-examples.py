#!/usr/bin/env python3
"""Writes the example documents of this folder: a letter, a two-page report and a landscape table.

    make-examples.py            writes them beside this script
    make-examples.py --check    says whether the files beside this script are what it would write

The same bytes come out on every machine: nothing is compressed and no date is taken from the clock.
"""

import sys
from pathlib import Path

HERE = Path(__file__).resolve().parent
NAVY, TEAL, AMBER, INK = ".1 .2 .33", ".11 .47 .53", ".87 .55 .16", ".13 .14 .16"
GREY, PALE, RULE, WHITE = ".45 .48 .52", ".93 .95 .96", ".78 .81 .84", "1 1 1"
FONTS = {"F1": "Helvetica", "F2": "Helvetica-Bold", "F3": "Times-Roman"}
DISC = "1 0 m 1 .55 .55 1 0 1 c -.55 1 -1 .55 -1 0 c -1 -.55 -.55 -1 0 -1 c .55 -1 1 -.55 1 0 c f"
WAVE = "-.64 0 m -.64 .24 -.32 .24 -.32 0 c -.32 -.24 0 -.24 0 0 c 0 .24 .32 .24 .32 0 c .32 -.24 .64 -.24 .64 0 c S"
SIGNATURE = "4 0 m 14 34 26 36 22 6 c 20 -8 36 22 46 14 c 52 9 40 -2 54 1 c 68 4 66 22 76 12 c 84 2 96 8 128 14 c S"


def box(x, y, width, height, colour):
    return f"{colour} rg {x:g} {y:g} {width:g} {height:g} re f"


def text(x, y, words, font="F1", size=10, colour=INK):
    words = words.replace("(", r"\(").replace(")", r"\)")
    return f"{colour} rg BT /{font} {size} Tf {x:g} {y:g} Td ({words}) Tj ET"


def figures(x, y, words, share=1.0, font="F1", size=10, colour=INK):
    """Digits and points that end at x, or are centred there with a share of 0.5."""
    width = sum(0.278 if c == "." else 0.556 for c in words) * size
    return text(round(x - share * width, 2), y, words, font, size, colour)


def lines(x, y, words):
    """Text of several lines, as it is broken here; an empty line is half as high."""
    operators = []
    for line in words.strip().split("\n"):
        operators.append(text(x, y, line, "F3", 11.5))
        y -= 16.5 if line else 8.5
    return operators


def disc(x, y, size, colour, more=""):
    return f"q {size} 0 0 {size} {x:g} {y:g} cm {colour} rg {DISC} {more} Q"


def emblem(x, y, size, colour, wave):
    waves = f"{wave} RG .12 w 1 J 1 0 0 1 0 .22 cm {WAVE} 1 0 0 1 0 -.44 cm {WAVE}"
    return disc(x, y, size, colour, waves)


def footer(left, right, words, page):
    return [box(left, 52, right - left, 0.5, RULE), text(left, 38, words, size=8, colour=GREY),
            text(right - 42, 38, page, size=8, colour=GREY)]


def cover_letter():
    return [box(0, 828, 595, 14, NAVY), emblem(83, 776, 19, TEAL, WHITE),
            text(114, 781, "North Quay Harbour Trust", "F2", 17, NAVY),
            text(114, 765, "Survey Office · 4 Signal Steps · North Quay", size=9, colour=GREY),
            box(64, 741.5, 467, 1, TEAL), *lines(64, 704, LETTER_HEAD), text(472, 704, "1 April 2026", "F3", 11.5),
            text(64, 606, "Tide gauges, spring 2026", "F2", 12, NAVY), *lines(64, 576, LETTER),
            f"q {NAVY} RG 1.3 w 1 J 1 j 1 0 0 1 64 305 cm {SIGNATURE} Q",
            text(64, 281, "Jonas Reed", "F3", 11.5), text(64, 266, "Head of the Survey Office", "F3", 11.5, GREY),
            text(64, 86, "Enclosed", "F2", 8.5, NAVY),
            text(116, 86, "2-report.pdf (two pages), 3-stations.pdf (one page)", size=8.5, colour=GREY),
            *footer(64, 531, "North Quay Harbour Trust", "Page 1 of 1")]


LETTER_HEAD = "Ms. Ada Brandt\nCoastal Library\n12 Mill Lane\nEastmere"
LETTER = """
Dear Ms. Brandt,

thank you for keeping a shelf for our soundings. As promised, here is what the nine gauges of the
bay told us between January and March, together with the chart that we drew from it.

The short report comes first. It explains how often the water stood above the quay mark, and where
the sand has moved since the autumn. The table that follows lists every gauge with its position and
its highest reading, so that your readers can check our sums.

You asked for a single file that prints in one go: letter, report, table, in this order. The names of
the three documents begin with 1, 2 and 3, and joining them in the order of their names does the rest.

We will be glad to hear from anyone who remembers the high water of 1953.

With kind regards
"""
DAYS_ABOVE = {"Apr": 3, "May": 2, "Jun": 1, "Jul": 1, "Aug": 2, "Sep": 5, "Oct": 9, "Nov": 12, "Dec": 14,
              "Jan": 17, "Feb": 11, "Mar": 6}
REPORT = """
From January to March the water stood above the quay mark on 34 days, one day in three. Most of
them fell into January, when three storms met the spring tides. By the middle of March the bay
had calmed, and the last week passed without a single reading above the mark.

All gauges are floats in a pipe, read every ten minutes and levelled against the brass bolt in the
harbour wall at the beginning of each month. A reading is good to ± 2 cm.
"""


def report_head(title, page):
    return [box(0, 776, 595, 66, NAVY), emblem(79, 809, 15, WHITE, NAVY), text(106, 803, title, "F2", 17, WHITE),
            *footer(64, 531, "Tide gauges of the bay, spring 2026", page)]


def report_text_page():
    page = report_head("Tide gauges of the bay", "Page 1 of 2")
    for x, figure, label in ((64, "34", "days above the quay mark"), (224, "3.42 m", "highest water, 14 January"),
                             (384, "9 of 9", "gauges without a gap")):
        page += [box(x, 690, 147, 62, PALE), box(x, 690, 3, 62, TEAL), text(x + 15, 722, figure, "F2", 20, NAVY),
                 text(x + 15, 703, label, size=8.5, colour=GREY)]
    page += [text(64, 656, "A wet winter, and a quiet end", "F2", 13, NAVY), *lines(64, 634, REPORT),
             text(64, 508, "Days above the quay mark, April 2025 – March 2026", "F2", 11, NAVY)]
    for days in range(0, 21, 5):
        page += [box(86, 304 + 9 * days, 445, 0.4, RULE), figures(79, 301 + 9 * days, str(days), size=8, colour=GREY)]
    for i, (month, days) in enumerate(DAYS_ABOVE.items()):
        x = 94 + 37 * i
        page += [box(x, 304, 22, 9 * days, AMBER if i >= 9 else TEAL), text(x + 3, 291, month, size=8, colour=GREY),
                 figures(x + 11, 308 + 9 * days, str(days), 0.5, "F2", 8)]
    return page


BANKS = """
The chart joins the depths below the gauges with 212 soundings from the boat. In autumn a single
bank lay across the middle of the bay. The winter has cut it in two: the western half moved towards
gauge B1 and grew by almost a metre, the eastern half lies flat and wide around C2.

The channel between them is deep enough for the ferry at any tide. The table in the next document
lists all gauges with their positions and readings.
"""
# Banks and hollows of the sea bed: strength, centre and radius in samples of the chart.
BED = ((4.5, 8, 176, 60), (5, 284, 170, 46), (2.2, 150, 184, 40), (7.5, 114, 98, 30), (8.2, 208, 84, 34),
       (-3, 168, 108, 34), (-2, 60, 84, 50), (1.6, 40, 26, 44))
WIDTH, HEIGHT = 280, 180
# From deep water over the low water line to dry land.
PALETTE = "".join(f"{13 + 16 * i:02x}{50 + 16 * i:02x}{84 + 13 * i:02x}" for i in range(12)) + \
          "eedeb4d6cfa0bec08ca6b278"


def depth(column, row):
    """The index of one sample in the palette; row 0 is the lower edge."""
    level = 0.7 + 13 * row * row * row / HEIGHT / HEIGHT / HEIGHT
    for strength, x, y, radius in BED:
        slope = 1 + ((column - x) * (column - x) + (row - y) * (row - y)) / (radius * radius)
        level += strength / (slope * slope)
    return min(15, max(0, int(level)))


def chart():
    """An image of 16 colours, two samples a byte, and its entries."""
    samples = bytes(depth(column, row) << 4 | depth(column + 1, row)
                    for row in range(HEIGHT - 1, -1, -1) for column in range(0, WIDTH, 2))
    return (f"/Type /XObject /Subtype /Image /Width {WIDTH} /Height {HEIGHT} /BitsPerComponent 4\n"
            f"/ColorSpace [/Indexed /DeviceRGB 15 <{PALETTE}>]\n"), samples


def report_chart_page():
    page = report_head("Where the sand went", "Page 2 of 2") + ["q 467 0 0 300 64 446 cm /Chart Do Q"]
    for name, x, y in (("A1", 121, 643), ("A2", 201, 666), ("B1", 267, 619), ("B2", 341, 659), ("C1", 458, 633),
                       ("C2", 404, 583), ("D1", 237, 549), ("D2", 328, 513), ("E1", 471, 506)):
        page += [disc(x, y, 5.4, WHITE), disc(x, y, 3.4, AMBER), text(x + 8, y - 3, name, "F2", 8.5, WHITE)]
    return page + [text(64, 430, "Sea bed on 20 March 2026; the discs are the gauges.", size=8.5, colour=GREY),
                   text(64, 398, "Two banks instead of one", "F2", 13, NAVY), *lines(64, 376, BANKS)]


COLUMNS = {"Gauge": 60, "Place": 112, "Latitude": 262, "Longitude": 348, "Depth (m)": 480, "Mean (m)": 550,
           "Highest (m)": 634, "On": 664, "Days above": 775}
READINGS = """
A1|Western Mole, head|54° 11.42’ N|8° 21.07’ E|6.4|1.61|3.28|14 Jan|30
A2|Western Mole, root|54° 11.58’ N|8° 21.93’ E|3.1|1.63|3.31|14 Jan|31
B1|Old Fish Quay|54° 11.21’ N|8° 22.60’ E|2.2|1.66|3.37|14 Jan|33
B2|Ferry Stage|54° 11.52’ N|8° 23.41’ E|5.0|1.66|3.42|14 Jan|34
C1|Eastern Mole|54° 11.30’ N|8° 24.72’ E|4.3|1.64|3.35|14 Jan|32
C2|Lantern Bank|54° 10.96’ N|8° 24.13’ E|1.8|1.60|3.22|15 Jan|29
D1|Pilot Dolphin|54° 10.71’ N|8° 22.29’ E|7.7|1.57|3.15|14 Jan|27
D2|Mid-channel Buoy|54° 10.44’ N|8° 23.26’ E|10.9|1.55|3.09|15 Jan|25
E1|Outer Beacon|54° 10.39’ N|8° 24.88’ E|11.6|1.52|3.02|15 Jan|22
"""


def stations():
    page = [box(0, 581, 842, 14, NAVY), emblem(65, 538, 17, TEAL, WHITE), box(48, 474, 746, 28, NAVY),
            text(94, 540, "Gauges and readings", "F2", 17, NAVY),
            text(94, 524, "January to March 2026, heights above chart datum", size=9, colour=GREY),
            *footer(48, 794, "North Quay Harbour Trust, Survey Office", "Page 1 of 1")]
    y = 484
    for title, x in COLUMNS.items():
        page.append(text(x - 42 if x > 470 and title != "On" else x, y, title, "F2", 9.5, WHITE))
    for i, reading in enumerate(READINGS.strip().split("\n")):
        y -= 30
        if i % 2:
            page.append(box(48, y - 10, 746, 30, PALE))
        for x, cell in zip(COLUMNS.values(), reading.split("|")):
            page.append(figures(x, y, cell) if cell.replace(".", "").isdigit() else text(x, y, cell))
    return page + [box(48, y - 10, 746, 1, NAVY),
                   text(48, y - 34, "Depth below the gauge at low water. Mean and highest water over all ten-minute "
                        "readings, good to ± 2 cm.", size=8.5, colour=GREY)]


def stream(entries, data):
    return b"<< %s/Length %d >>\nstream\n%s\nendstream" % (entries.encode(), len(data), data)


def document(title, size, *pages, image=None):
    """A PDF file: objects numbered from 1, one cross-reference table of a single subsection."""
    fonts = "".join(f"/{name} << /Type /Font /Subtype /Type1 /BaseFont /{font} /Encoding /WinAnsiEncoding >>\n"
                    for name, font in FONTS.items())
    first = 6 if image else 5
    kids = " ".join(f"{first + 2 * i} 0 R" for i in range(len(pages)))
    objects = [b"<<\n/Type /Catalog\n/Pages 3 0 R\n/Lang (en)\n>>",
               f"<<\n/Title ({title})\n/Author (North Quay Harbour Trust)\n/Creator (make-examples.py)\n"
               "/CreationDate (D:20260401090000Z)\n>>".encode(),
               f"<<\n/Type /Pages\n/Kids [{kids}]\n/Count {len(pages)}\n/MediaBox [0 0 {size}]\n>>".encode(),
               f"<<\n/Font <<\n{fonts}>>{image and ' /XObject << /Chart 5 0 R >>' or ''}\n>>".encode()]
    if image:
        objects.append(stream(*image))
    for page in pages:
        contents = len(objects) + 2
        objects += [f"<<\n/Type /Page\n/Parent 3 0 R\n/Resources 4 0 R\n/Contents {contents} 0 R\n>>".encode(),
                    stream("", "\n".join(page).encode("cp1252"))]
    # The bytes above 127 in the second line tell transfer programs that this is no text.
    data = b"%PDF-1.4\n%\xe2\xe3\xcf\xd3\n"
    table = f"xref\n0 {len(objects) + 1}\n0000000000 65535 f \n"
    for number, body in enumerate(objects, 1):
        table += f"{len(data):010} 00000 n \n"
        data += b"%d 0 obj\n%s\nendobj\n" % (number, body)
    trailer = f"trailer\n<<\n/Size {len(objects) + 1}\n/Root 1 0 R\n/Info 2 0 R\n>>\nstartxref\n{len(data)}\n%%EOF\n"
    return data + table.encode() + trailer.encode()


def examples():
    return {"1-cover-letter.pdf": document("Tide gauges, spring 2026", "595 842", cover_letter()),
            "2-report.pdf": document("Tide gauges of the bay, spring 2026", "595 842", report_text_page(),
                                     report_chart_page(), image=chart()),
            "3-stations.pdf": document("Gauges and readings, spring 2026", "842 595", stations())}


def main():
    outdated = [name for name, data in examples().items()
                if not (HERE / name).is_file() or (HERE / name).read_bytes() != data]
    if sys.argv[1:] == ["--check"]:
        for name in outdated:
            print(f"{name} is not what make-examples.py writes; run it and commit the result")
        return 1 if outdated else 0
    for name, data in examples().items():
        (HERE / name).write_bytes(data)
    return 0


if __name__ == "__main__":
    sys.exit(main())
