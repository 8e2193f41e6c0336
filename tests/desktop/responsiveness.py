#!/usr/bin/env python3
"""responsiveness.py [MIB]: how long the window takes to join two documents of together so many MiB (200) compared
with the command line, how long it takes to answer meanwhile, and how long until a Cancel has ended that.

For an otherwise idle machine; prints milliseconds. No test, for a busy machine would decide its outcome.
"""

import subprocess
import sys
import time

from accessible import AccessibilityBus
from desktop import Desktop, wait_for
from documents import write_large
from screen import Screen
from window import ABORT, EXIT, GO, PROGRAMS, Window

ROUNDS = 7


def round_trips(node, goes_on):
    """Milliseconds of questions that are asked one after the other while the answers say to go on."""
    taken, name = [], node.name
    while goes_on(name):
        begun = time.monotonic()
        name = node.name
        taken.append(1000 * (time.monotonic() - begun))
    return taken


def tell(what, taken):
    taken.sort()
    print(f"{what}: {len(taken)} round trips, median {taken[len(taken) // 2]:.1f} ms, longest {taken[-1]:.1f} ms")


def compare(window, screen, folder):
    """Both in turn, until the output has its size; nothing is asked of the window meanwhile, for answers cost."""
    command, joined = folder / "command.pdf", folder / "joined.pdf"
    taken = {"command line": [], "window, with the click": []}
    for _ in range(ROUNDS):
        command.unlink(missing_ok=True)
        begun = time.monotonic()
        subprocess.run([PROGRAMS / "folioweld", f"{command}|{folder}/both"], check=True)
        taken["command line"].append(1000 * (time.monotonic() - begun))
        joined.unlink(missing_ok=True)
        screen.move_to(window.control(GO).extents)
        begun = time.monotonic()
        screen.press_button()
        screen.release_button()
        while not joined.exists() or joined.stat().st_size < command.stat().st_size:
            time.sleep(0.001)
        taken["window, with the click"].append(1000 * (time.monotonic() - begun))
        window.wait_finished()
    medians = [sorted(times)[ROUNDS // 2] for times in taken.values()]
    for what, median in zip(taken, medians):
        print(f"{what}: median {median:.0f} ms of {ROUNDS}")
    print(f"window to command line: {medians[1] / medians[0]:.2f}")


def measure(desktop, screen, bus, total):
    folder = desktop.folder / "documents"
    (folder / "both").mkdir(parents=True)
    inputs = [write_large(folder / "both" / f"{number}.pdf", total // 2) for number in (1, 2)]
    for path in inputs:
        # No holes: the blocks are on the disk as those of any document are.
        path.write_bytes(path.read_bytes())
    window = Window(desktop, screen, bus, desktop.home("1")).wait_until_ready()
    window.fill(*inputs, folder / "joined.pdf")
    compare(window, screen, folder)
    cancel = window.control(EXIT)
    left = iter([True] * 200 + [False])
    tell("idle", round_trips(cancel, lambda _name: next(left)))
    window.click(GO)
    while cancel.name != ABORT and "-> OK" not in (window.status(2) or ""):
        pass
    tell("joining", round_trips(cancel, lambda name: name == ABORT))
    window.wait_finished()

    window.click(GO)
    wait_for(lambda: cancel.name == ABORT, "the merge runs")
    wait_for(lambda: "Pass #4" in (window.status(2) or "") or cancel.name == EXIT, "the output is being written")
    begun = time.monotonic()
    screen.press("Enter")
    wait_for(lambda: cancel.name == EXIT, "the merge has ended")
    taken = 1000 * (time.monotonic() - begun)
    cancelled = "cancelled" in window.status(2)
    print(f"Cancel to idle: {taken:.0f} ms" if cancelled else "Cancel: the merge was faster; take larger documents")
    window.close()


def main():
    desktop = Desktop()
    try:
        screen = Screen(desktop.display)
        wait_for(screen.has_window_manager, "the window manager")
        bus = AccessibilityBus(desktop.environment["DBUS_SESSION_BUS_ADDRESS"])
        measure(desktop, screen, bus, int(sys.argv[1]) if len(sys.argv) > 1 else 200)
    finally:
        desktop.close()


if __name__ == "__main__":
    main()
