"""Which programs are compared, and how each is told to join the documents of a folder."""

import os
import shlex
import shutil
from dataclasses import dataclass
from pathlib import Path
from typing import Callable

OWN = "folioweld"
PREPARING = "folioweld --prepare"
CARRYING = "folioweld --carry"
COPY = "plain copy"
ROUNDS = "copy in rounds"
EMPTY = "empty program"


@dataclass(frozen=True)
class Program:
    name: str       # in the table; of two ways to run one program the faster counts
    way: str        # how it was run, "" when there is only one way
    tool: str       # what has to be installed
    command: Callable[[list[str], str], list[str]]  # of the documents and the output
    joins: bool = True     # writes a document whose pages can be counted
    to_stdout: bool = False  # the output is what it writes to standard output


def copy_in_rounds(documents, output):
    """A shell script that copies documents together pairwise, round after round, as a directory merge joins them;
    the temporary files, where those of the other programs are, go at the end."""
    lines = []
    temporaries = []
    pieces = [shlex.quote(document) for document in documents]
    while len(pieces) > 2:
        joined = []
        for i in range(0, len(pieces) - 1, 2):
            temporary = f'"$TMPDIR"/{len(temporaries)}'
            temporaries.append(temporary)
            lines.append(f"cat {' '.join(pieces[i:i + 2])} > {temporary}")
            joined.append(temporary)
        pieces = joined + pieces[len(pieces) - len(pieces) % 2:]
    lines.append(f"cat {' '.join(pieces)} > {shlex.quote(output)}")
    if temporaries:
        lines.append(f"rm {' '.join(temporaries)}")
    script = Path(f"{output}.sh")
    script.write_text("\n".join(lines) + "\n")
    return ["sh", str(script)]


def programs(own, empty):
    """Every program, in the order of the table."""
    return [
        Program(OWN, "", own, lambda documents, output: [own, output, os.path.dirname(documents[0])]),
        Program(PREPARING, "", own, lambda documents, output:
                [own, "--prepare", output, os.path.dirname(documents[0])]),
        Program(CARRYING, "", own, lambda documents, output:
                [own, "--carry", output, os.path.dirname(documents[0])]),
        Program("qpdf", "--stream-data=preserve", "qpdf", lambda documents, output:
                ["qpdf", "--stream-data=preserve", "--empty", "--pages", *documents, "--", output]),
        Program("qpdf", "default", "qpdf", lambda documents, output:
                ["qpdf", "--empty", "--pages", *documents, "--", output]),
        Program("mutool", "", "mutool", lambda documents, output: ["mutool", "merge", "-o", output, *documents]),
        Program("pdfunite", "", "pdfunite", lambda documents, output: ["pdfunite", *documents, output]),
        Program("pdftk", "", "pdftk", lambda documents, output: ["pdftk", *documents, "cat", "output", output]),
        Program(COPY, "", "cat", lambda documents, output: ["cat", *documents], joins=False, to_stdout=True),
        Program(ROUNDS, "", "cat", copy_in_rounds, joins=False),
        Program(EMPTY, "", empty, lambda documents, output: [empty], joins=False),
    ]


def peers():
    return ["qpdf", "mutool", "pdfunite", "pdftk"]


def missing(program):
    return shutil.which(program.tool) is None


def takes_part(program, load):
    """Whether the program says something about this load."""
    if load["series"]:
        return program.name in (OWN, COPY)
    # Half of the documents of the one load cannot be joined otherwise; none of the other one's needs it.
    if program.name == PREPARING:
        return load["name"] in ("mixed", "plain")
    if program.name == CARRYING:
        return load["name"] in ("streams", "folder")
    if program.name == OWN and load["name"] == "mixed":
        return False
    if program.name == ROUNDS:
        return load["documents"] > 2
    return program.name != EMPTY or load["name"] == "small"
