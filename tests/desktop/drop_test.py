#!/usr/bin/env python3
"""Files and folders are dragged onto the window from another program."""

import os

from case import DesktopTest, main
from drag import DragSource
from documents import LETTER, REPORT, STATIONS
from window import CHOOSE_OUTPUT, FIRST, GO, OUTPUT, SECOND, SORTING, pages, select


class Drops(DesktopTest):
    def source(self, *items, **more):
        return DragSource(self.desktop, self.screen, self.environment, *items, **more)

    def drop(self, window, place, *items):
        with self.source(*items) as source:
            source.drop_on(window.frame_of(place).extents)

    def test_a_file_on_each_place_fills_that_place(self):
        window = self.open()
        joined = self.folder / "joined.pdf"
        joined.write_bytes(b"left as it is until the merge")
        for place, file in ((FIRST, LETTER), (SECOND, REPORT), (OUTPUT, joined)):
            self.drop(window, place, file)
            window.wait_path(place, file)
        self.assertTrue(joined.exists())
        window.click(GO)
        self.wait(lambda: "-> OK" in (window.status(OUTPUT) or ""), "the merge says OK")
        self.assertEqual(pages(joined), pages(LETTER) + pages(REPORT))

    def test_a_file_on_the_second_place_goes_to_the_first_while_that_is_empty(self):
        window = self.open()
        self.drop(window, SECOND, LETTER)
        window.wait_path(FIRST, LETTER)
        self.assertEqual(window.paths(), [str(LETTER), "", ""])

    def test_a_file_on_the_output_place_counts_only_with_a_first_input(self):
        window = self.open()
        self.drop(window, OUTPUT, REPORT)
        self.drop(window, FIRST, LETTER)
        window.wait_path(FIRST, LETTER)
        self.assertEqual(window.paths(), [str(LETTER), "", ""])

    def test_two_files_at_once_change_nothing(self):
        window = self.open()
        self.drop(window, FIRST, STATIONS)
        window.wait_path(FIRST, STATIONS)
        with self.source(LETTER, REPORT) as source:
            source.drop_on(window.frame_of(SECOND).extents)
        # Drops are handled one after the other: once this one was, the one before was too.
        self.drop(window, OUTPUT, LETTER)
        window.wait_path(OUTPUT, LETTER)
        self.assertEqual(window.paths(), [str(STATIONS), "", str(LETTER)])

    def test_what_is_no_file_is_not_taken(self):
        window = self.open()
        with self.source("some words", text=True, back=True) as source:
            source.be_refused_on(window.frame_of(FIRST).extents)
        # Two drags that it gets to know of at once are one to Qt, which answers neither then.
        window.wait_handled()
        self.drop(window, FIRST, LETTER)
        window.wait_path(FIRST, LETTER)

    def test_a_refused_file_empties_the_place_and_moves_the_second_input_up(self):
        notes = self.folder / "notes.txt"
        notes.write_text("not a document\n")
        window = self.open()
        self.drop(window, FIRST, LETTER)
        window.wait_path(FIRST, LETTER)
        self.drop(window, SECOND, REPORT)
        window.wait_path(SECOND, REPORT)
        self.drop(window, FIRST, notes)
        window.wait_path(FIRST, REPORT)
        self.assertEqual(window.paths(), [str(REPORT), "", ""])
        self.assertEqual(window.dialogs(), [])

    def test_names_with_blanks_and_percent_signs_and_bytes_that_are_no_text_arrive(self):
        for name in ("a b%20c#?.pdf".encode(), "Übersicht.pdf".encode(), b"caf\xe9.pdf"):
            with self.subTest(name=name):
                path = os.fsencode(self.folder) + b"/" + name
                with open(path, "wb") as file:
                    file.write(LETTER.read_bytes())
                window = self.open()
                self.drop(window, FIRST, path)
                try:
                    shown = path.decode()
                except UnicodeDecodeError:
                    shown = path.decode("latin-1")
                window.wait_path(FIRST, shown)
                window.click("Exit")
                window.wait_end()

    def make_folder(self):
        folder = self.folder / "to join"
        folder.mkdir()
        for number, source in enumerate((LETTER, REPORT, STATIONS)):
            (folder / f"{number}.pdf").write_bytes(source.read_bytes())
        return folder

    def test_a_folder_is_joined_in_the_order_that_is_asked_for(self):
        folder = self.make_folder()
        joined = self.folder / "joined.pdf"
        window = self.open()
        self.drop(window, SECOND, folder)
        dialog = window.dialog(SORTING)
        window.press_in(dialog, "reverse lexical ordering of file names")
        checked = lambda: [seen.name for seen in dialog.see_all("radio button", states=("checked",))]
        self.wait(lambda: checked() == ["reverse lexical ordering of file names"], "that option alone is checked")
        window.press_in(dialog, "I choose this option")
        window.answer_file(CHOOSE_OUTPUT, joined)
        self.wait(lambda: joined.exists() and window.is_enabled("Exit") and not window.dialogs()
                  and window.is_enabled(select(FIRST)), "the folder is joined")
        self.assertEqual(pages(joined), pages(LETTER) + pages(REPORT) + pages(STATIONS))
        self.assertEqual(window.settings()["MenuSort"], "-1")
        self.assertTrue(window.is_checked("Options", "Sorting order...", "Lexical ordering (reverse)"))

    def test_a_folder_may_be_dropped_beside_the_places(self):
        folder = self.make_folder()
        window = self.open()
        with self.source(folder) as source:
            source.drop_on(window.control("Exit").extents)
        window.close_dialog(SORTING, "Esc")
        window.close_dialog(CHOOSE_OUTPUT, "Esc")
        window.wait_no_dialog()
        self.assertEqual(window.settings()["MenuSort"], "1")

    def test_a_file_dropped_beside_the_places_changes_nothing(self):
        window = self.open()
        self.drop(window, FIRST, STATIONS)
        window.wait_path(FIRST, STATIONS)
        with self.source(LETTER) as source:
            source.drop_on(window.control("Exit").extents)
        self.drop(window, SECOND, REPORT)
        window.wait_path(SECOND, REPORT)
        self.assertEqual(window.paths(), [str(STATIONS), str(REPORT), ""])


if __name__ == "__main__":
    main()
