"""Documents for the tests: the examples, and large ones that take no room on the disk."""

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
