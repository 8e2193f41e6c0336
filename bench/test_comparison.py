#!/usr/bin/env python3
"""Tests of the benchmark: the loads are what they say, and the table says what was measured.

    test_comparison.py PROGRAM TIME_COMMAND
"""

import json
import os
import subprocess
import sys
import tempfile
import unittest
import xml.dom.minidom
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE / "comparison"))

import figures  # noqa: E402
import measure  # noqa: E402
import picture  # noqa: E402
import programs  # noqa: E402
import report  # noqa: E402
import system_calls  # noqa: E402
from measure import Series  # noqa: E402

PROGRAM, TIME_COMMAND = sys.argv[1:3] if len(sys.argv) > 2 else (None, None)


def load(name, documents=2, objects=100, series=None, size=1000):
    return {"name": name, "words": f"the load {name}", "series": series, "documents": documents, "pages": 6,
            "objects": objects, "bytes": size}


def series(program, *seconds, way="", kib=3000):
    return Series(program, way, list(seconds), kib)


def peers(seconds):
    return [series(name, seconds) for name in programs.peers()]


def met(goals, words):
    return [goal.met for goal in goals if words in goal.words]


class Loads(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.scratch = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.scratch.cleanup)
        cls.folder = Path(cls.scratch.name)
        subprocess.run([HERE / "make-loads.py", "--tiny", cls.folder], check=True)
        cls.loads = json.loads((cls.folder / "loads.json").read_text())

    def test_every_load_is_valid_and_has_the_pages_and_bytes_that_are_said(self):
        for entry in self.loads:
            files = sorted((self.folder / entry["name"]).iterdir())
            self.assertEqual(len(files), entry["documents"])
            self.assertEqual(sum(file.stat().st_size for file in files), entry["bytes"])
            pages = 0
            for file in files:
                self.assertTrue(b"\nxref\n0 " in file.read_bytes() or entry["name"] == "mixed")
                pages += int(subprocess.check_output(["qpdf", "--show-npages", file]))
            self.assertEqual(pages, entry["pages"])
            for file in files[:2]:
                subprocess.run(["qpdf", "--check", file], check=True, capture_output=True)

    def test_half_of_the_mixed_documents_have_no_table_and_their_plain_twins_do(self):
        for name, expected in (("mixed", 0.5), ("plain", 1)):
            files = list((self.folder / name).iterdir())
            self.assertEqual(sum(b"\nxref\n0 " in file.read_bytes() for file in files), len(files) * expected)

    def test_each_series_of_growth_has_four_doublings(self):
        names = [entry["series"] for entry in self.loads if entry["series"]]
        self.assertEqual({name: names.count(name) for name in names},
                         {"growing-objects": 5, "growing-streams": 5, "growing-documents": 5})

    def test_the_same_bytes_come_out_every_time(self):
        with tempfile.TemporaryDirectory() as again:
            subprocess.run([HERE / "make-loads.py", "--tiny", again, "folder"], check=True)
            for file in (self.folder / "folder").iterdir():
                self.assertEqual(file.read_bytes(), (Path(again) / "folder" / file.name).read_bytes())

    def test_a_load_that_does_not_exist_is_refused(self):
        with tempfile.TemporaryDirectory() as scratch:
            told = subprocess.run([HERE / "make-loads.py", scratch, "nothing"], capture_output=True)
            self.assertNotEqual(told.returncode, 0)


class Goals(unittest.TestCase):
    def test_a_ratio_at_its_limit_is_met_and_one_beyond_is_not(self):
        entry = load("streams")
        for own, expected in ((1.1, True), (1.2, False)):
            goals = list(figures.load_goals(entry, [series(programs.OWN, own), series(programs.COPY, 1.0)] + peers(9)))
            self.assertEqual(met(goals, "cat a b"), [expected])

    def test_the_fastest_peer_counts(self):
        entry = load("objects")
        slow = [series(programs.OWN, 0.1)] + peers(1.6)
        self.assertEqual(met(list(figures.load_goals(entry, slow)), "15 times"), [True])
        slow[-1] = series("pdftk", 1.4)
        self.assertEqual(met(list(figures.load_goals(entry, slow)), "15 times"), [False])

    def test_a_peer_without_a_figure_makes_no_goal_met(self):
        goals = figures.load_goals(load("objects"), [series(programs.OWN, 0.1), series("qpdf", 9)])
        self.assertEqual([goal.met for goal in goals], [False])

    def test_a_folder_may_take_no_longer_than_mutool(self):
        for own, expected in ((1.0, True), (1.1, False)):
            goals = list(figures.load_goals(load("folder"), [series(programs.OWN, own)] + peers(1.0)))
            self.assertEqual(met(goals, "mutool"), [expected])

    def test_preparing_is_compared_with_qpdf_and_with_the_run_without_it(self):
        for own, expected in ((2.0, True), (2.1, False)):
            measured = [series(programs.PREPARING, own), series("qpdf", 1.0, way="default"), series("qpdf", 0.1, way="quick")]
            goals = list(figures.load_goals(load("mixed"), measured))
            self.assertEqual([goal.met for goal in goals], [expected])
        for own, expected in ((1.25, True), (1.3, False)):
            measured = [series(programs.PREPARING, own), series(programs.OWN, 1.0)]
            self.assertEqual([goal.met for goal in figures.load_goals(load("plain"), measured)], [expected])

    def test_carrying_may_take_a_fifth_more_and_50_ms(self):
        for name in ("streams", "folder"):
            for own, expected in ((1.249, True), (1.251, False)):
                measured = [series(programs.CARRYING, own), series(programs.OWN, 1.0)]
                self.assertEqual(met(figures.load_goals(load(name), measured), "--carry"), [expected])

    def test_the_start_is_compared_with_an_empty_program(self):
        entry = load("small")
        for own, expected in ((0.0024, True), (0.0026, False)):
            measured = [series(programs.OWN, own), series(programs.EMPTY, 0.001)] + peers(1)
            self.assertEqual(met(list(figures.load_goals(entry, measured)), "empty"), [expected])

    def test_nothing_measured_meets_nothing(self):
        loads = [load(name) for name in ("streams", "objects", "small", "folder", "mixed", "plain")]
        goals = figures.all_goals(loads, {entry["name"]: [] for entry in loads})
        self.assertTrue(goals)
        self.assertFalse(any(goal.met for goal in goals))

    def test_memory_grows_with_the_objects_only(self):
        entry = load("objects", objects=1000)
        limit = (8 * 1024 * 1024 + 1000 * 1000) // 1024
        for kib, expected in ((limit, True), (limit + 1, False)):
            self.assertEqual(figures.memory_goal([entry], {"objects": [series(programs.OWN, 1, kib=kib)]}).met, expected)

    def test_growth_is_judged_over_all_doublings(self):
        steps = [load(f"growing-objects-{i}", series="growing-objects") for i in range(3)]
        for times, expected in (((1, 2.1, 3.9), True), ((1, 2.1, 4.3), False)):
            measured = {step["name"]: [series(programs.OWN, time)] for step, time in zip(steps, times)}
            self.assertEqual(figures.growth_goal("growing-objects", steps, measured).met, expected)

    def test_more_documents_may_cost_more_rounds(self):
        steps = [load(f"growing-documents-{i}", documents=2 ** (i + 3), series="growing-documents") for i in range(2)]
        measured = {step["name"]: [series(programs.OWN, time)] for step, time in zip(steps, (1, 2.6))}
        self.assertTrue(figures.growth_goal("growing-documents", steps, measured).met)


class Table(unittest.TestCase):
    def test_of_two_ways_the_faster_counts(self):
        rows = figures.rows([series("qpdf", 3, 4, 5, way="slow"), series("qpdf", 1, 2, 3, way="quick")])
        self.assertEqual([(row.way, row.median) for row in rows], [("quick", 2)])

    def test_a_program_that_failed_is_named_under_the_table(self):
        failed = Series("qpdf", "", [], 0, "5 pages instead of 6")
        self.assertIn("qpdf failed: 5 pages instead of 6 (small).",
                      report.markdown("a machine", [load("small")], {"small": [failed]}, [], {}))

    def test_one_table_has_the_median_of_every_program_for_every_load(self):
        loads = [load("small"), load("objects")]
        measured = {"small": [series(programs.OWN, 0.001), series("pdftk", 0.2), series(programs.EMPTY, 0.5)],
                    "objects": [series(programs.COPY, 3)]}
        self.assertIn("| small: the load small | 1.00 ms | - | - | - | 200 ms | - |\n"
                      "| objects: the load objects | - | - | - | - | - | 3000 ms |\n",
                      report.markdown("a machine", loads, measured, [], {}))

    def test_calls_that_are_rare_in_every_load_share_a_line(self):
        loads = [load("small"), load("folder")]
        calls = {"small": [("pread64", 15), ("brk", 5), ("mmap", 2)], "folder": [("pread64", 90), ("brk", 10)]}
        self.assertEqual(report.call_table(loads, calls)[2:],
                         ["| `pread64` | 15 | 90 |", "| all others | 7 | 10 |", ""])

    def test_the_table_takes_the_place_between_the_marks(self):
        document = "before\n" + report.BEGIN + "old\n" + report.END + "behind\n"
        new = report.put_between_marks(document, "new")
        self.assertEqual(new, "before\n" + report.BEGIN + "\nnew\n\n" + report.END + "behind\n")
        self.assertRaises(ValueError, report.put_between_marks, "no marks", "new")

    def test_the_picture_is_well_formed_and_shows_every_program(self):
        entry = {**load("small"), "words": "a & b < c"}
        drawn = picture.svg("a machine", [entry], {"small": [series(programs.OWN, 0.001)] + peers(1.5)})
        words = [text.firstChild.data for text in xml.dom.minidom.parseString(drawn).getElementsByTagName("text")]
        for expected in [programs.OWN, *programs.peers(), "A & b < c", "1.00 ms", "1500 ms"]:
            self.assertIn(expected, words)

    def test_calls_are_read_from_a_summary(self):
        summary = ("% time     seconds  usecs/call     calls    errors syscall\n"
                   "------ ----------- ----------- --------- --------- ----------------\n"
                   " 50.00    0.000001           1         3           read\n"
                   " 50.00    0.000001           0        12         2 openat\n"
                   "------ ----------- ----------- --------- --------- ----------------\n"
                   "100.00    0.000002           0        15         2 total\n")
        self.assertEqual(system_calls.parse(summary), [("openat", 12), ("read", 3)])


class Rounds(unittest.TestCase):
    """A run over tiny loads with the programs that the other tests need anyway."""

    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.work = Path(scratch.name)
        (self.work / "time-command").symlink_to(TIME_COMMAND)
        self.settings = {**os.environ, "XDG_CONFIG_HOME": scratch.name, "HOME": scratch.name,
                         "TMPDIR": str(self.work / "temporaries")}
        self.runner = measure.Runner(self.work, self.settings)
        subprocess.run([HERE / "make-loads.py", "--tiny", self.work / "loads", "folder"], check=True)
        self.load = json.loads((self.work / "loads" / "loads.json").read_text())[0]

    def measured(self, chosen):
        return measure.measure_load(self.runner, chosen, self.load, self.work / "loads", 2, lambda words: None)

    def chosen(self, *names):
        return [program for program in programs.programs(PROGRAM, "true") if program.name in names]

    def test_every_program_is_run_and_its_pages_are_counted(self):
        names = (programs.OWN, "qpdf", "mutool", "pdfunite", programs.COPY, programs.ROUNDS)
        for one in self.measured(self.chosen(*names)):
            self.assertEqual((one.program, one.fault, len(one.seconds)), (one.program, "", 2))
            self.assertGreater(one.peak_kib, 0)
        self.assertEqual(list(self.work.glob("joined.pdf*")), [])

    def test_an_output_without_all_pages_is_a_fault(self):
        self.load["pages"] += 1
        one = self.measured(self.chosen("qpdf"))[0]
        self.assertIn("instead of", one.fault)
        self.assertEqual(one.seconds, [])

    def test_copying_in_rounds_copies_every_byte_in_order(self):
        documents = sorted(str(file) for file in (self.work / "loads" / "folder").iterdir())
        for count in range(1, len(documents) + 1):
            output = self.work / "copied"
            self.runner.renew_temporaries()
            subprocess.run(programs.copy_in_rounds(documents[:count], str(output)), env=self.settings, check=True)
            self.assertEqual(output.read_bytes(), b"".join(Path(name).read_bytes() for name in documents[:count]))
            output.unlink()
            self.assertEqual([name.name for name in self.work.glob("copied*")], ["copied.sh"])
            self.assertEqual(os.listdir(self.settings["TMPDIR"]), [])

    def test_every_run_gets_an_empty_folder_for_temporary_files(self):
        temporaries = Path(self.settings["TMPDIR"])
        for _ in range(2):
            self.runner.renew_temporaries()
            self.assertEqual(os.listdir(temporaries), [])
            (temporaries / "left").touch()


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
