"""Medians, ratios and goals: from what was measured to what is said about it."""

import math
from dataclasses import dataclass
from statistics import median

from programs import CARRYING, COPY, EMPTY, OWN, PREPARING, ROUNDS, peers

MIB = 1024 * 1024
MEMORY_BASE = 8 * MIB
MEMORY_PER_OBJECT = 1000


@dataclass
class Row:
    """What one program needed for a load; None where there is no figure."""
    program: str
    way: str
    median: float | None
    peak_kib: int | None
    fault: str = ""


@dataclass
class Goal:
    load: str
    words: str
    measured: str
    met: bool


def better_ways(series):
    """Of a program that was run in several ways, the one with the lower median; in the order given."""
    best = {}
    for one in series:
        old = best.get(one.program)
        if old is None or (one.seconds and (not old.seconds or median(one.seconds) < median(old.seconds))):
            best[one.program] = one
    return list(best.values())


def medians(series):
    return {one.program: median(one.seconds) for one in better_ways(series) if one.seconds}


def fastest_peer(times):
    """Name of the peer with the lowest median; None when no peer has one."""
    return min((name for name in peers() if name in times), key=times.get, default=None)


def rows(series):
    return [Row(one.program, one.way, median(one.seconds) if one.seconds else None,
                one.peak_kib if one.seconds else None, one.fault) for one in better_ways(series)]


def at_most(load, words, value, limit, text):
    return Goal(load["words"], words, text, value is not None and value <= limit)


def ratio(times, one, other):
    return times[one] / times[other] if one in times and other in times else None


def shown(value, form="{:.2f} times"):
    return "not measured" if value is None else form.format(value)


def faster_than_peers(load, times, factor):
    peer = fastest_peer(times)
    value = ratio(times, peer, OWN) if peer else None
    every = all(name in times for name in peers())
    return Goal(load["words"], f"at least {factor:g} times as fast as every peer",
                shown(value, "{:.1f} times as fast as ") + (peer or ""), value is not None and every and value >= factor)


def slower_than(load, times, other, limit, words):
    value = ratio(times, OWN, other)
    return at_most(load, f"at most {limit:g} times {words}", value, limit, shown(value))


def start_goal(load, times):
    value = times[OWN] - times[EMPTY] if OWN in times and EMPTY in times else None
    return at_most(load, "at most 1.5 ms more than starting an empty C++ program", value, 0.0015,
                   shown(value and value * 1000, "{:.2f} ms more"))


def preparing_goals(load, series):
    """Where half of the documents need it, and where none does. Left to itself, qpdf compresses streams anew; the
    table has its faster way."""
    times = medians(series)
    if load["name"] == "mixed":
        usual = [one for one in series if one.program == "qpdf" and one.way == "default" and one.seconds]
        value = times[PREPARING] / median(usual[0].seconds) if usual and PREPARING in times else None
        yield at_most(load, "with `--prepare` at most 2 times `qpdf --empty --pages`", value, 2, shown(value))
    else:
        value = ratio(times, PREPARING, OWN)
        yield at_most(load, "with `--prepare` at most 1.25 times the time without", value, 1.25, shown(value))


def carrying_goal(load, times):
    value = times[CARRYING] - 1.2 * times[OWN] if CARRYING in times and OWN in times else None
    return at_most(load, "with `--carry` at most 1.2 times the time without, and 50 ms", value, 0.05,
                   shown(value and value * 1000, "1.2 times and {:.0f} ms"))


def folder_goals(load, times):
    yield slower_than(load, times, ROUNDS, 1.2, "the same rounds done with `cat`")
    for name in ("qpdf", "pdfunite", "pdftk"):
        value = ratio(times, name, OWN)
        yield Goal(load["words"], f"faster than `{name}`", shown(value, "{:.2f} times as fast"),
                   value is not None and value > 1)
    value = ratio(times, "mutool", OWN)
    yield Goal(load["words"], "at least as fast as `mutool`", shown(value, "{:.2f} times as fast"),
               value is not None and value >= 1)
    yield carrying_goal(load, times)


def load_goals(load, series):
    times = medians(series)
    if load["name"] == "streams":
        yield slower_than(load, times, COPY, 1.1, "`cat a b > c`")
        yield faster_than_peers(load, times, 1.4)
        yield carrying_goal(load, times)
    elif load["name"] == "objects":
        yield faster_than_peers(load, times, 15)
    elif load["name"] == "small":
        yield faster_than_peers(load, times, 1.6)
        yield start_goal(load, times)
    elif load["name"] in ("mixed", "plain"):
        yield from preparing_goals(load, series)
    elif load["name"] == "folder":
        yield from folder_goals(load, times)


def memory_goal(loads, measured):
    """The load that comes nearest to its limit speaks for all."""
    worst, text = None, "not measured"
    for load in loads:
        for one in measured[load["name"]]:
            if one.program != OWN or not one.peak_kib:
                continue
            share = one.peak_kib * 1024 / (MEMORY_BASE + MEMORY_PER_OBJECT * load["objects"])
            if worst is None or share > worst:
                worst = share
                text = f"at most {share:.0%} of that ({one.peak_kib / 1024:.1f} MiB for {load['words']})"
    return Goal("every load", "memory: at most 8 MiB and 1,000 bytes for each object", text,
                worst is not None and worst <= 1)


def doublings(steps, measured):
    """(Factor of the time, factor allowed) for each doubling of a series; None where a figure is missing."""
    result = []
    for before, after in zip(steps, steps[1:]):
        first = medians(measured[before["name"]]).get(OWN)
        second = medians(measured[after["name"]]).get(OWN)
        allowed = 2.0
        if after["documents"] != before["documents"]:
            allowed *= math.log(after["documents"]) / math.log(before["documents"])
        result.append((second / first, allowed) if first and second else None)
    return result


def growth_goal(series_name, steps, measured):
    """Judged over all doublings together, because a single one of short runs moves with the weather."""
    factors = doublings(steps, measured)
    what = series_name.removeprefix("growing-")
    words = f"twice the {what}, at most twice the time" + (" (times log n)" if what == "documents" else "")
    if not factors or None in factors:
        return Goal("growth", words, "not measured", False)
    whole = math.prod(factor for factor, _ in factors) ** (1 / len(factors))
    allowed = math.prod(limit for _, limit in factors) ** (1 / len(factors))
    steps_shown = ", ".join(f"{factor:.2f}" for factor, _ in factors)
    return Goal("growth", words, f"{whole:.2f} times a doubling ({steps_shown}; allowed {allowed:.2f})",
                whole <= allowed)


def all_goals(loads, measured):
    """`measured` has the series of every load by the load's name."""
    goals = [goal for load in loads for goal in load_goals(load, measured[load["name"]])]
    if loads:
        goals.append(memory_goal(loads, measured))
    for name in dict.fromkeys(load["series"] for load in loads if load["series"]):
        goals.append(growth_goal(name, [load for load in loads if load["series"] == name], measured))
    return goals
