"""A private Wayland desktop, and the window on it. No mouse and no keyboard can be imitated there."""

import socket
import subprocess
import tempfile
import unittest
from pathlib import Path

from accessible import AccessibilityBus
from acting_window import ActingWindow
from desktop import Desktop, wait_for
from picture import read_png

SOCKET = "folioweld"
SIZE = 1600, 1200
# Nothing but the windows is on the screen, and none of them moves.
CONFIGURATION = """[core]
idle-time=0
[shell]
background-color=0xff000000
background-type=tile
panel-position=none
locking=false
animation=none
startup-animation=none
close-animation=none
[keyboard]
"""


class WaylandDesktop(Desktop):
    def __init__(self, scale=1):
        self._scale = scale
        super().__init__()

    def _start(self, screen):
        self.environment = self._folders(self.folder / "session")
        # The name of a socket has room for some hundred characters only.
        self._short = tempfile.TemporaryDirectory(prefix="folioweld-")
        # Nobody has a keyboard here, and the toolkit's own way of composing text falls over that.
        self.environment.update(QT_QPA_PLATFORM="wayland", QT_IM_MODULE="compose",
                                WAYLAND_DISPLAY=str(Path(self._short.name, SOCKET)))
        address = self._start_announcing(["dbus-daemon", "--session", "--nofork", "--nopidfile",
                                          "--print-address={fd}"])
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = address
        configuration = self.folder / "weston.ini"
        configuration.write_text(CONFIGURATION)
        width, height = SIZE
        own = dict(self.environment, XDG_RUNTIME_DIR=self._short.name)
        del own["WAYLAND_DISPLAY"]
        compositor = self.start(["weston", f"--config={configuration}", "--backend=headless-backend.so",
                                 "--use-pixman", f"--width={width}", f"--height={height}", f"--scale={self._scale}",
                                 f"--socket={SOCKET}", "--debug"], own)
        self._own.append(compositor)
        wait_for(lambda: compositor.poll() is not None or self._answers(), "the compositor answers")
        if compositor.poll() is not None:
            raise RuntimeError(f"weston ended with {compositor.returncode}")

    def _answers(self):
        with socket.socket(socket.AF_UNIX) as connection:
            return connection.connect_ex(self.environment["WAYLAND_DISPLAY"]) == 0

    def home(self, name):
        environment = dict(self.environment)
        environment.update(self._folders(self.folder / name))
        environment.update({name: self.environment[name] for name in
                            ("QT_QPA_PLATFORM", "QT_IM_MODULE", "WAYLAND_DISPLAY", "DBUS_SESSION_BUS_ADDRESS")})
        return environment

    def picture(self):
        """What the screen shows: rows of red, green and blue bytes."""
        with tempfile.TemporaryDirectory(dir=self.folder) as folder:
            subprocess.run(["weston-screenshooter"], cwd=folder, env=self.environment, check=True,
                           stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            return read_png(next(Path(folder).iterdir()))

    def close(self):
        super().close()
        self._short.cleanup()


class WaylandTest(unittest.TestCase):
    scale = 1
    tests = 0

    @classmethod
    def setUpClass(cls):
        cls.desktop = WaylandDesktop(cls.scale)
        cls.addClassCleanup(cls.desktop.close)
        cls.bus = AccessibilityBus(cls.desktop.environment["DBUS_SESSION_BUS_ADDRESS"])
        cls.addClassCleanup(cls.bus.close)

    def setUp(self):
        WaylandTest.tests += 1
        home = str(WaylandTest.tests)
        self.environment = self.desktop.home(home)
        self.folder = self.desktop.folder / home / "documents"
        self.folder.mkdir()
        self.windows = []

    def tearDown(self):
        for window in self.windows:
            window.close()

    def open(self, *arguments, ready=True, **more):
        window = ActingWindow(self.desktop, None, self.bus, self.environment, arguments, **more)
        self.windows.append(window)
        return window.wait_until_ready() if ready else window

    def store(self, **settings):
        folder = Path(self.environment["XDG_CONFIG_HOME"]) / "folioweld"
        folder.mkdir(exist_ok=True)
        (folder / "settings.ini").write_text(
            "[Settings]\n" + "".join(f"{name}={value}\n" for name, value in settings.items()))

    def with_viewer(self, command):
        """A desktop that shows PDF documents with this line of a script."""
        script = self.folder / "viewer"
        script.write_text(f"#!/bin/sh\n{command}\n")
        script.chmod(0o755)
        applications = Path(self.environment["XDG_DATA_HOME"]) / "applications"
        applications.mkdir()
        (applications / "viewer.desktop").write_text(
            f"[Desktop Entry]\nType=Application\nName=Viewer\nMimeType=application/pdf;\nExec={script} %f\n")
        (Path(self.environment["XDG_CONFIG_HOME"]) / "mimeapps.list").write_text(
            "[Default Applications]\napplication/pdf=viewer.desktop\n")

    def wait(self, condition, what):
        return wait_for(condition, what)
