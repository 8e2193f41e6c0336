#!/usr/bin/env python3
"""check-messages.py [--list]: whether docs/messages.md names every message of the sources.

A message is a literal of at least two words: what is logged, shown in a box, printed, or given as the reason of a
failure. In ui/, where most literals are captions, it stands in a statement that shows or logs it. A message that is
put together of several literals is looked for piece by piece. --list shows the pieces with their places.
"""

import re
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
PAGE = ROOT / "docs" / "messages.md"
FOLDERS = ("app", "batch", "dirmerge", "engine", "platform", "prepare", "ui")

# Titles of dialogs, the dialogs' filter, and what is written into documents.
NO_MESSAGE = re.compile(r"Folioweld( -|:) (Please )?[Cc]hoose|PDF Files|/\w+ [(/\[]|trailer <<|\[ /XYZ|rdf:Alt|FE FF$")
# In ui/: a box, a refusal, a line of the log, a notice, or a text that has a name and is no title.
SHOWN = re.compile(r"ShowBox|BoxIcon|ShowInformation|Refuse\(|AddLogLine|Notice|char k(?!Title)")
# What only a caller who hands an operation of the engine a state or an argument of his own is told. No run prints it.
INTERFACE = {
    "no file is named", "a text position starts at 1", "there is no character before the first one",
    "a group has no end", "no cross-reference section was found", "two objects claim one place in the object table",
    "the object table does not cover the objects of both inputs", "a length is kept for an object without a stream",
    "the stream's length is given twice", "the object has no value", "the catalog cannot be rewritten",
    "the root of the page tree does not end with",
    # libqpdf asks for no such place.
    "a place before the file's beginning",
    # What libqpdf is told of where its text comes from.
    "default appearance",
    # No part asks for that.
    "only indirect objects are written anew",
    # The program reads its lines without this log.
    "*** Warning! *** Buffer size had to be increased from", "*** Warning! <=",
    "***** WARNING!!! ***** Buffer size remained too small although I retried", "times ***** WARNING!!! <=",
}

COMMENT = r"//[^\n]*|/\*.*?\*/"
LITERAL = r'"(?:\\.|[^"\\\n])*"'
TOKENS = re.compile(rf"({COMMENT})|('(?:\\.|[^'\\])')|(^\s*#[^\n]*)|({LITERAL}(?:\s*{LITERAL})*)", re.M | re.S)
ESCAPES = {"\\r": " ", "\\n": " ", "\\t": " ", '\\"': '"', "\\\\": "\\"}


def pieces(path):
    """Every literal of a source with its line, adjacent ones as the compiler joins them, and the statement so far."""
    text = path.read_text()
    for token in TOKENS.finditer(text):
        if token[4]:
            literals = re.findall(LITERAL, token[4], re.S)
            statement = re.split(r"[;{}]\n", text[:token.start()])[-1]
            yield text.count("\n", 0, token.start()) + 1, "".join(literal[1:-1] for literal in literals), statement


def plain(text):
    """Without what differs between a source and a page: line ends, runs of blanks, quotes and blanks around."""
    text = re.sub(r"\\(?:x[0-9a-f]+|.)", lambda escape: ESCAPES.get(escape[0], " "), text)
    return re.sub(r"\s+", " ", text).strip(" \"'<>()+")


def is_message(text):
    return len(re.findall(r"[A-Za-z]{2,}", text)) >= 2 and " " in text and not NO_MESSAGE.match(text)


def messages():
    for folder in FOLDERS:
        for path in sorted((ROOT / folder).rglob("*.[ch]*")):
            if path.suffix in (".cpp", ".h"):
                for line, literal, statement in pieces(path):
                    text = plain(literal)
                    if is_message(text) and text not in INTERFACE and (folder != "ui" or SHOWN.search(statement)):
                        yield f"{path.relative_to(ROOT)}:{line}", text


def main():
    found = list(messages())
    if sys.argv[1:] == ["--list"]:
        for place, text in found:
            print(f"{place}: {text}")
        return 0
    page = plain(PAGE.read_text())
    missing = [(place, text) for place, text in found if text not in page]
    for place, text in missing:
        print(f"{place}: docs/messages.md does not have: {text}")
    if not found:
        print("no message was found in the sources")
    return 1 if missing or not found else 0


if __name__ == "__main__":
    sys.exit(main())
