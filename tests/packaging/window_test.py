#!/usr/bin/env python3
"""The window of an installation that was put somewhere else than it was built for, as the desktop sees it."""

import shutil
import sys
import tempfile
from pathlib import Path

from project import ID, ROOT, VERSION, forget_installation, install

sys.path.insert(0, str(ROOT / "tests" / "desktop"))
import window as window_module  # noqa: E402
from case import DesktopTest, main  # noqa: E402
from Xlib import X  # noqa: E402
from Xlib.display import Display  # noqa: E402


class InstalledWindow(DesktopTest):
    @classmethod
    def setUpClass(cls):
        folder = Path(tempfile.mkdtemp(prefix="folioweld-packaging-"))
        cls.addClassCleanup(shutil.rmtree, folder)
        cls.addClassCleanup(forget_installation)
        install(prefix=folder / "first place")
        cls.prefix = folder / "second place"
        (folder / "first place").rename(cls.prefix)
        super().setUpClass()
        cls.display = Display(cls.desktop.display)
        cls.addClassCleanup(cls.display.close)

    def setUp(self):
        super().setUp()
        built = window_module.PROGRAMS
        self.addCleanup(setattr, window_module, "PROGRAMS", built)
        window_module.PROGRAMS = self.prefix / "bin"
        self.window = self.open(program="folioweld")

    def property(self, name):
        window = self.display.create_resource_object("window", self.window.main_window())
        return window.get_full_property(self.display.intern_atom(name), X.AnyPropertyType)

    def test_is_the_one_of_the_installation(self):
        program = Path(f"/proc/{self.window.process.pid}/exe").readlink()
        self.assertEqual(program, self.prefix / "libexec/folioweld/folioweld-window")

    def test_tells_the_version_in_its_title_and_its_about_box(self):
        self.assertEqual(self.screen.title(self.window.main_window()), f"Folioweld (version {VERSION})")
        self.window.choose("About", "Folioweld")
        self.assertIn(f"version # {VERSION}", self.window.box_text("Folioweld"))

    def test_has_the_class_that_the_desktop_entry_names(self):
        name, group, _ = self.property("WM_CLASS").value.decode().split("\0")
        entry = (self.prefix / f"share/applications/{ID}.desktop").read_text()
        self.assertIn(f"StartupWMClass={group}\n", entry)
        self.assertEqual(name, "folioweld-window")

    def test_carries_its_icon_in_the_usual_sizes(self):
        numbers = self.property("_NET_WM_ICON").value
        sizes, place = [], 0
        while place < len(numbers):
            width, height = numbers[place], numbers[place + 1]
            self.assertTrue(any(numbers[place + 2:place + 2 + width * height]), "an empty picture")
            sizes.append((width, height))
            place += 2 + width * height
        self.assertEqual(sorted(sizes), [(size, size) for size in (16, 24, 32, 48, 64, 128)])


if __name__ == "__main__":
    main()
