#!/usr/bin/env python3
"""The window and its log on small screens, at larger scales and with larger letters."""

from pathlib import Path

from case import DesktopTest, main
from documents import LETTER
from window import CHOOSE, FIRST, OUTPUT, select


def apart(one, other):
    return (one[0] + one[2] <= other[0] or other[0] + other[2] <= one[0] or one[1] + one[3] <= other[1] or
            other[1] + other[3] <= one[1])


class OnAScreen(DesktopTest):
    size = (1600, 1200)

    @classmethod
    def setUpClass(cls):
        cls.screen_size = "{}x{}x24".format(*cls.size)
        super().setUpClass()

    def with_letters(self, points):
        """A desktop whose letters have this size."""
        self.environment.update(XDG_CURRENT_DESKTOP="KDE", KDE_SESSION_VERSION="5")
        (Path(self.environment["XDG_CONFIG_HOME"]) / "kdeglobals").write_text(
            f"[General]\nfont=DejaVu Sans,{points},-1,5,50,0,0,0,0,0\nmenuFont=DejaVu Sans,{points},-1,5,50,0,0,0,0,0\n")

    def shown(self, scale=1):
        self.environment["QT_SCALE_FACTOR"] = str(scale)
        window = self.open()
        self.wait(window.log_window, "the log is shown")
        return window

    def settled(self, window):
        seen = []

        def same():
            seen.append(self.screen.framed(window))
            return len(seen) > 5 and all(place == seen[-1] for place in seen[-5:]) and seen[-1]

        return self.wait(same, "the window stays where it is")

    def wait_on_the_screen(self, window):
        def inside():
            left, top, width, height = self.settled(window)
            return left >= 0 and top >= 0 and left + width <= self.size[0] and top + height <= self.size[1]

        self.wait(inside, lambda: f"{window:#x} is on the screen as a whole; windows:\n{self.screen.describe()}")

    def check(self, room_for_both, scale=1):
        window = self.shown(scale)
        main_window, log = window.main_window(), window.log_window()
        self.wait_on_the_screen(main_window)
        self.wait_on_the_screen(log)
        if room_for_both:
            self.wait(lambda: apart(self.settled(main_window), self.settled(log)),
                      lambda: f"the log is beside the window; windows:\n{self.screen.describe()}")
        self.wait_faultless(window)
        return window


class Large(OnAScreen):
    def test_at_scale_1(self):
        self.check(True)

    def test_at_scale_1_and_a_half(self):
        self.check(True, 1.5)

    def test_at_scale_2(self):
        self.check(False, 2)

    def test_show_after_hide_puts_the_log_where_it_was(self):
        window = self.check(True)
        log = window.log_window()
        self.screen.ask_manager(log, "_NET_MOVERESIZE_WINDOW", 15 << 8 | 10, 30, 40, 500, 300)
        self.wait(lambda: self.screen.outline(log) == (30, 40, 500, 300),
                  lambda: f"the log is moved; it is at {self.screen.outline(log)}")
        place = self.settled(log)
        window.wait_handled()
        window.choose("Options", "Log window...", "Hide")
        self.wait(lambda: not window.log_window(), "the log is hidden")
        window.choose("Options", "Log window...", "Show")
        self.wait(window.log_window, "the log is shown")
        log = window.log_window()
        self.wait(lambda: self.settled(log) == place, lambda: f"the log is at {place}; it is at {self.settled(log)}")

    def test_show_brings_a_minimised_log_back(self):
        window = self.check(True)
        log = window.log_window()
        self.screen.ask_manager(log, "WM_CHANGE_STATE", 3)
        self.wait(lambda: "_NET_WM_STATE_HIDDEN" in self.screen.states(log), "the log is minimised")
        window.choose("Options", "Log window...", "Show")
        self.wait(lambda: "_NET_WM_STATE_HIDDEN" not in self.screen.states(log), "the log is back")

    def test_the_log_is_a_window_to_a_screen_reader(self):
        window = self.check(True)
        roles = lambda: [seen.role for seen in window.root.see_all(name="Folioweld - Log", without=("frame",))]
        self.wait(lambda: roles() == ["frame"], lambda: f"the log is a frame; it is {roles()}")


class Laptop(OnAScreen):
    size = (1366, 768)

    def test_the_log_is_beside_the_window(self):
        self.check(True)


class Small(OnAScreen):
    size = (800, 600)

    def test_the_window_and_the_log_fit(self):
        self.check(False)

    def test_they_fit_with_larger_letters(self):
        for points in (14, 18):
            with self.subTest(points=points):
                self.with_letters(points)
                window = self.check(False)
                window.close()
                self.wait(lambda: not self.screen.managed(), "the window is gone")


    def test_a_message_with_a_long_name_fits_with_larger_letters(self):
        document = self.folder / ("m" * 200 + ".pdf")
        document.write_bytes(LETTER.read_bytes())
        self.with_letters(18)
        window = self.shown()
        for place in (FIRST, OUTPUT):
            window.click(select(place))
            window.answer_file(CHOOSE[place], document)
        window.dialog("Folioweld")
        self.wait_on_the_screen(self.screen.active())


class Tiny(OnAScreen):
    size = (640, 480)

    def test_what_does_not_fit_is_scrolled_to(self):
        window = self.shown()
        self.wait_on_the_screen(window.main_window())
        self.wait(lambda: window.main.find("scroll bar", states=("showing",)), "a scroll bar")
        self.assertEqual(window.path(FIRST), "")


if __name__ == "__main__":
    main()
