#!/usr/bin/env python3
"""plain_viewer.py [--says PROCESS] [--service NAME] [--answered FILE] [--silent] [--windowless] [DOCUMENT]: a viewer of
one window.

The window ends the program when it is asked to close. --says puts another process into the window's property. With
--service it is a service of the session bus, which opens its window when it is asked for a document, and answers once
that is on the screen, and notes the monotonic time of that in a file; --silent never answers, --windowless answers and opens
none.
"""

import argparse
import os
import select
import sys
import time

from gi.repository import Gio, GLib
from Xlib import X, Xatom
from Xlib.display import Display

INTERFACE = """<node><interface name="org.freedesktop.Application"><method name="Open">
<arg type="as" direction="in"/><arg type="a{sv}" direction="in"/></method></interface></node>"""


class PlainWindow:
    def __init__(self, process):
        self._display = Display()
        root = self._display.screen().root
        self._window = root.create_window(20, 20, 200, 100, 0, X.CopyFromParent, X.CopyFromParent)
        self._window.change_property(self._atom("_NET_WM_NAME"), self._atom("UTF8_STRING"), 8, b"plain")
        self._window.change_property(self._atom("_NET_WM_PID"), Xatom.CARDINAL, 32, [process])
        self._window.set_wm_protocols([self._atom("WM_DELETE_WINDOW")])
        self._display.sync()

    def show(self):
        self._window.map()
        self._display.sync()
        while self._window.id not in self._managed(self._display.screen().root):
            select.select([], [], [], 0.02)

    def _atom(self, name):
        return self._display.intern_atom(name)

    def _managed(self, root):
        answer = root.get_full_property(self._atom("_NET_CLIENT_LIST"), X.AnyPropertyType)
        return answer.value if answer else []

    def file_number(self):
        return self._display.fileno()

    def handle(self):
        """False once it was asked to close."""
        while self._display.pending_events():
            event = self._display.next_event()
            if event.type == X.ClientMessage and event.data[1][0] == self._atom("WM_DELETE_WINDOW"):
                return False
        return True


def serve(options):
    loop = GLib.MainLoop()
    # Made before anybody asks, for who asks does not wait for ever.
    window = None if options.windowless else PlainWindow(options.says)

    def call(_bus, _sender, _path, _interface, _method, _arguments, invocation):
        if options.silent:
            return
        if window:
            window.show()
            GLib.io_add_watch(window.file_number(), GLib.IO_IN, lambda *_: window.handle() or loop.quit())
        invocation.return_value(None)
        bus.flush_sync()
        note = options.answered + ".new"
        with open(note, "w", encoding="ascii") as file:
            file.write(str(time.monotonic()))
        os.rename(note, options.answered)

    bus = Gio.bus_get_sync(Gio.BusType.SESSION, None)
    interface = Gio.DBusNodeInfo.new_for_xml(INTERFACE).interfaces[0]
    bus.register_object("/" + options.service.replace(".", "/"), interface, call, None, None)
    Gio.bus_own_name_on_connection(bus, options.service, Gio.BusNameOwnerFlags.NONE, None, None)
    loop.run()


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--says", type=int, default=os.getpid())
    parser.add_argument("--service")
    parser.add_argument("--answered")
    parser.add_argument("--silent", action="store_true")
    parser.add_argument("--windowless", action="store_true")
    parser.add_argument("document", nargs="?")
    options = parser.parse_args()
    if options.service:
        return serve(options)
    window = PlainWindow(options.says)
    window.show()
    while window.handle():
        select.select([window.file_number()], [], [])


if __name__ == "__main__":
    sys.exit(main())
