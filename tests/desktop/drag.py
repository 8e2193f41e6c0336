"""Drags files from another program, with the mouse, as a file manager's user does."""

import os
from pathlib import Path

from desktop import wait_for

PROGRAM = Path(os.environ.get("FOLIOWELD_DRAG_SOURCE", "drag_source"))


class DragSource:
    """A window of another program whose content can be dragged away."""

    def __init__(self, desktop, screen, environment, *items, text=False, back=False):
        self._screen = screen
        self._told = open(Path(environment["TMPDIR"]).parent / "drag-source", "w+b")
        words = ["--text"] * text + ["--back"] * back + [os.fsencode(item) for item in items]
        self._process = desktop.start([PROGRAM, *words], environment, stdout=self._told)
        self._place = wait_for(self._outline, "the window to drag from")

    def __enter__(self):
        return self

    def __exit__(self, *_error):
        self._process.kill()
        self._process.wait()
        # The window manager has given the keyboard to another window by then.
        wait_for(lambda: not self.window(), "the window to drag from is gone")
        self._told.close()

    def window(self):
        windows = self._screen.windows_of(self._process.pid)
        return windows[0] if windows else 0

    def _outline(self):
        return self.window() and self._screen.outline(self.window())

    def told(self):
        self._told.seek(0)
        return self._told.read().decode().split("\n")[:-1]

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
        wait_for(lambda: self.answer() == answer, lambda: f"the answer {answer}; told: {self.told()}")

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
