#!/usr/bin/env python3
"""Joins documents of real producers with --prepare --carry and compares what the catalog of the result holds with what
the documents' own catalogs held.

    carry_corpus.py --program BUILD/app/folioweld [--all]

Each document stands between two others; with --all in both orders, and once beside itself, and documents too whose
catalog holds nothing. Outline items, fields with their
values and looks, destinations, labels, layers, attachments and tags are the sum of the documents', every link leads to
the page that it led to, every page looks the same, and without the option the output is the beginning of the one with it.

Exit status 0: everything holds; 1: something does not; 77: there is no corpus, nothing was checked.
"""

import argparse
import functools
import os
import sys
import tempfile
from collections import Counter

import catalog_contents
import documents as corpus_documents
import prepare_corpus
import readers
from join_corpus import SKIPPED, first_few, run_jobs
from program import World

HERE = os.path.dirname(os.path.abspath(__file__))
COMPANIONS = ("weasyprint-attach.pdf", "cairo-links.pdf")
# Documents that are joined as they are, with something of everything.
DEEP = ("cairo-links.pdf", "pdftex-classic.pdf", "libreoffice-writer-tagged.pdf", "htmldoc-book.pdf", "gdal-geo.pdf", "pdfbox2-form.pdf")
PLAIN_LABEL = "/D"


@functools.lru_cache(maxsize=None)
def contents(path):
    return catalog_contents.Contents(path)


@functools.lru_cache(maxsize=None)
def look(path):
    return prepare_corpus.look(path)


@functools.lru_cache(maxsize=None)
def complaints(path):
    """What qpdf says of a document, by kind."""
    said = readers.run(["qpdf", "--check", path])
    lines = [line for line in said.stdout.splitlines(True) if not readers.SAID_OF_EVERY_FILE.match(line.decode("latin-1"))]
    return readers.complaint_kinds("qpdf", b"".join(lines) + said.stderr, path)


def holds_something(path):
    """Of that of which a reader sees more than single entries."""
    of = contents(path)
    return bool(of.fields or of.labels or of.layers or of.attachments or of.tags[0]) or len(of.destinations) > 3


def moved(target, pages):
    """A target whose page stands after so many others."""
    return ("page", target[1] + pages, *target[2:]) if target and target[0] == "page" else target


def joined_outline(inputs, names):
    """One entry a document, its items below it."""
    expected, before = [], 0
    for document, name in zip(inputs, names):
        title = document.title()
        expected.append((0, title if catalog_contents.text(title or "").strip() else "u:" + name, before))
        expected += [(depth + 1, words, moved(target, before)) for depth, words, target in document.outline]
        before += len(document.pages)
    return expected


def outline_differences(inputs, names, joined):
    expected = joined_outline(inputs, names)
    if len(expected) != len(joined.outline):
        yield f"outline: {len(joined.outline)} items instead of {len(expected)}"
    for was, now in zip(expected, joined.outline):
        # An entry of a document leads to its first page, wherever on it.
        target = now[2] and now[2][1] if isinstance(was[2], int) else now[2]
        if (was[0], same_text(was[1]), was[2]) != (now[0], same_text(now[1]), target):
            yield f"outline: {was} became {now}"
            return


def same_text(value):
    return catalog_contents.text(value)


def field_differences(inputs, joined):
    expected, before, taken = [], 0, set()
    for document in inputs:
        for names, values, quadding, widgets in document.fields:
            clash = bool(names) and names[0] in taken
            pages = tuple(None if page is None else page + before for page in widgets)
            expected.append((names, clash, values, quadding, pages))
        taken |= {field[0][0] for field in document.fields if field[0]}
        before += len(document.pages)
    if len(expected) != len(joined.fields):
        yield f"form: {len(joined.fields)} fields instead of {len(expected)}"
    for was, now in zip(expected, joined.fields):
        names, clash, *rest = was
        named_right = now[0] == names if not clash else now[0] != names and now[0][0].startswith(names[0]) and now[0][1:] == names[1:]
        if not named_right or tuple(rest) != now[1:]:
            yield f"form: the field {was} became {now}"
            return
    if len({field[0] for field in joined.fields}) < len({(i, f[0]) for i, d in enumerate(inputs) for f in d.fields}):
        yield "form: two fields have one name"


def destination_differences(inputs, joined):
    """Names may be others where two documents use one, so places are counted."""
    expected, before = Counter(), 0
    for document in inputs:
        for name, place in document.destinations.items():
            expected[moved(("page", *place), before) if place else None] += 1
            # Joined documents have one tree, whatever kind the names were.
            if place and not {name, "u:" + name[1:]} & joined.destinations.keys():
                yield f"destination {name!r} is missing"
                return
        before += len(document.pages)
    found = Counter(("page", *place) if place else None for place in joined.destinations.values())
    if found != expected:
        yield f"destinations: {list((expected - found).items())[:2]} became {list((found - expected).items())[:2]}"
    count = catalog_contents.named_destinations(joined.path)
    sum_of_all = sum(catalog_contents.named_destinations(document.path) for document in inputs)
    if count != sum_of_all:
        yield f"destinations: pdfinfo sees {count} instead of {sum_of_all}"


def label_differences(inputs, joined):
    if not any(document.labels for document in inputs):
        if joined.labels is not None:
            yield "labels that no document had"
        return
    expected = []
    for document in inputs:
        expected += document.labels or [("", PLAIN_LABEL, page + 1) for page in range(len(document.pages))]
    if expected != joined.labels:
        yield f"labels: {expected} became {joined.labels}"


def other_differences(inputs, joined):
    layers = [layer for document in inputs for layer in document.layers]
    if layers != joined.layers:
        yield f"layers: {layers} became {joined.layers}"
    if sum(document.order_of_layers() for document in inputs) != joined.order_of_layers():
        yield "layers: other groups are listed"
    attached = Counter(str(data) for document in inputs for data in document.attachments.values())
    if attached != Counter(map(str, joined.attachments.values())):
        yield f"attachments: {attached} became {joined.attachments}"
    tags = tuple(map(sum, zip(*(document.tags for document in inputs))))
    if tags != joined.tags:
        yield f"tags: {tags} elements and pages became {joined.tags}"


def link_differences(inputs, joined):
    before = 0
    for number, document in enumerate(inputs, 1):
        for page, links in enumerate(document.links):
            now = joined.links[before + page] if before + page < len(joined.links) else None
            expected = [moved(target, before) for target in links]
            if now != expected:
                yield f"links on page {page + 1} of document {number}: {expected} became {now}"
                return
        before += len(document.pages)


def look_differences(paths, output):
    expected = [(path, number, page) for path in paths for number, page in enumerate(look(path), 1)]
    now = prepare_corpus.look(output)
    if len(now) != len(expected):
        yield f"{len(now)} pages instead of {len(expected)}"
    for (path, number, was), page in zip(expected, now):
        if was != page:
            yield f"page {number} of {os.path.basename(path)} looks otherwise"


def differences(paths, names, outcome):
    """Between the documents as they are given and the joined file."""
    inputs = [contents(path) for path in paths]
    joined = catalog_contents.Contents(outcome.output)
    for how in (
        outline_differences(inputs, names, joined),
        field_differences(inputs, joined),
        destination_differences(inputs, joined),
        label_differences(inputs, joined),
        other_differences(inputs, joined),
        link_differences(inputs, joined),
        look_differences(paths, outcome.output),
    ):
        yield from how
    new = complaints_of(outcome.output) - sum((complaints(path) for path in paths), Counter())
    if new:
        yield f"qpdf --check: {sorted(new)[:2]}"


def complaints_of(path):
    return complaints.__wrapped__(path)


def check_join(options, paths):
    names = [f"{place}.pdf" for place in range(1, len(paths) + 1)]
    with World() as world:
        sources = list(zip(names, paths))
        plain = world.join(options.program, sources, ["--prepare"])
        if any("needs a password" in line for line in plain.stderr.splitlines()):
            return
        with open(plain.output, "rb") as file:
            beginning = file.read()
        carried = world.join(options.program, sources, ["--prepare", "--carry"])
        yield from carried.problems
        if not carried.written:
            yield f"no output: {carried.stderr!r}"
            return
        with open(carried.output, "rb") as file:
            if not file.read().startswith(beginning):
                yield "the output without the option is not the beginning of the one with it"
        told = f"told {carried.stderr!r}: " if carried.stderr else ""
        yield from (told + how for how in differences(paths, names, carried))


def check(options, document):
    first, second = (os.path.join(options.corpus, name) for name in COMPANIONS)
    joins = ((first, document.path, second), (second, document.path, first), (document.path, document.path))
    for paths in joins if options.all else joins[:1]:
        place = "between others" if len(paths) == 3 else "twice"
        yield from (f"{place}: {how}" for how in check_join(options, paths))


def check_deep(options):
    """What was joined is joined again, so often, each time with one document more and as it is."""
    names = ["1.pdf", "2.pdf"]
    with tempfile.TemporaryDirectory(prefix="folioweld-corpus-") as folder:
        joined = os.path.join(options.corpus, DEEP[0])
        for turn, name in enumerate(DEEP[1:], 1):
            paths = [joined, os.path.join(options.corpus, name)]
            with World() as world:
                outcome = world.join(options.program, list(zip(names, paths)), ["--carry"])
                if outcome.status != 0 or outcome.stderr:
                    yield f"turn {turn}: status {outcome.status}, stderr {outcome.stderr!r}"
                    return
                yield from (f"turn {turn}: {how}" for how in (*outcome.problems, *differences(paths, names, outcome)))
                joined = os.path.join(folder, f"{turn}.pdf")
                os.rename(outcome.output, joined)


def parse_options():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--program", required=True, help="folioweld, beside its helpers")
    parser.add_argument("--corpus", default="", help="folder; the environment's FOLIOWELD_CORPUS goes first")
    parser.add_argument("--all", action="store_true", help="every document, in three places")
    parser.add_argument("--only", action="append", help="only documents whose name holds this")
    parser.add_argument("--jobs", type=int, default=2)
    options = parser.parse_args()
    options.program = os.path.abspath(options.program)
    options.corpus = os.environ.get("FOLIOWELD_CORPUS") or options.corpus
    return options


def main():
    options = parse_options()
    if not os.path.exists(os.path.join(options.corpus, "TABLE.tsv")):
        print(f"SKIPPED: there is no corpus in {options.corpus!r}")
        return SKIPPED
    found = corpus_documents.load(options.corpus, os.path.join(HERE, "expectations.tsv"))
    found = [d for d in found if not options.only or any(part in d.name for part in options.only)]
    found = [d for d in found if options.all or holds_something(d.path)]
    jobs = [(d.name, lambda d=d: first_few(check(options, d))) for d in found]
    if not options.only:
        jobs.append(("joined again and again", lambda: first_few(check_deep(options))))
    total, failed = run_jobs(jobs, options.jobs)
    print(f"{total} documents, {failed} failed")
    return 1 if failed or not total else 0


if __name__ == "__main__":
    sys.exit(main())
