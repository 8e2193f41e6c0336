#!/usr/bin/env python3
"""Puts deliberate faults into engine/ and dirmerge/, one at a time, and sees whether a test turns red.

    scripts/mutate.py                every fault of scripts/mutations.txt
    scripts/mutate.py --part 3/16    the third of sixteen parts
    scripts/mutate.py --only TEXT    the faults whose file or description holds the text
    scripts/mutate.py --check        only whether every fault still applies to the sources (what ./test does)
    scripts/mutate.py --since main   faults that simple rules make of the lines that the commit "main" does not have:
                                     each comparison shifted, each condition turned round, each call left out ...

With --since "" they are made of every line: two thousand. The sources are copied to build/mutation and built there,
without optimization and with one file compiled anew for each fault; nothing is changed in place. The test programs of
the engine, the directory merge and the failures run until the first red test. Exit status 0: at least 95 percent were
noticed, and every other one of the list is explained there; of the faults made by rule, every one that builds was
noticed. build/mutation/report.tsv keeps the results of every part that was run.
"""

import argparse
import hashlib
import json
import os
import re
import resource
import shutil
import subprocess
import sys
import tempfile
import time

sys.dont_write_bytecode = True
from mutation_faults import ROOT, generated, listed, sources  # noqa: E402

WANTED_PERCENT = 95
# A fault may keep a test from ever ending, or have it take all memory there is.
SECONDS_BEYOND_GOOD_RUN = 30
TIMES_GOOD_RUN = 5
MOST_MEMORY = 8 * 1024**3
SLOW = "*BoundedWork*:*SuddenDeath*:DirectoryMergeFault*"
KILLED, SURVIVED, BROKEN = "killed", "survived", "does not build"


class Scratch:
    """A copy of the sources with a build folder of its own."""

    PROGRAMS = ("engine_tests", "dirmerge_tests", "faults_tests")
    # What decides whether the tests are green without a fault.
    FINGERPRINTED = ("CMakeLists.txt", "batch/", "cmake/", "dirmerge/", "engine/", "platform/", "tests/CMakeLists.txt",
                     "tests/dirmerge/", "tests/engine/", "tests/faults/", "tests/support/")

    def __init__(self, folder, compile_jobs):
        self.tree, self.build = os.path.join(folder, "tree"), os.path.join(folder, "build")
        self.compile_jobs = compile_jobs
        self.temporary = tempfile.mkdtemp(prefix="fw-")
        os.chmod(self.temporary, 0o755)  # tests play other users
        self.good_seconds = {}
        self.good_record = os.path.join(folder, "good.json")
        self.fingerprint = hashlib.sha256()
        self.copy_sources()

    def close(self):
        shutil.rmtree(self.temporary, ignore_errors=True)

    def copy_sources(self):
        listed = subprocess.run([os.path.join(ROOT, "scripts", "source-files.sh"), "*"], capture_output=True, check=True)
        names = sorted(listed.stdout.decode().splitlines())
        for name in names:
            data = read_bytes(os.path.join(ROOT, name))
            self.write(name, data)
            if name.startswith(self.FINGERPRINTED):
                self.fingerprint.update(f"{name}\n{len(data)}\n".encode() + data)
        for folder, _, files in os.walk(self.tree):
            for file in files:
                path = os.path.join(folder, file)
                if os.path.relpath(path, self.tree) not in names:
                    os.remove(path)
        shutil.copymode(os.path.join(ROOT, "test"), os.path.join(self.tree, "test"))

    def write(self, name, data):
        """Only what differs, so that nothing is compiled without need."""
        path = os.path.join(self.tree, name)
        if os.path.exists(path) and read_bytes(path) == data:
            return
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.write(data)

    def configure(self):
        command = ["cmake", "-S", self.tree, "-B", self.build, "-G", "Ninja", "-DFOLIOWELD_WINDOW=OFF", "-DFOLIOWELD_UNITY=OFF"]
        command += ["-DCMAKE_BUILD_TYPE=", "-DCMAKE_CXX_FLAGS=-O0 -w -D_GLIBCXX_ASSERTIONS"]
        command += ["-DCMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE=PRE_TEST"]
        subprocess.run(command, check=True, stdout=subprocess.DEVNULL)

    def compile(self, programs=PROGRAMS):
        """None, or what the compiler said."""
        command = ["cmake", "--build", self.build, "-j", str(self.compile_jobs), "--target", *programs]
        done = subprocess.run(command, capture_output=True, text=True, errors="replace")
        return None if done.returncode == 0 else done.stdout

    def stages(self, folder):
        """The test programs with their filters, the likeliest to notice a fault in the folder first."""
        first = ["dirmerge_tests", "engine_tests"] if folder == "dirmerge" else ["engine_tests", "dirmerge_tests"]
        return [(name, "*") for name in first] + [("faults_tests", "*-" + SLOW), ("faults_tests", SLOW)]

    def run(self, stage):
        """None when every test is green, else the first red one."""
        name, wanted = stage
        limit = self.good_seconds.get(stage, 1200) * TIMES_GOOD_RUN + SECONDS_BEYOND_GOOD_RUN
        command = [os.path.join(self.build, "tests", *(["faults"] if name == "faults_tests" else []), name)]
        command += ["--gtest_fail_fast", "--gtest_brief=1", f"--gtest_filter={wanted}"]
        start = time.monotonic()
        program = subprocess.Popen(
            command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, cwd=self.temporary,
            env=dict(os.environ, TMPDIR=self.temporary), preexec_fn=limit_process, text=True, errors="replace")
        try:
            said, _ = program.communicate(timeout=limit)
        except subprocess.TimeoutExpired:
            os.killpg(program.pid, 9)
            program.communicate()
            return f"{name}: no end within {limit:.0f} s"
        self.good_seconds.setdefault(stage, time.monotonic() - start)
        if program.returncode == 0:
            return None
        failed = re.search(r"\[  FAILED  \] (\S+?),? ", said)
        return failed[1] if failed else f"{name}: ended with status {program.returncode}"

    def problem_without_fault(self):
        """None when everything is green before any fault; known from an earlier part with the same sources."""
        seen = {}
        if os.path.exists(self.good_record):
            with open(self.good_record, encoding="utf-8") as file:
                seen = json.load(file)
        if seen.get("sources") == self.fingerprint.hexdigest():
            self.good_seconds = {(name, wanted): seconds for name, wanted, seconds in seen["seconds"]}
            return self.compile()
        problem = self.compile() or next((red for red in map(self.run, self.stages("engine")) if red), None)
        if not problem:
            seconds = [[*stage, taken] for stage, taken in self.good_seconds.items()]
            with open(self.good_record, "w", encoding="utf-8") as file:
                json.dump({"sources": self.fingerprint.hexdigest(), "seconds": seconds}, file)
        return problem

    def judge(self, fault):
        """(result, what noticed it)."""
        good = read_bytes(os.path.join(self.tree, fault.file))
        self.write(fault.file, fault.applied(good.decode()).encode())
        try:
            # Most faults show in the first program, and then the others need not even be linked.
            for stage in self.stages(fault.file.split("/")[0]):
                complaint = self.compile(stage[:1])
                if complaint:
                    return BROKEN, next((line for line in complaint.splitlines() if "error:" in line), "")
                red = self.run(stage)
                if red:
                    return KILLED, red
            return SURVIVED, fault.excuse
        finally:
            self.write(fault.file, good)
            for name in os.listdir(self.temporary):
                shutil.rmtree(os.path.join(self.temporary, name), ignore_errors=True)


def limit_process():
    os.setsid()
    resource.setrlimit(resource.RLIMIT_AS, (MOST_MEMORY, MOST_MEMORY))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def read_bytes(path):
    with open(path, "rb") as file:
        return file.read()


class Report:
    """The results so far, one line a fault; those of other parts are kept."""

    def __init__(self, path):
        self.path, self.rows = path, {}
        if os.path.exists(path):
            with open(path, encoding="utf-8") as file:
                for line in file:
                    file_name, breaks, old, new, *result = line.rstrip("\n").split("\t")
                    self.rows[file_name, breaks, old, new] = result

    @staticmethod
    def key(fault):
        return fault.file, fault.breaks, fault.old, fault.new

    def add(self, fault, result, by):
        self.rows[self.key(fault)] = [result, by]
        with open(self.path, "w", encoding="utf-8") as file:
            for key, row in self.rows.items():
                file.write("\t".join([*key, *row]) + "\n")

    def sum_up(self, faults, by_rule):
        """Prints what came out; True when it is good enough."""
        rows = [(fault, self.rows[self.key(fault)]) for fault in faults if self.key(fault) in self.rows]
        if by_rule:
            rows = [(fault, row) for fault, row in rows if row[0] != BROKEN]
        killed = sum(row[0] == KILLED for _, row in rows)
        bad = [row for fault, row in rows if row[0] == BROKEN or row[0] == SURVIVED and not fault.excuse]
        print(f"{killed} of {len(rows)} faults noticed ({len(faults) - len(rows)} of the list not tried yet)")
        for fault, row in rows:
            if row[0] != KILLED:
                print(f"{row[0]}: {fault.file}: {fault.breaks}\n  {fault.excuse or row[1] or 'no test sees it'}")
        return bool(rows) and killed * 100 >= WANTED_PERCENT * len(rows) and not bad


def parse_options():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--check", action="store_true")
    parser.add_argument("--since", metavar="COMMIT")
    parser.add_argument("--part", default="1/1", help="K/N: the K-th of N parts")
    parser.add_argument("--only", default="", help="part of a file name or a description")
    parser.add_argument("--folder", default=os.path.join(ROOT, "build", "mutation"), help="where to build")
    parser.add_argument("-j", type=int, default=os.cpu_count(), help="compilers at a time")
    return parser.parse_args()


def main():
    options = parse_options()
    texts = sources()
    faults, problems = listed(texts)
    if problems:
        sys.exit("\n".join(problems))
    if options.check:
        print(f"all {len(faults)} faults of the list apply")
        return 0
    if options.since is not None:
        faults = list(generated(texts, options.since))
    part, parts = map(int, options.part.split("/"))
    chosen = [f for f in faults if options.only in f.file or options.only in f.breaks]
    chosen = chosen[len(chosen) * (part - 1) // parts : len(chosen) * part // parts]

    os.makedirs(options.folder, exist_ok=True)
    report = Report(os.path.join(options.folder, "report.tsv"))
    scratch = Scratch(options.folder, options.j)
    try:
        scratch.configure()
        problem = scratch.problem_without_fault()
        if problem:
            sys.exit(f"without any fault already:\n{problem}")
        for fault in chosen:
            start = time.monotonic()
            result, by = scratch.judge(fault)
            report.add(fault, result, by)
            print(f"{result}: {fault.file}: {fault.breaks} [{by}] {time.monotonic() - start:.0f} s", flush=True)
    finally:
        scratch.close()
    return 0 if report.sum_up(faults, options.since is not None) else 1


if __name__ == "__main__":
    sys.exit(main())
