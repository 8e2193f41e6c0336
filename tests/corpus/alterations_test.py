#!/usr/bin/env python3
"""Whether warnings are true: small documents that show one kind each are joined, the program has to warn of them, and
another program has to see something otherwise in the output than in the documents.

    alterations_test.py --program BUILD/app/folioweld
"""

import argparse
import json
import os
import shutil
import sys
import unittest

from program import World
from readers import run

TOOLS = ("qpdf", "mutool", "pdftotext", "pdftoppm")
PROGRAM = ""


def stream(data, entries=""):
    return f"<<{entries}/Length {len(data)}>>\nstream\n{data}\nendstream"


def text(words):
    return stream(f"BT /F1 12 Tf 10 10 Td ({words}) Tj ET")


def page(content, entries=""):
    font = "/Resources<</Font<</F1<</Type/Font/Subtype/Type1/BaseFont/Helvetica>>>>>>"
    return f"<</Type/Page/Parent 2 0 R/MediaBox[0 0 200 50]{font}/Contents {content} 0 R{entries}>>"


def plain(words, count=1):
    """Objects of a document with one page, or with one page shown several times as pages of their own."""
    kids = " ".join(f"{3 + 2 * i} 0 R" for i in range(count))
    objects = {1: "<</Type/Catalog/Pages 2 0 R>>", 2: f"<</Type/Pages/Kids[{kids}]/Count {count}>>"}
    for i in range(count):
        objects[3 + 2 * i] = page(4 + 2 * i)
        objects[4 + 2 * i] = text(words if count == 1 else f"{words}{i + 1}")
    return objects


def document(objects, trailer="/Root 1 0 R", table=None, tail="", head="%PDF-1.4\n%\xe2\xe3\xcf\xd3\n"):
    """The bytes of a document; `table` replaces entries of its cross-reference table."""
    data = head
    size = max(objects) + 1
    entries = {n: "0000000000 65535 f" for n in range(size)}
    for number, body in objects.items():
        entries[number] = f"{len(data):010} 00000 n"
        data += f"{number} 0 obj\n{body}\nendobj\n"
    entries.update(table or {})
    start = len(data)
    data += f"xref\n0 {size}\n" + "".join(f"{entries[n]} \n" for n in range(size))
    data += f"trailer\n<</Size {size}\n{trailer}\n>>\nstartxref\n{start}\n%%EOF\n{tail}"
    return data.encode("latin-1")


class Alterations(unittest.TestCase):
    def setUp(self):
        self.world = World()
        self.addCleanup(shutil.rmtree, self.world.root, ignore_errors=True)

    def file(self, name, data):
        path = self.world.path(name)
        with open(path, "wb") as out:
            out.write(data)
        return path

    def joined(self, warning, *documents, warnings=1):
        """Joins the documents, which has to succeed with this warning and no other, or so many; the paths of the inputs and of the
        output."""
        paths = [self.file(f"{i}.pdf", data) for i, data in enumerate(documents, 1)]
        outcome = self.world.join(PROGRAM, [(os.path.basename(path), path) for path in paths])
        self.assertEqual([], outcome.problems)
        self.assertEqual(3, outcome.status, outcome.stderr)
        self.assertEqual(warnings, len(outcome.stderr.splitlines()), outcome.stderr)
        self.assertIn(warning, outcome.stderr)
        return [*paths, outcome.output]

    def texts(self, path):
        return run(["pdftotext", path, "-"]).stdout.decode().replace("\f", "").split()

    def mutool_texts(self, path):
        return run(["mutool", "draw", "-F", "txt", path]).stdout.decode().split()

    def qpdf(self, path):
        """Objects by number, as qpdf sees them, and the trailer."""
        listing = json.loads(run(["qpdf", "--json", "--json-key=qpdf", path]).stdout)["qpdf"][1]
        return {name: value for name, value in listing.items()}

    def pixels(self, path, number):
        return run(["pdftoppm", "-r", "36", "-f", str(number), "-l", str(number), path]).stdout

    def test_information_that_is_a_page(self):
        first, second, output = self.joined(
            "more than an information dictionary", document(plain("one")), document(plain("two"), "/Root 1 0 R/Info 3 0 R")
        )
        self.assertEqual(["two"], self.texts(second))
        self.assertEqual(["one"], self.texts(output), "the page has become an information dictionary")

    def test_information_that_is_a_stream(self):
        marked = plain("one") | {5: "<</Type/XObject/Subtype/Form/BBox[0 0 9 9]/Length 4>>\nstream\n1 w \nendstream"}
        first, output = self.joined("more than an information dictionary", document(marked, "/Root 1 0 R/Info 5 0 R"))
        self.assertIn("stream", self.qpdf(first)["obj:5 0 R"])
        self.assertIn("/Producer", str(self.qpdf(output)["obj:5 0 R"]), "its dictionary is another one")

    def test_page_count_too_small(self):
        wrong = plain("a", 2) | {2: "<</Type/Pages/Kids[3 0 R 5 0 R]/Count 1>>"}
        first, second, output = self.joined("/Count is not the number of pages", document(wrong), document(plain("last")))
        self.assertEqual(["last"], self.texts(second))
        self.assertNotIn("last", self.texts(output))

    def test_page_tree_with_a_missing_node(self):
        wrong = plain("a") | {2: "<</Type/Pages/Kids[3 0 R 8 0 R]/Count 2>>"}
        first, second, output = self.joined("an object that is no page", document(wrong), document(plain("b", 3)), warnings=2)
        self.assertEqual(["b1", "b2", "b3"], self.texts(second))
        self.assertEqual(["a", "b1", "b1", "b2", "b3"], self.texts(output), "object 8 is a page of the second one now")

    def test_page_tree_that_leads_to_itself(self):
        wrong = plain("a") | {2: "<</Type/Pages/Kids[3 0 R 2 0 R]/Count 2>>"}
        first, second, output = self.joined("led to before", document(wrong), document(plain("last")))
        self.assertEqual(["last"], self.texts(second))
        self.assertEqual(3, self.page_count(output))
        self.assertNotIn(b"last", run(["pdftotext", "-f", "3", output, "-"]).stdout, "it is not where its count has it")

    def test_page_tree_root_that_has_a_parent(self):
        wrong = plain("a") | {2: "<</Type/Pages/Kids[3 0 R]/Count 1/Parent 1 0 R>>"}
        first, second, output = self.joined("has a /Parent already", document(wrong), document(plain("b")))
        self.assertNotIn(b"duplicated key", run(["qpdf", "--check", first]).stderr)
        self.assertIn(b"duplicated key /Parent", run(["qpdf", "--check", output]).stderr)

    def test_trailer_key_that_only_begins_like_another(self):
        two = plain("a") | {5: "<</Type/Catalog/Pages 6 0 R>>", 6: "<</Type/Pages/Kids[7 0 R]/Count 1>>"}
        two |= {7: page(8).replace("/Parent 2", "/Parent 6"), 8: text("b")}
        first, output = self.joined("another value in the trailer (/Root)", document(two, "/Root 1 0 R/Rooted 5 0 R"))
        self.assertEqual((["a"], ["b"]), (self.texts(first), self.texts(output)))

    def test_comment_in_the_trailer(self):
        data = document(plain("a") | {5: "<</Title(b)>>"}, "/Root 1 0 R/A 1 % /Info 5 0 R")
        first, output = self.joined("another value in the trailer (/Info)", data)
        self.assertIn("/Title", str(self.qpdf(first)["obj:5 0 R"]))
        self.assertNotIn("/Title", str(self.qpdf(output)["obj:5 0 R"]))

    def test_key_of_the_catalog_given_twice(self):
        two = plain("a") | {1: "<</Type/Catalog/Pages 2 0 R/P#61ges 6 0 R>>", 6: "<</Type/Pages/Kids[7 0 R]/Count 1>>"}
        two |= {7: page(8).replace("/Parent 2", "/Parent 6"), 8: text("b")}
        first, second, output = self.joined("a key is given twice", document(plain("c")), document(two))
        self.assertEqual((["b"], ["c", "a"]), (self.qpdf_texts(second), self.texts(output)))

    def test_two_startxref(self):
        first, output = self.joined('two "startxref"', document(plain("a"), tail="startxref\n9\n%%EOF"))
        self.assertIn(b"xref not found", run(["qpdf", "--check", first]).stderr)
        self.assertEqual(b"", run(["qpdf", "--check", output]).stderr)

    def test_encryption_in_every_spelling(self):
        for spelling in ("/Encrypt\n5 0 R", "/Encrypt\t5 0 R", "/Enc#72ypt 5 0 R"):
            data = document(plain("a") | {5: "<</Filter/Standard/V 1>>"}, "/Root 1 0 R" + spelling)
            first, output = self.joined("is encrypted", data)
            self.assertNotEqual(0, run(["qpdf", "--check", first]).returncode, spelling)
            self.assertEqual(0, run(["qpdf", "--check", output]).returncode, spelling)

    def test_field_that_the_form_draws(self):
        entries = "/AcroForm<</Fields[5 0 R]/DA(/Helv 12 Tf 0 g)/DR<</Font<</Helv<</Type/Font/Subtype/Type1/BaseFont/Helvetica>>>>>>>>"
        field = "<</Type/Annot/Subtype/Widget/FT/Tx/T(t)/V(field)/F 4/Rect[100 5 190 25]>>"
        form = plain("b") | {1: f"<</Type/Catalog/Pages 2 0 R{entries}>>", 3: page(4, "/Annots[5 0 R]"), 5: field}
        first, second, output = self.joined("a field is drawn by the form", document(plain("a")), document(form))
        self.assertEqual((["b", "field"], ["a", "b"]), (self.texts(second), self.texts(output)))

    def test_layer_that_is_hidden(self):
        entries = "/OCProperties<</OCGs[5 0 R]/D<</OFF[5 0 R]>>>>"
        hidden = plain("b") | {1: f"<</Type/Catalog/Pages 2 0 R{entries}>>", 5: "<</Type/OCG/Name(a)>>"}
        hidden[3] = page(4).replace("/Resources<<", "/Resources<</Properties<</L 5 0 R>>")
        hidden[4] = stream("/OC /L BDC 0 0 50 50 re f EMC")
        first, second, output = self.joined("layers that its catalog hides", document(plain("a")), document(hidden))
        self.assertNotEqual(self.pixels(second, 1), self.pixels(output, 2))

    def printed(self, path, number):
        """The picture that goes to a printer."""
        script, picture = self.world.path("print.js"), self.world.path("printed.png")
        with open(script, "w") as out:
            out.write("var page = new PDFDocument(scriptArgs[0]).loadPage(scriptArgs[1] - 1);\n")
            # Its place changed from one version to the next.
            out.write("var colours = typeof DeviceRGB === 'undefined' ? ColorSpace.DeviceRGB : DeviceRGB;\n")
            out.write("page.toPixmap([1, 0, 0, 1, 0, 0], colours, false, true, 'Print', 'CropBox').saveAsPNG(scriptArgs[2]);\n")
        run(["mutool", "run", script, path, str(number), picture])
        with open(picture, "rb") as drawn:
            return drawn.read()

    def test_layer_that_is_hidden_in_print(self):
        entries = "/OCProperties<</OCGs[5 0 R]/D<</AS[<</Event/Print/Category[/Print]/OCGs[5 0 R]>>]>>>>"
        hidden = plain("b") | {1: f"<</Type/Catalog/Pages 2 0 R{entries}>>"}
        hidden[3] = page(4).replace("/Resources<<", "/Resources<</Properties<</L 5 0 R>>")
        hidden[4] = stream("/OC /L BDC 0 0 50 50 re f EMC")
        hidden[5] = "<</Type/OCG/Name(a)/Usage<</Print<</PrintState/OFF>>>>>>"
        first, second, output = self.joined("layers that its catalog hides", document(plain("a")), document(hidden))
        self.assertNotEqual(self.printed(second, 1), self.printed(output, 2))

    def test_button_that_the_form_draws(self):
        entries = "/AcroForm<</Fields[5 0 R]/DA(/Helv 12 Tf 0 g)/DR<</Font<</Helv<</Type/Font/Subtype/Type1/BaseFont/Helvetica>>>>>>>>"
        for drawn in ("/Ff 65536/MK<</CA(Go)>>", "/MK<</CA(4)>>/AS/Yes"):
            field = f"<</Type/Annot/Subtype/Widget/FT/Btn/T(t){drawn}/F 4/Rect[100 5 190 25]>>"
            form = plain("b") | {1: f"<</Type/Catalog/Pages 2 0 R{entries}>>", 3: page(4, "/Annots[5 0 R]"), 5: field}
            first, second, output = self.joined("a field is drawn by the form", document(plain("a")), document(form))
            self.assertNotEqual(self.pixels(second, 1), self.pixels(output, 2), drawn)

    def test_printing_condition(self):
        intent = "/OutputIntents[<</S/GTS_PDFX/OutputConditionIdentifier(FOGRA39)/DestOutputProfile 5 0 R>>]"
        press = plain("b") | {1: f"<</Type/Catalog/Pages 2 0 R{intent}>>", 5: stream("profile", "/N 4")}
        first, second, output = self.joined("the printing condition", document(plain("a")), document(press))
        self.assertIn("/OutputIntents", str(self.catalog(second)))
        self.assertNotIn("/OutputIntents", str(self.catalog(output)))

    def test_object_that_only_the_cross_reference_stream_lists(self):
        objects = plain("b") | {5: text("hidden")}
        objects[3] = page(4).replace("/Contents 4 0 R", "/Contents 5 0 R")
        data = document(objects, "/Root 1 0 R\n/XRefStm 0000000000", table={5: "0000000000 65535 f"})
        place = data.index(b"5 0 obj").to_bytes(4, "big")
        entries = b"\x01" + place + b"\x00\x00"
        start = data.index(b"xref\n0 ")
        table = b"9 0 obj\n<</Type/XRef/Size 10/Index[5 1]/W[1 4 2]/Root 1 0 R/Length 7>>\nstream\n" + entries + b"\nendstream\nendobj\n"
        data = data[:start] + table + data[start:].replace(b"0000000000\n>>", b"%010d\n>>" % start)
        data = data.replace(b"startxref\n%d\n" % start, b"startxref\n%d\n" % (start + len(table)))
        first, second, output = self.joined("what only the cross-reference stream", document(plain("a")), data)
        # Which of the two looks into that stream depends on their versions.
        self.assertIn(["hidden"], (self.texts(second), self.mutool_texts(second)))
        self.assertEqual((["a"], ["a"]), (self.texts(output), self.mutool_texts(output)))

    def test_generation_that_the_table_does_not_give(self):
        wrong = document(plain("a") | {5: "[/Marked]"}).replace(b"5 0 obj", b"5 1 obj")
        first, output = self.joined("another generation than the cross-reference table", wrong)
        self.assertIsNone(self.qpdf(first)["obj:5 0 R"]["value"])
        self.assertEqual(["/Marked"], self.qpdf(output)["obj:5 0 R"]["value"])

    def test_stream_that_is_longer_than_its_length(self):
        short = plain("a") | {4: "<</Length 5>>" + text("a").partition(">>")[2]}
        first, output = self.joined('"endstream" does not stand', document(short))
        self.assertEqual((["a"], []), (self.texts(first), self.texts(output)))

    def test_string_that_loses_blanks(self):
        titled = plain("a") | {5: "<</S (b \n\nc)>>"}
        first, output = self.joined("a string over several lines", document(titled))
        self.assertEqual("u:b \n\nc", self.qpdf(first)["obj:5 0 R"]["value"]["/S"])
        self.assertEqual("u:b\nc", self.qpdf(output)["obj:5 0 R"]["value"]["/S"])

    def test_reference_with_a_tab(self):
        tab = plain("b") | {3: page(4).replace("4 0 R", "4\t0 R")}
        first, second, output = self.joined("keeps its number", document(plain("a")), document(tab))
        self.assertEqual((["b"], ["a", "a"]), (self.texts(second), self.texts(output)))

    def test_reference_to_an_object_of_a_later_document(self):
        missing = plain("a") | {3: page(9)}
        first, second, output = self.joined("leads to one of a later document", document(missing), document(plain("b")))
        self.assertEqual(([], ["b", "b"]), (self.texts(first), self.texts(output)))

    def test_reference_to_object_0(self):
        null = plain("b") | {5: "<</A 0 0 R>>"}
        first, second, output = self.joined("a reference to object 0", document(plain("a")), document(null))
        self.assertIn(self.qpdf(second)["obj:5 0 R"]["value"].get("/A"), (None, "0 0 R"))
        self.assertEqual(19540716, self.qpdf(output)["obj:5 0 R"]["value"])

    def test_object_in_use_with_the_generation_of_free_ones(self):
        data = document(plain("a")).decode("latin-1")
        offset = data.index("4 0 obj")
        data = data.replace("4 0 obj", "4 65535 obj").replace(f"{offset:010} 00000 n", f"{offset:010} 65535 n")
        data = data.replace("/Contents 4 0 R", "/Contents 4 65535 R")
        start = data.rindex("xref\n0 ")
        data = data.replace(f"startxref\n{start - 8}\n", f"startxref\n{start}\n")
        first, output = self.joined("is not in the output", data.encode("latin-1"))
        self.assertEqual([], self.texts(output))

    def test_object_that_ends_within_a_string(self):
        cut = plain("a") | {5: "<</S(the endobj\n)/T 1>>"}
        first, output = self.joined("ends the object there", document(cut))
        self.assertIn("/T", str(self.qpdf(first)["obj:5 0 R"]))
        self.assertNotIn("/T", str(self.qpdf(output).get("obj:5 0 R")))

    def catalog(self, path):
        objects = self.qpdf(path)
        return objects["obj:" + objects["trailer"]["value"]["/Root"]]

    def qpdf_texts(self, path):
        """The texts of the pages that qpdf sees."""
        return self.texts(self.file("seen.pdf", run(["qpdf", path, "-"]).stdout))

    def page_count(self, path):
        return int(run(["pdfinfo", path]).stdout.split(b"Pages:")[1].split()[0])


def main():
    global PROGRAM
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--program", required=True)
    options, rest = parser.parse_known_args()
    PROGRAM = os.path.abspath(options.program)
    missing = [tool for tool in TOOLS if not shutil.which(tool)]
    if missing:
        sys.exit(f"FAILED: not installed: {', '.join(missing)} (Debian: qpdf, mupdf-tools, poppler-utils)")
    unittest.main(argv=[sys.argv[0], *rest])


if __name__ == "__main__":
    main()
