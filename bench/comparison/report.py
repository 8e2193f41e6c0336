"""The tables, as Markdown."""

from figures import rows
from programs import COPY, OWN, PREPARING, peers


def time_text(seconds):
    if seconds is None:
        return "-"
    if seconds < 0.01:
        return f"{seconds * 1000:.2f} ms"
    return f"{seconds * 1000:.0f} ms" if seconds < 10 else f"{seconds:.1f} s"


def memory_text(kib):
    return "-" if kib is None else f"{kib / 1024:.1f} MiB"


def grid(corner, head, lines):
    """A table of figures: names on the left, everything else to the right."""
    return [f"| {' | '.join([corner, *head])} |", "|---|" + "---:|" * len(head),
            *(f"| {' | '.join(cells)} |" for cells in lines), ""]


def program_table(loads, measured, figure):
    """A line for each load, a column for each program; figure(row) is what stands in a cell."""
    names = [OWN, *peers(), COPY]
    lines = []
    for load in loads:
        found = {row.program: row for row in rows(measured[load["name"]])}
        if OWN not in found and PREPARING in found:
            found[OWN] = found[PREPARING]
        lines.append([f"{load['name']}: {load['words']}", *(figure(found[name]) if name in found else "-" for name in names)])
    return grid("", [f"**{OWN}**", *names[1:]], lines)


def faults(loads, measured):
    failed = [(load, row) for load in loads for row in rows(measured[load["name"]]) if row.median is None]
    return [f"{row.program} failed: {row.fault or 'not run'} ({load['name']}).\n" for load, row in failed]


def growth_table(loads, measured):
    lines = []
    for load in loads:
        found = {row.program: row for row in rows(measured[load["name"]])}
        own, copy = found.get(OWN), found.get(COPY)
        lines.append([load["words"], time_text(own and own.median), time_text(copy and copy.median),
                      memory_text(own and own.peak_kib)])
    return grid("", [OWN, COPY, f"peak memory of {OWN}"], lines)


def goal_table(goals):
    lines = ["| load | goal | measured | |", "|---|---|---|---|"]
    lines += [f"| {goal.load} | {goal.words} | {goal.measured} | {'met' if goal.met else '**not met**'} |"
              for goal in goals]
    return lines + [""]


FREQUENT = 20


def call_table(loads, calls):
    """The calls that some load makes often, and the rest in one line."""
    counts = [dict(calls[load["name"]]) for load in loads]
    most = {name: max(count.get(name, 0) for count in counts) for count in counts for name in count}
    often = sorted((name for name in most if most[name] >= FREQUENT), key=lambda name: (-most[name], name))
    lines = [[f"`{name}`", *(str(count.get(name, 0)) for count in counts)] for name in often]
    lines.append(["all others", *(str(sum(count.values()) - sum(count.get(name, 0) for name in often))
                                  for count in counts)])
    return grid("", [load["name"] for load in loads], lines)


def markdown(machine, loads, measured, goals, calls):
    single = [load for load in loads if not load["series"]]
    growing = [load for load in loads if load["series"]]
    counted = [load for load in single if load["name"] in calls]
    lines = [f"Medians, measured by `./bench/compare` on {machine}:", ""]
    lines += program_table(single, measured, lambda row: time_text(row.median)) + faults(single, measured)
    lines += ["![The same medians as bars](performance.svg)", "", "## Goals", ""] + goal_table(goals)
    lines += ["## Peak memory", ""] + program_table(single, measured, lambda row: memory_text(row.peak_kib))
    if growing:
        lines += ["## Growth", ""] + growth_table(growing, measured)
    if counted:
        lines += ["## System calls", ""] + call_table(counted, calls)
    return "\n".join(lines)


BEGIN = "<!-- written by ./bench/compare --docs: begin -->\n"
END = "<!-- written by ./bench/compare --docs: end -->\n"


def put_between_marks(document, text):
    """The document with the text in place of what stood between the two marks."""
    head, mark, rest = document.partition(BEGIN)
    _, end, tail = rest.partition(END)
    if not mark or not end:
        raise ValueError("the document has no marks for the table")
    return head + BEGIN + "\n" + text.strip("\n") + "\n\n" + END + tail
