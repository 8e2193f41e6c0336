#!/usr/bin/env python3
"""changelog.py CHANGELOG.md: prints the releases of the changelog in the form that Debian packages carry.

With --newest it prints the newest release and its date instead. A section without a date is no release yet.
"""

import email.utils
import re
import sys
import textwrap
from datetime import datetime, timezone
from pathlib import Path

MAINTAINER = "The Folioweld developers <maintainers@folioweld.example>"
HEADING = re.compile(r"## (\d+(?:\.\d+)*) - (\d{4}-\d{2}-\d{2})")


def releases(text):
    """Version, date and entries of every release, the newest first."""
    found = []
    for section in re.split(r"^(?=## )", text, flags=re.MULTILINE)[1:]:
        heading, body = section.split("\n", 1)
        match = HEADING.fullmatch(heading.strip())
        if match:
            found.append((match[1], match[2], list(entries(body))))
    return found


def entries(body):
    """The paragraphs and list items of a section, each on one line; its own headings are left out."""
    for block in re.split(r"\n\s*\n|\n(?=- )", body):
        lines = [line for line in block.splitlines() if not line.startswith("#")]
        text = " ".join(" ".join(lines).split()).removeprefix("- ").replace("`", "").replace("**", "")
        if text:
            yield text


def debian(version, date, texts):
    lines = [f"folioweld ({version}) stable; urgency=medium", ""]
    for text in texts:
        lines += textwrap.wrap(text, 76, initial_indent="  * ", subsequent_indent="    ", break_on_hyphens=False)
    when = datetime.fromisoformat(date).replace(tzinfo=timezone.utc)
    return "\n".join(lines + ["", f" -- {MAINTAINER}  {email.utils.format_datetime(when)}", ""])


def main(arguments):
    found = releases(Path(arguments[-1]).read_text(encoding="utf-8"))
    if not found:
        sys.exit(f"{arguments[-1]}: no release in it")
    if "--newest" in arguments:
        print(*found[0][:2])
        return
    sys.stdout.reconfigure(encoding="utf-8")
    print("\n".join(debian(*release) for release in found), end="")


main(sys.argv[1:])
