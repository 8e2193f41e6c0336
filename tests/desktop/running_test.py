#!/usr/bin/env python3
"""What a person can do, and cannot do, while documents are joined."""

import signal
import time
from pathlib import Path

from case import DesktopTest, main
from documents import LETTER, write_large
from drag import DragSource
from window import ABORT, EXIT, FIRST, GO, MERGE_FOLDER, OUTPUT, SWAP

LEAVE = "Do you want to leave Folioweld?"


class Running(DesktopTest):
    def begin(self):
        """The window with a long merge under way."""
        self.joined = self.folder / "joined.pdf"
        large = [write_large(self.folder / name, 300) for name in ("a.pdf", "b.pdf")]
        window = self.open(slow_disk=True)
        window.fill(*large, self.joined)
        # On the button already, for every window has a pointer of its own.
        self.screen.move_to(window.wait_enabled(GO).extents)
        window.wait_handled()
        self.idle_pointer = self.screen.pointer()
        window.click(GO)
        window.wait_running()
        self.wait(self.joined.exists, "the output is being written")
        return window

    def begin_folder(self):
        """The window with a long merge of a folder under way, in its first round."""
        folder = self.folder / "to-join"
        folder.mkdir()
        for name in "abc":
            write_large(folder / f"{name}.pdf", 200)
        self.joined = self.folder / "joined.pdf"
        window = self.open(slow_disk=True)
        window.merge_folder(folder, self.joined)
        window.wait_running()
        self.wait(lambda: self.temporary_files(window), "the first round writes a temporary file")
        return window

    def temporary_files(self, window):
        return list(Path(window.environment["TMPDIR"]).glob("Pdf*"))

    def wait_folder_cancelled(self, window):
        self.wait(lambda: window.is_enabled(EXIT) and window.paths() == ["", "", ""], "the window is idle again")
        self.assertEqual(window.dialogs(), [])
        self.assertEqual(self.temporary_files(window), [])
        self.assertFalse(self.joined.exists())

    def wait_cancelled(self, window):
        self.wait(lambda: window.is_enabled(EXIT), "the window is idle again")
        self.assertTrue(window.status(OUTPUT).endswith("FAILED or cancelled"), window.status(OUTPUT))
        self.assertFalse(self.joined.exists())
        self.assertEqual(window.path(OUTPUT), "")

    def test_only_cancel_can_be_pressed_and_no_button_has_the_keyboard(self):
        window = self.begin()
        self.assertEqual(window.enabled_buttons(), {ABORT})
        self.assertEqual(window.default_button(), ABORT)
        self.assertIn(window.focused(), (None, ""))
        self.assertNotIn("enabled", window.menu_item("File", MERGE_FOLDER).states)
        self.wait(lambda: self.screen.pointer() != self.idle_pointer, "the pointer is another one")

    def test_cancel_ends_the_merge_and_leaves_no_output(self):
        window = self.begin()
        window.click(ABORT)
        self.wait_cancelled(window)

    def test_enter_cancels(self):
        window = self.begin()
        self.screen.press("Enter")
        self.wait_cancelled(window)

    def test_quick_presses_that_follow_a_cancel_do_not_end_the_program(self):
        for press in (lambda place: self.screen.click(place, 3), lambda _place: self.screen.press("Enter", 3)):
            window = self.begin()
            press(window.control(ABORT).extents)
            self.wait_cancelled(window)
            window.choose("About", "Folioweld")
            window.dialog("Folioweld")
            window.close()
            self.wait(lambda: not self.screen.managed(), "the window is gone")

    def test_a_press_that_began_on_cancel_is_none_on_exit(self):
        window = self.begin()
        self.screen.move_to(window.control(ABORT).extents)
        self.screen.press_button()
        self.screen.press_close_box(window.main_window())
        self.wait_cancelled(window)
        self.screen.release_button()
        window.choose("About", "Folioweld")
        window.dialog("Folioweld")

    def test_a_key_that_is_held_on_cancel_is_none_on_exit(self):
        window = self.begin()
        self.screen.hold("Enter")
        try:
            self.wait_cancelled(window)
            self.assertEqual(window.default_button(), EXIT)
            # Used with the mouse for longer than a key needs to be repeated many times.
            end = time.monotonic() + 3
            while time.monotonic() < end:
                first, second = window.paths()[:2]
                window.click(SWAP)
                window.wait_path(FIRST, second)
        finally:
            self.screen.release("Enter")
        self.assertTrue(window.runs())

    def test_escape_changes_nothing(self):
        window = self.begin()
        self.screen.press("Esc")
        self.screen.press("Esc")
        self.screen.press("F10")
        self.wait(lambda: window.main.find("menu item", MERGE_FOLDER, states=("showing",)) or
                  window.focused() == "File", "the menu bar answers")
        self.screen.press("Esc")
        window.wait_handled()
        self.assertTrue(window.is_enabled(ABORT))

    def test_the_close_box_stops_the_merge_and_keeps_the_window(self):
        window = self.begin()
        self.screen.press_close_box(window.main_window())
        self.wait_cancelled(window)
        self.assertEqual(window.dialogs(), [])
        self.assertTrue(window.runs())

    def test_cancel_ends_the_merge_of_a_folder_and_leaves_no_temporary_files(self):
        window = self.begin_folder()
        self.assertEqual(window.enabled_buttons(), {ABORT})
        window.click(ABORT)
        self.wait_folder_cancelled(window)

    def test_the_close_box_stops_the_merge_of_a_folder_and_keeps_the_window(self):
        window = self.begin_folder()
        self.screen.press_close_box(window.main_window())
        self.wait_folder_cancelled(window)
        self.assertEqual(window.dialogs(), [])
        self.assertTrue(window.runs())

    def test_exit_in_the_menu_asks_and_no_lets_the_merge_go_on(self):
        window = self.begin()
        window.choose("File", "Exit")
        self.assertEqual(window.box_text("Folioweld"), [LEAVE])
        window.close_dialog("Folioweld", "Enter")
        window.wait_no_dialog()
        self.assertTrue(window.is_enabled(ABORT))

    def test_exit_in_the_menu_with_yes_cleans_up_and_ends(self):
        window = self.begin()
        window.choose("File", "Exit")
        window.press_in(window.dialog("Folioweld"), "Yes")
        self.wait(lambda: not window.runs(), "the program ends")
        self.assertFalse(self.joined.exists())

    def test_a_termination_request_cleans_up_and_ends(self):
        window = self.begin()
        window.process.send_signal(signal.SIGTERM)
        window.wait_end(1)
        self.assertFalse(self.joined.exists())

    def test_drops_are_not_taken(self):
        window = self.begin()
        with DragSource(self.desktop, self.screen, self.environment, LETTER, back=True) as source:
            source.be_refused_on(window.frame_of(FIRST).extents)
        window.click(ABORT)
        self.wait_cancelled(window)
        self.assertEqual(window.path(FIRST), str(self.folder / "a.pdf"))

    def test_options_log_and_about_go_on_working(self):
        window = self.begin()
        window.choose("Options", "Log window...", "Hide")
        self.wait(lambda: not window.log_window(), "the log is hidden")
        window.choose("Options", "Sorting order...", "By Date")
        self.wait(lambda: window.settings().get("MenuSort") == "2", "the order is stored")
        window.choose("About", "Ambrose Varnel")
        self.assertIn("ambrose.varnel@folioweld.example", window.box_text("Folioweld"))
        window.close_dialog("Folioweld", "Enter")
        window.wait_no_dialog()
        self.assertTrue(window.is_enabled(ABORT))

    def test_the_window_answers_all_the_time(self):
        window = self.begin()
        longest = 0.0
        for _ in range(20):
            begun = time.monotonic()
            window.control(ABORT)
            longest = max(longest, time.monotonic() - begun)
        self.assertTrue(window.is_enabled(ABORT), "the merge was over too soon")
        # Generous: what is measured here is also what else the machine has to do.
        self.assertLess(longest, 60)


if __name__ == "__main__":
    main()
