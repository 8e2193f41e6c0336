"""The accessibility tree as a screen reader gets it: asked over the accessibility bus, nothing remembered."""

from typing import NamedTuple

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402

_PREFIX = "org.a11y.atspi."
_ROOT = "/org/a11y/atspi/accessible/root"
_NULL = "/org/a11y/atspi/null"
_CALL_MILLIS = 20000

STATES = {"active": 1, "checked": 4, "defunct": 6, "editable": 7, "enabled": 8, "expanded": 10,
          "focusable": 11, "focused": 12, "modal": 16, "pressed": 20, "selected": 23, "sensitive": 24,
          "showing": 25, "visible": 30, "default": 39}


class Seen(NamedTuple):
    """What an object said of itself."""

    node: "Node"
    role: str
    name: str
    states: set


class Gone(Exception):
    """The object that was asked is not there any more."""


class Node:
    """One object of the tree."""

    def __init__(self, bus, owner, path):
        self.bus, self.owner, self.path = bus, owner, path

    def __eq__(self, other):
        return isinstance(other, Node) and (self.owner, self.path) == (other.owner, other.path)

    def __hash__(self):
        return hash((self.owner, self.path))

    def __repr__(self):
        try:
            return f"<{self.role} {self.name!r}>"
        except Gone:
            return "<gone>"

    def call(self, interface, method, arguments=None):
        if not interface.startswith("org."):
            interface = _PREFIX + interface
        try:
            answer = self.bus.call_sync(self.owner, self.path, interface, method, arguments, None,
                                        Gio.DBusCallFlags.NO_AUTO_START, _CALL_MILLIS, None)
        except GLib.Error as error:
            raise Gone(f"{method}: {error.message}") from None
        return answer.unpack()

    def value(self, name):
        return self.call("org.freedesktop.DBus.Properties", "Get",
                         GLib.Variant("(ss)", (_PREFIX + "Accessible", name)))[0]

    @property
    def name(self):
        return self.value("Name")

    @property
    def description(self):
        return self.value("Description")

    @property
    def role(self):
        return self.call("Accessible", "GetRoleName")[0]

    @property
    def states(self):
        return _state_names(self.call("Accessible", "GetState")[0])

    @property
    def children(self):
        return [Node(self.bus, owner, path) for owner, path in self.call("Accessible", "GetChildren")[0]
                if path != _NULL]

    @property
    def extents(self):
        """Left, top, width and height on the screen."""
        return self.call("Component", "GetExtents", GLib.Variant("(u)", (0,)))[0]

    @property
    def text(self):
        return self.call("Text", "GetText", GLib.Variant("(ii)", (0, -1)))[0]

    def snapshot(self, without=()):
        """This object and everything below as it is now, parents first: objects with role, name and states.

        A whole level of the tree is asked about at once: a busy program answers many questions as fast as one.
        Below the roles named nothing is looked at.
        """
        told, below, level = {}, {}, [self]
        while level:
            answers = _ask_all(self.bus, [question for node in level for question in _questions(node)])
            for number, node in enumerate(level):
                role, name, states, children = answers[4 * number:4 * number + 4]
                if role is None or name is None or states is None:
                    continue
                told[node] = Seen(node, role[0], name[0], _state_names(states[0]))
                below[node] = [] if children is None or role[0] in without else [
                    Node(self.bus, owner, path) for owner, path in children[0] if path != _NULL]
            level = [child for node in level for child in below.get(node, [])]

        def in_order(node):
            if node in told:
                yield told[node]
                for child in below[node]:
                    yield from in_order(child)

        return list(in_order(self))

    def find(self, role=None, name=None, states=(), without=()):
        """The first object with these properties, None when there is none now."""
        seen = self.see(role, name, states, without)
        return seen.node if seen else None

    def see(self, role=None, name=None, states=(), without=()):
        """What that object said of itself when it was found: asked again, it may be gone or say something else."""
        return next(iter(self.see_all(role, name, states, without)), None)

    def see_all(self, role=None, name=None, states=(), without=()):
        def fits(seen):
            return ((role is None or seen.role == role) and set(states) <= seen.states and
                    (name is None or (name(seen.name) if callable(name) else seen.name == name)))

        return [seen for seen in self.snapshot(without) if fits(seen)]

    def dump(self, depth=0):
        try:
            lines = ["  " * depth + f"{self.role} {self.name!r} {' '.join(sorted(self.states))}"]
            for child in self.children:
                lines.append(child.dump(depth + 1))
            return "\n".join(lines)
        except Gone:
            return "  " * depth + "(gone)"


def _state_names(numbers):
    low, high = numbers
    bits = low | high << 32
    return {name for name, bit in STATES.items() if bits >> bit & 1}


def _questions(node):
    accessible = _PREFIX + "Accessible"
    name = GLib.Variant("(ss)", (accessible, "Name"))
    return ((node, accessible, "GetRoleName", None), (node, "org.freedesktop.DBus.Properties", "Get", name),
            (node, accessible, "GetState", None), (node, accessible, "GetChildren", None))


def _ask_all(bus, questions):
    """The answers to questions that are all on their way at once; None where there was no answer."""
    answers = [None] * len(questions)
    open_questions = set(range(len(questions)))

    def answered(_bus, result, number):
        open_questions.discard(number)
        try:
            answers[number] = bus.call_finish(result).unpack()
        except GLib.Error:
            pass

    for number, (node, interface, method, arguments) in enumerate(questions):
        bus.call(node.owner, node.path, interface, method, arguments, None, Gio.DBusCallFlags.NO_AUTO_START,
                 _CALL_MILLIS, None, answered, number)
    while open_questions:
        GLib.MainContext.default().iteration(True)
    return answers


class AccessibilityBus:
    def __init__(self, session_address):
        flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
        session = Gio.DBusConnection.new_for_address_sync(session_address, flags, None, None)
        address = session.call_sync("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress", None, None,
                                    Gio.DBusCallFlags.NONE, 60000, None).unpack()[0]
        session.close_sync(None)
        self._bus = Gio.DBusConnection.new_for_address_sync(address, flags, None, None)
        # The registry is there before the first program looks for it.
        self._bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                            "StartServiceByName", GLib.Variant("(su)", ("org.a11y.atspi.Registry", 0)), None,
                            Gio.DBusCallFlags.NONE, 60000, None)
        self.registry = Node(self._bus, "org.a11y.atspi.Registry", _ROOT)

    def application(self, process):
        """The root of a program's tree, None while it has none."""
        for node in self.registry.children:
            try:
                if self._process_of(node.owner) == process:
                    return node
            except (Gone, GLib.Error):
                continue
        return None

    def _process_of(self, owner):
        return self._bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                   "GetConnectionUnixProcessID", GLib.Variant("(s)", (owner,)), None,
                                   Gio.DBusCallFlags.NONE, _CALL_MILLIS, None).unpack()[0]

    def close(self):
        self._bus.close_sync(None)
