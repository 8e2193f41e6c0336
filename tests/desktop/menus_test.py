#!/usr/bin/env python3
"""The menus: every option is applied and stored at once, and is there again at the next start."""

from case import DesktopTest, main
from documents import LETTER, REPORT, fill_folder
from window import CHOOSE, CHOOSE_FOLDER, CHOOSE_TMP, EXIT, FIRST, GO, MERGE_FOLDER, OUTPUT, ROOT, SWAP, TITLE, pages, select

ORDERS = {"Lexical ordering": "1", "Lexical ordering (reverse)": "-1", "By Date": "2", "By Date (reverse)": "-2"}
VERSION = (ROOT / "VERSION").read_text().strip()


class Options(DesktopTest):
    def checked(self, window, *menu):
        menu_node = window.menu_item(*menu)
        return [seen.name for seen in menu_node.see_all("menu item", states=("checked",))]

    def setting(self, window, name, value):
        self.wait(lambda: window.settings().get(name) == value, lambda: f"{name}={value}; {window.settings()}")

    def restart(self, window):
        window.click(EXIT)
        window.wait_end()
        return self.open()

    def test_the_sorting_order(self):
        window = self.open()
        self.assertEqual(self.checked(window, "Options", "Sorting order..."), ["Lexical ordering"])
        for caption, value in list(ORDERS.items())[::-1]:
            window.choose("Options", "Sorting order...", caption)
            self.setting(window, "MenuSort", value)
            self.assertEqual(self.checked(window, "Options", "Sorting order..."), [caption])
        window.choose("Options", "Sorting order...", "By Date (reverse)")
        self.setting(window, "MenuSort", "-2")
        window = self.restart(window)
        self.assertEqual(self.checked(window, "Options", "Sorting order..."), ["By Date (reverse)"])

    def test_the_log_window(self):
        window = self.open()
        self.wait(window.log_window, "the log is shown")
        self.assertEqual(self.checked(window, "Options", "Log window..."), ["Show"])
        window.choose("Options", "Log window...", "Hide")
        self.wait(lambda: not window.log_window(), "the log is hidden")
        self.setting(window, "MenuShowLogWindow", "0")
        self.assertEqual(self.checked(window, "Options", "Log window..."), ["Hide"])
        window = self.restart(window)
        self.assertFalse(window.log_window())
        window.choose("Options", "Log window...", "Show")
        self.wait(window.log_window, "the log is shown")
        self.setting(window, "MenuShowLogWindow", "1")
        self.assertEqual(window.log_text().strip(), "")
        window.wait_active(TITLE)

    def test_the_close_box_of_the_log_hides_it(self):
        window = self.open()
        self.screen.press_close_box(self.wait(window.log_window, "the log is shown"))
        self.wait(lambda: not window.log_window(), "the log is hidden")
        self.setting(window, "MenuShowLogWindow", "0")
        self.assertEqual(self.checked(window, "Options", "Log window..."), ["Hide"])

    def test_the_log_tells_what_is_done(self):
        window = self.open("ignored.pdf")
        self.wait(lambda: "[Folioweld-Form_Activate]=> Command line: ignored.pdf" in window.log_text(),
                  lambda: f"the first line of the log; {window.log_text()!r}")
        folder = fill_folder(self.folder / "to-join")
        window.merge_folder(folder, self.folder / "joined.pdf")
        self.wait(lambda: "Output: " in window.log_text(), "the log tells of the output")
        text = window.log_text()
        self.assertIn(" Kill ", text)
        self.assertTrue(text.rstrip().endswith(
            f'[Folioweld-MergeDirectory]=>Output: "{self.folder / "joined.pdf"}"  holds 3 documents in '
            f'{(self.folder / "joined.pdf").stat().st_size} bytes'), text)
        self.assertIn(f'Request to merge towards: "{self.folder / "joined.pdf"}"  the following files:', text)

    def test_the_display_of_the_output(self):
        self.with_viewer(["/bin/true", "%f"])
        window = self.open()
        self.assertEqual(self.checked(window, "Options", "Display output document..."), ["Display"])
        window.choose("Options", "Display output document...", "Do not display")
        self.setting(window, "DisplayOutputAfterMerge", "0")
        self.assertEqual(self.checked(window, "Options", "Display output document..."), ["Do not display"])
        window = self.restart(window)
        self.assertEqual(self.checked(window, "Options", "Display output document..."), ["Do not display"])
        window.choose("Options", "Display output document...", "Display")
        self.setting(window, "DisplayOutputAfterMerge", "1")

    def test_the_display_is_greyed_without_a_viewer(self):
        window = self.open()
        self.assertNotIn("enabled", window.menu_item("Options", "Display output document...").states)
        window.choose("About", "My portable document reader")
        self.assertEqual(window.box_text("Folioweld"),
                         ["On this computer, there is no reader for portable documents!"])

    def test_the_folder_for_temporary_files(self):
        window = self.open()
        wanted = self.folder / "tmp"
        wanted.mkdir()
        window.choose("Options", "Select TMP directory")
        window.answer_file(CHOOSE_TMP, wanted)
        window.wait_no_dialog()
        self.setting(window, "MergeTmpDir", str(wanted) + "/")
        window.choose("Options", "Select TMP directory")
        window.close_dialog(CHOOSE_TMP, "Esc")
        window.wait_no_dialog()
        self.setting(window, "MergeTmpDir", str(wanted) + "/")
        window.choose("Options", "Set default TMP directory")
        self.setting(window, "MergeTmpDir", self.environment["TMPDIR"] + "/")

    def test_a_folder_is_joined_in_the_chosen_order(self):
        folder = fill_folder(self.folder / "to-join", (REPORT, LETTER))
        joined = self.folder / "joined.pdf"
        window = self.open()
        window.merge_folder(folder, joined)
        self.wait(lambda: joined.exists() and window.is_enabled(select(FIRST)), "the folder is joined")
        self.assertEqual(pages(joined), pages(LETTER) + pages(REPORT))

    def test_a_cancelled_folder_picker_is_answered(self):
        window = self.open()
        window.choose("File", MERGE_FOLDER)
        window.close_dialog(CHOOSE_FOLDER, "Esc")
        self.assertEqual(window.box_text("File Tallowby - Folioweld"), ["Merge of documents cancelled"])
        window.close_dialog("File Tallowby - Folioweld", "Enter")
        window.wait_no_dialog()


class AboutAndLeaving(DesktopTest):
    def test_the_about_boxes(self):
        self.with_viewer(["/bin/true", "%f"])
        window = self.open()
        boxes = {
            "Folioweld": ["Folioweld", "version # " + VERSION, "",
                          "Copyright (c) 2026 The Folioweld developers. MIT License."],
            "Ambrose Varnel": ["Ambrose Varnel's e-mail address:", "", "ambrose.varnel@folioweld.example"],
            "My portable document reader": ["On this computer, the reader for portable documents is:", "",
                                            "/bin/true"]}
        for caption, text in boxes.items():
            window.choose("About", caption)
            self.assertEqual(window.box_text("Folioweld"), text)
            window.close_dialog("Folioweld", "Enter")
            window.wait_no_dialog()

    def test_exit_in_the_menu_asks(self):
        window = self.open()
        window.choose("File", "Exit")
        self.assertEqual(window.box_text("Folioweld"), ["Do you want to leave Folioweld?"])
        window.close_dialog("Folioweld", "Enter")
        window.wait_no_dialog()
        window.choose("File", "Exit")
        window.press_in(window.dialog("Folioweld"), "Yes")
        window.wait_end()

    def test_the_close_box_asks(self):
        window = self.open()
        self.screen.press("Alt+F4")
        self.assertEqual(window.box_text("Folioweld"), ["Do you want to leave Folioweld?"])
        window.close_dialog("Folioweld", "Esc")
        window.wait_no_dialog()
        self.screen.press_close_box(window.main_window())
        window.press_in(window.dialog("Folioweld"), "Yes")
        window.wait_end()
        self.wait(lambda: not self.screen.managed(), "the log window is gone too")

    def test_the_exit_button_asks_nothing(self):
        window = self.open()
        window.click(EXIT)
        window.wait_end()

    def test_the_window_keeps_its_size_and_can_be_minimised(self):
        window = self.open()
        main_window = window.main_window()
        size = self.screen.outline(main_window)[2:]
        self.screen.ask_manager(main_window, "_NET_WM_STATE", 1, self.screen.atom("_NET_WM_STATE_MAXIMIZED_VERT"),
                                self.screen.atom("_NET_WM_STATE_MAXIMIZED_HORZ"), 2)
        self.screen.ask_manager(main_window, "_NET_MOVERESIZE_WINDOW", 3 << 10 | 1, 0, 0, 1000, 900)
        self.screen.ask_manager(main_window, "WM_CHANGE_STATE", 3)
        self.wait(lambda: "_NET_WM_STATE_HIDDEN" in self.screen.states(main_window), "the window is minimised")
        self.screen.activate(main_window)
        self.wait(lambda: not self.screen.states(main_window) & {"_NET_WM_STATE_MAXIMIZED_VERT",
                                                                "_NET_WM_STATE_MAXIMIZED_HORZ"},
                  "the window is not maximised")
        self.wait(lambda: self.screen.outline(main_window)[2:] == size, "the window has its size")


class Swapping(DesktopTest):
    def test_the_swap_picture_exchanges_the_inputs(self):
        window = self.open()
        window.fill(LETTER, REPORT)
        window.click(SWAP)
        window.wait_path(0, REPORT)
        window.wait_path(1, LETTER)
        window.fill(output=self.folder / "joined.pdf")
        window.click(GO)
        window.wait_finished()
        self.assertEqual(window.paths()[:2], [str(REPORT), str(LETTER)])

    def test_an_input_is_refused_as_output(self):
        window = self.open()
        window.fill(LETTER)
        window.click(select(OUTPUT))
        window.answer_file(CHOOSE[OUTPUT], LETTER)
        self.assertEqual(window.box_text("Folioweld"), ["The output file", f'"{LETTER}"', " is also an input file.",
                                                        "I cannot do this operation!"])
        window.close_dialog("Folioweld", "Enter")
        window.wait_no_dialog()
        self.assertTrue(LETTER.exists())
        self.assertEqual(window.path(OUTPUT), "")

    def test_an_existing_output_is_asked_about_once(self):
        old = self.folder / "old.pdf"
        old.write_bytes(b"old")
        window = self.open()
        window.fill(LETTER)
        window.click(select(OUTPUT))
        window.answer_file(CHOOSE[OUTPUT], old)
        self.assertIn(" exists already.", window.box_text("Folioweld"))
        window.press_in(window.dialog("Folioweld"), "Yes")
        window.wait_path(OUTPUT, old)
        self.assertFalse(old.exists())

    def test_a_document_is_found_without_its_extension(self):
        letter = self.folder / "letter.pdf"
        letter.write_bytes(LETTER.read_bytes())
        window = self.open()
        window.click(select(FIRST))
        window.answer_file(CHOOSE[FIRST], self.folder / "letter")
        window.wait_path(FIRST, letter)


if __name__ == "__main__":
    main()
