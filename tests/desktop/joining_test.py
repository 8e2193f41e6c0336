#!/usr/bin/env python3
"""A person joins documents with the window."""

from case import DesktopTest, main
from window import ABORT, EXIT, FIRST, GO, OUTPUT, ROOT, SECOND, clear, pages, select

LETTER = ROOT / "examples" / "1-cover-letter.pdf"
REPORT = ROOT / "examples" / "2-report.pdf"


class Joining(DesktopTest):
    def test_joins_two_documents_chosen_in_the_dialogs(self):
        window = self.open()
        joined = self.folder / "joined.pdf"
        window.click(select(FIRST))
        window.answer_file("Folioweld - Please choose 1st input file", LETTER)
        window.wait_path(FIRST, LETTER)
        window.click(select(SECOND))
        window.answer_file("Folioweld - Please choose 2nd input file", REPORT)
        window.wait_path(SECOND, REPORT)
        window.click(select(OUTPUT))
        window.answer_file("Folioweld - Please choose output file", joined)
        window.wait_path(OUTPUT, joined)
        window.click(GO)
        self.wait(lambda: "-> OK" in (window.status(OUTPUT) or ""), "the merge says OK")
        self.wait(lambda: window.is_enabled(GO), "the window is idle again")
        self.assertEqual(pages(joined), pages(LETTER) + pages(REPORT))
        window.click(EXIT)
        window.wait_end()


if __name__ == "__main__":
    main()
