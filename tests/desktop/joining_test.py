#!/usr/bin/env python3
"""A person joins documents with the window."""

from case import DesktopTest, main
from documents import LETTER, REPORT
from window import CHOOSE, EXIT, FIRST, GO, OUTPUT, SECOND, pages, select


class Joining(DesktopTest):
    def test_joins_two_documents_chosen_in_the_dialogs(self):
        window = self.open()
        joined = self.folder / "joined.pdf"
        window.click(select(FIRST))
        window.answer_file(CHOOSE[FIRST], LETTER)
        window.wait_path(FIRST, LETTER)
        window.click(select(SECOND))
        window.answer_file(CHOOSE[SECOND], REPORT)
        window.wait_path(SECOND, REPORT)
        window.click(select(OUTPUT))
        window.answer_file(CHOOSE[OUTPUT], joined)
        window.wait_path(OUTPUT, joined)
        window.click(GO)
        self.wait(lambda: "-> OK" in (window.status(OUTPUT) or ""), "the merge says OK")
        self.wait(lambda: window.is_enabled(GO), "the window is idle again")
        self.assertEqual(pages(joined), pages(LETTER) + pages(REPORT))
        window.leave(lambda: window.click(EXIT))


if __name__ == "__main__":
    main()
