#!/usr/bin/env python3
"""check-messages.py [--list]: whether docs/messages.md names every message of the sources.

A message is a literal of at least two words: what is logged, shown in a box, printed, or given as the reason of a
failure. Captions of controls and pieces of documents, which are no messages, stand in the lists below. A message
that is put together of several literals is looked for piece by piece. --list shows the pieces with their places.
"""

import re
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
PAGE = ROOT / "docs" / "messages.md"
FOLDERS = ("app", "batch", "dirmerge", "engine", "platform", "ui")

# Captions of controls and titles of dialogs, as they stand in the user's guide.
CAPTIONS = {
    "1st input file", "2nd input file", "Output (result) file", "Clear %1", "Name of the %1", "Select... %1",
    "Status of the %1", "Go! (launch PDF merge", "CANCEL (abort", "Close display window", "Swap the two input files",
    "Merge all PDF in a Directory", "Sorting order...", "Lexical ordering", "Lexical ordering (reverse", "By Date",
    "By Date (reverse", "Log window...", "Display output document...", "Do not display", "Select TMP directory",
    "Set default TMP directory", "Ambrose Varnel", "My portable document reader", "Folioweld (version",
    "Folioweld - Log", "Activity log", "Folioweld - Please choose", "input file", "Folioweld - Please choose output file",
    "Folioweld: Choose the OUTPUT FILE", "Folioweld: Choose FOLDER TO MERGE",
    "Folioweld: Choose FOLDER FOR TEMPORARY FILES", "PDF Files (*.pdf)|*.pdf|All Files (*.*)|*.*",
    "Directory merge sorting option", "Please specify your sorting option for directory merge",
    "Sort files according to:", "lexical ordering of file names", "reverse lexical ordering of file names",
    "last modification date and time", "last modification date and time (reversed", "I choose this option",
}
# What is written into documents.
DOCUMENT = {
    "/CreationDate (D:20080101010101) /ModDate (D:20080101010101) /Producer (Folioweld", "trailer << /Size",
    "/Type /Pages /Kids [",
}

COMMENT = r"//[^\n]*|/\*.*?\*/"
LITERAL = r'"(?:\\.|[^"\\\n])*"'
TOKENS = re.compile(rf"({COMMENT})|('(?:\\.|[^'\\])')|(^\s*#[^\n]*)|({LITERAL}(?:\s*{LITERAL})*)", re.M | re.S)
ESCAPES = {"\\r": " ", "\\n": " ", "\\t": " ", '\\"': '"', "\\\\": "\\"}


def pieces(path):
    """Every literal of a source with its line, adjacent ones as the compiler joins them."""
    text = path.read_text()
    for token in TOKENS.finditer(text):
        if token[4]:
            literals = re.findall(LITERAL, token[4], re.S)
            yield text.count("\n", 0, token.start()) + 1, "".join(literal[1:-1] for literal in literals)


def plain(text):
    """Without what differs between a source and a page: line ends, runs of blanks, quotes and blanks around."""
    text = re.sub(r"\\(?:x[0-9a-f]+|.)", lambda escape: ESCAPES.get(escape[0], " "), text)
    return re.sub(r"\s+", " ", text).strip(" \"'<>()+")


def is_message(text):
    return len(re.findall(r"[A-Za-z]{2,}", text)) >= 2 and " " in text


def messages():
    for folder in FOLDERS:
        for path in sorted((ROOT / folder).glob("*.[ch]*")):
            if path.suffix in (".cpp", ".h"):
                for line, literal in pieces(path):
                    text = plain(literal)
                    if is_message(text) and text not in CAPTIONS | DOCUMENT:
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
