#!/usr/bin/env python3
"""Damages a joined file and expects the checks of join_corpus.py to notice: a check that cannot fail is none.

    harness_test.py --program BUILD/app/folioweld --corpus FOLDER
"""

import json
import os
import re
import sys
import tempfile
import unittest

import carry_corpus
import documents as corpus_documents
import join_corpus
import object_graph
import object_values
import prepare_corpus
from program import World

FIRST, SECOND = "r-uncompressed.pdf", "qt6-pdfa1b.pdf"


def swap(data, pattern, replacement, place=0):
    """The data with one match of the pattern, counted from the start (or the end, below 0), replaced at full length."""
    match = list(re.finditer(pattern, data))[place]
    changed = match.expand(replacement)
    assert len(changed) == len(match[0]) and changed != match[0], (match[0], changed)
    return data[: match.start()] + changed + data[match.end() :]


class DamagedOutput(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.scratch = tempfile.TemporaryDirectory(prefix="folioweld-harness-")
        documents = corpus_documents.load(OPTIONS.corpus, OPTIONS.expectations)
        cls.session = join_corpus.Session(OPTIONS, documents, cls.scratch.name)
        cls.order = [cls.session.by_name[FIRST], cls.session.by_name[SECOND]]
        with World() as world:
            outcome = world.join(OPTIONS.program, [("1.pdf", cls.order[0].path), ("2.pdf", cls.order[1].path)])
            with open(outcome.output, "rb") as file:
                cls.joined = file.read()

    @classmethod
    def tearDownClass(cls):
        cls.scratch.cleanup()

    def complaints(self, data):
        path = os.path.join(self.scratch.name, self.id() + ".pdf")
        with open(path, "wb") as file:
            file.write(data)
        try:
            return "\n".join(join_corpus.compare_with_documents(self.session, path, self.order))
        except Exception as error:  # as run_jobs reports it
            return f"the check itself stopped: {error}"

    def test_an_undamaged_output_passes(self):
        self.assertEqual(self.complaints(self.joined), "")

    def test_pages_in_the_wrong_order(self):
        damaged = swap(self.joined, rb"/Pages /Kids \[ (\d+ \d+ R) (\d+ \d+ R) \]", rb"/Pages /Kids [ \2 \1 ]")
        self.assertIn("page 1", self.complaints(damaged))

    def test_a_page_left_out(self):
        two, one = rb"/Pages /Kids \[ (\d+ \d+ R) \d+ \d+ R \] /Count \d", rb"/Pages /Kids [ \1        ] /Count 1"
        damaged = swap(self.joined, two, one)
        self.assertIn("counts 1 pages", self.complaints(damaged))

    def test_a_wrong_page_count(self):
        self.assertIn("instead of", self.complaints(swap(self.joined, rb"(<<\r/Type /Pages /Kids .*? /Count )\d", rb"\g<1>9")))

    def test_a_lost_line_of_text(self):
        self.assertRegex(self.complaints(swap(self.joined, rb"\bTj\b", rb"n ")), "text: ")

    def test_a_shape_moved_by_little(self):
        damaged = swap(self.joined, rb"(\d)(\.\d\d [\d.]+ l\b)", rb"3\2", 2)
        self.assertIn("rendering: ", self.complaints(damaged))

    def test_a_wrong_offset(self):
        self.assertIn("begin at its offset", self.complaints(swap(self.joined, rb"\d( 00000 n)", rb"1\1", 4)))

    def test_a_lost_end(self):
        self.assertNotEqual(self.complaints(self.joined[:-40]), "")

    def test_changed_bytes_that_no_page_shows(self):
        damaged = swap(self.joined, rb'xmp:CreateDate=".', rb'xmp:CreateDate="?')
        self.assertRegex(self.complaints(damaged), r"\Aobject \d+ of input 2: has other stream data\Z")

    def test_a_reference_that_leads_elsewhere(self):
        damaged = swap(self.joined, rb"/FontDescriptor \d", rb"/FontDescriptor 1", -1)
        self.assertRegex(self.complaints(damaged), r"object \d+ of input \d: token")


    def test_a_page_tree_that_does_not_lead_back(self):
        self.assertIn("/Parent is", self.complaints(swap(self.joined, rb"/Parent (\d+ \d+ R >>)", rb"/Farent \1", -1)))

    def test_a_stream_that_is_closed_late(self):
        damaged = swap(self.joined, rb"(.)endstream\r", rb"endstream\1\r", 3)
        self.assertIn("endstream does not", self.complaints(damaged))


class Tokens(unittest.TestCase):
    def test_references_shift_and_plain_numbers_do_not(self):
        was = object_values.tokens(b"[3 0 R 4 0\tR 5 6 (7 0 R)]")
        self.assertEqual(object_values.shifted(was, 10), object_values.tokens(b"[ 13 0 R 14 0 R 5 6 (7 0 R) ]"))

    def test_strings_are_equal_by_what_they_mean(self):
        self.assertEqual(object_values.tokens(b"(a\\(b\\051\\\r\nc\rd)"), object_values.tokens(b"(a\\050b\\)c\nd)"))


class ObjectGraphs(unittest.TestCase):
    """The walk that compares what two documents hold, whatever their numbers are."""

    def setUp(self):
        self.was, self.now = (object_graph.Graph(prepare_corpus.PLAIN) for _ in range(2))

    def differences(self):
        return "\n".join(object_graph.catalog_differences(self.was, self.now))

    def test_are_the_same_with_other_numbers_and_with_values_in_place(self):
        page = self.now.resolve(self.now.pages()[0])
        page["/Resources"] = self.now.resolve(page["/Resources"])
        moved = json.dumps(self.now.objects).replace("6 0 R", "60 0 R")
        self.now.objects = json.loads(moved)
        self.assertEqual(self.differences(), "")

    def test_notice_a_changed_byte_of_a_stream(self):
        stream = next(item["stream"] for item in self.now.objects.values() if "stream" in item)
        stream["data"] = stream["data"].swapcase()
        self.assertIn("the bytes of the stream differ", self.differences())

    def test_notice_a_lost_entry(self):
        del self.now.catalog()["/Lang"]
        self.assertIn("only one has ['/Lang']", self.differences())

    def test_notice_a_page_in_the_place_of_another(self):
        kids = self.now.resolve(self.now.catalog()["/Pages"])["/Kids"]
        kids[1] = kids[0]
        self.assertIn("are other objects elsewhere", self.differences())

    def test_notice_a_link_to_another_page(self):
        first, second = self.was.pages()
        for graph, target in ((self.was, first), (self.now, second)):
            graph.catalog()["/OpenAction"] = [target, "/Fit"]
        self.assertNotEqual(self.differences(), "")


class CarriedContents(unittest.TestCase):
    """Without --carry nearly everything is lost, and every kind of it has to be missed."""

    DOCUMENTS = ("weasyprint-attach.pdf", "luatex-form.pdf", "gdal-geo.pdf", "cairo-links.pdf")

    def setUp(self):
        if not os.path.exists(os.path.join(os.path.dirname(OPTIONS.program), "folioweld-prepare")):
            self.skipTest("SKIPPED: folioweld-prepare is not built")

    def differences(self, *names):
        paths = [os.path.join(OPTIONS.corpus, name) for name in names]
        shown = [f"{place}.pdf" for place in range(1, len(paths) + 1)]
        with World() as world:
            outcome = world.join(OPTIONS.program, list(zip(shown, paths)), ["--prepare"])
            return "\n".join(carry_corpus.differences(paths, shown, outcome))

    def test_every_kind_that_is_lost_is_missed(self):
        missed = self.differences(*self.DOCUMENTS)
        for kind in ("outline: ", "form: ", "destination ", "labels: ", "layers: ", "tags: ", "links on page 1 of document 2"):
            self.assertIn(kind, missed)
        self.assertIn("attachments: ", self.differences(*reversed(self.DOCUMENTS)))

    def test_a_page_that_looks_otherwise_is_missed(self):
        self.assertIn("looks otherwise", self.differences("cairo-links.pdf", "podofo-mem.pdf"))


if __name__ == "__main__":
    OPTIONS = join_corpus.parse_options(sys.argv[1:])
    if not os.path.exists(os.path.join(OPTIONS.corpus, "TABLE.tsv")):
        print(f"SKIPPED: harness: no documents in '{OPTIONS.corpus}' (set FOLIOWELD_CORPUS to their folder)")
        sys.exit(join_corpus.SKIPPED)
    unittest.main(argv=sys.argv[:1])
