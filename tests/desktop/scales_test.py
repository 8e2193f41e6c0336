#!/usr/bin/env python3
"""The window at every scale and in both palettes: whole, and good for joining."""

from pathlib import Path

from acting_window import ActingWindow
from case import DesktopTest, main
from documents import LETTER, REPORT, STATIONS, fill_folder
from drag import DragSource
from layout import faults
from palette import DARK_WINDOW, make_dark
from picture import pixel
from window import CHOOSE_OUTPUT, FIRST, GO, SORTING, pages, select

WIDTH, HEIGHT = 754, 456
MENU_BAR = 40


class Scales(DesktopTest):
    def setUp(self):
        super().setUp()
        settings = Path(self.environment["XDG_CONFIG_HOME"]) / "folioweld"
        settings.mkdir()
        (settings / "settings.ini").write_text("[Settings]\nDisplayOutputAfterMerge=0\nMenuShowLogWindow=0\n")
        self.joined = self.folder / "joined.pdf"

    def shown(self, scale=1, *arguments):
        self.environment["QT_SCALE_FACTOR"] = str(scale)
        window = self.open(*arguments, kind=ActingWindow)
        self.wait(lambda: self.screen.has_keyboard(window.main_window()), "the window has the keyboard")
        size = lambda: self.screen.outline(window.main_window())[2:]
        self.wait(lambda: size()[0] == WIDTH * scale and HEIGHT * scale < size()[1] < (HEIGHT + MENU_BAR) * scale,
                  lambda: f"the window has its size at scale {scale}; it is {size()}")
        return window

    def join(self, window):
        window.fill(LETTER, REPORT, self.joined)
        self.wait_faultless(window)
        window.click(GO)
        window.wait_finished()
        self.wait_faultless(window)
        self.assertEqual(pages(self.joined), pages(LETTER) + pages(REPORT))

    def face(self, window):
        """The colour below the buttons, whether they are drawn yet or not."""
        left, top, width, height = self.screen.outline(window.main_window())
        return pixel(self.screen.pixels((left + width // 2, top + height - 3, 1, 1)), 0, 0)

    def test_at_scale_1(self):
        window = self.shown(1)
        self.wait(lambda: min(self.face(window)) > 200, lambda: f"a light face; it is {self.face(window)}")
        self.join(window)

    def test_at_scale_1_and_a_half(self):
        self.join(self.shown(1.5))

    def test_at_scale_2(self):
        self.join(self.shown(2))

    def test_in_a_dark_palette(self):
        make_dark(self.environment)
        window = self.shown(1)
        self.wait(lambda: self.face(window) == DARK_WINDOW, lambda: f"a dark face; it is {self.face(window)}")
        self.join(window)

    def test_the_question_for_the_order_at_every_scale(self):
        folder = fill_folder(self.folder / "to join")
        for scale in (1, 1.5, 2):
            with self.subTest(scale=scale):
                window = self.shown(scale)
                with DragSource(self.desktop, self.screen, self.desktop.environment, folder) as source:
                    source.drop_on(self.screen.outline(window.main_window()))
                    dialog = window.dialog(SORTING)
                    # Two of the four options stand over the frame and not in it.
                    found = lambda: [fault for fault in faults(dialog) if "radio button" not in fault]
                    self.wait(lambda: found() == [], lambda: f"no faults in the question; {found()}")
                    window.press_in(dialog, "I choose this option")
                    window.answer_file(CHOOSE_OUTPUT, self.joined)
                self.wait(lambda: self.joined.exists() and window.is_enabled(select(FIRST)),
                          "the folder is joined")
                self.assertEqual(pages(self.joined), sum(map(pages, (LETTER, REPORT, STATIONS))))
                self.joined.unlink()
                window.close()


if __name__ == "__main__":
    main()
