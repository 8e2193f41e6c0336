#!/usr/bin/env python3
"""check-options.py PROGRAM: --help, the manual page, the README, the guide and the completions name the same options."""

import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
LONG = re.compile(r"(?<![\w-])--([a-z][a-z0-9-]+)")


def man_page():
    text = (ROOT / "packaging/folioweld.1.in").read_text()
    return set(re.findall(r"^\.It .*?Fl -([a-z][a-z0-9-]+)", text, re.MULTILINE))


def page(name):
    """The options of a page's table."""
    text = (ROOT / name).read_text()
    table = [line for line in text.splitlines() if line.startswith(("| `-", "| `--"))]
    return set(LONG.findall("\n".join(line.split("|")[1] for line in table)))


def completion(shell):
    text = (ROOT / f"packaging/folioweld.{shell}").read_text()
    if shell == "fish":
        return set(re.findall(r" -l ([a-z][a-z0-9-]+)", text))
    return set(LONG.findall(text))


def main():
    help_text = subprocess.run([sys.argv[1], "--help"], capture_output=True, text=True, check=True).stdout
    wanted = set(LONG.findall(help_text))
    named = {"the manual page": man_page(), **{name: page(name) for name in ("README.md", "docs/user-guide.md")}}
    named.update({f"packaging/folioweld.{shell}": completion(shell) for shell in ("bash", "zsh", "fish")})
    failed = len(wanted) < 7
    if failed:
        print(f"--help names only {sorted(wanted)}")
    for place, options in named.items():
        if options != wanted:
            print(f"{place}: missing {sorted(wanted - options)}, too many {sorted(options - wanted)}")
            failed = True
    print(f"{len(wanted)} options: {' '.join(sorted(wanted))}")
    return 1 if failed else 0


sys.exit(main())
