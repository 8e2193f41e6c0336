#!/usr/bin/env python3
"""Command lines with a screen: a folder is joined without the window, everything else opens it."""

from case import DesktopTest, main
from documents import LETTER, REPORT, STATIONS, fill_folder
from window import CHOOSE_OUTPUT, EXIT, FIRST, TITLE, pages, select

ALL = (LETTER, REPORT, STATIONS)


class CommandLine(DesktopTest):
    def setUp(self):
        super().setUp()
        self.documents = fill_folder(self.folder / "to join", ALL)
        self.joined = self.folder / "joined.pdf"

    def assert_joined(self):
        self.assertEqual(pages(self.joined), sum(map(pages, ALL)))

    def test_output_and_folder_are_joined_by_the_window_program_too(self):
        window = self.open(f"{self.joined}|{self.documents}", ready=False)
        window.wait_end(0)
        self.assert_joined()
        self.assertEqual(window.settings()["MergeCurDir"], f"{self.documents}/")

    def test_two_arguments_mean_the_same(self):
        window = self.open(str(self.joined), str(self.documents), ready=False)
        window.wait_end(0)
        self.assert_joined()

    def test_relative_names_belong_to_the_folder_of_the_start(self):
        window = self.open("joined.pdf|to join", ready=False, folder=self.folder)
        window.wait_end(0)
        self.assert_joined()

    def test_a_folder_alone_asks_for_the_output_and_ends(self):
        for program in ("folioweld", "folioweld-window"):
            with self.subTest(program=program):
                self.joined.unlink(missing_ok=True)
                window = self.open(f"|{self.documents}", ready=False, program=program)
                window.answer_file(CHOOSE_OUTPUT, self.joined)
                window.wait_end(0)
                self.assert_joined()

    def test_a_folder_alone_ends_without_an_output_when_none_is_chosen(self):
        window = self.open(f"|{self.documents}", ready=False)
        window.close_dialog(CHOOSE_OUTPUT, "Esc")
        window.wait_end(1)
        self.assertFalse(self.joined.exists())

    def test_an_empty_output_before_sources_asks_for_the_output_and_ends(self):
        cover = self.folder / "a cover|.pdf"
        cover.write_bytes(LETTER.read_bytes())
        (self.folder / "list").write_bytes(b"a cover|.pdf\0")
        for program in ("folioweld", "folioweld-window"):
            with self.subTest(program=program):
                self.joined.unlink(missing_ok=True)
                window = self.open("--order=name-reversed", "--files0-from=list", "", str(cover), str(self.documents),
                                   ready=False, program=program, folder=self.folder)
                window.answer_file(CHOOSE_OUTPUT, self.joined)
                window.wait_end(0)
                self.assertEqual(pages(self.joined), sum(map(pages, (LETTER, *ALL, LETTER))))
                self.assertEqual(window.settings().get("MergeCurDir", ""), "")
                self.assertEqual(window.settings()["MenuSort"], "1")

    def test_a_verbose_run_prints_the_log_on_standard_error(self):
        window = self.open("-v", str(self.joined), str(LETTER), str(REPORT), ready=False)
        window.wait_end(0)
        self.assertIn(f"Command line: -v {self.joined} {LETTER} {REPORT}\n", window.errors())
        self.assertEqual(window.errors().count("Request to merge towards"), 1)

    def test_an_empty_output_before_sources_ends_without_an_output_when_none_is_chosen(self):
        window = self.open("", str(LETTER), str(REPORT), ready=False)
        window.close_dialog(CHOOSE_OUTPUT, "Esc")
        window.wait_end(1)

    def test_a_folder_that_is_not_there_opens_the_window_with_its_name(self):
        window = self.open(f"{self.joined}|{self.folder}/none")
        window.wait_path(FIRST, f"{self.folder}/none")

    def test_folioweld_without_arguments_is_the_window(self):
        window = self.open(program="folioweld")
        self.assertEqual(self.screen.title(window.main_window()), TITLE)
        self.assertEqual(window.enabled_buttons(), {select(FIRST), EXIT})
        window.click(EXIT)
        window.wait_end(0)

    def test_any_other_argument_is_ignored(self):
        window = self.open(str(LETTER), program="folioweld")
        self.assertEqual(window.paths(), ["", "", ""])

    def test_the_window_is_in_the_middle_of_the_screen(self):
        window = self.open()
        left, top, width, height = self.screen.outline(window.main_window())
        # The frame of the window manager takes a few pixels on each side.
        self.assertAlmostEqual(left + width / 2, 800, delta=30)
        self.assertAlmostEqual(top + height / 2, 600, delta=30)


if __name__ == "__main__":
    main()
