#!/usr/bin/env python3
"""Writes the loads of the benchmark: folders of PDF documents, the same bytes on every machine.

    make-loads.py FOLDER [--tiny] [LOAD ...]

FOLDER gets one folder of documents for each load, and loads.json, which says what is in them. --tiny makes all
of them a thousandth of their size, with the same shape. Without a name every load is written.
"""

import argparse
import json
import random
import sys
from pathlib import Path

KIB = 1024
MIB = 1024 * KIB

# What a load is for, in the words of the table, and its documents: (documents, pages of each, bytes of each
# page's stream). A stream of 0 bytes stands for one line of text. An output holds some 16,000 objects at most,
# as its writer counts lines in 16 bits; no load comes near.
LOADS = {
    "streams": ("two documents of 200 MiB: 200 pages of one 1 MiB stream", 2, 200, MIB),
    "objects": ("two documents of 3,000 one-line pages, 6,004 objects each", 2, 3000, 0),
    "small": ("two documents of three pages", 2, 3, 0),
    "folder": ("200 documents of 60 KiB joined from a folder", 200, 6, 10 * KIB),
    "mixed": ("100 documents of 60 KiB, of which half are compact", 100, 6, 10 * KIB),
    "plain": ("the same 100 documents, none compact", 100, 6, 10 * KIB),
}

# Five sizes each, so that there are four doublings.
GROWTH = {
    "growing-objects": [(f"2 x {4 + 2 * pages} objects", 2, pages, 0) for pages in (240, 480, 960, 1920, 3840)],
    "growing-streams": [(f"2 x {2 * mib} MiB of streams", 2, mib, 2 * MIB) for mib in (6, 12, 24, 48, 96)],
    "growing-documents": [(f"{count} documents", count, 6, 10 * KIB) for count in (25, 50, 100, 200, 400)],
}


def all_loads():
    """Name, description, documents, pages, bytes of a stream and, for a step of a growth, its series."""
    for name, (words, *shape) in LOADS.items():
        yield name, words, *shape, None
    for series, steps in GROWTH.items():
        for step, (words, *shape) in enumerate(steps):
            yield f"{series}-{step}", words, *shape, series


def drawing(size, seed):
    """Exactly `size` bytes of drawing operators, which no compressor can do much about."""
    numbers = random.Random(seed)
    lines = []
    length = 0
    while length < size:
        line = b"%d.%03d %d.%03d m %d.%03d %d.%03d l S\n" % tuple(
            numbers.randrange(limit) for limit in (595, 1000, 842, 1000) * 2)
        lines.append(line)
        length += len(line)
    whole = b"".join(lines)[:size]
    # The last operator may be cut; blanks take the place of what is left of it.
    end = whole.rfind(b"\n") + 1
    return whole[:end] + b" " * (size - end - 1) + b"\n"


class Document:
    """Writes one document, object after object, and then its cross-reference table."""

    FONT, PAGES, CATALOG, INFORMATION, FIRST_PAGE = 1, 2, 3, 4, 5

    def __init__(self, file):
        self.file = file
        self.offsets = []
        file.write(b"%PDF-1.4\n%\xe2\xe3\xcf\xd3\n")

    def add(self, *pieces):
        self.offsets.append(self.file.tell())
        self.file.write(b"%d 0 obj\n" % len(self.offsets))
        self.file.writelines(pieces)
        self.file.write(b"\nendobj\n")

    def write(self, title, contents):
        """`contents` gives the bytes of every page's stream."""
        kids = [b"%d 0 R" % (self.FIRST_PAGE + 2 * page) for page in range(len(contents))]
        lines = [b" ".join(kids[i:i + 16]) for i in range(0, len(kids), 16)]
        self.add(b"<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>")
        self.add(b"<< /Type /Pages /Count %d\n/Kids [\n%s\n] >>" % (len(kids), b"\n".join(lines)))
        self.add(b"<< /Type /Catalog /Pages %d 0 R >>" % self.PAGES)
        self.add(b"<< /Title (%s) >>" % title)
        for content in contents:
            number = len(self.offsets) + 1
            self.add(b"<< /Type /Page /Parent %d 0 R /MediaBox [0 0 595 842]\n/Resources << /Font << /F1 %d 0 R >> "
                     b">>\n/Contents %d 0 R >>" % (self.PAGES, self.FONT, number + 1))
            self.add(b"<< /Length %d >>\nstream\n" % len(content), content, b"\nendstream")
        self.finish()

    def finish(self):
        start = self.file.tell()
        size = len(self.offsets) + 1
        self.file.write(b"xref\n0 %d\n0000000000 65535 f \n" % size)
        self.file.writelines(b"%010d 00000 n \n" % offset for offset in self.offsets)
        self.file.write(b"trailer\n<< /Size %d /Root %d 0 R /Info %d 0 R >>\nstartxref\n%d\n%%%%EOF\n" %
                        (size, self.CATALOG, self.INFORMATION, start))


class CompactDocument(Document):
    """The same with objects inside a stream and a stream in the table's place; neither is compressed."""

    def __init__(self, file):
        super().__init__(file)
        self.small = []  # number and text of the objects that are no streams

    def add(self, *pieces):
        if b"stream\n" in pieces[0]:
            super().add(*pieces)
        else:
            self.offsets.append(None)
            self.small.append((len(self.offsets), b"".join(pieces)))

    def finish(self):
        container = len(self.offsets) + 1
        starts, bodies = b"", b""
        rows = {}
        for index, (number, text) in enumerate(self.small):
            rows[number] = (2, container, index)
            starts += b"%d %d " % (number, len(bodies))
            bodies += text + b"\n"
        super().add(b"<< /Type /ObjStm /N %d /First %d /Length %d >>\nstream\n" %
                    (len(self.small), len(starts), len(starts + bodies)), starts, bodies, b"\nendstream")
        size = container + 2
        table = b"\0" * 7
        for number in range(1, size):
            offset = self.file.tell() if number == size - 1 else self.offsets[number - 1]
            kind, field, index = rows.get(number, (1, offset, 0))
            table += bytes([kind]) + field.to_bytes(4, "big") + index.to_bytes(2, "big")
        start = self.file.tell()
        super().add(b"<< /Type /XRef /Size %d /W [1 4 2] /Root %d 0 R /Info %d 0 R /Length %d >>\nstream\n" %
                    (size, self.CATALOG, self.INFORMATION, len(table)), table, b"\nendstream")
        self.file.write(b"startxref\n%d\n%%%%EOF\n" % start)


def page_contents(document, pages, stream_size):
    if stream_size == 0:
        return [b"BT /F1 12 Tf 72 720 Td (Document %d, page %d) Tj ET" % (document, page)
                for page in range(1, pages + 1)]
    # One drawing in two halves that change places from page to page: making 400 MiB of numbers takes minutes.
    operators = drawing(stream_size, document)
    ends = [operators.find(b"\n", stream_size * page // pages) + 1 for page in range(pages)]
    return [operators[end:] + operators[:end] for end in ends]


def write_load(folder, documents, pages, stream_size):
    folder.mkdir(parents=True, exist_ok=True)
    for number in range(1, documents + 1):
        kind = CompactDocument if folder.name == "mixed" and number % 2 == 0 else Document
        with open(folder / f"{number:04}.pdf", "wb") as file:
            kind(file).write(b"Document %d" % number, page_contents(number, pages, stream_size))


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("folder", type=Path)
    parser.add_argument("--tiny", action="store_true")
    parser.add_argument("loads", nargs="*", metavar="LOAD")
    arguments = parser.parse_args()
    unknown = set(arguments.loads) - {load[0] for load in all_loads()}
    if unknown:
        parser.error("no such load: " + ", ".join(sorted(unknown)))

    entries = []
    for name, words, documents, pages, stream_size, series in all_loads():
        if arguments.loads and name not in arguments.loads:
            continue
        if arguments.tiny:
            documents = min(documents, 2 + documents // 50)
            pages = max(1, pages // 100)
            stream_size //= 1000
        folder = arguments.folder / name
        write_load(folder, documents, pages, stream_size)
        entries.append({"name": name, "words": words, "series": series, "documents": documents,
                        "pages": documents * pages, "objects": documents * (4 + 2 * pages),
                        "bytes": sum(file.stat().st_size for file in folder.iterdir())})
    (arguments.folder / "loads.json").write_text(json.dumps(entries, indent=1) + "\n")


if __name__ == "__main__":
    sys.exit(main())
