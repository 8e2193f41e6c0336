#!/usr/bin/env python3
"""The packages on a fresh system: apt installs them, the programs run, and apt takes everything away again."""

import os
import shutil
import signal
import subprocess
import sys
import unittest

from project import ROOT, VERSION, main, packages, run, skip
from root import Root, obstacle

sys.path.insert(0, str(ROOT / "tests" / "desktop"))
from desktop import Desktop, wait_for  # noqa: E402
from screen import Screen  # noqa: E402

EXAMPLES = "/usr/share/doc/folioweld/examples"
TITLE = f"Folioweld (version {VERSION})"


def pages(path):
    run("qpdf", "--check", path)
    return int(run("qpdf", "--show-npages", path))


class FreshSystem(unittest.TestCase):
    def setUp(self):
        self.root = Root()
        self.addCleanup(self.root.close)

    def test_installs_runs_and_removes_the_packages(self):
        fresh, packages_before = self.root.tree(), self.root.installed()
        self.install("folioweld")
        self.assertEqual(self.root.installed() - packages_before, {"folioweld"})
        self.join_the_examples()
        self.ask_for_the_window("the window program folioweld-window cannot be started")
        self.install("folioweld-window")
        self.use_the_window()
        self.join_the_examples()
        self.install("folioweld-extras")
        self.join_the_examples("--prepare", "--carry")
        self.remove_everything()
        self.assertEqual(self.root.installed(), packages_before)
        self.expect_nothing_left(fresh)

    def install(self, package):
        target = self.root.path / "packages" / packages()[package].name
        shutil.copy(packages()[package], target)
        self.root.apt("install", f"/packages/{target.name}")
        target.unlink()

    def join_the_examples(self, *options):
        result = self.root.run("folioweld", *options, "/home/user/joined.pdf", EXAMPLES, user=True)
        self.assertEqual((result.returncode, result.stdout, result.stderr), (0, "", ""))
        joined = self.root.path / "home/user/joined.pdf"
        self.assertEqual(pages(joined), sum(map(pages, (ROOT / "examples").glob("*.pdf"))))
        joined.unlink()

    def ask_for_the_window(self, reason):
        result = self.root.run("folioweld", user=True, DISPLAY=":0")
        self.assertEqual(result.returncode, 2)
        self.assertIn(reason, result.stderr)

    def use_the_window(self):
        desktop = Desktop()
        self.addCleanup(desktop.close)
        screen = Screen(desktop.display)
        self.addCleanup(screen.close)
        wait_for(screen.has_window_manager, "the window manager")
        program = subprocess.Popen(self.root.command("folioweld", user=True), stdin=subprocess.DEVNULL,
                                   env=self.root.environment(DISPLAY=desktop.display, QT_QPA_PLATFORM="xcb"))
        try:
            wait_for(lambda: screen.titled(TITLE) or program.poll() is not None, "the window appears")
            self.assertIsNone(program.poll())
            executed = os.readlink(f"/proc/{program.pid}/exe")
            self.assertEqual(executed, f"{self.root.path}/usr/libexec/folioweld/folioweld-window")
            program.send_signal(signal.SIGTERM)
            self.assertEqual(program.wait(60), 0)
        finally:
            program.kill()
            program.wait()

    def remove_everything(self):
        self.root.apt("purge", "folioweld", "folioweld-window", "folioweld-extras")
        self.root.apt("autoremove", "--purge")

    def expect_nothing_left(self, fresh):
        left = self.root.tree() - fresh
        brought = set()
        for package in packages().values():
            brought |= self.paths_of(package)
        self.assertGreater(len(brought), 40)
        self.assertEqual(left & brought, set())
        # What the user made with it stays with the user.
        settings = "home/user/.config/folioweld"
        self.assertEqual({path for path in left if "folioweld" in path.lower()},
                         {settings, f"{settings}/settings.ini", f"{settings}/settings.ini.lock"})

    def paths_of(self, package):
        lines = run("dpkg-deb", "--contents", package).splitlines()
        return {line.split(maxsplit=5)[5].removeprefix("./").rstrip("/") for line in lines}


if __name__ == "__main__":
    if obstacle():
        skip(obstacle())
    main()
