#!/usr/bin/env python3
"""check-architecture.py: whether the files and functions that ARCHITECTURE.md names are where it says.

A row of a table names its files itself, or the line above the table does; its other names in backquotes stand in
one of them. In any other text, only names of files are looked for.
"""

import re
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
PAGE = ROOT / "ARCHITECTURE.md"


def is_file_name(name):
    return re.fullmatch(r"[\w/]+\.(cpp|h|py|sh|md)", name) and "/" in name


def problems():
    above = []
    for number, line in enumerate(PAGE.read_text().split("\n"), 1):
        names = re.findall(r"`([^`]+)`", line)
        files = [name for name in names if is_file_name(name)]
        yield from (f"{PAGE.name}:{number}: there is no {name}" for name in files if not (ROOT / name).is_file())
        if line.startswith("**"):
            above = files
        if line.startswith("|"):
            places = [ROOT / name for name in files or above]
            sources = "\n".join(place.read_text() for place in places if place.is_file())
            yield from (f"{PAGE.name}:{number}: there is no {name} in {', '.join(files or above)}" for name in names
                        if re.fullmatch(r"\w+", name) and not re.search(rf"\b{name}\b", sources))


def main():
    found = list(problems())
    print("\n".join(found))
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
