"""What a person does with mouse and keyboard, and what can be seen of the windows."""

import struct
import zlib

from Xlib import X, XK
from Xlib.display import Display
from Xlib.error import XError
from Xlib.ext import xtest
from Xlib.protocol import event

from desktop import wait_for

_KEYS = {"Enter": "Return", "Esc": "Escape", "Space": "space", "Ctrl": "Control_L", "Shift": "Shift_L",
         "Alt": "Alt_L", "PageDown": "Next"}
_SHIFTED = dict(zip('~!@#$%^&*()_+{}|:"<>?', "`1234567890-=[]\\;',./"))
_UNSHIFTED = dict(zip("`-=[]\\;',./ ", ("grave", "minus", "equal", "bracketleft", "bracketright", "backslash",
                                        "semicolon", "apostrophe", "comma", "period", "slash", "space")))


class Screen:
    def __init__(self, name):
        self._display = Display(name)
        self._root = self._display.screen().root
        self._display.xfixes_query_version()
        # Never shown; the window manager is asked about it.
        self._probe = self._root.create_window(0, 0, 1, 1, 0, X.CopyFromParent)

    def close(self):
        self._display.close()

    # The mouse.

    def move(self, x, y):
        xtest.fake_input(self._display, X.MotionNotify, x=int(x), y=int(y))
        self._display.sync()

    def move_to(self, place):
        """Moves to the middle of a rectangle."""
        left, top, width, height = place
        self.move(left + width // 2, top + height // 2)

    def press_button(self, button=1):
        xtest.fake_input(self._display, X.ButtonPress, button)
        self._display.sync()

    def release_button(self, button=1):
        xtest.fake_input(self._display, X.ButtonRelease, button)
        self._display.sync()

    def click(self, place, times=1):
        """Clicks the middle of a rectangle; several times, it is as quick as the server can be."""
        self.move_to(place)
        for _ in range(times):
            xtest.fake_input(self._display, X.ButtonPress, 1)
            xtest.fake_input(self._display, X.ButtonRelease, 1)
        self._display.sync()

    def pointer(self):
        """The picture of the pointer."""
        picture = self._display.xfixes_get_cursor_image(self._root)
        return picture.width, picture.height, tuple(picture.cursor_image)

    # The keyboard.

    def press(self, keys, times=1):
        """Presses and releases a key, with others held before it: "Tab", "Shift+Tab", "Alt+F4"."""
        codes = [self._code(key) for key in keys.split("+")]
        for _ in range(times):
            for code in codes:
                xtest.fake_input(self._display, X.KeyPress, code)
            for code in reversed(codes):
                xtest.fake_input(self._display, X.KeyRelease, code)
        self._display.sync()

    def hold(self, key):
        xtest.fake_input(self._display, X.KeyPress, self._code(key))
        self._display.sync()

    def release(self, key):
        xtest.fake_input(self._display, X.KeyRelease, self._code(key))
        self._display.sync()

    def type(self, text):
        for character in text:
            plain = _SHIFTED.get(character, character.lower())
            key = _UNSHIFTED.get(plain, plain)
            self.press(key if plain == character else "Shift+" + key)

    def _code(self, key):
        symbol = XK.string_to_keysym(_KEYS.get(key, key))
        code = self._display.keysym_to_keycode(symbol)
        if not code:
            raise ValueError(f"no key for {key!r}")
        return code

    # The windows.

    def has_window_manager(self):
        """Whether it answers. While it starts it announces itself too early: a window that is shown then stays
        unmanaged until something else happens, which this question is."""
        if self._numbers(self._root, "_NET_SUPPORTING_WM_CHECK") == []:
            return False
        self.ask_manager(self._probe.id, "_NET_REQUEST_FRAME_EXTENTS")
        return self._numbers(self._probe, "_NET_FRAME_EXTENTS") != []

    def managed(self):
        return self._numbers(self._root, "_NET_CLIENT_LIST")

    def active(self):
        windows = self._numbers(self._root, "_NET_ACTIVE_WINDOW")
        return windows[0] if windows else 0

    def keyboard(self):
        """The window that gets the keys. The window manager changes it before or after it says which is active."""
        focus = self._display.get_input_focus().focus
        return getattr(focus, "id", focus)

    def has_keyboard(self, window):
        return window != 0 and window == self.active() == self.keyboard()

    def describe(self):
        """Every window in a line, for the message of a test that failed."""
        mouse = self._root.query_pointer()
        lines = [f"active: {self.active():#x}, gets the keys: {self.keyboard():#x}, "
                 f"the mouse is at {(mouse.root_x, mouse.root_y)}"]
        for window in self.managed():
            lines.append(f"{window:#x} {self.title(window)!r} of process {self._numbers(window, '_NET_WM_PID')} "
                         f"at {self.outline(window)} {' '.join(sorted(self.states(window)))}")
        return "\n".join(lines)

    def windows_of(self, process):
        return [window for window in self.managed() if self._numbers(window, "_NET_WM_PID") == [process]]

    def title(self, window):
        return self._bytes(window, "_NET_WM_NAME").decode()

    def titled(self, title):
        """The managed window with a title, 0 when there is none."""
        return next((window for window in self.managed() if self.title(window) == title), 0)

    def atom(self, name):
        return self._display.intern_atom(name)

    def states(self, window):
        return {self._display.get_atom_name(atom) for atom in self._numbers(window, "_NET_WM_STATE")}

    def is_viewable(self, window):
        """Whether it can be clicked, which a window need not be yet when the window manager has taken it over."""
        try:
            attributes = self._display.create_resource_object("window", window).get_attributes()
        except XError:
            return False
        return attributes.map_state == X.IsViewable

    def outline(self, window):
        """Left, top, width and height of a window's inside, None when it is gone."""
        try:
            target = self._display.create_resource_object("window", window)
            size = target.get_geometry()
            place = target.translate_coords(self._root, 0, 0)
        except XError:
            return None
        return -place.x, -place.y, size.width, size.height

    def framed(self, window):
        """The same with what the window manager puts around it."""
        inside = self.outline(window)
        if inside is None:
            return None
        left, top, width, height = inside
        before, after, above, below = (self._numbers(window, "_NET_FRAME_EXTENTS") + [0] * 4)[:4]
        return left - before, top - above, width + before + after, height + above + below

    def hide(self, window):
        self._display.create_resource_object("window", window).unmap()
        self._display.sync()

    def ask_manager(self, window, message, *data):
        """What a task bar sends to the window manager."""
        numbers = (list(data) + [0] * 5)[:5]
        note = event.ClientMessage(window=self._display.create_resource_object("window", window),
                                   client_type=self.atom(message), data=(32, numbers))
        self._root.send_event(note, event_mask=X.SubstructureRedirectMask | X.SubstructureNotifyMask)
        self._display.sync()

    def press_close_box(self, window):
        self.ask_manager(window, "_NET_CLOSE_WINDOW", X.CurrentTime, 2)

    def activate(self, window):
        self.ask_manager(window, "_NET_ACTIVE_WINDOW", 2, X.CurrentTime)
        wait_for(lambda: self.active() == window, "the window comes to the front")

    def ping(self, window, number):
        """Asks a program, as window managers do, whether it is alive. It answers in the order of its events."""
        self._root.change_attributes(event_mask=X.StructureNotifyMask)
        target = self._display.create_resource_object("window", window)
        target.send_event(event.ClientMessage(window=target, client_type=self.atom("WM_PROTOCOLS"),
                                              data=(32, [self.atom("_NET_WM_PING"), number, window, 0, 0])))
        self._display.sync()

    def answered(self, number):
        """Whether a program has just answered the question of this number or a later one."""
        events = [self._display.next_event() for _ in range(self._display.pending_events())]
        ping = self.atom("_NET_WM_PING")
        return any(note.type & 0x7F == X.ClientMessage and note.data[1][0] == ping and note.data[1][1] >= number
                   for note in events)

    def _numbers(self, window, name):
        answer = self._property(window, name)
        return list(answer.value) if answer is not None and answer.format == 32 else []

    def _bytes(self, window, name):
        answer = self._property(window, name)
        return bytes(answer.value) if answer is not None and answer.format == 8 else b""

    def _property(self, window, name):
        if isinstance(window, int):
            window = self._display.create_resource_object("window", window)
        try:
            return window.get_full_property(self.atom(name), X.AnyPropertyType)
        except XError:
            return None

    # Pictures.

    def pixels(self, place):
        """Rows of red, green and blue bytes."""
        left, top, width, height = place
        image = self._root.get_image(left, top, width, height, X.ZPixmap, 0xFFFFFFFF)
        stride = len(image.data) // height
        rows = []
        for row in range(height):
            line = image.data[row * stride:row * stride + 4 * width]
            picture = bytearray(3 * width)
            picture[0::3], picture[1::3], picture[2::3] = line[2::4], line[1::4], line[0::4]
            rows.append(bytes(picture))
        return rows

    def save_picture(self, place, path):
        write_png(self.pixels(place), path)


def write_png(rows, path):
    def chunk(name, data):
        return struct.pack(">I", len(data)) + name + data + struct.pack(">I", zlib.crc32(name + data))

    header = struct.pack(">IIBBBBB", len(rows[0]) // 3, len(rows), 8, 2, 0, 0, 0)
    data = zlib.compress(b"".join(b"\0" + row for row in rows), 9)
    with open(path, "wb") as file:
        file.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", data) + chunk(b"IEND", b""))
