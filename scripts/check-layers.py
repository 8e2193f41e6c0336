#!/usr/bin/env python3
"""check-layers.py [TREE]: no folder includes another one that it may not use, no file a source, and no two each other.

The arrows of ARCHITECTURE.md, kept: a folder of the program includes headers of its own and of what the table names
for it, and nothing but the language's otherwise. A header counts as one file with the source of its name.
"""
import pathlib
import re
import sys

MAY_USE = {
    "platform": ["the system"],
    "engine": ["platform"],
    "dirmerge": ["platform", "engine"],
    "batch": ["platform", "engine", "dirmerge"],
    "prepare": ["platform", "engine", "batch", "libqpdf"],
    "ui": ["platform", "engine", "dirmerge", "the toolkit"],
    "app": ["platform", "engine", "dirmerge", "batch", "ui"],
}
OTHERS = {
    "the system": re.compile(r"sys/|(unistd|fcntl|dirent|poll|spawn)\.h$"),
    "the toolkit": re.compile(r"Q[A-Z]\w*$|Qt\w*/|gio/|xcb/"),
    "libqpdf": re.compile(r"qpdf/"),
    "the tests": re.compile(r"(tests|fuzz|bench)/"),
}
# Whatever starts without a window starts without the toolkit.
ONLY = {"app/main.cpp": ["ui"], "app/answers.cpp": ["ui"], "app/window_program.cpp": ["ui", "batch"]}
INCLUDE = re.compile(r'^\s*#\s*include\s*[<"]([^>"]+)[>"]', re.MULTILINE)


def used_by(header):
    """What an included header belongs to; None for those of the language."""
    if header.split("/")[0] in MAY_USE:
        return header.split("/")[0]
    return next((name for name, pattern in OTHERS.items() if pattern.match(header)), None)


def mutual(needs):
    """The pairs of files that need each other."""
    return [f"{a} and {b} need each other" for a in sorted(needs) for b in sorted(needs[a])
            if a < b and a in needs.get(b, ())]


def main():
    tree = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else pathlib.Path(__file__).parent.parent)
    wrong, read, needs = [], 0, {}
    for folder, may_use in MAY_USE.items():
        for path in sorted(p for p in (tree / folder).rglob("*") if p.suffix in (".h", ".cpp")):
            read += 1
            name = path.relative_to(tree).as_posix()
            own = needs.setdefault(name.rsplit(".", 1)[0], set())
            allowed = {folder, *may_use} - set(ONLY.get(name, []))
            for header in INCLUDE.findall(path.read_text(encoding="utf-8")):
                used = used_by(header)
                own.add(header.rsplit(".", 1)[0])
                if header.endswith(".cpp"):
                    wrong.append(f"{name} includes the source {header}")
                if used is not None and used not in allowed:
                    wrong.append(f"{name} includes {header}, and {folder} may not use {used}")
    wrong += mutual(needs)
    print("\n".join(wrong) if wrong else f"{read} files include only what they may")
    return 1 if wrong or read == 0 else 0


if __name__ == "__main__":
    sys.exit(main())
