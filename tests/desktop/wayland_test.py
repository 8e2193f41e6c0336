#!/usr/bin/env python3
"""The window on Wayland: shown at every scale and in both palettes, and used to join documents."""

import os
import signal
from pathlib import Path

from case import main
from desktop import children_of
from documents import LETTER, REPORT, STATIONS, fill_folder
from layout import faults
from palette import DARK_WINDOW, make_dark
from picture import drawn, pixel
from wayland import WaylandTest
from window import CLOSE_VIEWER, EXIT, FIRST, GO, SECOND, SWAP, TITLE, pages, select

# The client area; the frame that the toolkit draws around it here takes a few pixels more.
WIDTH, HEIGHT = 754, 456
FRAME = 60


class Using(WaylandTest):
    def setUp(self):
        super().setUp()
        self.store(DisplayOutputAfterMerge=0)
        self.joined = self.folder / "joined.pdf"

    def test_two_documents_are_joined(self):
        window = self.open(program="folioweld")
        self.assertEqual(window.main.name, TITLE)
        window.fill(LETTER, REPORT, self.joined)
        window.click(SWAP)
        window.wait_path(FIRST, REPORT)
        window.wait_path(SECOND, LETTER)
        window.click(GO)
        window.wait_finished()
        self.assertEqual(pages(self.joined), pages(LETTER) + pages(REPORT))
        window.leave(lambda: window.click(EXIT))

    def test_a_folder_is_joined_from_the_menu(self):
        folder = fill_folder(self.folder / "to join")
        window = self.open()
        window.merge_folder(folder, self.joined)
        self.wait(lambda: self.joined.exists() and window.is_enabled(select(FIRST)), "the folder is joined")
        self.assertEqual(pages(self.joined), sum(map(pages, (LETTER, REPORT, STATIONS))))
        self.wait(lambda: " Kill " in window.log_text(), "the log tells of the clean-up")

    def test_a_folder_is_joined_from_the_command_line(self):
        folder = fill_folder(self.folder / "to join")
        window = self.open(f"{self.joined}|{folder}", ready=False)
        window.wait_end()
        self.assertEqual(pages(self.joined), sum(map(pages, (LETTER, REPORT, STATIONS))))

    def test_a_message_is_shown_and_answered(self):
        window = self.open()
        window.choose("File", "Exit")
        self.assertEqual(window.box_text("Folioweld"), ["Do you want to leave Folioweld?"])
        window.press_in(window.dialog("Folioweld"), "No")
        window.wait_no_dialog()
        window.choose("File", "Exit")
        window.press_in(window.dialog("Folioweld"), "Yes")
        window.wait_end()

    def test_the_viewer_is_asked_to_end_where_its_windows_cannot_be(self):
        self.store(DisplayOutputAfterMerge=1)
        self.with_viewer("exec sleep 1000")
        window = self.open()
        window.fill(LETTER, output=self.joined)
        window.click(GO)
        window.wait_enabled(CLOSE_VIEWER)
        (viewer, _state), = children_of(window.process.pid)
        command = Path("/proc", str(viewer), "cmdline")
        self.wait(lambda: b"sleep" in command.read_bytes(), lambda: f"the viewer runs; {command.read_bytes()} does")
        window.click(CLOSE_VIEWER)
        window.wait_enabled(EXIT)
        self.wait(lambda: not children_of(window.process.pid), "the viewer has ended and is collected")

    def test_the_session_may_end_it(self):
        window = self.open()
        os.kill(window.process.pid, signal.SIGTERM)
        window.wait_end()


class Looks(WaylandTest):
    """On an output whose own scale is 1."""

    def check(self, factor, face=lambda colour: True):
        """Shown, filled, whole, and below the buttons of a colour that is such a face."""
        self.store(DisplayOutputAfterMerge=0, MenuShowLogWindow=0)
        self.environment["QT_SCALE_FACTOR"] = str(factor)
        window = self.open()
        self.wait_shown(factor * self.scale)
        window.fill(LETTER, REPORT, self.folder / "joined.pdf")
        self.wait(lambda: not faults(window.main), lambda: f"no faults in the layout; {faults(window.main)}")
        self.wait_shown(factor * self.scale, face)

    def wait_shown(self, scale, face=lambda colour: True):
        def shown():
            rows = self.desktop.picture()
            left, top, width, height = drawn(rows) or (0, 0, 0, 0)
            colour = pixel(rows, left + width // 2, top + height - int(8 * scale))
            seen.append((width, height, colour))
            return (0 <= width - WIDTH * scale <= FRAME * scale and 0 <= height - HEIGHT * scale <= FRAME * scale
                    and face(colour))

        seen = []
        self.wait(shown, lambda: f"the window is shown at scale {scale}; its sizes and colours were {seen}")

    def test_at_scale_1(self):
        self.check(1, lambda colour: min(colour) > 200)

    def test_at_scale_1_and_a_half(self):
        self.check(1.5)

    def test_at_scale_2(self):
        self.check(2)

    def test_in_a_dark_palette(self):
        make_dark(self.environment)
        self.check(1, lambda colour: colour == DARK_WINDOW)


class LooksOnAFineScreen(Looks):
    """On an output with twice as many pixels, where the factor of the toolkit comes on top."""

    scale = 2


if __name__ == "__main__":
    main()
