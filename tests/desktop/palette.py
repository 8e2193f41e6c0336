"""A dark palette the way a desktop hands it to Qt without any plug-in."""

from pathlib import Path

DARK = {"Button": ("49,54,59", "239,240,241"), "Window": ("42,46,50", "239,240,241"),
        "View": ("27,30,32", "239,240,241"), "Selection": ("61,174,233", "255,255,255"),
        "Tooltip": ("49,54,59", "239,240,241")}
DARK_WINDOW = 42, 46, 50


def make_dark(environment):
    environment.update(XDG_CURRENT_DESKTOP="KDE", KDE_SESSION_VERSION="5")
    (Path(environment["XDG_CONFIG_HOME"]) / "kdeglobals").write_text("".join(
        f"[Colors:{group}]\nBackgroundNormal={back}\nBackgroundAlternate={back}\nForegroundNormal={fore}\n"
        f"ForegroundInactive=140,143,146\nForegroundLink=29,153,243\nForegroundVisited=155,89,182\n"
        for group, (back, fore) in DARK.items()))
