"""The window used as assistive tools use it: by the actions and the editable texts of the accessibility tree.

That needs neither mouse nor keyboard, and no knowledge of the scale at which the window is shown.
"""

from pathlib import Path

from gi.repository import Gio, GLib

from desktop import wait_for
from window import Window

BUTTONS = ("Open", "Save", "Choose")


class ActingWindow(Window):
    def wait_until_ready(self):
        wait_for(lambda: self._main_node() is not None and "showing" in self.main.states,
                 lambda: "the window appears; " + self.errors())
        if self.screen:
            wait_for(self.main_window, "the window manager has taken the window over")
        return self

    def wait_active(self, title):
        """No keyboard is used, so it may be anywhere."""

    def click_node(self, node, what):
        # The answer comes after a dialog that this opens was answered.
        node.bus.call(node.owner, node.path, "org.a11y.atspi.Action", "DoAction", GLib.Variant("(i)", (0,)), None,
                      Gio.DBusCallFlags.NO_AUTO_START, -1, None, lambda *_: None)
        node.bus.flush_sync(None)

    def choose(self, *captions):
        """Does what a menu item does; the menus on the way stay closed."""
        node = self._menu_bar()
        for caption in captions:
            inside = node
            node = wait_for(lambda: inside.find("menu item", caption, states=("enabled",)),
                            f"the menu item {caption!r} of {captions}")
        self.click_node(node, captions)

    def answer_file(self, title, path, key=None):
        dialog = self.dialog(title)
        field = wait_for(lambda: dialog.find("text", states=("editable", "showing")), "the field for the name")
        field.call("EditableText", "SetTextContents", GLib.Variant("(s)", (str(path),)))
        # A file that the dialog has found is marked in its list, and then the field holds the bare name.
        wait_for(lambda: field.text in (str(path), Path(path).name),
                 lambda: f"{path} is in the field; there is {field.text!r}")
        button = wait_for(lambda: dialog.find("push button", lambda name: name.replace("&", "") in BUTTONS,
                                              ("enabled",)), f"{title!r} can be answered")
        self.click_node(button, path)
        wait_for(lambda: dialog not in [seen.node for seen in self.dialogs()], f"{title!r} is answered with {path}")
