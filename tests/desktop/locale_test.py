#!/usr/bin/env python3
"""The language and the country of the user change nothing in what is written."""

import os
import subprocess
from pathlib import Path

from acting_window import ActingWindow
from case import DesktopTest, main
from documents import LETTER, REPORT, STATIONS
from locales import is_known, make_locales
from window import EXIT, GO, PROGRAMS, pages, select

# A decimal comma; another character set; from right to left; letters that change their case in their own way.
LOCALES = ("de_DE.UTF-8", "de_DE.ISO-8859-1", "ar_EG.UTF-8", "he_IL.UTF-8", "tr_TR.UTF-8")
# The names in the order of their bytes. In some of these locales a dictionary has another one, and the last one is
# text in none with UTF-8.
NAMES = (b"Z.pdf", b"a.pdf", "ä.PDF".encode(), "İ I i.pdf".encode(), b"\xe4.pdf")
SOURCES = (LETTER, REPORT, STATIONS, REPORT, LETTER)


class Locales(DesktopTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.locales = make_locales(cls.desktop.folder / "locales", LOCALES)

    def setUp(self):
        super().setUp()
        self.environment.update(self.locales)
        self.documents = self.folder / "to join"
        self.documents.mkdir()
        for name, source in zip(NAMES, SOURCES):
            Path(os.fsdecode(os.fsencode(self.documents) + b"/" + name)).write_bytes(source.read_bytes())
        self.joined = Path(os.fsdecode(os.fsencode(self.folder) + b"/\xe4\xc3\xa4.pdf"))

    def use(self, locale):
        self.assertTrue(locale == "C.UTF-8" or is_known(locale, self.environment), locale)
        self.environment.update(LC_ALL=locale, LANG=locale)

    def taken(self, path):
        """The content of a file, which is gone afterwards."""
        content = path.read_bytes()
        path.unlink()
        return content

    def settings_file(self):
        return Path(self.environment["XDG_CONFIG_HOME"]) / "folioweld" / "settings.ini"

    def assert_the_same(self, join):
        """What it writes, and the settings that it leaves, are those of the locale without a country."""
        self.use("C.UTF-8")
        wanted = join(), self.taken(self.settings_file())
        for locale in LOCALES:
            with self.subTest(locale=locale):
                self.use(locale)
                self.assertEqual((join(), self.taken(self.settings_file())), wanted)

    def test_a_folder_is_joined_to_the_same_bytes_without_the_window(self):
        def join():
            subprocess.run([PROGRAMS / "folioweld", self.joined, self.documents], env=self.environment, check=True,
                           capture_output=True)
            self.assertEqual(pages(self.joined), sum(map(pages, SOURCES)))
            return self.taken(self.joined)

        self.assert_the_same(join)

    def test_what_is_said_is_the_same(self):
        (self.documents / "0.pdf").write_bytes(b"%PDF-1.4\n%1234\nno table\n")

        def said():
            run = subprocess.run([PROGRAMS / "folioweld", self.joined, self.documents], env=self.environment,
                                 capture_output=True)
            self.assertEqual(run.returncode, 3)
            self.joined.unlink()
            return run.stderr

        self.assert_the_same(said)

    def test_a_folder_is_joined_to_the_same_bytes_by_the_window_program(self):
        def join():
            window = self.open(self.joined, self.documents, ready=False)
            window.wait_end(0)
            return self.taken(self.joined)

        self.assert_the_same(join)

    def test_the_window_joins_two_documents_to_the_same_bytes(self):
        joined = self.folder / "joined.pdf"

        def join():
            window = self.open(kind=ActingWindow)
            window.fill(LETTER, REPORT, joined)
            window.click(GO)
            window.wait_finished()
            window.leave(lambda: window.click(EXIT))
            return self.taken(joined)

        self.assert_the_same(join)

    def test_the_window_joins_a_folder_to_the_same_bytes(self):
        joined = self.folder / "joined.pdf"

        def join():
            window = self.open(kind=ActingWindow)
            window.merge_folder(self.documents, joined)
            self.wait(lambda: joined.exists() and window.is_enabled(select(0)), "the folder is joined")
            window.leave(lambda: window.click(EXIT))
            return self.taken(joined)

        self.assert_the_same(join)


if __name__ == "__main__":
    main()
