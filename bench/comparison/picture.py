"""The table, as a picture: bars on one logarithmic axis of time, a group for each load."""

import math
from xml.sax.saxutils import escape

from figures import rows
from programs import OWN, PREPARING, peers
from report import time_text

WIDTH, LEFT, RIGHT, TOP = 820, 150, 110, 44
BAR, GAP, HEADING, GROUP_GAP = 16, 5, 24, 16
INK, FAINT, GRID = "#1c2733", "#5c6b7a", "#dde3e8"
OWN_COLOUR, PEER_COLOUR, REFERENCE_COLOUR = "#0b7285", "#adb5bd", "#e9c46a"


def colour(program):
    if program in (OWN, PREPARING):
        return OWN_COLOUR
    return PEER_COLOUR if program in peers() else REFERENCE_COLOUR


def text(x, y, words, size=12, fill=INK, anchor="start", weight="normal"):
    return (f'<text x="{x:.1f}" y="{y:.1f}" font-size="{size}" fill="{fill}" text-anchor="{anchor}" '
            f'font-weight="{weight}">{escape(words)}</text>')


class Axis:
    """Whole powers of ten around all times, from left to right."""

    def __init__(self, times):
        self.low = math.floor(math.log10(min(times)))
        self.high = max(math.ceil(math.log10(max(times))), self.low + 1)

    def x(self, seconds):
        share = (math.log10(seconds) - self.low) / (self.high - self.low)
        return LEFT + share * (WIDTH - LEFT - RIGHT)

    def lines(self, bottom):
        for power in range(self.low, self.high + 1):
            x = self.x(10.0 ** power)
            yield f'<line x1="{x:.1f}" y1="{TOP - 6}" x2="{x:.1f}" y2="{bottom}" stroke="{GRID}"/>'
            label = f"{10.0 ** power:g} s" if power >= 0 else f"{10.0 ** (power + 3):g} ms"
            yield text(x, TOP - 12, label, 11, FAINT, "middle")


def group(y, load, shown, axis):
    parts = [text(14, y + 15, load["words"][0].upper() + load["words"][1:], 13, weight="bold")]
    y += HEADING
    for row in shown:
        end = max(axis.x(row.median), LEFT + 2)
        weight = "bold" if row.program in (OWN, PREPARING) else "normal"
        parts.append(text(LEFT - 8, y + 12, row.program, 12, anchor="end", weight=weight))
        parts.append(f'<rect x="{LEFT}" y="{y}" width="{end - LEFT:.1f}" height="{BAR}" '
                     f'fill="{colour(row.program)}"/>')
        parts.append(text(end + 6, y + 12, time_text(row.median), 12, weight=weight))
        y += BAR + GAP
    return parts, y + GROUP_GAP


def svg(machine, loads, measured):
    """The picture; empty when nothing was measured."""
    groups = [(load, sorted((row for row in rows(measured[load["name"]]) if row.median), key=lambda row: row.median))
              for load in loads if not load["series"]]
    times = [row.median for _, shown in groups for row in shown]
    if not times:
        return ""
    axis = Axis(times)
    parts = []
    y = TOP
    for load, shown in groups:
        more, y = group(y, load, shown, axis)
        parts += more
    height = y + 24
    parts.append(text(14, height - 12, f"Medians on {machine}; shorter is better, each line is ten times the last.",
                      10.5, FAINT))
    return "\n".join([
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}" height="{height}" viewBox="0 0 {WIDTH} {height}" '
        f'font-family="sans-serif" role="img" aria-label="Time that each program takes for each load">',
        f'<rect width="{WIDTH}" height="{height}" fill="#ffffff"/>',
        *axis.lines(y - GROUP_GAP + 4), *parts, "</svg>", ""])
