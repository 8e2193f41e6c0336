"""Which warnings a run has to give of documents that are joined, and whether another program sees them to be true."""

import json
import re
import tempfile

import readers

NOT_READABLE = "its pages will not be readable in the output"
FIELDS = "a field is drawn by the form in its catalog"
WARNING = re.compile(r'\[Folioweld-cmdOK\]=>"(?:.*/)?([^"/]+)", .*?(' + re.escape(FIELDS) + ")")


def pair_problems(outcome, first, second):
    """Complains of the status and the lines of a run that has joined two inputs, each given as the document that its
    catalog is from. Fields of the second one are drawn by its own form no more, but perhaps by the first one's."""
    lines = outcome.stderr.splitlines()
    matches = [WARNING.search(line) for line in lines]
    if not all(matches) or len(lines) > 1:
        yield f"stderr says {outcome.stderr!r}"
    elif lines and not second.has_form:
        yield f"{second.name} has no form, but stderr says {outcome.stderr!r}"
    elif not first.has_form and bool(lines) != (second.known_warning == "fields"):
        yield f"the table has {second.known_warning!r} for {second.name}, stderr {outcome.stderr!r}"
    wanted = 3 if lines else 0
    if outcome.status != wanted or not outcome.written:
        yield f"status {outcome.status} instead of {wanted}, stderr {outcome.stderr!r}"


def widgets_without_appearance(path):
    listing = readers.run(["qpdf", "--json", "--json-key=qpdf", path]).stdout
    values = [item.get("value") for item in json.loads(listing)["qpdf"][1].values()]
    return sum(isinstance(v, dict) and v.get("/Subtype") == "/Widget" and "/AP" not in v for v in values)


def fields_drawn_by_form(path):
    """How many fields another program draws when it is asked to give each an appearance."""
    with tempfile.NamedTemporaryFile(suffix=".pdf") as drawn:
        readers.run(["qpdf", "--generate-appearances", path, drawn.name])
        return widgets_without_appearance(path) - widgets_without_appearance(drawn.name)


def is_true(output, document, reading, joined, pages_before):
    """Whether fields of the document look otherwise in the output, to one program or another."""
    pages = joined.pages[pages_before:]
    if any(was.pixels != now.pixels for was, now in zip(reading.pages, pages)):
        return True
    return fields_drawn_by_form(document.path) > fields_drawn_by_form(output)
