#!/usr/bin/env python3
"""The joined document is shown by the program that the desktop shows PDF documents with."""

import os
import shlex
import signal
import subprocess
import sys
import time
from pathlib import Path

from case import DesktopTest, main
from desktop import wait_for
from documents import LETTER, REPORT
from drag import PROGRAM as OTHER_PROGRAM
from window import CLOSE_VIEWER, EXIT, FIRST, GO, OUTPUT, SECOND, SWAP, clear, select

REAL_VIEWER = "org.pwmt.zathura.desktop"
PLAIN_VIEWER = [sys.executable, "-B", Path(__file__).with_name("plain_viewer.py")]
SERVICE = "org.example.Reader"
# How long the window waits for the answer of a service.
PATIENCE_SECONDS = 5


class Viewer(DesktopTest):
    def with_script(self, script):
        """Chooses a viewer that is a shell script; its arguments are those of the desktop file."""
        path = self.folder / "a viewer"
        path.write_text("#!/bin/sh\n" + script)
        path.chmod(0o755)
        self.with_viewer([path, "%f"])
        return path

    def join(self, name="the joined document.pdf"):
        """The window after a merge that went well, with the viewer started."""
        window = self.open()
        self.joined = self.folder / name
        window.fill(LETTER, REPORT, self.joined)
        self.begun = time.monotonic()
        window.click(GO)
        return window

    def wait_viewer_mode(self, window):
        wait_for(lambda: window.is_enabled(CLOSE_VIEWER), "the window waits for the viewer")
        self.assertEqual(window.enabled_buttons(), {CLOSE_VIEWER})
        self.assertEqual(window.default_button(), CLOSE_VIEWER)

    def wait_idle(self, window):
        wait_for(lambda: window.is_enabled(EXIT), "the window is idle")
        self.assertEqual(window.enabled_buttons(), {select(FIRST), clear(FIRST), SWAP, select(SECOND), clear(SECOND),
                                                    select(OUTPUT), clear(OUTPUT), GO, EXIT})
        wait_for(lambda: window.children() == [], lambda: f"no child is left; {window.children()}")

    def viewer_window(self, window):
        """The window of the only child."""
        children = [number for number, state in window.children() if state != "Z"]
        windows = self.screen.windows_of(children[0]) if len(children) == 1 else []
        return windows[0] if windows else 0

    def test_a_real_viewer_shows_the_document_and_is_closed_from_the_window(self):
        self.choose_viewer(REAL_VIEWER)
        window = self.join()
        self.wait_viewer_mode(window)
        shown = self.wait(lambda: self.viewer_window(window), "the viewer's window")
        self.wait(lambda: self.joined.name in self.screen.title(shown), lambda: self.screen.title(shown))
        window.click(CLOSE_VIEWER)
        self.wait_idle(window)
        self.wait(lambda: shown not in self.screen.managed(), "the viewer's window is gone")

    def test_a_real_viewer_that_is_closed_by_the_person_ends_the_wait(self):
        self.choose_viewer(REAL_VIEWER)
        window = self.join()
        shown = self.wait(lambda: self.viewer_window(window), "the viewer's window")
        self.wait(lambda: self.joined.name in self.screen.title(shown), lambda: self.screen.title(shown))
        self.screen.press_close_box(shown)
        self.wait_idle(window)

    def test_only_the_windows_of_the_viewer_are_closed(self):
        others = [self.desktop.start([OTHER_PROGRAM], self.environment),
                  self.desktop.start(["zathura", str(LETTER)], self.environment)]
        try:
            for other in others:
                self.wait(lambda: self.screen.windows_of(other.pid), "another program's window")
            self.choose_viewer(REAL_VIEWER)
            window = self.join()
            shown = self.wait(lambda: self.viewer_window(window), "the viewer's window")
            self.wait(lambda: self.joined.name in self.screen.title(shown), lambda: self.screen.title(shown))
            self.screen.activate(window.main_window())
            window.click(CLOSE_VIEWER)
            self.wait_idle(window)
            for other in others:
                self.assertIsNone(other.poll())
                self.assertTrue(self.screen.windows_of(other.pid))
        finally:
            for other in others:
                other.kill()
                other.wait()

    def plain_windows(self):
        return [window for window in self.screen.managed() if self.screen.title(window) == "plain"]

    def plain_command(self, *options):
        return shlex.join(map(str, (*PLAIN_VIEWER, *options)))

    def test_the_windows_of_what_the_viewer_started_are_closed_too(self):
        self.with_script(f"{self.plain_command()}\nexit\n")
        window = self.join()
        self.wait(self.plain_windows, "the viewer's window")
        window.click(CLOSE_VIEWER)
        self.wait_idle(window)
        self.wait(lambda: not self.plain_windows(), "the viewer's window is gone")

    def test_the_server_and_not_the_window_says_whose_it_is(self):
        number = self.folder / "number"
        # The viewer has no window that says so, and another program has one that says it is the viewer's.
        self.with_script(f"echo $$ > {shlex.quote(str(number))}.new\n"
                         f"mv {shlex.quote(str(number))}.new {shlex.quote(str(number))}\n"
                         f"exec {self.plain_command('--says', 1)}\n")
        window = self.join()
        self.wait(self.plain_windows, "the viewer's window")
        (shown,) = self.plain_windows()
        other = self.desktop.start([*PLAIN_VIEWER, "--says", number.read_text().strip()], self.environment)
        try:
            self.wait(lambda: len(self.plain_windows()) == 2, "the other window")
            window.click(CLOSE_VIEWER)
            self.wait_idle(window)
            self.wait(lambda: shown not in self.plain_windows(), "the viewer's window is gone")
            self.assertEqual(len(self.plain_windows()), 1)
            self.assertIsNone(other.poll())
        finally:
            other.kill()
            other.wait()

    def with_service_entry(self):
        """A viewer whose entry is that of a service; its command is another one."""
        applications = Path(self.environment["XDG_DATA_HOME"]) / "applications"
        applications.mkdir(exist_ok=True)
        self.commanded = self.folder / "commanded"
        (applications / f"{SERVICE}.desktop").write_text(
            "[Desktop Entry]\nType=Application\nName=Reader\nMimeType=application/pdf;\nDBusActivatable=true\n"
            f"Exec=touch {self.commanded}\n")
        self.choose_viewer(f"{SERVICE}.desktop")

    def with_service(self, *options):
        self.with_service_entry()
        self.answered = self.folder / "answered"
        service = self.desktop.start([*PLAIN_VIEWER, "--service", SERVICE, "--answered", self.answered, *options],
                                     self.environment)
        self.addCleanup(service.wait)
        self.addCleanup(service.kill)

        def names():
            return subprocess.run(["gdbus", "call", "--session", "-d", "org.freedesktop.DBus", "-o", "/", "-m",
                                   "org.freedesktop.DBus.ListNames"], env=self.environment, check=True,
                                  capture_output=True, text=True).stdout

        self.wait(lambda: SERVICE in names(), "the service is on the bus")
        return service

    def wait_answered(self, service):
        """The service has answered, and in time: one that this machine stops meanwhile is a slow one to the window."""
        self.wait(self.answered.exists, "the service answers")
        if float(self.answered.read_text()) - self.begun > PATIENCE_SECONDS:
            service.kill()
            self.skipTest("the machine stalled before the service answered")

    def test_the_window_of_a_service_is_waited_for_and_closed(self):
        service = self.with_service()
        window = self.join()
        self.wait_answered(service)
        self.wait_viewer_mode(window)
        window.click(CLOSE_VIEWER)
        self.wait_idle(window)
        self.wait(lambda: service.poll() == 0, "the service ends with its window")
        self.assertFalse(self.commanded.exists())

    def test_a_service_whose_window_is_closed_ends_the_wait(self):
        service = self.with_service()
        window = self.join()
        self.wait_answered(service)
        (shown,) = self.plain_windows()
        self.wait_viewer_mode(window)
        self.screen.press_close_box(shown)
        self.wait_idle(window)

    def test_a_service_without_a_window_ends_the_wait(self):
        service = self.with_service("--windowless")
        window = self.join()
        self.wait_answered(service)
        window.wait_finished()
        self.wait_idle(window)
        self.assertFalse(self.commanded.exists())
        self.assertIsNone(service.poll())

    def test_the_command_is_started_where_the_service_does_not_answer(self):
        service = self.with_service("--silent")
        window = self.join()
        self.wait(self.commanded.exists, "the command is started")
        self.wait_idle(window)
        self.assertIsNone(service.poll())

    def test_the_command_is_started_where_there_is_no_service(self):
        self.with_service_entry()
        window = self.join()
        self.wait(self.commanded.exists, "the command is started")
        self.wait_idle(window)

    def test_a_viewer_that_ends_by_itself_ends_the_wait(self):
        end = self.folder / "end"
        self.with_script(f'while [ ! -e {shlex.quote(str(end))} ]; do sleep 0.05; done\n')
        window = self.join()
        self.wait_viewer_mode(window)
        end.touch()
        self.wait_idle(window)

    def test_a_viewer_that_hands_over_and_ends_at_once_ends_the_wait(self):
        told = self.folder / "told"
        # Its name appears at once with its content.
        self.with_script(f'printf "%s\\n" "$#" "$1" > {shlex.quote(str(told))}.new\n'
                         f'mv {shlex.quote(str(told))}.new {shlex.quote(str(told))}\n')
        window = self.join()
        self.wait(told.exists, "the viewer was told")
        self.wait_idle(window)
        self.assertEqual(told.read_text().splitlines(), ["1", str(self.joined)])

    def test_a_viewer_without_a_window_is_asked_to_end(self):
        ended = self.folder / "ended"
        self.with_script(f'trap \'touch {shlex.quote(str(ended))}; exit\' TERM\n'
                         f'touch {shlex.quote(str(ended))}.ready\nwhile :; do sleep 0.05; done\n')
        window = self.join()
        self.wait_viewer_mode(window)
        self.wait(Path(f"{ended}.ready").exists, "the viewer listens")
        window.click(CLOSE_VIEWER)
        self.wait_idle(window)
        self.assertTrue(ended.exists())

    def test_a_viewer_that_refuses_to_close_is_left_alone_and_collected_later(self):
        number = self.folder / "number"
        self.with_script(f'trap "" TERM\necho $$ > {shlex.quote(str(number))}.new\n'
                         f'mv {shlex.quote(str(number))}.new {shlex.quote(str(number))}\n'
                         'while :; do sleep 0.05; done\n')
        window = self.join()
        self.wait_viewer_mode(window)
        self.wait(number.exists, "the viewer runs")
        window.click(CLOSE_VIEWER)
        wait_for(lambda: window.is_enabled(EXIT), "the window is idle")
        viewer = int(number.read_text())
        self.assertIn(viewer, [child for child, state in window.children() if state != "Z"])
        os.kill(viewer, signal.SIGKILL)
        self.wait_idle(window)

    def test_a_second_click_on_close_display_window_is_no_exit(self):
        self.with_script("exec sleep 1000\n")
        window = self.join()
        self.wait_viewer_mode(window)
        self.screen.click(window.control(CLOSE_VIEWER).extents, 2)
        self.wait_idle(window)
        window.choose("About", "Folioweld")
        window.dialog("Folioweld")

    def test_no_viewer_when_the_output_is_not_to_be_displayed(self):
        started = self.folder / "started"
        self.with_script(f"touch {shlex.quote(str(started))}\n")
        window = self.open()
        window.choose("Options", "Display output document...", "Do not display")
        window.fill(LETTER, REPORT, self.folder / "joined.pdf")
        window.click(GO)
        window.wait_finished()
        self.wait_idle(window)
        self.assertFalse(started.exists())

    def test_the_close_box_asks_while_the_viewer_is_shown_and_leaves_it_alone(self):
        self.with_script("exec sleep 1000\n")
        window = self.join()
        self.wait_viewer_mode(window)
        (viewer, _state), = window.children()
        self.screen.press_close_box(window.main_window())
        window.press_in(window.dialog("Folioweld"), "Yes")
        window.wait_end()
        os.kill(viewer, 0)
        os.kill(viewer, signal.SIGKILL)

    def test_the_wait_takes_no_processor_time(self):
        self.with_script("exec sleep 1000\n")
        window = self.join()
        self.wait_viewer_mode(window)

        def ticks():
            fields = Path("/proc", str(window.process.pid), "stat").read_text().rsplit(")", 1)[1].split()
            return int(fields[11]) + int(fields[12])

        def of_a_second():
            before = ticks()
            # Another process that is measured by the clock alone.
            subprocess.run(["sleep", "1"], check=True)
            return ticks() - before

        # On a busy machine the window may still be drawn in the first one.
        self.wait(lambda: of_a_second() < os.sysconf("SC_CLK_TCK") * 0.3, "a second that takes no processor time")


if __name__ == "__main__":
    main()
