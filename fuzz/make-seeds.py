#!/usr/bin/env python3
"""Writes the seeds of the fuzz targets into fuzz/corpus. They are made here, from nothing."""

import pathlib
import zlib

CORPUS = pathlib.Path(__file__).resolve().parent / "corpus"
HEADER = b"%PDF-1.4\n%\xe2\xe3\xcf\xd3\n"
PAGES = b"""1 0 obj
<</Type/Catalog/Pages 2 0 R>>
endobj
2 0 obj
<</Type/Pages/Kids[3 0 R]/Count 1/MediaBox[0 0 9 9]>>
endobj
3 0 obj
<</Type/Page/Parent 2 0 R/Contents 4 0 R/Resources<</Font<<>>>>>>
endobj
4 0 obj
<</Length 5 0 R>>
stream
BT ET
endstream
endobj
5 0 obj
5
endobj
9 0 obj
<</Producer(a \\(test\\) <</X>>)/D<00ff>>>
endobj
"""


def section(offset_base, numbers, body, extra=b""):
    offsets = {n: offset_base + body.index(b"%d 0 obj" % n) for n in numbers}
    size = max(numbers) + 1
    lines = [b"xref\n0 %d\n0000000000 65535 f \n" % size]
    for n in range(1, size):
        lines.append(b"%010d 00000 n \n" % offsets[n] if n in offsets else b"0000000000 65535 f \n")
    return b"".join(lines) + b"trailer\n<</Size %d/Root 1 0 R%s\n>>\n" % (size, extra)


def document(body=PAGES, numbers=(1, 2, 3, 4, 5, 9)):
    xref = len(HEADER) + len(body)
    return HEADER + body + section(len(HEADER), numbers, body) + b"startxref\n%d\n%%%%EOF\n" % xref


def revised():
    first = document()
    body = b"3 0 obj\n<</Type/Page/Parent 2 0 R>>\nendobj\n"
    old = first.rindex(b"xref\n0 ")
    xref = len(first) + len(body)
    return (first + body + b"xref\n3 1\n%010d 00000 n \ntrailer\n<</Size 10/Root 1 0 R/Prev %d\n>>\n"
            b"startxref\n%d\n%%%%EOF\n" % (len(first), old, xref))


def compressed():
    """A document with an object stream and a cross-reference stream."""
    objects = [b"<</Type/Catalog/Pages 2 0 R>>", b"<</Type/Pages/Kids[3 0 R]/Count 1>>",
               b"<</Type/Page/Parent 2 0 R/MediaBox[0 0 9 9]/A(x)/B[null 7 0 R true]>>"]
    places = [sum(map(len, objects[:i])) for i in range(3)]
    head = b" ".join(b"%d %d" % (i + 1, place) for i, place in enumerate(places)) + b" "
    packed = zlib.compress(head + b"".join(objects), 9)
    body = HEADER + (b"4 0 obj\n<</Type/ObjStm/N 3/First %d/Length %d/Filter/FlateDecode>>\nstream\n%s\nendstream\nendobj\n"
                     % (len(head), len(packed), packed))
    rows = [b"\0\0\0\0", b"\2\0\4\0", b"\2\0\4\1", b"\2\0\4\2", b"\1" + len(HEADER).to_bytes(2, "big") + b"\0",
            b"\1" + len(body).to_bytes(2, "big") + b"\0"]
    return body + (b"5 0 obj\n<</Type/XRef/Size 6/W[1 2 1]/Root 1 0 R/Length 24>>\nstream\n%s\nendstream\nendobj\n"
                   b"startxref\n%d\n%%%%EOF\n" % (b"".join(rows), len(body)))


def write(target, seeds):
    folder = CORPUS / target
    folder.mkdir(parents=True, exist_ok=True)
    for name, data in seeds.items():
        (folder / name).write_bytes(data)


def chain(data):
    return data.rindex(b"\nxref\n").to_bytes(2, "little") + data


write("acceptance", {"plain": document(), "revised": revised(), "short": b"%PDF-1.4\n%abcd\n", "empty": b""})
write("cross_reference", {"plain": chain(document()), "revised": chain(revised()),
                          "itself": chain(document().replace(b"/Root 1 0 R", b"/Prev 1"))})
write("dictionary", {
    "catalog": b"<</Type/Catalog/Pages 2 0 R/Names<</A[1 0 R(x)]>>/E<<>>>>",
    "strings": b"<</A(a\\)(b)/C)/B<2f>/C[/D<</E/F>>]%c\r/G 1>>",
    "deep": b"<</A" * 120 + b" 1" + b">>" * 120,
    "references": b"[1 0 R 2 0 R/N 3 0 R(4 0 R)<5>6 0 R]",
})
write("objects", {"pages": PAGES, "crlf": PAGES.replace(b"\n", b"\r\n"), "open": b"1 0 obj\n<</A",
                  "values": b"1 0 obj 5 endobj\n2 0 obj\n(x)\nendobj\n3 0 obj [1 2] endobj\n4 0 obj /N endobj\n"})
write("merge", {"numbered": b"\x03" + PAGES + b"\n@\n" + PAGES, "raw": b"\x00" + document() + b"\n@\n" + revised(),
                "alone": b"\x01" + PAGES, "mixed": b"\x02" + revised() + b"\n@\n" + PAGES})
write("settings", {"usual": b"/tmp/\n[Settings]\nMenuSort=1\nMergeTmpDir=/tmp/\n",
                   "odd": b"a\\x00b\\\n[Other]\nMenuSort=3\n[Settings]\r\nMenuSort=\\n\\q\r\n=\n\n"})
write("command_line", {"bar": b"out.pdf|folder", "two": b"out.pdf\nfolder", "none": b"folder", "only": b"|",
                       "many": b"a\nb|c\nd"})
write("dropped_files", {
    "usual": b"file:///home/a/one.pdf\r\nfile:///home/a/two%20%C3%A9.pdf\r\n",
    "odd": b"# comment\n\nFILE://LocalHost/%FF%0a%25%\nfile:/b%2\nfile://there/c\nhttp://here/d\nfile:///e%00?x#y",
})
write("prepare", {
    "plain": document(), "revised": revised(), "compressed": compressed(), "unnumbered": HEADER + PAGES + b"trailer<</Root 1 0 R>>",
    "odd": HEADER + PAGES.replace(b"/Contents 4 0 R", b"/A[9 0 R]/B 8 0 R/C 5 0 R/Bitstream/stream(\\)%\r\n )<0a>")
    + b"8 0 obj\n-1.5\nendobj\ntrailer<</Root 1 0 R/Info 1 0 R/ID[(a)(b)]>>",
    "tree": HEADER + PAGES.replace(b"/Kids[3 0 R]", b"/Kids[3 0 R<</Kids[3 0 R]>>null 9 0 R]") + b"trailer<</Root 1 0 R>>",
})
