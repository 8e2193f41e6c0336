"""The program as a person finds it: its controls by the names that a screen reader tells."""

import os
import subprocess
import time
from pathlib import Path

from accessible import Gone
from desktop import children_of, wait_for

ROOT = Path(__file__).resolve().parents[2]
PROGRAMS = Path(os.environ.get("FOLIOWELD_PROGRAMS", ROOT / "build" / "dev" / "app"))
SLOW_DISK = os.environ.get("FOLIOWELD_SLOW_DISK", "")

FIRST, SECOND, OUTPUT = range(3)
PLACES = ("1st input file", "2nd input file", "output file")
FRAMES = ("1st input file ", "2nd input file", "Output (result) file")
TITLE = "Folioweld (version " + (ROOT / "VERSION").read_text().strip() + ")"
SWAP, GO, EXIT = "Swap the two input files", "Go! (launch PDF merge)", "Exit"
ABORT, CLOSE_VIEWER = "CANCEL (abort)", "Close display window"
CHOOSE = tuple(f"Folioweld - Please choose {asked} file" for asked in ("1st input", "2nd input", "output"))
CHOOSE_FOLDER, CHOOSE_OUTPUT = "Folioweld: Choose FOLDER TO MERGE", "Folioweld: Choose the OUTPUT FILE"
CHOOSE_TMP = "Folioweld: Choose FOLDER FOR TEMPORARY FILES"
MERGE_FOLDER = "Merge all PDF in a Directory"
SORTING = "Directory merge sorting option"
LOG = "Folioweld - Log"

_DIALOGS = ("dialog", "alert", "alert message", "file chooser")


def select(place):
    return "Select... " + PLACES[place]


def clear(place):
    return "Clear " + PLACES[place]


class Ended(AssertionError):
    """The program has ended, so that whoever waits for something of its window waits in vain."""


class Window:
    """One run of the program with a home of its own."""

    def __init__(self, desktop, screen, bus, environment, arguments=(), program="folioweld-window", folder=None,
                 slow_disk=False):
        self.screen, self._bus = screen, bus
        self._slowed = Path(environment["TMPDIR"]).parent / "slowed" if slow_disk else None
        slowly = {"LD_PRELOAD": SLOW_DISK, "FOLIOWELD_SLOWED": str(self._slowed)}
        self.environment = dict(environment, **slowly) if slow_disk else environment
        self._errors = Path(environment["TMPDIR"]).parent / "stderr"
        # Not kept open: the program would write where this side has last read.
        with open(self._errors, "wb") as errors:
            self.process = desktop.start([PROGRAMS / program, *arguments], self.environment, stderr=errors,
                                         cwd=folder or environment["HOME"])
        self._root = None
        self._pings = 0

    def close(self):
        if self.process.poll() is None:
            self.process.kill()
        self.process.wait()
        if self._slowed and not self._slowed.exists():
            raise AssertionError("no write was slow, and the test is about a slow disk")

    def errors(self):
        return self._errors.read_bytes().decode(errors="replace")

    def wait_until_ready(self):
        """The window is on the screen, in its final place, and has the keyboard."""
        wait_for(lambda: self._main_node() is not None, lambda: "the window appears; " + self.errors())
        self.wait_active(TITLE)
        # Clicks and drops go where it says that its controls are.
        wait_for(self._knows_its_place, lambda: f"the window knows its place, and not {self.main.extents}; windows:\n"
                 + self.screen.describe())
        self._wait_settled(lambda: self.main.extents)
        return self

    def _knows_its_place(self):
        scale = float(self.environment.get("QT_SCALE_FACTOR", 1))
        place = self.screen.outline(self.main_window())
        return place and all(abs(told * scale - seen) <= scale for told, seen in zip(self.main.extents, place))

    # The tree.

    @property
    def root(self):
        if self._root is None:
            self._root = wait_for(self._application, "the program shows its controls to a screen reader")
        return self._root

    def _application(self):
        self._expect_running()
        return self._bus.application(self.process.pid)

    def _expect_running(self):
        if not self.runs():
            raise Ended(f"the program ended with {self.process.returncode}: {self.errors()}")

    def _main_node(self):
        try:
            return next((node for node in self.root.children if (node.role, node.name) == ("frame", TITLE)), None)
        except Gone:
            self._expect_running()
            return None

    @property
    def main(self):
        return wait_for(self._main_node, "the main window")

    def control(self, name, role="push button"):
        return wait_for(lambda: self.main.find(role, name, without=("menu bar",)), f"a {role} {name!r}")

    def is_enabled(self, name):
        return self.main.find("push button", name, ("enabled",), ("menu bar",)) is not None

    def enabled_buttons(self):
        return {seen.name for seen in self.main.see_all("push button", states=("enabled",))}

    def focused(self):
        """The name of what has the keyboard."""
        # A menu and what holds it have the keyboard together; the innermost one is meant.
        found = self.root.see_all(states=("focused",))
        return found[-1].name if found else None

    def default_button(self):
        button = self.main.see("push button", states=("default",), without=("menu bar",))
        return button.name if button else None

    def _label(self, purpose):
        label = self.main.see("label", lambda name: name.split(":")[0] == purpose, without=("menu bar",))
        return label.name.partition(": ")[2] if label else None

    def path(self, place):
        return self._label("Name of the " + PLACES[place])

    def paths(self):
        return [self.path(place) for place in range(3)]

    def status(self, place):
        return self._label("Status of the " + PLACES[place])

    def frame_of(self, place):
        return self.control(FRAMES[place], "panel")

    def wait_path(self, place, path):
        wait_for(lambda: self.path(place) == str(path),
                 lambda: f"{path} in the place of the {PLACES[place]}, which shows {self.path(place)!r}")

    # The mouse.

    def click(self, name):
        self.click_node(self.wait_enabled(name), name)

    def wait_enabled(self, name):
        wait_for(lambda: self.is_enabled(name), lambda: f"{name!r} can be pressed; now: {self.enabled_buttons()}")
        return self.control(name)

    def click_node(self, node, what):
        self.screen.click(self._wait_settled(lambda: node.extents, what))

    def _wait_settled(self, extents, what="the window"):
        """A place on the screen once it stays the same from one question to the next."""
        last = []

        def settled():
            try:
                last.append(extents())
            except Gone:
                self._expect_running()
                last.clear()
            return len(last) > 2 and last[-1] == last[-2] == last[-3] and last[-1][2] > 0 and last[-1]

        return wait_for(settled, f"a place on the screen for {what}")

    # The menus.

    def choose(self, *captions):
        """Clicks a menu and its items, one after the other."""
        where = self._menu_bar()
        for caption in captions:
            node = wait_for(lambda: where.find("menu item", caption, states=("showing", "enabled")),
                            f"the menu item {caption!r} of {captions} opens")
            self.click_node(node, caption)
            where = node

    def _menu_bar(self):
        return wait_for(lambda: self.main.find("menu bar"), "the menu bar")

    def menu_item(self, *captions):
        node = self._menu_bar()
        for caption in captions:
            inside = node
            node = wait_for(lambda: inside.find("menu item", caption), f"the menu item {caption!r}")
        return node

    def is_checked(self, *captions):
        return "checked" in self.menu_item(*captions).states

    # Dialogs and windows.

    def dialogs(self):
        """The open ones, as the tree tells them: object, role, name and states."""
        found = self.root.snapshot(without=("menu bar", "label", "panel", "text", "push button") + _DIALOGS)
        return [seen for seen in found if seen.role in _DIALOGS and "showing" in seen.states]

    def dialog(self, title, role=None):
        """An open dialog that has the keyboard."""
        def found():
            return next((seen.node for seen in self.dialogs() if seen.name == title and role in (None, seen.role)), None)

        node = wait_for(found, lambda: f"a dialog {title!r}; open are {self.dialogs()}")
        self.wait_active(title)
        return node

    def close_dialog(self, title, key):
        """Answers a dialog with a key that closes it."""
        dialog = self.dialog(title)
        shown = self.screen.active()
        self.screen.press(key)

        def closed():
            try:
                return "showing" not in dialog.states
            except Gone:
                return True

        wait_for(closed, lambda: f"{title!r} closes on {key}; windows:\n{self.screen.describe()}")
        self._wait_off_the_screen(shown, title)

    def _wait_off_the_screen(self, shown, title):
        """The frame of a window takes clicks until the window manager has noticed that the window is gone."""
        wait_for(lambda: shown not in self.screen.managed(), f"{title!r} leaves the screen")

    def wait_no_dialog(self):
        wait_for(lambda: not self.dialogs(), "the dialog closes")
        self.wait_active(TITLE)

    def wait_active(self, title):
        wait_for(lambda: any(self.screen.title(window) == title and self.screen.has_keyboard(window)
                             for window in self.windows()),
                 lambda: f"{title!r} has the keyboard; windows:\n{self.screen.describe()}")

    def answer_file(self, title, path, key="Enter"):
        """Types a name into a file dialog."""
        dialog = self.dialog(title)
        shown = self.screen.active()
        field = wait_for(lambda: dialog.find("text", states=("focused", "editable")), "the field for the name")
        # The list of completions takes the entry under the pointer for chosen, wherever it opens.
        self.screen.move(1, 1)

        # Qt's dialog may put the name that it has found so far into the field, also while more is typed, and the
        # list of completions keeps Enter to itself. Then a person does it again.
        def answered():
            self.screen.press("Ctrl+a")
            self.screen.type(str(path))
            self.wait_handled()
            try:
                if field.text != str(path):
                    return False
                self.screen.press(key)
                self.wait_handled()
                return "showing" not in dialog.states or any(seen.node != dialog for seen in self.dialogs())
            except Gone:
                return True

        wait_for(answered, f"{title!r} is answered with {path}")
        if not any(seen.node == dialog for seen in self.dialogs()):
            self._wait_off_the_screen(shown, title)

    def wait_handled(self):
        """The program has handled every key and every click that came before."""
        first = self._pings + 1

        def answered():
            # A dialog may be gone before it is asked.
            window = self.main_window() or next(iter(self.windows()), 0)
            if window:
                self._pings += 1
                self.screen.ping(window, self._pings)
            return not self.runs() or self.screen.answered(first)

        wait_for(answered, "the program answers")
        # It answers when it takes its events from the server, and handles them before it answers this.
        if self.runs():
            self.root.snapshot(without=("application",))

    def box_text(self, title):
        """What a message box says, line by line, without the places where a long word may be broken."""
        box = self.dialog(title)
        texts = [seen.name.replace("\u200b", "") for seen in box.see_all("label") if seen.name]
        return "\n".join(texts).strip("\n").split("\n")

    def press_in(self, dialog, caption):
        node = wait_for(lambda: dialog.find(name=lambda name: name.replace("&", "") == caption,
                                            states=("showing", "enabled")), f"{caption!r} in the dialog")
        self.click_node(node, caption)

    def windows(self):
        return self.screen.windows_of(self.process.pid)

    def main_window(self):
        return next((window for window in self.windows() if self.screen.title(window) == TITLE), 0)

    def log_window(self):
        return next((window for window in self.windows() if self.screen.title(window) == LOG), 0)

    def log_text(self):
        return wait_for(lambda: self.root.find("text", "Activity log"), "the text of the log").text

    # What a person does to get something done.

    def fill(self, first=None, second=None, output=None):
        """Chooses files in the dialogs."""
        for place, path in enumerate((first, second, output)):
            if path is not None:
                self.click(select(place))
                self.answer_file(CHOOSE[place], path)
                self.wait_path(place, path)
                self.wait_active(TITLE)

    def merge_folder(self, folder, output):
        """Chooses a folder and its output in the menu."""
        self.choose("File", MERGE_FOLDER)
        self.answer_file(CHOOSE_FOLDER, folder)
        self.answer_file(CHOOSE_OUTPUT, output)

    def wait_finished(self):
        """A merge that went well has ended."""
        wait_for(lambda: "-> OK" in (self.status(OUTPUT) or "") and self.is_enabled(GO),
                 lambda: f"the merge ends well; {self.status(OUTPUT)!r}")

    def wait_running(self):
        wait_for(lambda: self.is_enabled(ABORT), "the merge runs")

    # The process.

    def wait_end(self, status=0):
        wait_for(lambda: self.process.poll() is not None, "the program ends")
        if self.process.returncode != status:
            raise AssertionError(f"ended with {self.process.returncode} instead of {status}: {self.errors()}")

    def leave(self, press_exit):
        """Presses until the program ends: right after a job, presses do not count as "Exit" yet."""
        last = None

        def ended():
            nonlocal last
            if last is None or time.monotonic() - last > 2:
                try:
                    press_exit()
                except Ended:
                    # The press before did it.
                    pass
                last = time.monotonic()
            return not self.runs()

        wait_for(ended, "the program ends")
        self.wait_end()

    def runs(self):
        return self.process.poll() is None

    def children(self):
        return children_of(self.process.pid)

    def settings(self):
        file = Path(self.environment["XDG_CONFIG_HOME"]) / "folioweld" / "settings.ini"
        try:
            text = file.read_text()
        except FileNotFoundError:
            return {}
        pairs = (line.partition("=") for line in text.splitlines() if "=" in line)
        return {key.strip(): value.strip().strip('"') for key, _, value in pairs}


def pages(path):
    """How many pages an independent reader finds; it also finds no fault in the file."""
    subprocess.run(["qpdf", "--check", str(path)], check=True, stdout=subprocess.DEVNULL)
    return int(subprocess.run(["qpdf", "--show-npages", str(path)], check=True, capture_output=True).stdout)
