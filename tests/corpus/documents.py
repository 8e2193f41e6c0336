"""The documents of the corpus, what is expected of each, and which of them are joined with which."""

import csv
import functools
import os
from dataclasses import dataclass

import rules_model

REFUSED, ACCEPTED, ENCRYPTED = "refused", "accepted", "encrypted"
COLUMNS = ("file", "verdict", "stage", "object", "rule", "words", "differs", "why", "warns")


@dataclass
class Document:
    name: str
    path: str
    producer: str
    expected: dict  # a row of expectations.tsv; empty when there is none

    @property
    def verdict(self):
        return self.expected.get("verdict", "")

    def known(self, kind):
        """What the column `differs` says of a kind: "lost:AcroForm" names the catalog entry without which the
        document looks different; "form:1,2" the pages that another document's form can change."""
        for item in filter(None, self.expected.get("differs", "").split(" ")):
            if item.startswith(kind + ":"):
                return item.partition(":")[2]
        return ""

    @property
    def known_warning(self):
        """What is warned of when the document comes after one without a form: "fields", or nothing."""
        return self.expected.get("warns", "")

    @property
    def form_pages(self):
        return {int(page) for page in self.known("form").split(",") if page}

    @functools.cached_property
    def has_form(self):
        return rules_model.Document(contents(self)).in_catalog(b"/AcroForm")


def read_table(path):
    with open(path, newline="", encoding="utf-8") as table:
        return list(csv.DictReader(table, delimiter="\t", quoting=csv.QUOTE_NONE))


def load(corpus, expectations):
    producers = {row["file"]: row["producer"] for row in read_table(os.path.join(corpus, "TABLE.tsv"))}
    expected = {row["file"]: row for row in read_table(expectations)}
    names = sorted(name for name in os.listdir(corpus) if name.endswith(".pdf"))
    return [Document(n, os.path.join(corpus, n), producers.get(n, n), expected.get(n, {})) for n in names]


def contents(document):
    with open(document.path, "rb") as file:
        return file.read()


def without_catalog_entry(document, key):
    """The document's bytes with an entry of its catalog renamed, so that readers do not find it."""
    data = contents(document)
    start, end = rules_model.Document(data).catalog_range
    hidden = key[:-1] + b"_"
    return data[:start] + data[start:end].replace(key, hidden, 1) + data[end:]


def model_row(document):
    """What the rules say about the document, in the columns of the table that they decide."""
    accepted, refusal = rules_model.verdict(contents(document))
    if accepted:
        return {"verdict": ENCRYPTED if accepted.encrypted else ACCEPTED, "stage": "", "object": "", "rule": ""}
    number = "" if refusal.obj is None else str(refusal.obj)
    return {"verdict": REFUSED, "stage": refusal.stage, "object": number, "rule": refusal.rule}


def families(documents):
    """The accepted documents of each producer."""
    found = {}
    for document in documents:
        if document.verdict == ACCEPTED:
            found.setdefault(document.producer, []).append(document)
    return [found[producer] for producer in sorted(found)]


def pairs(documents, everything=False):
    """Ordered pairs in groups, one group a family: each accepted document takes part, two of a family in both
    orders; the only document of a family meets itself and one of the next family."""
    groups = families(documents)
    for position, family in enumerate(groups):
        stranger = groups[(position + 1) % len(groups)][0]
        if everything:
            couples = [(a, b) for a in family for b in family] + [(d, stranger) for d in family]
            couples += [(stranger, d) for d in family]
        elif len(family) == 1:
            couples = [(family[0], stranger), (stranger, family[0]), (family[0], family[0])]
        else:
            neighbours = [(family[i], family[i + 1]) for i in range(0, len(family) - 1, 2)]
            neighbours += [(family[-1], family[0])] if len(family) % 2 else []
            couples = [pair for a, b in neighbours for pair in ((a, b), (b, a))]
        yield list(dict.fromkeys((a.name, b.name) for a, b in couples)), {d.name: d for d in [*family, stranger]}


def share(items, cost, number, of):
    """Every `of`-th part of the items, the costly ones spread evenly; the same on every machine."""
    loads = [(0, i, []) for i in range(of)]
    for item in sorted(items, key=cost, reverse=True):
        load, i, part = min(loads)[:3]
        loads[i] = (load + cost(item), i, part)
        part.append(item)
    return loads[number - 1][2]
