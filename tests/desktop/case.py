"""What the test programs share: one desktop a program, one home a test."""

import sys
import unittest
from pathlib import Path

from accessible import AccessibilityBus, Gone
from desktop import SCREEN, Desktop, wait_for
from layout import faults
from screen import Screen
from window import TITLE, Window


class DesktopTest(unittest.TestCase):
    tests = 0
    screen_size = SCREEN

    @classmethod
    def setUpClass(cls):
        cls.desktop = Desktop(cls.screen_size)
        cls.addClassCleanup(cls.desktop.close)
        cls.screen = Screen(cls.desktop.display)
        cls.addClassCleanup(cls.screen.close)
        wait_for(cls.screen.has_window_manager, "the window manager")
        cls.bus = AccessibilityBus(cls.desktop.environment["DBUS_SESSION_BUS_ADDRESS"])
        cls.addClassCleanup(cls.bus.close)

    def setUp(self):
        # Short names, so that the window shows the paths of the documents whole.
        DesktopTest.tests += 1
        home = str(DesktopTest.tests)
        self.environment = self.desktop.home(home)
        self.folder = self.desktop.folder / home / "documents"
        self.folder.mkdir()
        self.windows = []

    def tearDown(self):
        if self._failed():
            self._tell()
        for window in self.windows:
            window.close()
        wait_for(lambda: not self.screen.managed(), "every window of the test is gone")

    def open(self, *arguments, ready=True, kind=Window, **more):
        """The program, started; its window ready to be used unless told otherwise."""
        window = kind(self.desktop, self.screen, self.bus, self.environment, arguments, **more)
        self.windows.append(window)
        if ready:
            window.wait_until_ready()
        return window

    def wait(self, condition, what):
        return wait_for(condition, what)

    def wait_faultless(self, window):
        """Every control of the window has its place to itself."""
        self.wait(lambda: not faults(window.main), lambda: f"no faults in the layout; {faults(window.main)}")

    def with_viewer(self, command):
        """A desktop that shows PDF documents with this command line of a desktop file."""
        words = " ".join(word if word.startswith("%") else f'"{word}"' for word in map(str, command))
        applications = Path(self.environment["XDG_DATA_HOME"]) / "applications"
        applications.mkdir(exist_ok=True)
        (applications / "viewer.desktop").write_text(
            "[Desktop Entry]\nType=Application\nName=Viewer\nMimeType=application/pdf;\n" f"Exec={words}\n")
        self.choose_viewer("viewer.desktop")

    def choose_viewer(self, desktop_file):
        (Path(self.environment["XDG_CONFIG_HOME"]) / "mimeapps.list").write_text(
            f"[Default Applications]\napplication/pdf={desktop_file}\n")

    def _failed(self):
        result = self._outcome.result
        return any(getattr(test, "test_case", test) is self for test, _ in result.failures + result.errors)

    def _tell(self):
        """What the screen was like when the test failed."""
        print(f"--- {self.id()}: the windows\n{self.screen.describe()}", file=sys.stderr)
        for window in self.windows:
            try:
                print(f"--- {self.id()}: {TITLE}\n{window.root.dump()}\n{window.errors()}", file=sys.stderr)
            except (AssertionError, Gone) as error:
                print(f"--- {self.id()}: {error}", file=sys.stderr)


def main():
    unittest.main(verbosity=2)
