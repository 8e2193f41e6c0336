"""What independent programs see in a PDF file: pages, their text, their pixels, and what they complain about."""

import hashlib
import os
import re
import subprocess
import threading
from collections import Counter
from dataclasses import dataclass, field

RESOLUTION = "72"
TOOLS = ("qpdf", "mutool", "pdfinfo", "pdftotext", "pdftoppm")
LONGEST_RUN_SECONDS = 120

# What `qpdf --check` says about every file, be it ever so good.
SAID_OF_EVERY_FILE = re.compile(
    r"checking |PDF Version: |File is |No syntax or stream encoding errors found|errors that qpdf cannot detect"
    r"|[RP] = |User password = |Supplied password is |[a-z ]+: (not )?allowed$"
)


@dataclass(frozen=True)
class Page:
    text: bytes
    width: int
    height: int
    pixels: str  # a digest: the pictures themselves are not kept


@dataclass
class Reading:
    pages: list
    page_counts: dict  # by program
    status: int  # of qpdf --check
    complaints: Counter = field(default_factory=Counter)


def run(command):
    environment = dict(os.environ, LC_ALL="C.UTF-8")
    return subprocess.run(
        command, stdin=subprocess.DEVNULL, capture_output=True, timeout=LONGEST_RUN_SECONDS, env=environment
    )


def complaint_kinds(program, text, path):
    """The lines of text without what differs from file to file: names, object numbers, offsets, counts."""
    kinds = Counter()
    for line in text.decode("latin-1").splitlines():
        line = line.replace(path, "FILE")
        line = re.sub(r" \((object [0-9]+ [0-9]+|trailer|xref [a-z]+)?(, )?(offset [0-9]+)?\)", "", line)
        line = re.sub(r"[0-9]+", "N", line)
        if line.strip():
            kinds[f"{program}: {line.strip()}"] += 1
    return kinds


def split_pictures(data):
    """(width, height, samples) of each binary PPM picture in data."""
    at = 0
    while at < len(data):
        header = re.compile(rb"P6\s+(\d+)\s+(\d+)\s+255\s").match(data, at)
        if not header:
            raise ValueError(f"no picture at byte {at}")
        width, height = int(header[1]), int(header[2])
        at = header.end() + 3 * width * height
        yield width, height, data[header.end() : at]


def render(path, page=None):
    only = ["-f", str(page), "-l", str(page)] if page else []
    return run(["pdftoppm", "-r", RESOLUTION, *only, path])


def read_document(path):
    complaints = Counter()
    check = run(["qpdf", "--check", path])
    said = [line for line in check.stdout.splitlines(True) if not SAID_OF_EVERY_FILE.match(line.decode("latin-1"))]
    complaints += complaint_kinds("qpdf", b"".join(said) + check.stderr, path)

    counted = run(["qpdf", "--show-npages", path])
    described = run(["pdfinfo", path])
    in_words = re.search(rb"^Pages:\s+(\d+)", described.stdout, re.M)
    counts = {
        "qpdf": int(counted.stdout) if counted.stdout.strip().isdigit() else -1,
        "pdfinfo": int(in_words[1]) if in_words else -1,
    }

    written = run(["pdftotext", "-enc", "UTF-8", path, "-"])
    complaints += complaint_kinds("pdftotext", written.stderr, path)
    texts = written.stdout.split(b"\f")[:-1]
    drawn = render(path)
    complaints += complaint_kinds("pdftoppm", drawn.stderr, path)
    pictures = [(w, h, hashlib.sha256(samples).hexdigest()) for w, h, samples in split_pictures(drawn.stdout)]
    counts["pdftotext"], counts["pdftoppm"] = len(texts), len(pictures)
    pages = [Page(text, *picture) for text, picture in zip(texts, pictures)]
    return Reading(pages, counts, check.returncode, complaints)


# Links lead to names in the catalog, and of those only the first document's are kept.
SAID_OF_LOST_NAMES = re.compile(r"mutool: warning: (undefined link destination|\.\.\. repeated N times\.\.\.)$")


def mutool_complaints(path):
    """What a second judge of the syntax says of every page, and that it failed where it did."""
    drawn = run(["mutool", "draw", "-q", "-F", "trace", "-o", os.devnull, path])
    kinds = complaint_kinds("mutool", drawn.stderr, path)
    complaints = Counter({kind: times for kind, times in kinds.items() if not SAID_OF_LOST_NAMES.match(kind)})
    if drawn.returncode != 0:
        complaints["mutool: failed"] += 1
    return complaints


class Library:
    """Each input is read once, whichever job needs it first."""

    def __init__(self):
        self._guard = threading.Lock()
        self._locks, self._readings = {}, {}

    def reading(self, path):
        with self._guard:
            lock = self._locks.setdefault(path, threading.Lock())
        with lock:
            if path not in self._readings:
                self._readings[path] = read_document(path)
            return self._readings[path]


def picture_difference(path_a, page_a, path_b, page_b):
    """In words, how the rendering of two pages differs; for the message of a check that has already failed."""
    (wa, ha, a), (wb, hb, b) = (
        next(split_pictures(render(path, page).stdout), (0, 0, b"")) for path, page in ((path_a, page_a), (path_b, page_b))
    )
    if (wa, ha) != (wb, hb):
        return f"{wa}x{ha} pixels became {wb}x{hb}"
    changed = [i for i in range(wa * ha) if a[3 * i : 3 * i + 3] != b[3 * i : 3 * i + 3]]
    if not changed:
        return "no pixel differs on a second look"
    first = changed[0]
    was, now = (tuple(x[3 * first : 3 * first + 3]) for x in (a, b))
    return f"{len(changed)} of {wa * ha} pixels differ, first at ({first % wa}, {first // wa}): {was} became {now}"


def text_difference(was, now):
    old, new = was.decode("utf-8", "replace").splitlines(), now.decode("utf-8", "replace").splitlines()
    for number, (a, b) in enumerate(zip(old, new), 1):
        if a != b:
            return f"line {number} {a!r} became {b!r}"
    return f"{len(old)} lines became {len(new)}"
