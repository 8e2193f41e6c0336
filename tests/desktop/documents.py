"""Documents for the tests: the examples, and large ones that take no room on the disk."""

import re

from window import ROOT

LETTER = ROOT / "examples" / "1-cover-letter.pdf"
REPORT = ROOT / "examples" / "2-report.pdf"
STATIONS = ROOT / "examples" / "3-stations.pdf"
MIB = 1 << 20


def write_large(path, streams, size=MIB):
    """A document of one blank page with so many streams of zeros, of which the disk holds none."""
    objects = [b"<< /Type /Catalog\n/Pages 2 0 R\n>>", b"<< /Type /Pages\n/Kids [3 0 R]\n/Count 1\n>>",
               b"<< /Type /Page\n/Parent 2 0 R\n/MediaBox [0 0 200 200]\n/Resources << >>\n>>"]
    with open(path, "wb") as file:
        file.write(b"%PDF-1.4\n%\xe2\xe3\xcf\xd3\n")
        places = []
        for number in range(1, len(objects) + streams + 1):
            places.append(file.tell())
            file.write(b"%d 0 obj\n" % number)
            if number <= len(objects):
                file.write(objects[number - 1])
            else:
                file.write(b"<< /Length %d\n>>\nstream\n" % size)
                file.seek(size, 1)
                file.write(b"\nendstream")
            file.write(b"\nendobj\n")
        table = file.tell()
        count = len(places) + 1
        file.write(b"xref\n0 %d\n0000000000 65535 f \n" % count)
        for place in places:
            file.write(b"%010d 00000 n \n" % place)
        file.write(b"trailer\n<< /Size %d\n/Root 1 0 R\n>>\nstartxref\n%d\n%%%%EOF\n" % (count, table))
    return path


def write_in_two_subsections(path, source):
    """The document with its first free entry in a subsection of its own, as programs write it that change one."""
    head, _, tail = source.read_bytes().partition(b"xref\n0 ")
    count, _, entries = tail.partition(b"\n")
    first, rest = entries[:20], entries[20:]
    path.write_bytes(head + b"xref\n0 1\n" + first + b"1 %d\n" % (int(count) - 1) + rest)


def fill_folder(folder, sources=(LETTER, REPORT, STATIONS)):
    """A folder with copies of the documents, named in their order."""
    folder.mkdir()
    for number, source in enumerate(sources, 1):
        (folder / f"{number}.pdf").write_bytes(source.read_bytes())
    return folder


def add_bookmarks(document, titles):
    """The document with a revision that gives it an outline, one item for each page."""
    kids = re.search(rb"/Kids \[([\d R]+)\]", document)[1].split(b" R")
    pages = [kid.strip() for kid in kids if kid.strip()][: len(titles)]
    size, table = int(re.search(rb"/Size (\d+)", document)[1]), int(re.findall(rb"startxref\n(\d+)", document)[-1])
    items = range(size + 1, size + 1 + len(titles))
    objects = {1: re.search(rb"1 0 obj\n(<<.*?)>>\nendobj", document, re.S)[1] + b"/Outlines %d 0 R\n>>" % size,
               size: b"<<\n/First %d 0 R\n/Last %d 0 R\n/Count %d\n>>" % (items[0], items[-1], len(titles))}
    for number, title, page in zip(items, titles, pages):
        beside = (b"/Prev %d 0 R\n" % (number - 1)) * (number > items[0]) + (b"/Next %d 0 R\n" % (number + 1)) * (number < items[-1])
        objects[number] = b"<<\n/Title (%s)\n/Parent %d 0 R\n/Dest [%s R /Fit]\n%s>>" % (title, size, page, beside)
    for number, text in objects.items():
        offset = len(document)
        document += b"%d 0 obj\n%s\nendobj\n" % (number, text)
        objects[number] = offset
    start = len(document)
    document += b"xref\n1 1\n%010d 00000 n \n%d %d\n" % (objects[1], size, len(titles) + 1)
    document += b"".join(b"%010d 00000 n \n" % objects[number] for number in sorted(objects)[1:])
    return document + b"trailer\n<<\n/Size %d\n/Root 1 0 R\n/Info 2 0 R\n/Prev %d\n>>\nstartxref\n%d\n%%%%EOF\n" % (
        items[-1] + 1, table, start)


def fill_with_bookmarks(folder):
    """A folder with the examples, of which the report has an outline."""
    fill_folder(folder)
    report = folder / "2.pdf"
    report.write_bytes(add_bookmarks(report.read_bytes(), (b"A wet winter, and a quiet end", b"Where the sand went")))
