"""The table, as Markdown."""

from figures import rows
from programs import OWN


def time_text(seconds):
    if seconds is None:
        return "-"
    if seconds < 0.01:
        return f"{seconds * 1000:.2f} ms"
    return f"{seconds * 1000:.0f} ms" if seconds < 10 else f"{seconds:.1f} s"


def ratio_text(value):
    if value is None:
        return "-"
    return f"{value:.2f}" if value < 100 else f"{value:.0f}"


def memory_text(kib):
    return "-" if kib is None else f"{kib / 1024:.1f} MiB"


def program_text(row):
    name = f"**{row.program}**" if row.program == OWN else row.program
    return f"{name} ({row.way})" if row.way else name


def load_table(load, series):
    lines = [f"**{load['words'][0].upper()}{load['words'][1:]}**", "",
             "| program | median | ratio to the fastest peer | ratio to a plain copy | peak memory |",
             "|---|---:|---:|---:|---:|"]
    for row in rows(series):
        if row.median is None:
            lines.append(f"| {program_text(row)} | failed: {row.fault or 'not run'} | - | - | - |")
            continue
        lines.append(f"| {program_text(row)} | {time_text(row.median)} | {ratio_text(row.to_peer)} | "
                     f"{ratio_text(row.to_copy)} | {memory_text(row.peak_kib)} |")
    return lines + [""]


def growth_table(loads, measured):
    lines = ["**Growth**", "", "| load | folioweld | plain copy | peak memory of folioweld |", "|---|---:|---:|---:|"]
    for load in loads:
        found = {row.program: row for row in rows(measured[load["name"]])}
        own, copy = found.get(OWN), found.get("plain copy")
        lines.append(f"| {load['words']} | {time_text(own and own.median)} | {time_text(copy and copy.median)} | "
                     f"{memory_text(own and own.peak_kib)} |")
    return lines + [""]


def goal_table(goals):
    lines = ["**Goals**", "", "| load | goal | measured | |", "|---|---|---|---|"]
    lines += [f"| {goal.load} | {goal.words} | {goal.measured} | {'met' if goal.met else '**not met**'} |"
              for goal in goals]
    return lines + [""]


def call_table(load, calls):
    lines = [f"**System calls of folioweld: {load['words']}**", "", "| call | times |", "|---|---:|"]
    lines += [f"| {name} | {count} |" for name, count in calls]
    lines.append(f"| all | {sum(count for _, count in calls)} |")
    return lines + [""]


def markdown(machine, loads, measured, goals, calls):
    lines = [f"Written by `./bench/compare`, on {machine}.", ""]
    for load in loads:
        if not load["series"]:
            lines += load_table(load, measured[load["name"]])
    growing = [load for load in loads if load["series"]]
    if growing:
        lines += growth_table(growing, measured)
    lines += goal_table(goals)
    for load in loads:
        if load["name"] in calls:
            lines += call_table(load, calls[load["name"]])
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
