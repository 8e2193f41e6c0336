#!/usr/bin/env python3
"""The entries in the menus of file managers start the window program with what was selected, whatever its name."""

import configparser
import re
import shlex
import subprocess

from gi.repository import GLib
from project import ID, InstallationTest, install, main

NAMES = ["a.pdf", "it's \"quoted\".pdf", "100 % %F %%s.pdf", "two\nlines.pdf", "-v", "$HOME `x` \\ #1 & ; *.pdf", "\u00e4"]


def expand(command, quote):
    """The command line with the selected files, each quoted, where it has its "%F"."""
    files = " ".join(quote(f"/some where/{name}") for name in NAMES)
    return re.sub("%[%F]", lambda mark: "%" if mark[0] == "%%" else files, command)


def quote_as_nemo(path):
    return re.sub(r"""[ \t'"\\#]""", r"\\\g<0>", path).replace("\n", "'\n'")


class FileManagers(InstallationTest):
    def setUp(self):
        super().setUp()
        self.prefix = self.folder / "my 50 % programs"
        install(prefix=self.prefix)
        program = self.prefix / "libexec/folioweld/folioweld-window"
        program.write_text("#!/bin/sh\nprintf '%s\\0' \"$@\"\n")

    def entry(self, name, group):
        # As GLib and KDE read them: a backslash is an escape, and what is between brackets is a language.
        keys = configparser.RawConfigParser(delimiters="=", strict=True)
        keys.optionxform = str
        keys.read(self.prefix / "share" / name, encoding="utf-8")
        return {key: value.replace("\\\\", "\\") for key, value in keys[group].items()}

    def assert_started_with_all(self, words):
        told = subprocess.run(words, env={"DISPLAY": ":4711"}, capture_output=True, check=True).stdout.decode()
        self.assertEqual(told.split("\0"), ["", *(f"/some where/{name}" for name in NAMES), ""])

    def test_of_kde_give_every_name_as_it_is(self):
        for kind in ("folder", "documents"):
            entry = self.entry(f"kio/servicemenus/{ID}.{kind}.desktop", "Desktop Action join")
            self.assert_started_with_all(shlex.split(expand(entry["Exec"], shlex.quote)))

    def test_of_nemo_give_every_name_as_it_is(self):
        for kind in ("folder", "documents"):
            entry = self.entry(f"nemo/actions/folioweld-{kind}.nemo_action", "Nemo Action")
            self.assertNotIn("Quote", entry)
            _, words = GLib.shell_parse_argv(expand(entry["Exec"], quote_as_nemo))
            self.assert_started_with_all(words)

    def test_stand_where_one_folder_or_several_documents_are_selected(self):
        folder = self.entry(f"kio/servicemenus/{ID}.folder.desktop", "Desktop Entry")
        self.assertEqual((folder["MimeType"], folder["X-KDE-RequiredNumberOfUrls"]), ("inode/directory;", "1"))
        documents = self.entry(f"kio/servicemenus/{ID}.documents.desktop", "Desktop Entry")
        self.assertEqual((documents["MimeType"], documents["X-KDE-MinNumberOfUrls"]), ("application/pdf;", "2"))
        folder = self.entry("nemo/actions/folioweld-folder.nemo_action", "Nemo Action")
        self.assertEqual((folder["Extensions"], folder["Selection"]), ("dir;", "s"))
        documents = self.entry("nemo/actions/folioweld-documents.nemo_action", "Nemo Action")
        self.assertEqual((documents["Mimetypes"], documents["Selection"]), ("application/pdf;", "m"))


if __name__ == "__main__":
    main()
