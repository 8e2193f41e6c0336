"""Runs programs over loads in interleaved rounds and keeps what was measured."""

import os
import shutil
import subprocess
import tempfile
from dataclasses import dataclass, field
from pathlib import Path

from programs import takes_part

# A program that takes longer than this for a load is run in fewer rounds.
SLOW_SECONDS = 3.0
SLOW_ROUNDS = 3


@dataclass
class Series:
    """What one program, run in one way, did with one load."""
    program: str
    way: str = ""
    seconds: list = field(default_factory=list)
    peak_kib: int = 0
    fault: str = ""  # why it has no figures


class Runner:
    def __init__(self, work, environment):
        self.work = Path(work)
        self.output = str(self.work / "joined.pdf")
        self.timer = str(self.work / "time-command")
        self.environment = environment

    def run(self, program, documents, pages):
        """Seconds and peak memory in KiB of one run; raises ValueError when the output is not what it should be.

        A run that does not count goes before it: what the program before left in caches and in the system's free
        memory would decide about the time otherwise, a virtual machine's most of all.
        """
        self.renew_temporaries()
        try:
            self.run_once(program, documents)
            self.remove_output()
            seconds, peak_kib = self.run_once(program, documents)
            if program.joins:
                self.check_pages(pages)
            return seconds, peak_kib
        finally:
            self.remove_output()

    def renew_temporaries(self):
        """Puts a new folder in the place of the one for temporary files.

        ext4 leaves the places of files that were deleted in the last minutes unused, and passes over them one by
        one: in one folder, every run would be slower than the one before.
        """
        temporaries = Path(self.environment["TMPDIR"])
        shutil.rmtree(temporaries, ignore_errors=True)
        Path(tempfile.mkdtemp(dir=temporaries.parent)).rename(temporaries)

    def run_once(self, program, documents):
        command = program.command(documents, self.output)
        stdout = self.output if program.to_stdout else str(self.work / "stdout")
        errors = self.work / "stderr"
        told = subprocess.run([self.timer, stdout, str(errors), *command], env=self.environment, check=True,
                              capture_output=True, text=True).stdout.split()
        if int(told[1]) != 0:
            raise ValueError(f"exit status {told[1]}: {errors.read_text(errors='replace').strip()[:200]}")
        return int(told[0]) / 1e9, int(told[2])

    def check_pages(self, pages):
        # Exit status 3 is success with warnings; some programs write tables that deserve one.
        counted = subprocess.run(["qpdf", "--show-npages", self.output], capture_output=True, text=True)
        if counted.returncode not in (0, 3) or counted.stdout.strip() != str(pages):
            raise ValueError(f"{counted.stdout.strip() or 'no'} pages instead of {pages}")

    def remove_output(self):
        for file in self.work.glob(Path(self.output).name + "*"):
            file.unlink()


def rounds_for(load, wanted):
    """Short runs are repeated more often: they are disturbed more easily."""
    if wanted:
        return wanted
    if load["bytes"] > 100 * 1024 * 1024:
        return 9
    return 51 if load["bytes"] < 100 * 1024 else 15


def measure_load(runner, all_programs, load, folder, wanted_rounds, say):
    """Every program's series for one load: a round that does not count, then round after round, each with every
    program in its turn and each begun by another one."""
    documents = sorted(str(file) for file in (folder / load["name"]).iterdir())
    taking_part = [program for program in all_programs if takes_part(program, load)]
    series = [Series(program.name, program.way) for program in taking_part]
    slow = set()
    for number in range(rounds_for(load, wanted_rounds) + 1):
        for i in range(len(taking_part)):
            k = (i + number) % len(taking_part)
            if series[k].fault or (k in slow and len(series[k].seconds) >= SLOW_ROUNDS):
                continue
            try:
                seconds, peak_kib = runner.run(taking_part[k], documents, load["pages"])
            except ValueError as fault:
                series[k].fault = str(fault)
                say(f"  {taking_part[k].name}: {fault}")
                continue
            if seconds > SLOW_SECONDS:
                slow.add(k)
            if number > 0:
                series[k].seconds.append(seconds)
                series[k].peak_kib = max(series[k].peak_kib, peak_kib)
        # What the removed outputs leave to do is done before the next round and not in it.
        os.sync()
    return series
