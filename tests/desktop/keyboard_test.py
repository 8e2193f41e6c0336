#!/usr/bin/env python3
"""The window without a mouse."""

from case import DesktopTest, main
from documents import LETTER, REPORT, STATIONS, fill_folder
from window import (CHOOSE, CHOOSE_FOLDER, CHOOSE_OUTPUT, EXIT, FIRST, GO, MERGE_FOLDER, OUTPUT, SECOND, SWAP, TITLE,
                    clear, pages, select)


class Keyboard(DesktopTest):
    def tab_to(self, window, name):
        for _ in range(12):
            if window.focused() == name:
                return
            self.screen.press("Tab")
            window.wait_handled()
        self.fail(f"no way to {name} with Tab")

    def fill_by_keyboard(self, window, *paths):
        for place, path in enumerate(paths):
            self.tab_to(window, select(place))
            self.screen.press("Space")
            window.answer_file(CHOOSE[place], path)
            window.wait_path(place, path)
            window.wait_active(TITLE)
            self.wait(lambda: window.focused() is not None, "the window has the keyboard again")

    def test_two_documents_are_joined(self):
        window = self.open()
        joined = self.folder / "joined.pdf"
        self.fill_by_keyboard(window, LETTER, REPORT, joined)
        self.assertEqual(window.default_button(), GO)
        self.tab_to(window, GO)
        self.screen.press("Enter")
        window.wait_finished()
        self.assertEqual(pages(joined), pages(LETTER) + pages(REPORT))
        self.assertEqual(window.focused(), GO)
        self.tab_to(window, EXIT)
        window.leave(lambda: self.screen.press("Space"))

    def test_tab_follows_the_places(self):
        window = self.open()
        self.fill_by_keyboard(window, LETTER, REPORT, self.folder / "joined.pdf")
        self.tab_to(window, select(FIRST))
        order = [select(FIRST), clear(FIRST), SWAP, select(SECOND), clear(SECOND), select(OUTPUT), clear(OUTPUT),
                 GO, EXIT]
        for here, there in zip(order, order[1:] + order[:1]):
            self.assertEqual(window.focused(), here)
            self.screen.press("Tab")
            window.wait_handled()
            self.assertEqual(window.focused(), there)
        for here, there in zip(order[:1] + order[:0:-1], order[::-1]):
            self.screen.press("Shift+Tab")
            window.wait_handled()
            self.assertEqual(window.focused(), there)

    def test_the_inputs_are_swapped_and_cleared(self):
        window = self.open()
        self.fill_by_keyboard(window, LETTER, REPORT)
        self.tab_to(window, SWAP)
        self.screen.press("Space")
        window.wait_path(FIRST, REPORT)
        window.wait_path(SECOND, LETTER)
        self.tab_to(window, clear(FIRST))
        self.screen.press("Space")
        window.wait_path(FIRST, LETTER)
        window.wait_path(SECOND, "")

    def test_enter_presses_the_button_that_has_the_keyboard(self):
        window = self.open()
        self.fill_by_keyboard(window, LETTER, REPORT, self.folder / "joined.pdf")
        self.tab_to(window, SWAP)
        self.screen.press("Enter")
        window.wait_path(FIRST, REPORT)
        self.tab_to(window, clear(SECOND))
        self.screen.press("Enter")
        window.wait_path(SECOND, "")
        self.wait(lambda: window.focused() == select(SECOND), lambda: f"{window.focused()} has the keyboard")
        self.tab_to(window, EXIT)
        self.screen.press("Enter")
        window.wait_end()
        self.assertFalse((self.folder / "joined.pdf").exists())

    def test_enter_on_a_fresh_start_chooses_the_first_input(self):
        window = self.open()
        self.wait(lambda: window.focused() == select(FIRST), lambda: f"{window.focused()} has the keyboard")
        self.assertEqual(window.default_button(), EXIT)
        self.screen.press("Enter")
        window.answer_file(CHOOSE[FIRST], LETTER)
        window.wait_path(FIRST, LETTER)

    def test_clear_pressed_over_and_over_clears_one_place_and_ends_nothing(self):
        window = self.open()
        self.fill_by_keyboard(window, LETTER, REPORT, self.folder / "joined.pdf")
        self.tab_to(window, clear(FIRST))
        for left in (REPORT, ""):
            self.screen.press("Space")
            window.wait_path(FIRST, left)
        self.wait(lambda: window.focused() == select(FIRST), lambda: f"{window.focused()} has the keyboard")
        self.assertEqual(window.path(OUTPUT), str(self.folder / "joined.pdf"))

    def test_escape_never_closes_the_window(self):
        window = self.open()
        for key in ("Esc", "Shift+Esc"):
            self.screen.press(key)
        self.fill_by_keyboard(window, LETTER)
        self.screen.press("Esc")
        self.tab_to(window, EXIT)
        self.screen.press("Esc")
        window.wait_handled()
        self.assertEqual(window.focused(), EXIT)
        self.assertEqual(window.dialogs(), [])
        self.assertTrue(window.runs())

    def test_the_menus_open_with_f10_and_follow_the_arrows(self):
        window = self.open()
        self.screen.press("F10")
        self.wait(lambda: window.focused() == "File", "the menu bar has the keyboard")
        self.screen.press("Down")
        self.wait(lambda: "showing" in window.menu_item("File", "Exit").states, "the menu is open")
        self.screen.press("Esc")
        self.wait(lambda: "showing" not in window.menu_item("File", "Exit").states, "the menu is closed")
        self.screen.press("Esc")
        self.assertTrue(window.runs())

    def test_a_folder_is_joined_from_the_menu(self):
        folder = fill_folder(self.folder / "to-join")
        joined = self.folder / "joined.pdf"
        window = self.open()
        self.screen.press("F10")
        self.wait(lambda: window.focused() == "File", "the menu bar has the keyboard")
        self.screen.press("Down")
        self.wait(lambda: "showing" in window.menu_item("File", MERGE_FOLDER).states, "the menu is open")
        for _ in range(3):
            if window.focused() == MERGE_FOLDER:
                break
            self.screen.press("Down")
            window.wait_handled()
        self.wait(lambda: window.focused() == MERGE_FOLDER, lambda: f"{MERGE_FOLDER} is chosen; {window.focused()} is")
        self.screen.press("Enter")
        window.answer_file(CHOOSE_FOLDER, folder)
        window.answer_file(CHOOSE_OUTPUT, joined)
        self.wait(lambda: joined.exists() and window.is_enabled(select(FIRST)), "the folder is joined")
        self.assertEqual(pages(joined), pages(LETTER) + pages(REPORT) + pages(STATIONS))
        self.assertEqual(window.settings()["MergeCurDir"], str(folder) + "/")


class Names(DesktopTest):
    def test_every_control_has_a_name_of_its_own(self):
        window = self.open()
        for role in ("push button", "panel", "label"):
            names = [seen.name for seen in window.main.see_all(role, without=("menu bar",))]
            self.assertTrue(all(name.strip() for name in names), names)
            self.assertEqual(len(names), len(set(names)), names)
        self.assertEqual({seen.name for seen in window.main.see_all("push button")},
                         {select(0), select(1), select(2), clear(0), clear(1), clear(2), SWAP, GO, EXIT})
        self.assertTrue(window.root.find("text", "Activity log"))
        for seen in window.main.see_all("menu item"):
            self.assertTrue(seen.name)

    def test_the_labels_tell_what_they_show(self):
        window = self.open()
        window.fill(LETTER)
        self.assertEqual(window.path(FIRST), str(LETTER))
        self.assertEqual(window.status(FIRST), "1<")


if __name__ == "__main__":
    main()
