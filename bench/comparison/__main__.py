"""The benchmark proper; ./bench/compare prepares everything and starts it."""

import argparse
import json
import os
import shutil
import subprocess
import sys
from pathlib import Path

import figures
import machine
import measure
import picture
import programs
import report
import system_calls

ROOT = Path(__file__).resolve().parent.parent.parent


def arguments():
    parser = argparse.ArgumentParser(prog="compare", description="Compares folioweld with other programs that join "
                                     "PDF documents, with copying the bytes, and with its goals.")
    parser.add_argument("loads", nargs="*", metavar="LOAD", help="run these loads only (loads.json has the names)")
    parser.add_argument("--check-goals", action="store_true", help="exit status 1 when a goal is missed")
    parser.add_argument("--docs", action="store_true", help="put table and picture into docs/ as well")
    parser.add_argument("--rounds", type=int, default=0, help="rounds of every load, instead of 9 to 51")
    parser.add_argument("--only", action="append", metavar="NAME", help="run this program only; may be repeated")
    parser.add_argument("--cross-check", action="store_true", help="time the small load with hyperfine as well")
    parser.add_argument("--program", required=True, help=argparse.SUPPRESS)
    parser.add_argument("--work", required=True, type=Path, help=argparse.SUPPRESS)
    return parser.parse_args()


def say(words):
    print(words, file=sys.stderr, flush=True)


def environment(work):
    """Settings and temporary files of the programs stay in the work folder, on the file system of the output."""
    scratch = work / "scratch"
    shutil.rmtree(scratch, ignore_errors=True)
    scratch.mkdir()
    if shutil.which("chattr"):
        # The folders in this one are laid out in different parts of the file system, where it has such.
        subprocess.run(["chattr", "+T", scratch], capture_output=True, check=False)
    kept = {name: value for name, value in os.environ.items() if not name.startswith("LC_")}
    return {**kept, "LANG": "C.UTF-8", "HOME": str(scratch), "XDG_CONFIG_HOME": str(scratch),
            "TMPDIR": str(scratch / "temporaries")}


def count_calls(loads, program, runner):
    calls = {}
    for load in loads:
        if load["series"] or load["name"] in ("mixed", "plain") or shutil.which("strace") is None:
            continue
        command = [program, runner.output, str(runner.work / "loads" / load["name"])]
        runner.renew_temporaries()
        calls[load["name"]] = system_calls.count(command, runner.work, runner.environment)
        runner.remove_output()
    return calls


def cross_check(all_programs, runner):
    """Times the small load with a tool that others wrote, program after program."""
    documents = sorted(str(file) for file in (runner.work / "loads" / "small").iterdir())
    for program in all_programs:
        if program.joins:
            command = " ".join(program.command(documents, runner.output))
            subprocess.run(["hyperfine", "-N", "--warmup", "5", "--min-runs", "50", command], env=runner.environment,
                           check=False)
    runner.remove_output()


def write(work, docs, text, drawing):
    (work / "performance.md").write_text(text + "\n")
    (work / "performance.svg").write_text(drawing)
    if docs:
        document = ROOT / "docs" / "performance.md"
        document.write_text(report.put_between_marks(document.read_text(), text))
        (ROOT / "docs" / "performance.svg").write_text(drawing)


def main():
    options = arguments()
    loads = [load for load in json.loads((options.work / "loads" / "loads.json").read_text())
             if not options.loads or load["name"] in options.loads or load["series"] in options.loads]
    if not loads:
        sys.exit("compare: no such load")
    chosen = [program for program in programs.programs(options.program, str(options.work / "empty-program"))
              if not options.only or program.name in options.only]
    absent = sorted({program.tool for program in chosen if programs.missing(program)})
    if absent:
        sys.exit("compare: not installed: " + ", ".join(absent))

    where = machine.description(options.work)
    say(f"On {where}.")
    busy = machine.load_average()
    if busy > 0.5:
        where += f", busy with other work (load average {busy:.1f})"
        say(f"The machine is busy (load average {busy:.1f}): repeat this when it is not.")
    runner = measure.Runner(options.work, environment(options.work))
    measured = {}
    for load in loads:
        say(f"{load['name']}: {load['words']} ...")
        measured[load["name"]] = measure.measure_load(runner, chosen, load, options.work / "loads", options.rounds, say)

    goals = figures.all_goals(loads, measured)
    calls = count_calls(loads, options.program, runner)
    text = report.markdown(where, loads, measured, goals, calls)
    write(options.work, options.docs, text, picture.svg(where, loads, measured))
    print(text)
    if options.cross_check:
        cross_check(chosen, runner)
    if any(one.fault for load in loads for one in measured[load["name"]] if one.program == programs.OWN):
        return 1
    return 1 if options.check_goals and not all(goal.met for goal in goals) else 0


if __name__ == "__main__":
    sys.exit(main())
