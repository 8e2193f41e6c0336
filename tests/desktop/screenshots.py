#!/usr/bin/env python3
"""screenshots.py FOLDER: takes the pictures of the window in all its states, scales and palettes.

Only the keyboard is used, for the mouse would have to know the scale.
"""

import shutil
import subprocess
import sys
from pathlib import Path

from accessible import AccessibilityBus
from desktop import Desktop, wait_for
from documents import LETTER, REPORT, fill_folder, fill_with_bookmarks, write_in_two_subsections, write_large
from drag import DragSource
from palette import make_dark
from screen import Screen
from window import CHOOSE, CHOOSE_OUTPUT, CLOSE_VIEWER, FIRST, GO, OUTPUT, PROGRAMS, SORTING, TITLE, Window, select

# Shown in the pictures, hence short and the same on every machine.
DOCUMENTS, TEMPORARY = Path("/tmp/folioweld"), Path("/tmp")


class Photographer:
    """Takes the pictures of one look."""

    def __init__(self, desktop, screen, bus, folder, scale, palette):
        self.desktop, self.screen, self.bus, self.folder = desktop, screen, bus, folder
        self.scale, self.palette, self.look = scale, palette, f"{palette}-{scale}"
        self.homes = 0

    def open(self, log=False, slow_disk=False, viewer=False, arguments=()):
        self.homes += 1
        environment = self.desktop.home(f"{self.look}-{self.homes}")
        environment["QT_SCALE_FACTOR"] = str(self.scale)
        config = Path(environment["XDG_CONFIG_HOME"])
        (config / "folioweld").mkdir()
        (config / "folioweld" / "settings.ini").write_text(
            f"[Settings]\nMenuShowLogWindow={int(log)}\nMergeTmpDir={TEMPORARY}/\n")
        if self.palette == "dark":
            make_dark(environment)
        if viewer:
            self.choose_viewer(environment)
        return Window(self.desktop, self.screen, self.bus, environment, arguments,
                      slow_disk=slow_disk).wait_until_ready()

    def choose_viewer(self, environment):
        """A viewer that runs and shows nothing."""
        script = Path(environment["HOME"]) / "viewer"
        script.write_text("#!/bin/sh\nexec sleep 1000\n")
        script.chmod(0o755)
        applications = Path(environment["XDG_DATA_HOME"]) / "applications"
        applications.mkdir()
        (applications / "viewer.desktop").write_text(
            f"[Desktop Entry]\nType=Application\nName=Viewer\nMimeType=application/pdf;\nExec={script} %f\n")
        (Path(environment["XDG_CONFIG_HOME"]) / "mimeapps.list").write_text(
            "[Default Applications]\napplication/pdf=viewer.desktop\n")

    def press_on(self, window, name):
        while window.focused() != name:
            before = window.focused()
            self.screen.press("Tab")
            wait_for(lambda: window.focused() not in (None, before), f"the keyboard leaves {before}")
        self.screen.press("Space")

    def fill(self, window, *paths):
        for place, path in enumerate(paths):
            self.press_on(window, select(place))
            window.answer_file(CHOOSE[place], path)
            window.wait_path(place, path)
        window.wait_active(TITLE)
        wait_for(window.focused, "the window has the keyboard")

    def save(self, name, *windows):
        """Waits until the windows with their frames look the same twice, then keeps that."""
        self.screen.move(1, 1)
        edges = [self.screen.framed(window) for window in windows]
        left, top = min(edge[0] for edge in edges), min(edge[1] for edge in edges)
        right, bottom = max(edge[0] + edge[2] for edge in edges), max(edge[1] + edge[3] for edge in edges)
        place = (left, top, right - left, bottom - top)
        pictures = []

        def settled():
            pictures.append(self.screen.pixels(place))
            return len(pictures) > 8 and all(picture == pictures[-1] for picture in pictures[-8:])

        if not name.endswith("running"):
            wait_for(settled, "the picture stays the same")
        self.screen.save_picture(place, self.folder / f"{name}-{self.look}.png")

    def open_menu(self, window, number, shown):
        self.screen.press("F10")
        wait_for(lambda: window.focused() == "File", "the menu bar has the keyboard")
        for key in ["Right"] * number + ["Down"]:
            self.screen.press(key)
        wait_for(lambda: "showing" in window.menu_item(*shown).states, f"the menu of {shown} is open")

    def all(self):
        for made in DOCUMENTS.glob("joined*"):
            made.unlink()
        self.joining()
        self.menus()
        self.refusal()
        self.prepared()
        self.bookmarks()
        self.running()
        self.viewing()
        self.folder_merge()

    def menus(self):
        for number, (name, shown) in enumerate((("file", ("File", "Exit")),
                                                ("options", ("Options", "Select TMP directory")))):
            window = self.open(viewer=True)
            self.open_menu(window, number, shown)
            self.save("menu-" + name, window.main_window())
            window.close()

    def refusal(self):
        window = self.open(log=True)
        self.fill(window, DOCUMENTS / "form.pdf", DOCUMENTS / "report.pdf", DOCUMENTS / "joined-form.pdf")
        self.press_on(window, GO)
        wait_for(lambda: "The merge failed" in window.log_text(), "the log says why the merge failed")
        wait_for(lambda: window.is_enabled(select(FIRST)), "the merge has ended")
        self.save("refusal", window.main_window(), window.log_window())
        window.close()

    def prepared(self):
        window = self.open(log=True, arguments=["--prepare"])
        self.fill(window, DOCUMENTS / "form.pdf", DOCUMENTS / "report.pdf", DOCUMENTS / "joined-prepared.pdf")
        self.press_on(window, GO)
        window.wait_finished()
        wait_for(lambda: " Kill " in window.log_text(), "the log tells of the clean-up")
        self.save("prepared", window.main_window(), window.log_window())
        window.close()

    def bookmarks(self):
        """Of what was carried over, as a viewer lists them."""
        joined, sources = DOCUMENTS / "joined-bookmarks.pdf", DOCUMENTS / "with bookmarks"
        names = [str(path) for path in sorted(sources.iterdir())]
        self.homes += 1
        environment = self.desktop.home(f"{self.look}-{self.homes}")
        subprocess.run([str(PROGRAMS / "folioweld"), "--prepare", "--carry", str(joined), *names], env=environment, check=True)
        viewer = self.desktop.start(["zathura", str(joined)], environment)
        try:
            shown = wait_for(lambda: self.screen.windows_of(viewer.pid), "the viewer's window")[0]
            wait_for(lambda: joined.name in self.screen.title(shown), "the viewer has read the document")
            wait_for(lambda: self.screen.active() == shown, "the viewer is active")
            # The list, with every entry open.
            self.screen.press("Tab")
            self.screen.type("L")
            self.save("bookmarks", shown)
        finally:
            viewer.kill()
            viewer.wait()

    def viewing(self):
        window = self.open(viewer=True)
        self.fill(window, DOCUMENTS / "letter.pdf", DOCUMENTS / "report.pdf", DOCUMENTS / "joined-shown.pdf")
        self.press_on(window, GO)
        window.wait_enabled(CLOSE_VIEWER)
        self.save("window-viewing", window.main_window())
        window.close()

    def joining(self):
        window = self.open()
        self.save("window-empty", window.main_window())
        self.fill(window, DOCUMENTS / "letter.pdf", DOCUMENTS / "report.pdf", DOCUMENTS / "joined.pdf")
        self.save("window-ready", window.main_window())
        self.press_on(window, GO)
        window.wait_finished()
        self.save("window-finished", window.main_window())
        window.close()

    def running(self):
        window = self.open(slow_disk=True)
        self.fill(window, DOCUMENTS / "large-1.pdf", DOCUMENTS / "large-2.pdf", DOCUMENTS / "joined-large.pdf")
        self.press_on(window, GO)
        window.wait_running()
        wait_for(lambda: window.status(OUTPUT), "the output is being written")
        self.save("window-running", window.main_window())
        window.close()

    def folder_merge(self):
        window = self.open(log=True)
        with DragSource(self.desktop, self.screen, self.desktop.environment, DOCUMENTS / "to join") as source:
            source.drop_on(self.screen.outline(window.main_window()))
            window.dialog(SORTING)
            self.screen.hide(source.window())
            self.save("sorting-options", self.screen.active())
            window.close_dialog(SORTING, "Enter")
            window.answer_file(CHOOSE_OUTPUT, DOCUMENTS / "joined-folder.pdf")
            wait_for(lambda: " Kill " in window.log_text(), "the log tells of the clean-up")
            wait_for(lambda: window.is_enabled(select(FIRST)), "the folder is joined")
        window.wait_active(TITLE)
        self.save("log-window", window.main_window(), window.log_window())
        window.close()
        wait_for(lambda: not self.screen.managed(), "every window is gone")


def main():
    folder = Path(sys.argv[1])
    DOCUMENTS.mkdir()
    try:
        shutil.copy(LETTER, DOCUMENTS / "letter.pdf")
        shutil.copy(REPORT, DOCUMENTS / "report.pdf")
        for number in (1, 2):
            write_large(DOCUMENTS / f"large-{number}.pdf", 900)
        write_in_two_subsections(DOCUMENTS / "form.pdf", LETTER)
        fill_folder(DOCUMENTS / "to join")
        fill_with_bookmarks(DOCUMENTS / "with bookmarks")
        desktop = Desktop("3200x2400x24")
        try:
            screen = Screen(desktop.display)
            wait_for(screen.has_window_manager, "the window manager")
            bus = AccessibilityBus(desktop.environment["DBUS_SESSION_BUS_ADDRESS"])
            for palette in ("light", "dark"):
                for scale in (1, 1.5, 2):
                    Photographer(desktop, screen, bus, folder, scale, palette).all()
        finally:
            desktop.close()
    finally:
        shutil.rmtree(DOCUMENTS)


if __name__ == "__main__":
    main()
