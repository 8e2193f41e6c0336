#!/usr/bin/env python3
"""On a Wayland desktop the window goes by the id of the desktop entry: this is how its icon and its name are found."""

import re
import sys

from project import BUILD, ID, ROOT, FolderTest, main

sys.path.insert(0, str(ROOT / "tests" / "desktop"))
from desktop import wait_for  # noqa: E402
from wayland import WaylandDesktop  # noqa: E402


class WaylandWindow(FolderTest):
    def test_goes_by_the_id_of_the_desktop_entry(self):
        desktop = WaylandDesktop()
        self.addCleanup(desktop.close)
        protocol = self.folder / "protocol"
        environment = dict(desktop.home("home"), WAYLAND_DEBUG="client")
        with open(protocol, "wb") as errors:
            program = desktop.start([BUILD / "app/folioweld"], environment, stderr=errors)
        self.addCleanup(program.wait)
        self.addCleanup(program.kill)

        def told():
            return re.findall(r'set_app_id\("([^"]*)"\)', protocol.read_text(errors="replace"))

        wait_for(lambda: told() or program.poll() is not None, "the window tells its id")
        self.assertEqual(set(told()), {ID})


if __name__ == "__main__":
    main()
