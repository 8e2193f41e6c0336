#!/usr/bin/env python3
"""Joins documents of real producers and lets other programs compare what came out with what went in.

    join_corpus.py --program BUILD/app/folioweld --check join

Checks: table      expectations.tsv, the documents and the rules of rules_model.py agree
        join       documents of each producer in both orders
        chain      a joined output is joined again, as first and as second input, and with itself
        rounds     the output of a merge is an input of the next, five times over
        folder     every acceptable document of the corpus in one run
        refused    what cannot be joined is refused, by name and with a reason
        encrypted  what readers can no longer read is joined object by object, and said to be so
        warnings   every document alone, first and second: the warnings of the table and no other, and all are true

Exit status 0: everything holds; 1: something does not; 77: there is no corpus, nothing was checked.
"""

import argparse
import os
import re
import shutil
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass, field

import documents as corpus_documents
import object_values
import readers
import warned
from documents import ACCEPTED, COLUMNS, ENCRYPTED, REFUSED
from program import World

SKIPPED = 77
HERE = os.path.dirname(os.path.abspath(__file__))
SHOWN = 3  # differences of a joined file; one that is wrong throughout need not fill the screen


@dataclass
class Part:
    """One input of a joined file: what its pages have to look like, and the pages where that is left open."""

    name: str
    path: str
    reading: readers.Reading
    open_pages: set = field(default_factory=set)


class Session:
    def __init__(self, options, documents, scratch):
        self.options, self.documents, self.scratch = options, documents, scratch
        self.library = readers.Library()
        self.by_name = {d.name: d for d in documents}
        for document in documents:
            if document.known("lost"):
                with open(self.lesser_copy(document), "wb") as copy:
                    key = b"/" + document.known("lost").encode()
                    copy.write(corpus_documents.without_catalog_entry(document, key))

    def lesser_copy(self, document):
        return os.path.join(self.scratch, document.name)

    def part(self, document, path=None, open_pages=()):
        path = path or document.path
        return Part(document.name, path, self.library.reading(path), set(open_pages))

    def parts(self, documents):
        """What is expected of the documents joined in this order. The output's catalog is the first one's, so of a
        later document the catalog's entries are gone; where they decide how its pages look (form fields without an
        appearance of their own), it has to look like a copy without them, and beside another form as that has it.
        """
        found = [self.part(documents[0])]
        for document in documents[1:]:
            if documents[0].has_form:
                found.append(self.part(document, open_pages=document.form_pages))
            elif document.known("lost"):
                found.append(self.part(document, self.lesser_copy(document)))
            else:
                found.append(self.part(document))
        return found

    def world(self):
        return World(self.options.keep)

    def chosen(self, documents):
        wanted = self.options.only
        return [d for d in documents if not wanted or any(w in d.name for w in wanted)]

    def partner(self):
        return next(d for d in self.documents if d.verdict == ACCEPTED)


# ------------------------------------------------------------------------------------------------- comparing


def compare_pages(output, joined, parts):
    """One message for every page that is not its input's page again."""
    at = 0
    for part in parts:
        for number, was in enumerate(part.reading.pages, 1):
            now = joined.pages[at] if at < len(joined.pages) else None
            at += 1
            where = f"page {at} (page {number} of {part.name})"
            if now is None:
                yield f"{where} is missing"
            elif number not in part.open_pages:
                yield from (f"{where}: {how}" for how in page_differences(output, at, now, part.path, number, was))


def page_differences(output, at, now, path, number, was):
    if now.text != was.text:
        yield "text: " + readers.text_difference(was.text, now.text)
    if (now.width, now.height, now.pixels) != (was.width, was.height, was.pixels):
        yield "rendering: " + readers.picture_difference(path, number, output, at)


def new_complaints(joined, parts):
    known = sum((part.reading.complaints for part in parts), readers.Counter())
    for complaint, times in (joined.complaints - known).items():
        # Who draws a field with another document's fonts may have a word to say about it.
        if complaint.startswith("qpdf") or not any(part.open_pages for part in parts):
            yield f"{times} new: {complaint}"


def compare_with_documents(session, output, documents):
    yield from compare_joined(output, session.parts(documents))
    yield from first_few(object_values.differences(output, [d.path for d in documents]))


def first_few(messages):
    messages = list(messages)
    yield from messages[:SHOWN]
    if len(messages) > SHOWN:
        yield f"... and {len(messages) - SHOWN} more"


def compare_joined(output, parts):
    """What is wrong with a joined file, in words."""
    joined = readers.read_document(output)
    wanted = sum(len(part.reading.pages) for part in parts)
    for program, count in joined.page_counts.items():
        if count != wanted:
            yield f"{program} counts {count} pages instead of {wanted}"
    worst = max(part.reading.status for part in parts)
    if joined.status > worst:
        yield f"qpdf --check ends with {joined.status}; the worst of the inputs with {worst}"
    yield from new_complaints(joined, parts)
    yield from first_few(compare_pages(output, joined, parts))


# ---------------------------------------------------------------------------------------------------- checks


def check_join(session):
    groups = list(corpus_documents.pairs(session.documents, session.options.all))
    size = lambda group: sum(os.path.getsize(group[1][n].path) for pair in group[0] for n in pair)
    mine = corpus_documents.share(groups, size, *session.options.shard)
    wanted = session.options.only
    for couples, _ in mine:
        for a, b in couples:
            if not wanted or any(w in a or w in b for w in wanted):
                yield f"{a} + {b}", lambda a=a, b=b: join_pair(session, session.by_name[a], session.by_name[b])


def join_pair(session, first, second):
    with session.world() as world:
        named = [("1-" + first.name, first.path), ("2-" + second.name, second.path)]
        outcome = world.join(session.options.program, named)
        yield from outcome.problems
        yield from warned.pair_problems(outcome, first, second)
        if not outcome.written:
            return
        yield from compare_with_documents(session, outcome.output, [first, second])
        yield from accepted_again(session, outcome.output)


def accepted_again(session, output):
    """The output of every merge is an input that is joined without a word."""
    with session.world() as world:
        outcome = world.join(session.options.program, [("again.pdf", output)])
        yield from outcome.problems
        if outcome.status != 0 or not outcome.written or outcome.stderr:
            yield f"not accepted again: status {outcome.status}, stderr {outcome.stderr!r}"


def check_chain(session):
    groups = corpus_documents.families(session.documents)
    for i, family in enumerate(groups):
        first, second, third = family[0], groups[i - 1][0], groups[(i + 1) % len(groups)][-1]
        chosen = i % 3 == 0 or session.options.all
        if chosen and session.chosen([first, second, third]):
            label = f"({first.name} + {second.name}) again, beside {third.name}"
            yield label, lambda f=first, s=second, t=third: chain(session, f, s, t)


def chain(session, first, second, third):
    with session.world() as world:
        joined = world.join(session.options.program, [("1.pdf", first.path), ("2.pdf", second.path)])
        yield from warned.pair_problems(joined, first, second)
        if not joined.written:
            return
        orders = {
            "first": ([joined.output, third.path], [first, third], [first, second, third]),
            "second": ([third.path, joined.output], [third, first], [third, first, second]),
            "both": ([joined.output, joined.output], [first, first], [first, second, first, second]),
        }
        for place, (paths, heads, order) in orders.items():
            for problem in chain_link(session, paths, heads, order):
                yield f"as {place}: {problem}"


def chain_link(session, paths, heads, order):
    with session.world() as world:
        outcome = world.join(session.options.program, [(f"{i}.pdf", path) for i, path in enumerate(paths)])
        yield from outcome.problems
        yield from warned.pair_problems(outcome, *heads)
        if not outcome.written:
            return
        yield from compare_with_documents(session, outcome.output, order)


ROUNDS = 5


def check_rounds(session):
    groups = corpus_documents.families(session.documents)
    for i, family in enumerate(groups):
        beside = [groups[(i + step) % len(groups)][0] for step in range(1, ROUNDS + 1)]
        chosen = i % 6 == 0 or session.options.all
        if chosen and session.chosen([family[0], *beside]):
            yield f"{family[0].name}, {ROUNDS} rounds", lambda f=family[0], b=beside: rounds(session, f, b)


def rounds(session, first, beside):
    """Every round joins the output of the last one with one more document, before it and behind it in turn."""
    order, path = [first], first.path
    with session.world() as last_world:
        for number, document in enumerate(beside, 1):
            ahead = number % 2 == 0
            heads = [document, order[0]] if ahead else [order[0], document]
            order = [document, *order] if ahead else [*order, document]
            paths = [document.path, path] if ahead else [path, document.path]
            with session.world() as world:
                outcome = world.join(session.options.program, [("1.pdf", paths[0]), ("2.pdf", paths[1])])
                yield from (f"round {number}: {problem}" for problem in outcome.problems)
                problems = list(warned.pair_problems(outcome, *heads))
                yield from (f"round {number}: {problem}" for problem in problems)
                if problems:
                    return
                path = last_world.path(f"round-{number}.pdf")
                shutil.copyfile(outcome.output, path)
        yield from compare_with_documents(session, path, order)
        said = readers.mutool_complaints(path)
        for document in order:
            said -= readers.mutool_complaints(document.path)
        for complaint, times in said.items():
            yield f"{times} new: {complaint}"


def check_folder(session):
    unsuitable = lambda d: d.verdict == REFUSED and d.expected.get("stage") == "acceptance"
    yield "every acceptable document", lambda: join_everything(
        session, [d for d in session.documents if d.verdict == ACCEPTED or unsuitable(d)]
    )


def join_everything(session, chosen):
    with session.world() as world:
        outcome = world.join(session.options.program, [(d.name, d.path) for d in chosen])
        yield from outcome.problems
        if outcome.status != 3 or not outcome.written:
            yield f"status {outcome.status} instead of 3, stderr {outcome.stderr!r}"
            return
        for document in chosen:
            if document.verdict == REFUSED:
                yield from refusal_words(document, document.name, outcome.stderr)
            elif document.name in outcome.stderr and not (document.verdict == ACCEPTED and document.has_form):
                yield f"{document.name} was joined, but stderr names it"
        yield from compare_with_documents(session, outcome.output, [d for d in chosen if d.verdict == ACCEPTED])


def check_refused(session):
    for document in session.chosen(session.documents):
        if document.verdict == REFUSED:
            yield document.name, lambda d=document: refuse(session, d)


def refuse(session, document):
    partner = session.partner()
    for place, names in (("alone", ["1"]), ("first", ["1", "2"]), ("second", ["2", "1"])):
        bad = (names[0] + "-" + document.name, document.path)
        good = [(names[1] + "-" + partner.name, partner.path)] if len(names) == 2 else []
        with session.world() as world:
            outcome = world.join(session.options.program, [bad, *good])
            for problem in judge_refusal(session, document, bad[0], outcome, partner if good else None):
                yield f"as {place}: {problem}"


def judge_refusal(session, document, name, outcome, partner):
    """A document that fails the cheap test only leaves the folder's other documents to be joined; one that fails
    while it is read takes its pair with it."""
    yield from outcome.problems
    survives = partner is not None and document.expected["stage"] == "acceptance"
    wanted = 3 if survives else 1
    if outcome.status != wanted:
        yield f"status {outcome.status} instead of {wanted}, stderr {outcome.stderr!r}"
    yield from refusal_words(document, name, outcome.stderr)
    if outcome.written != survives:
        yield "an output is there" if outcome.written else "no output is there"
    elif survives:
        yield from compare_with_documents(session, outcome.output, [partner])


def refusal_words(document, name, stderr):
    """Complains unless one line of stderr names the document and says why it is refused."""
    lines = [line for line in stderr.splitlines() if name in line]
    if not lines:
        yield f"stderr does not name {name}: {stderr!r}"
    words, number = document.expected["words"], document.expected["object"]
    if document.expected["stage"] == "reading" and number:
        words = rf"object {number}\b.*({words})"
    if lines and not any(re.search(words, line) for line in lines):
        yield f"no line says {words!r} of {name}: {lines}"


def check_encrypted(session):
    for document in session.chosen(session.documents):
        if document.verdict == ENCRYPTED:
            yield document.name, lambda d=document: join_encrypted(session, d)


def join_encrypted(session, document):
    partner = session.partner()
    for place, names in (("first", "12"), ("second", "21")):
        name = f"{names[0]}-{document.name}"
        with session.world() as world:
            outcome = world.join(
                session.options.program, [(name, document.path), (f"{names[1]}-{partner.name}", partner.path)]
            )
            problems = list(outcome.problems)
            if outcome.status != 3 or not outcome.written:
                problems.append(f"status {outcome.status} instead of 3, written: {outcome.written}")
            if not any(name in line and re.search("encrypt", line, re.I) for line in outcome.stderr.splitlines()):
                problems.append(f"stderr does not say that {name} is encrypted: {outcome.stderr!r}")
            if outcome.written and outcome.status == 3:
                wanted = sum(session.library.reading(d.path).page_counts["qpdf"] for d in (document, partner))
                counted = readers.read_document(outcome.output).page_counts["qpdf"]
                if counted != wanted:
                    problems.append(f"qpdf counts {counted} pages instead of {wanted}")
                order = [document.path, partner.path][:: 1 if place == "first" else -1]
                problems += first_few(object_values.differences(outcome.output, order))
        for problem in problems:
            yield f"as {place}: {problem}"


def check_warnings(session):
    for document in session.chosen(session.documents):
        if document.verdict in (ACCEPTED, ENCRYPTED):
            yield document.name, lambda d=document: warn(session, d)


def warn(session, document):
    partner = session.partner()
    mine, other = (document.name, document.path), (partner.name, partner.path)
    for place, (sources, second) in {
        "alone": ([mine], None),
        "first": ([("1-" + mine[0], mine[1]), ("2-" + other[0], other[1])], partner),
        "second": ([("1-" + other[0], other[1]), ("2-" + mine[0], mine[1])], document),
    }.items():
        with session.world() as world:
            outcome = world.join(session.options.program, sources)
            for problem in judge_warnings(session, document, second, outcome):
                yield f"{place}: {problem}"


def judge_warnings(session, document, second, outcome):
    encrypted = [line for line in outcome.stderr.splitlines() if line.endswith("is encrypted: " + warned.NOT_READABLE)]
    others = [line for line in outcome.stderr.splitlines() if line not in encrypted]
    if bool(encrypted) != (document.verdict == ENCRYPTED):
        yield f"stderr says {outcome.stderr!r} of encryption"
    wanted = 1 if second and second.known_warning else 0
    if len(others) != wanted or not all(warned.WARNING.search(line) for line in others):
        yield f"stderr says {others}"
    if outcome.status != (3 if encrypted or others else 0) or not outcome.written:
        yield f"status {outcome.status}, stderr {outcome.stderr!r}"
    elif others and not encrypted:
        before = len(session.library.reading(session.partner().path).pages)
        reading, joined = session.library.reading(document.path), readers.read_document(outcome.output)
        if not warned.is_true(outcome.output, document, reading, joined, before):
            yield f"no program sees a field otherwise, but stderr says {outcome.stderr!r}"


def check_table(session):
    for document in session.documents:
        yield document.name, lambda d=document: compare_row(session, d)
    yield "expectations.tsv", lambda: rows_without_document(session)


def compare_row(session, document):
    if not document.expected:
        yield "is not in expectations.tsv; the rules say " + ", ".join(corpus_documents.model_row(document).values())
        return
    for column, value in corpus_documents.model_row(document).items():
        if document.expected[column] != value:
            yield f"{column} is {document.expected[column]!r} in the table and {value!r} by the rules"
    if document.verdict == REFUSED and not document.expected["words"]:
        yield "the table holds no words that its refusal must have"
    if bool(document.expected["differs"]) != bool(document.expected["why"]) and document.verdict == ACCEPTED:
        yield "a known difference needs a reason, and a reason a difference"
    if document.known("lost"):
        lesser = session.library.reading(session.lesser_copy(document))
        if lesser.pages == session.library.reading(document.path).pages:
            yield f"looks the same without {document.known('lost')}: nothing to be listed"


def rows_without_document(session):
    for row in corpus_documents.read_table(session.options.expectations):
        if row["file"] not in session.by_name:
            yield f"{row['file']} is in the table, but not in the corpus"


def print_table(documents):
    """Writes the table anew: what the rules decide is computed, the columns written by hand are kept."""
    print("\t".join(COLUMNS))
    for document in documents:
        row = dict.fromkeys(COLUMNS, "") | document.expected | corpus_documents.model_row(document)
        print("\t".join([document.name] + [row[column] for column in COLUMNS[1:]]))


# ------------------------------------------------------------------------------------------------------ main

CHECKS = {
    "table": check_table,
    "join": check_join,
    "chain": check_chain,
    "rounds": check_rounds,
    "folder": check_folder,
    "refused": check_refused,
    "encrypted": check_encrypted,
    "warnings": check_warnings,
}


def run_jobs(jobs, workers):
    """Prints what fails, in the order of the jobs; (jobs run, jobs failed)."""

    def finish(job):
        label, work = job
        try:
            return label, list(work())
        except Exception as error:  # one broken output must not hide the others
            return label, [f"the check itself stopped: {type(error).__name__}: {error}"]

    failed = total = 0
    with ThreadPoolExecutor(workers) as pool:
        for label, problems in pool.map(finish, jobs):
            total += 1
            failed += bool(problems)
            for problem in problems:
                print(f"FAILED {label}: {problem}", flush=True)
    return total, failed


def parse_options(arguments):
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--program", help="the program under test")
    parser.add_argument("--corpus", default="", help="folder; the environment's FOLIOWELD_CORPUS goes first")
    parser.add_argument("--expectations", default=os.path.join(HERE, "expectations.tsv"))
    parser.add_argument("--check", action="append", choices=CHECKS, help="default: all of them")
    parser.add_argument("--shard", default="1/1", help="K/N: the K-th of N parts of the check join")
    parser.add_argument("--all", action="store_true", help="every pair of a family, every family in the chain")
    parser.add_argument("--only", action="append", help="part of a document's name")
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--keep", help="folder in which every run's files are left for a look")
    parser.add_argument("--print-table", action="store_true", help="expectations.tsv as the rules have it")
    options = parser.parse_args(arguments)
    options.corpus = os.environ.get("FOLIOWELD_CORPUS") or options.corpus
    options.shard = tuple(int(part) for part in options.shard.split("/"))
    options.program = options.program and os.path.abspath(options.program)
    return options


def main(arguments):
    options = parse_options(arguments)
    checks = options.check or list(CHECKS)
    if not os.path.exists(os.path.join(options.corpus, "TABLE.tsv")):
        print(f"SKIPPED: {', '.join(checks)}: no documents in '{options.corpus}' (set FOLIOWELD_CORPUS to their folder)")
        return SKIPPED
    missing = [tool for tool in readers.TOOLS if not shutil.which(tool)]
    if missing:
        print(f"FAILED: not installed: {', '.join(missing)} (Debian: qpdf, mupdf-tools, poppler-utils)")
        return 1
    documents = corpus_documents.load(options.corpus, options.expectations)
    if options.print_table:
        print_table(documents)
        return 0
    with tempfile.TemporaryDirectory(prefix="folioweld-corpus-") as scratch:
        return run_checks(Session(options, documents, scratch), options.check or list(CHECKS))


def run_checks(session, checks):
    bad = 0
    for check in checks:
        total, failed = run_jobs(CHECKS[check](session), session.options.jobs)
        print(f"{check}: {total - failed} of {total} hold", flush=True)
        if total == 0:
            print(f"FAILED {check}: nothing was checked")
        bad += failed + (total == 0)
    return 1 if bad else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
