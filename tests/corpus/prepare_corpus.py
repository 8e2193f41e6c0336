#!/usr/bin/env python3
"""Prepares documents of real producers, joins the copies, and compares what comes out with the documents themselves.

    prepare_corpus.py --program BUILD/app/folioweld --prepare BUILD/app/folioweld-prepare [--all]

Of each document: every object that its catalog leads to is in the copy, every stream with the same bytes; between two
others, and as the first of two, its pages have the same objects, text and pixels, and as the first one all that its
catalog leads to is there. EXCEPTIONS has the documents of which a page looks otherwise, with the reason.

Exit status 0: everything holds; 1: something does not; 77: there is no corpus, nothing was checked.
"""

import argparse
import hashlib
import os
import re
import subprocess
import sys

import documents as corpus_documents
import object_graph
import readers
from join_corpus import SKIPPED, first_few, run_jobs
from program import World

HERE = os.path.dirname(os.path.abspath(__file__))
PLAIN = os.path.join(HERE, "..", "..", "examples", "2-report.pdf")
RESOLUTION = "40"
NEEDS_PASSWORD = "it needs a password"

# Why pages look otherwise when the document is a later one; the run has to say so.
FORM, INTENT = "a field is drawn by the form in its catalog", "the printing condition of its catalog is lost"
EXCEPTIONS = dict.fromkeys(
    "libreoffice-writer-form pdfjs-fill-lo podofo-aes podofo-clean podofo-incr podofo-mem podofo-streamed".split(), FORM
)


def look(path):
    """(text, width, height, pixels) of every page."""
    texts = readers.run(["pdftotext", "-enc", "UTF-8", path, "-"]).stdout.split(b"\f")[:-1]
    drawn = readers.run(["pdftoppm", "-r", RESOLUTION, path]).stdout
    pictures = [(w, h, hashlib.sha256(samples).digest()) for w, h, samples in readers.split_pictures(drawn)]
    return [(text, *picture) for text, picture in zip(texts, pictures)]


def prepare(program, path, copy):
    done = subprocess.run([program, path, copy], stdin=subprocess.DEVNULL, capture_output=True, timeout=120)
    return done.returncode, done.stderr.decode("utf-8", "backslashreplace")


STREAM = re.compile(rb"<< /Length (\d+)[^\0]*?>>\nstream\n")
STRING = re.compile(rb"\((?:[^()\\]|\\.)*\)")


def without_streams(data):
    """What stands outside of the streams' bytes."""
    parts, at = [], 0
    while match := STREAM.search(data, at):
        parts.append(data[at : match.end()])
        at = match.end() + int(match[1])
    return b"".join(parts) + data[at:]


def plain_problems(copy):
    """What is not in the plain form that the engine reads without changing anything."""
    with open(copy, "rb") as file:
        text = without_streams(file.read())
    header, marker, body = text.split(b"\n", 2)
    if not re.match(rb"%PDF-\d\.\d$", header) or not re.match(rb"%[\x80-\xff]{4}$", marker):
        yield f"begins with {header!r} and {marker!r}"
    if odd := re.search(rb"[^\n -~]", body):
        yield f"holds the byte {odd[0]!r} outside of streams"
    if b"%" in STRING.sub(b"", body).replace(b"\n%%EOF\n", b"", 1):
        yield "holds a comment"
    if any(len(line) > 100_000 or line != line.rstrip() for line in body.split(b"\n") if line[-2:] not in (b"n ", b"f ")):
        yield "has a line that is too long or ends with a blank"
    if not re.search(rb"endobj\nxref\n0 \d+\n0000000000 65535 f \n(\d{10} 00000 n \n)+trailer\n<< /Size ", body):
        yield "has no table of one subsection"


def check(options, document):
    with World() as world:
        copy = world.path("start", "copy.pdf")
        status, said = prepare(options.prepare, document.path, copy)
        if status == 1 and NEEDS_PASSWORD in said:
            return
        if status not in (0, 3) or (status == 3) != ("repaired: " in said):
            yield f"status {status}, stderr {said!r}"
            return
        yield from plain_problems(copy)
        original = object_graph.Graph(document.path)
        yield from object_graph.catalog_differences(original, object_graph.Graph(copy))
        yield from (f"as first: {how}" for how in check_as_first(options, document, copy, original))
        yield from (f"between others: {how}" for how in check_between(options, document, copy, original))


def check_as_first(options, document, copy, original):
    with World() as world:
        outcome = world.join(options.program, [("1.pdf", copy), ("2.pdf", PLAIN)])
        yield from outcome.problems
        if outcome.status != 0:
            yield f"status {outcome.status}, stderr {outcome.stderr!r}"
            return
        joined = object_graph.Graph(outcome.output)
        yield from object_graph.catalog_differences(original, joined)
        yield from looks_otherwise(document, look(outcome.output))


def check_between(options, document, copy, original):
    with World() as world:
        outcome = world.join(options.program, [("1.pdf", PLAIN), ("2.pdf", copy), ("3.pdf", PLAIN)])
        yield from outcome.problems
        reason = EXCEPTIONS.get(document.name.removesuffix(".pdf"))
        warned = [line for line in outcome.stderr.splitlines() if any(words in line for words in (FORM, INTENT))]
        if outcome.status != (3 if warned else 0) or len(outcome.stderr.splitlines()) != len(warned):
            yield f"status {outcome.status}, stderr {outcome.stderr!r}"
        if not outcome.written:
            return
        joined = object_graph.Graph(outcome.output)
        before, pages = len(object_graph.Graph(PLAIN).pages()), original.pages()
        walk = object_graph.Comparison(original, joined)
        yield from object_graph.page_differences(walk, pages, joined.pages()[before:-before])
        differing = list(looks_otherwise(document, look(outcome.output)[before:]))
        if reason is None:
            yield from differing
        elif not differing:
            yield f"looks the same: there is no exception to list ({reason})"
        elif not any(reason in line for line in warned):
            yield f"looks otherwise, and stderr does not say why: {outcome.stderr!r}"


def looks_otherwise(document, joined):
    """One message for every page that does not look like the document's own."""
    for number, was in enumerate(look(document.path), 1):
        now = joined[number - 1] if number <= len(joined) else None
        if now is None:
            yield f"page {number} is missing"
        elif now[0] != was[0]:
            yield f"page {number}: text: {readers.text_difference(was[0], now[0])}"
        elif now[1:] != was[1:]:
            yield f"page {number}: other pixels"


def parse_options():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--program", required=True, help="folioweld")
    parser.add_argument("--prepare", required=True, help="folioweld-prepare")
    parser.add_argument("--corpus", default="", help="folder; the environment's FOLIOWELD_CORPUS goes first")
    parser.add_argument("--all", action="store_true", help="documents too that folioweld joins as they are")
    parser.add_argument("--only", action="append", help="only documents whose name holds this")
    parser.add_argument("--jobs", type=int, default=2)
    options = parser.parse_args()
    options.program, options.prepare = os.path.abspath(options.program), os.path.abspath(options.prepare)
    options.corpus = os.environ.get("FOLIOWELD_CORPUS") or options.corpus
    return options


def main():
    options = parse_options()
    if not os.path.exists(os.path.join(options.corpus, "TABLE.tsv")):
        print(f"SKIPPED: there is no corpus in {options.corpus!r}")
        return SKIPPED
    found = corpus_documents.load(options.corpus, os.path.join(HERE, "expectations.tsv"))
    found = [d for d in found if options.all or d.verdict != corpus_documents.ACCEPTED]
    found = [d for d in found if not options.only or any(part in d.name for part in options.only)]
    jobs = [(d.name, lambda d=d: first_few(check(options, d))) for d in found]
    total, failed = run_jobs(jobs, options.jobs)
    print(f"{total} documents, {failed} failed")
    return 1 if failed or not total else 0


if __name__ == "__main__":
    sys.exit(main())
