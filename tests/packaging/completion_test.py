#!/usr/bin/env python3
"""The Tab key in a real bash: options first, then PDF files and folders."""

import os
import pty
import select
import signal
import time

from project import ROOT, FolderTest, main

SECONDS = 60
PROMPT = "ready> "


class Shell:
    """An interactive bash with the completions of the system and this project's among those it looks up."""

    def __init__(self, folder, data):
        self._said = ""
        environment = {"HOME": str(folder), "PATH": "/usr/bin:/bin", "TERM": "dumb", "LC_ALL": "C.UTF-8",
                       "XDG_DATA_DIRS": str(data), "XDG_DATA_HOME": str(folder / "none"), "INPUTRC": "/dev/null",
                       "HISTFILE": "", "PS1": ""}
        self._process, self._terminal = pty.fork()
        if self._process == 0:
            os.chdir(folder)
            os.execve("/bin/bash", ["bash", "--norc", "--noprofile", "-i"], environment)
        self.type("bind 'set bell-style none'; bind 'set enable-bracketed-paste off'; stty -echoctl; "
                  f". /usr/share/bash-completion/bash_completion; PS1='{PROMPT[:4]}''{PROMPT[4:]}'\n")
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

    def complete(self, line, keys="\t"):
        """The words that the shell would run after the Tab key, of which the first is left out."""
        # A function of the program's name shows its arguments; the end mark is put together by the shell so that
        # the echo of what was typed does not hold it.
        self.type('folioweld() { printf "<%s>" "$@"; echo "e""nd"; }\n')
        self.wait(PROMPT)
        self.type(line + keys + "\n")
        said = self.wait("end\r\n").removesuffix("end\r\n")
        self.wait(PROMPT)
        return said[said.index("<"):].strip("<>").split("><")

    def offered(self, line):
        """What the shell lists after the Tab key was pressed twice."""
        self.type(line + "\t\t")
        self.wait(line + "\r\n")
        listed = self.wait(PROMPT).removesuffix(PROMPT).split()
        self.type("\x15\n")
        self.wait(PROMPT)
        return sorted(listed)


class Completion(FolderTest):
    def setUp(self):
        super().setUp()
        completions = self.folder / "data/bash-completion/completions"
        completions.mkdir(parents=True)
        (completions / "folioweld").symlink_to(ROOT / "packaging/folioweld.bash")
        work = self.folder / "work"
        for name in ("letters", "old letters", "notes.d"):
            (work / name).mkdir(parents=True)
        for name in ("joined.pdf", "notes.txt", "letter.PDF"):
            (work / name).touch()
        self.shell = Shell(work, self.folder / "data")
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

    def test_nothing_is_added_to_the_form_with_a_bar(self):
        self.assertEqual(self.shell.complete("folioweld 'joined.pdf|letters' let"), ["joined.pdf|letters", "let"])


if __name__ == "__main__":
    main()
