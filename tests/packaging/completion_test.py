#!/usr/bin/env python3
"""The Tab key in real shells: options first, then PDF files and folders."""

import os
import pty
import select
import shutil
import signal
import subprocess
import time
import unittest

from project import ROOT, FolderTest, main

SECONDS = 60
PROMPT = "ready> "


class Shell:
    """An interactive shell on a terminal, with this project's completion loaded."""

    program = ()
    settings = ""

    def __init__(self, folder, environment):
        self._said = ""
        self._process, self._terminal = pty.fork()
        if self._process == 0:
            os.chdir(folder)
            os.execve(self.program[0], self.program, environment)
        self.type(f"stty -echoctl; {self.settings}; PS1='{PROMPT[:4]}''{PROMPT[4:]}'\n")
        self.wait(PROMPT)

    def close(self):
        os.kill(self._process, signal.SIGKILL)
        os.waitpid(self._process, 0)
        os.close(self._terminal)

    def type(self, text):
        os.write(self._terminal, text.encode())

    def wait(self, text):
        """Reads until the text was written; all that was written up to its end."""
        end = time.monotonic() + SECONDS
        while text not in self._said:
            ready, _, _ = select.select([self._terminal], [], [], max(0, end - time.monotonic()))
            if not ready:
                raise AssertionError(f"waited in vain for {text!r}; there is {self._said!r}")
            self._said += os.read(self._terminal, 4096).decode()
        before, _, self._said = self._said.partition(text)
        return before + text

    def complete(self, line):
        """The words that the shell would run after the Tab key, of which the first is left out."""
        # A function of the program's name shows its arguments; its marks are put together by the shell so that the
        # echo of what was typed does not hold them.
        self.type('folioweld() { printf "be""gin"; printf "<%s>" "$@"; echo "e""nd"; }\n')
        self.wait(PROMPT)
        self.type(line + "\t\n")
        said = self.wait("end\r\n").removesuffix("end\r\n")
        self.wait(PROMPT)
        return said[said.index("begin<") + 5:].strip("<>").split("><")


class Bash(Shell):
    program = ("/bin/bash", "--norc", "--noprofile", "-i")
    settings = ("bind 'set bell-style none'; bind 'set enable-bracketed-paste off'; "
                ". /usr/share/bash-completion/bash_completion")


class Zsh(Shell):
    program = ("/bin/zsh", "-f", "-i")
    settings = "setopt no_auto_remove_slash; fpath=(~/zsh $fpath); autoload -U compinit; compinit -D -u"


class CompletionTest(FolderTest):
    def setUp(self):
        super().setUp()
        for place in ("data/bash-completion/completions/folioweld", "zsh/_folioweld"):
            link = self.folder / place
            link.parent.mkdir(parents=True)
            link.symlink_to(ROOT / ("packaging/folioweld." + ("zsh" if "zsh" in place else "bash")))
        self.work = self.folder / "work"
        for name in ("letters", "old letters", "notes.d"):
            (self.work / name).mkdir(parents=True)
        for name in ("joined.pdf", "notes.txt", "letter.PDF"):
            (self.work / name).touch()
        self.environment = {
            "HOME": str(self.folder), "PATH": "/usr/bin:/bin", "TERM": "dumb", "LC_ALL": "C.UTF-8",
            "XDG_DATA_DIRS": str(self.folder / "data"), "XDG_DATA_HOME": str(self.folder / "none"),
            "INPUTRC": "/dev/null", "HISTFILE": "", "PS1": ""}


class Completion:
    """What bash and zsh do alike."""

    kind = None

    def setUp(self):
        super().setUp()
        self.shell = self.kind(self.work, self.environment)
        self.addCleanup(self.shell.close)

    def test_the_output_is_a_pdf_file(self):
        self.assertEqual(self.shell.complete("folioweld jo"), ["joined.pdf"])

    def test_the_output_may_lie_in_a_folder_and_is_no_other_file(self):
        self.assertEqual(self.shell.complete("folioweld not"), ["notes.d/"])

    def test_a_source_is_a_folder_or_a_pdf_file(self):
        self.assertEqual(self.shell.complete("folioweld joined.pdf lette"), ["joined.pdf", "letter"])
        self.assertEqual(self.shell.complete("folioweld joined.pdf letters"), ["joined.pdf", "letters/"])
        self.assertEqual(self.shell.complete("folioweld joined.pdf letters letter.P"),
                         ["joined.pdf", "letters", "letter.PDF"])

    def test_a_folder_with_a_blank_stays_one_word(self):
        self.assertEqual(self.shell.complete("folioweld joined.pdf ol"), ["joined.pdf", "old letters/"])

    def test_options_stand_before_the_output_and_not_after_it(self):
        self.assertEqual(self.shell.complete("folioweld --verb"), ["--verbose"])
        self.assertEqual(self.shell.complete("folioweld --order=date-r"), ["--order=date-reversed"])
        self.assertEqual(self.shell.complete("folioweld --progress=n"), ["--progress=never"])
        self.assertEqual(self.shell.complete("folioweld joined.pdf --verb"), ["joined.pdf", "--verb"])
        self.assertEqual(self.shell.complete("folioweld -- --verb"), ["--", "--verb"])


class BashCompletion(Completion, CompletionTest):
    kind = Bash

    def test_nothing_is_added_to_the_form_with_a_bar(self):
        self.assertEqual(self.shell.complete("folioweld 'joined.pdf|letters' let"), ["joined.pdf|letters", "let"])


@unittest.skipUnless(os.access(Zsh.program[0], os.X_OK), "there is no zsh")
class ZshCompletion(Completion, CompletionTest):
    kind = Zsh


@unittest.skipUnless(shutil.which("fish"), "there is no fish")
class FishCompletion(CompletionTest):
    """fish tells what it would offer without a terminal."""

    def offered(self, line):
        commands = f"source {ROOT}/packaging/folioweld.fish; complete -C $argv[1]"
        result = subprocess.run(["fish", "--no-config", "-c", commands, line], cwd=self.work, env=self.environment,
                                capture_output=True, text=True, check=True)
        self.assertEqual(result.stderr, "")
        return sorted(row.partition("\t")[0] for row in result.stdout.splitlines())

    def test_outputs_and_sources_are_pdf_files_and_folders(self):
        everything = ["joined.pdf", "letter.PDF", "letters/", "notes.d/", "old letters/"]
        self.assertEqual(self.offered("folioweld "), everything)
        self.assertEqual(self.offered("folioweld joined.pdf "), everything)
        self.assertEqual(self.offered("folioweld joined.pdf ol"), ["old letters/"])
        self.assertEqual(self.offered("folioweld notes."), ["notes.d/"])

    def test_options_stand_before_the_output_and_not_after_it(self):
        self.assertEqual(self.offered("folioweld -v --verb"), ["--verbose"])
        self.assertEqual(self.offered("folioweld --order=date-r"), ["--order=date-reversed"])
        self.assertEqual(self.offered("folioweld --files0-from=notes"),
                         ["--files0-from=notes.d/", "--files0-from=notes.txt"])
        self.assertEqual(self.offered("folioweld joined.pdf --verb"), [])
        self.assertEqual(self.offered("folioweld -- --verb"), [])


if __name__ == "__main__":
    main()
