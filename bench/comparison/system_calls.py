"""Counts the system calls of one run with strace."""

import subprocess


def parse(summary):
    """[(name, calls)] from what `strace -c` prints, the most frequent first."""
    calls = []
    for line in summary.splitlines():
        fields = line.split()
        # % time, seconds, usecs/call, calls, perhaps errors, name.
        if len(fields) in (5, 6) and fields[3].isdigit() and fields[-1] != "total":
            calls.append((fields[-1], int(fields[3])))
    return sorted(calls, key=lambda call: (-call[1], call[0]))


def count(command, work, environment):
    summary = work / "strace"
    subprocess.run(["strace", "-f", "-c", "-o", str(summary), *command], env=environment, check=True,
                   capture_output=True)
    return parse(summary.read_text())
