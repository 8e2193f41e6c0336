"""A private desktop: a screen, a window manager, a session bus and the accessibility bus.

Everything is started on free numbers and in a folder of its own, and everything ends with the test program,
also when that is killed.
"""

import ctypes
import os
import shutil
import signal
import subprocess
import tempfile
import time
from pathlib import Path

from accessible import Gone

SECONDS = float(os.environ.get("FOLIOWELD_DESKTOP_SECONDS", "300"))
SCREEN = "1600x1200x24"

_PR_SET_PDEATHSIG = 1
_PR_SET_CHILD_SUBREAPER = 36
_libc = ctypes.CDLL(None, use_errno=True)


class TimeUp(AssertionError):
    """A condition did not come true in time."""


def wait_for(condition, what, seconds=None):
    """The first true value of the condition. Generous: a busy machine only makes a test slower.

    While an object that it asks is gone it is not true: what the window shows changes while one looks at it.
    """
    end = time.monotonic() + (seconds or SECONDS)
    pause = 0.005
    while True:
        try:
            value = condition()
        except Gone:
            value = None
        if value:
            return value
        if time.monotonic() > end:
            raise TimeUp(f"waited in vain for: {what() if callable(what) else what}")
        time.sleep(pause)
        pause = min(0.05, pause * 1.5)


def _end_with_parent():
    _libc.prctl(_PR_SET_PDEATHSIG, signal.SIGKILL)


def children_of(process):
    """Process numbers and states of the children of a process."""
    found = []
    for entry in os.listdir("/proc"):
        if not entry.isdigit():
            continue
        try:
            text = Path("/proc", entry, "stat").read_text()
        except OSError:
            continue
        state, parent = text.rsplit(")", 1)[1].split()[:2]
        if int(parent) == process:
            found.append((int(entry), state))
    return found


class Desktop:
    def __init__(self, screen=SCREEN):
        # What outlives its parent becomes a child of the test program, which can end it then.
        _libc.prctl(_PR_SET_CHILD_SUBREAPER, 1)
        self.folder = Path(tempfile.mkdtemp(prefix="folioweld-desktop-"))
        self._own = []
        try:
            self._start(screen)
        except BaseException:
            self.close()
            raise

    def _start(self, screen):
        self.environment = self._folders(self.folder / "session")
        display = self._start_announcing(["Xvfb", "-screen", "0", screen, "-nolisten", "tcp", "-noreset",
                                          "-displayfd", "{fd}"])
        self.display = ":" + display
        self.environment["DISPLAY"] = self.display
        address = self._start_announcing(["dbus-daemon", "--session", "--nofork", "--nopidfile",
                                          "--print-address={fd}"])
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = address
        self._own.append(self.start(["openbox", "--sm-disable"], self.environment))

    def _folders(self, base):
        """An environment with a home of its own and nothing of the caller's but the way to the programs."""
        folders = {"HOME": base / "home", "XDG_CONFIG_HOME": base / "config", "XDG_DATA_HOME": base / "data",
                   "XDG_CACHE_HOME": base / "cache", "XDG_RUNTIME_DIR": base / "run", "TMPDIR": base / "tmp"}
        for folder in folders.values():
            folder.mkdir(parents=True, exist_ok=True)
            folder.chmod(0o700)
        environment = {name: str(folder) for name, folder in folders.items()}
        environment.update({
            "PATH": "/usr/local/bin:/usr/bin:/bin", "LANG": "C.UTF-8", "LC_ALL": "C.UTF-8", "TZ": "UTC",
            "XDG_DATA_DIRS": str(self._shared_data()), "XDG_CONFIG_DIRS": "/etc/xdg",
            "GSETTINGS_BACKEND": "memory", "QT_QPA_PLATFORM": "xcb", "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1"})
        return environment

    def _shared_data(self):
        """The system's data without what installed programs claim to open: a test chooses its viewer by itself."""
        shared = self.folder / "share"
        if not shared.exists():
            shared.mkdir()
            for entry in Path("/usr/share").iterdir():
                if entry.name != "applications":
                    (shared / entry.name).symlink_to(entry)
            (shared / "applications").mkdir()
            for entry in Path("/usr/share/applications").glob("*.desktop"):
                (shared / "applications" / entry.name).symlink_to(entry)
        return shared

    def home(self, name):
        """The environment of a program with a home of its own on this desktop."""
        environment = dict(self.environment)
        environment.update(self._folders(self.folder / name))
        environment.update({name: self.environment[name] for name in ("DISPLAY", "DBUS_SESSION_BUS_ADDRESS")})
        return environment

    def start(self, command, environment, **more):
        more.setdefault("stdin", subprocess.DEVNULL)
        more.setdefault("stdout", subprocess.DEVNULL)
        more.setdefault("stderr", subprocess.DEVNULL)
        return subprocess.Popen(command, env=environment, preexec_fn=_end_with_parent, **more)

    def _start_announcing(self, command):
        """Starts a server that writes its address to a file descriptor once it can be reached."""
        reading, writing = os.pipe()
        command = [part.replace("{fd}", str(writing)) for part in command]
        self._own.append(self.start(command, self.environment, pass_fds=(writing,)))
        os.close(writing)
        with os.fdopen(reading) as answer:
            line = answer.readline().strip()
        if not line:
            raise RuntimeError(f"{command[0]} did not start")
        return line

    def close(self):
        """Ends everything that was started here, whoever its parent was, and waits for it."""
        for process in reversed(self._own):
            process.kill()
            process.wait()
        # By now all that is left are strays; ending one may bring its children here.
        for _ in range(1000):
            strays = children_of(os.getpid())
            if not strays:
                break
            for stray, _state in strays:
                try:
                    os.kill(stray, signal.SIGKILL)
                    os.waitpid(stray, 0)
                except (ProcessLookupError, ChildProcessError):
                    pass
        shutil.rmtree(self.folder, ignore_errors=True)
