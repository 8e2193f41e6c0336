#!/usr/bin/env python3
"""The same objects, written plainly and with random syntax (blanks, comments, escapes, hexadecimal strings), give the
same output: qpdf finds equal objects in it, one by one.

    random_syntax_test.py --program BUILD/app/folioweld [--pairs 250]
"""

import argparse
import json
import random
import shutil
import subprocess
import sys

from program import World

SKIPPED = 77


class Plain:
    """How values are written, the simplest way."""

    def gap(self, needed):
        return b" " if needed else b""

    def blank(self):
        return b" "

    def name(self, value):
        return b"/" + value

    def string(self, value):
        return b"(" + value.replace(b"\\", b"\\\\").replace(b"(", b"\\(").replace(b")", b"\\)") + b")"

    def value(self, value):
        if isinstance(value, dict):
            return b"<<" + b"".join(self.gap(False) + self.name(key) + self.gap(True) + self.value(of)
                                    for key, of in value.items()) + self.gap(False) + b">>"
        if isinstance(value, list):
            return b"[" + b"".join(self.gap(True) + self.value(item) for item in value) + self.gap(False) + b"]"
        if isinstance(value, tuple):  # a reference
            return b"%d%b0%bR" % (value[0], self.blank(), self.blank())
        if isinstance(value, bytes):
            return self.string(value)
        return self.name(value.encode()) if isinstance(value, str) else str(value).encode()


class Odd(Plain):
    """The same in the other ways that docs/format.md allows: no tabs, and no comment inside of a reference."""

    def __init__(self, dice):
        self.dice = dice

    def gap(self, needed):
        count = self.dice.choice((0, 0, 1, 1, 2)) or needed
        return b"".join(b"\n% a (comment /with << marks [ in it\n" if self.dice.random() < 0.1 else self.blank()
                        for _ in range(count))

    def blank(self):
        return self.dice.choice((b" ", b"\n", b"\r\n", b"  ", b" \n "))

    def name(self, value):
        return b"/" + b"".join(b"#%02x" % c if self.dice.random() < 0.1 else bytes([c]) for c in value)

    def string(self, value):
        if self.dice.random() < 0.3:
            digits = value.hex() if self.dice.random() < 0.5 else value.hex().upper()
            return b"<" + b"".join(self.dice.choice((b"", b"", b"", b" ", b"\n")) + digit.encode() for digit in digits) + b">"
        return b"(" + b"".join(self.character(c) for c in value) + b")"

    def character(self, c):
        byte = bytes([c])
        if byte in b"()\\":
            return self.dice.choice((b"\\" + byte, b"\\%03o" % c))
        return self.dice.choice((byte,) * 8 + (b"\\%03o" % c, b"\\\n" + byte))


def random_value(dice, depth=0):
    kind = dice.randrange(8 if depth < 4 else 5)
    if kind == 0:
        return dice.choice((0, 7, -12, 4711, 1.5, -0.25))
    if kind == 1:
        return dice.choice(("Name", "A.b-c", "R", "obj", "Length1"))
    if kind == 2:
        return bytes(dice.choice(b"ab c()\\<>[]/%R0 1") for _ in range(dice.randrange(12)))
    if kind == 3:
        return (dice.randrange(1, 4),)
    if kind == 4:
        return bytes(dice.randrange(128, 256) for _ in range(dice.randrange(1, 6)))
    if kind == 5:
        return [random_value(dice, depth + 1) for _ in range(dice.randrange(5))]
    return {b"K%d" % i: random_value(dice, depth + 1) for i in range(dice.randrange(5))}


def random_objects(dice):
    objects = {1: {b"Type": "Catalog", b"Pages": (2,)}, 2: {b"Type": "Pages", b"Kids": [(3,)], b"Count": 1},
               3: {b"Type": "Page", b"Parent": (2,), b"MediaBox": [0, 0, 200, 100], b"More": [(n,) for n in range(4, 12)]}}
    objects.update({number: {b"Value": random_value(dice)} for number in range(4, 12)})
    return objects


def document(objects, syntax):
    data = b"%PDF-1.4\n%\xe2\xe3\xcf\xd3\n"
    table = b"0000000000 65535 f \n"
    for number, value in objects.items():
        table += b"%010d 00000 n \n" % len(data)
        # The structure's own keys are looked for as they are spelled.
        data += b"%d 0 obj\n%b\nendobj\n" % (number, (syntax if number > 3 else Plain()).value(value))
    return data + b"xref\n0 %d\n%btrailer\n<</Size %d\n/Root 1 0 R>>\nstartxref\n%d\n%%%%EOF\n" % (
        len(objects) + 1, table, len(objects) + 1, len(data))


def objects_in_output(program, data):
    """The output of the document joined with itself, as qpdf sees it."""
    with World() as world:
        names = {name: world.path("in", name) for name in ("a.pdf", "b.pdf")}
        for path in names.values():
            with open(path, "wb") as file:
                file.write(data)
        done = subprocess.run([program, world.path("out", "o.pdf"), world.path("in")], capture_output=True,
                              env={"HOME": world.path("home"), "TMPDIR": world.path("tmp")}, check=False)
        if done.returncode != 0:
            raise AssertionError(f"status {done.returncode}: {done.stderr.decode(errors='replace')}")
        seen = subprocess.run(["qpdf", "--json=2", "--json-key=qpdf", "--json-stream-data=none", world.path("out", "o.pdf")],
                              capture_output=True, check=True)
        return json.loads(seen.stdout)["qpdf"][1]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True)
    parser.add_argument("--pairs", type=int, default=250)
    options = parser.parse_args()
    if not shutil.which("qpdf"):
        print("SKIPPED: qpdf is missing")
        return SKIPPED
    for pair in range(options.pairs):
        dice = random.Random(pair)
        objects = random_objects(dice)
        plain, odd = document(objects, Plain()), document(objects, Odd(dice))
        try:
            expected, found = (objects_in_output(options.program, data) for data in (plain, odd))
        except (AssertionError, subprocess.CalledProcessError) as failure:
            print(f"pair {pair}: {failure}\n{odd!r}")
            return 1
        for name in sorted(set(expected) | set(found)):
            if expected.get(name) != found.get(name):
                print(f"pair {pair}, {name}:\n  {expected.get(name)}\n  {found.get(name)}\n{odd!r}")
                return 1
    print(f"{options.pairs} pairs of documents, {len(expected)} objects each: all equal")
    return 0


if __name__ == "__main__":
    sys.exit(main())
