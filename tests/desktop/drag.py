"""Drags files from another program, with the mouse, as a file manager's user does."""

import os
from pathlib import Path

from desktop import wait_for

PROGRAM = Path(os.environ.get("FOLIOWELD_DRAG_SOURCE", "drag_source"))


class DragSource:
    """A window of another program whose content can be dragged away."""

    def __init__(self, desktop, screen, environment, *items, text=False, back=False):
        self._screen = screen
        self._told = Path(environment["TMPDIR"]).parent / "drag-source"
        words = ["--text"] * text + ["--back"] * back + [os.fsencode(item) for item in items]
        # Not kept open: the program would write where this side has last read.
        with open(self._told, "wb") as told:
            self._process = desktop.start([PROGRAM, *words], environment, stdout=told)
        self._place = wait_for(self._outline, "the window to drag from")

    def __enter__(self):
        return self

    def __exit__(self, *_error):
        self._process.kill()
        self._process.wait()
        # The window manager has given the keyboard to another window by then.
        wait_for(lambda: not self.window(), "the window to drag from is gone")

    def window(self):
        windows = self._screen.windows_of(self._process.pid)
        return windows[0] if windows else 0

    def _outline(self):
        window = self.window()
        return self._screen.outline(window) if self._screen.is_viewable(window) else None

    def told(self):
        return self._told.read_bytes().decode().split("\n")[:-1]

    def pick_up(self):
        self._screen.move_to(self._place)
        self._screen.press_button()
        # One move, which begins the drag. Were others still on their way when the pointer is over another program,
        # that would be entered, left and entered again at once; Qt takes the later position for the earlier one
        # then, leaves, and loses the drop.
        left, top, width, height = self._place
        self._screen.move(left + width // 4, top + height // 4)
        wait_for(lambda: "dragging" in self.told(), lambda: f"the drag begins; told: {self.told()}")

    def hover(self, place):
        """Moves over the middle of a rectangle."""
        self._screen.move_to(place)

    def answer(self):
        """What the program below would do with a drop."""
        said = [line for line in self.told() if line.startswith("over: ")]
        return said[-1].removeprefix("over: ") if said else None

    def wait_answer(self, answer):
        wait_for(lambda: self.answer() == answer,
                 lambda: f"the answer {answer}; told: {self.told()}; windows:\n{self._screen.describe()}")

    def let_go(self):
        """Releases the button, and stays until the other program has taken what it wants."""
        self._screen.release_button()
        wait_for(lambda: "finished" in self.told(), lambda: f"the drag ends; told: {self.told()}")

    def drop_on(self, place):
        """Drags onto the middle of a rectangle and lets go there once the program below would copy."""
        self.pick_up()
        self.hover(place)
        self.wait_answer("copy")
        self.let_go()

    def be_refused_on(self, place):
        """Lets go over a rectangle once the program below has said that it takes nothing. That is an answer after another
        one only for a source that takes its items back."""
        self.pick_up()
        self.hover(self._place)
        self.wait_answer("copy")
        self.hover(place)
        self.wait_answer("none")
        self.let_go()
