"""The deliberate faults that scripts/mutate.py tries: those of mutations.txt, and those that rules make of a line."""

import os
import re
import subprocess
from dataclasses import dataclass

ROOT = os.path.dirname(os.path.dirname(os.path.realpath(__file__)))
LIST = os.path.join(ROOT, "scripts", "mutations.txt")
FOLDERS = ("engine", "dirmerge")
FEWEST_FAULTS = 60
ROW = re.compile(r"(?P<breaks>.+?): `(?P<old>[^`]+)` -> `(?P<new>[^`]*)`(?: in (?P<file>\S+))?"
                 r"(?: unseen: (?P<excuse>.+))?")

# What generated faults do to a line; text in quotes and comments are left alone.
BLANK_OUT = re.compile(r'"(?:\\.|[^"\\])*"|\'(?:\\.|[^\'\\])+\'|//.*')
RULES = [(re.compile(pattern), new) for pattern, new in (
    (r" < ", " <= "), (r" <= ", " < "), (r" > ", " >= "), (r" >= ", " > "),
    (r" == ", " != "), (r" != ", " == "), (r" && ", " || "), (r" \|\| ", " && "),
    (r" [+-] 1\b(?!\.)", ""), (r"!(?=[A-Za-z_])", ""), (r"\btrue\b", "false"), (r"\bfalse\b", "true"),
    (r"(?<=^if )\((?=.*\) (return|continue|break|Fail))", "(false && "),
    (r"(?<= = )\d+(?=;$)", lambda number: str(int(number[0]) + 1)),
    (r"^(\+\+|--)?[A-Za-z_][\w.>:\[\]-]*\(.*\);$", ";"), (r"^(\+\+|--)[\w.>\[\]-]+;$", ";"),
)]


@dataclass(frozen=True)
class Fault:
    file: str
    breaks: str
    old: str
    new: str
    start: int
    excuse: str = ""

    def applied(self, text):
        return text[: self.start] + self.new + text[self.start + len(self.old) :]


def sources():
    """{file: text} of everything that a fault can be put into."""
    texts = {}
    for folder in FOLDERS:
        for name in sorted(os.listdir(os.path.join(ROOT, folder))):
            if name.endswith((".cpp", ".h")):
                with open(os.path.join(ROOT, folder, name), encoding="utf-8") as file:
                    texts[f"{folder}/{name}"] = file.read()
    return texts


def listed(texts):
    """(faults of the list, what is wrong with the list in words)."""
    faults, problems = [], []
    with open(LIST, encoding="utf-8") as rows:
        for number, row in enumerate(rows, 1):
            row = row.rstrip("\n")
            if not row or row.startswith("#"):
                continue
            fields = ROW.fullmatch(row)
            if not fields or fields["old"] == fields["new"]:
                problems.append(f"{LIST}:{number}: no fault: {row}")
                continue
            places = [(name, found.start()) for name, text in texts.items() if fields["file"] in (None, name)
                      for found in re.finditer(re.escape(fields["old"]), text)]
            if len(places) != 1:
                where = ", ".join(name for name, _ in places) or "nowhere"
                problems.append(f"{LIST}:{number}: {fields['breaks']}: has to stand once, stands {len(places)} times "
                                f"({where}): {fields['old']}")
                continue
            (file, start), = places
            faults.append(Fault(file, fields["breaks"], fields["old"], fields["new"], start, fields["excuse"] or ""))
    problems += [f"{LIST}: no fault in {folder}/" for folder in FOLDERS
                 if not any(fault.file.startswith(folder + "/") for fault in faults)]
    if len(faults) < FEWEST_FAULTS:
        problems.append(f"{LIST}: {len(faults)} faults, fewer than {FEWEST_FAULTS}")
    return faults, problems


def generated(texts, since=""):
    """Faults that the rules make, in every line or in those that differ from the commit SINCE."""
    changed = changed_lines(since) if since else None
    for file, text in texts.items():
        start = 0
        for number, line in enumerate(text.splitlines(keepends=True), 1):
            if changed is None or number in changed.get(file, ()):
                yield from generated_in(file, number, line.rstrip("\n"), start)
            start += len(line)


def generated_in(file, number, line, start):
    indent = len(line) - len(line.lstrip())
    code = BLANK_OUT.sub(lambda quoted: "\0" * len(quoted[0]), line)[indent:].rstrip("\0 ")
    if code.startswith(("static_assert", "template")) or indent == 0 and not code.startswith("constexpr "):
        return
    for pattern, new in RULES:
        for found in pattern.finditer(code):
            place = indent + found.start()
            old = line[place : indent + found.end()]
            yield Fault(file, f"{number}:{place + 1}: {line.strip()}", old,
                        new if isinstance(new, str) else new(found), start + place)


def changed_lines(since):
    """{file: numbers of the lines that the commit SINCE does not have}."""
    diff = subprocess.run(["git", "diff", "-U0", "--no-prefix", since, "--", *FOLDERS], cwd=ROOT, check=True,
                          capture_output=True, text=True).stdout
    lines, file = {}, ""
    for row in diff.splitlines():
        if row.startswith("+++ "):
            file = row[4:]
        hunk = re.match(r"@@ \S+ \+(\d+)(?:,(\d+))? @@", row)
        if hunk:
            lines.setdefault(file, set()).update(range(int(hunk[1]), int(hunk[1]) + int(hunk[2] or 1)))
    return lines
