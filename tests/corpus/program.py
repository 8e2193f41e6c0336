"""One run of the program under test in a world of its own: folders, settings, temporaries, home."""

import os
import shutil
import subprocess
import tempfile
from dataclasses import dataclass

LONGEST_RUN_SECONDS = 120
# Larger outputs are not joined once more for what is appended to them.
LARGEST_CARRIED_BYTES = 60_000


@dataclass
class Outcome:
    status: int
    stderr: str
    output: str  # the path, whether or not anything is there
    problems: list  # broken promises that hold for every run: silent stdout, untouched inputs, nothing left behind

    @property
    def written(self):
        return os.path.exists(self.output)


class World:
    """A temporary folder with everything that a run may see; leaving the `with` block removes it."""

    def __init__(self, keep_in=None):
        self._kept = keep_in is not None
        self.root = tempfile.mkdtemp(prefix="folioweld-corpus-", dir=keep_in)
        for name in ("in", "out", "home", "config", "tmp", "start"):
            os.mkdir(self.path(name))

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if not self._kept:
            shutil.rmtree(self.root, ignore_errors=True)

    def path(self, *names):
        return os.path.join(self.root, *names)

    def join(self, program, sources, options=()):
        """Joins copies of `sources`, a list of (name in the folder, path), in name order."""
        for name, path in sources:
            shutil.copyfile(path, self.path("in", name))
        return self.join_folder(program, self.path("in"), {name: path for name, path in sources}, options)

    def join_folder(self, program, folder, originals, options=()):
        output = self.path("out", "joined.pdf")
        environment = {k: v for k, v in os.environ.items() if k not in ("DISPLAY", "WAYLAND_DISPLAY")}
        environment.update(
            HOME=self.path("home"),
            XDG_CONFIG_HOME=self.path("config"),
            TMPDIR=self.path("tmp"),
            LC_ALL="C.UTF-8",
        )
        done = self._run([program, *options, output, folder], environment)
        stderr = done.stderr.decode("utf-8", "backslashreplace")
        problems = list(self._not_the_beginning(program, options, output, folder, environment))
        return Outcome(done.returncode, stderr, output, problems + list(self._broken_promises(done, folder, originals)))

    def _run(self, command, environment):
        return subprocess.run(
            command,
            stdin=subprocess.DEVNULL,
            capture_output=True,
            timeout=LONGEST_RUN_SECONDS,
            env=environment,
            cwd=self.path("start"),
        )

    def _not_the_beginning(self, program, options, output, folder, environment):
        """With --carry the output begins with what it is without."""
        has_program = os.path.exists(os.path.join(os.path.dirname(program), "folioweld-carry"))
        if not has_program or "--carry" in options or not os.path.exists(output):
            return
        if os.path.getsize(output) > LARGEST_CARRIED_BYTES:
            return
        carried = self.path("tmp", "carried.pdf")
        done = self._run([program, "--carry", *options, carried, folder], environment)
        if done.returncode not in (0, 3) or b"ended by signal" in done.stderr:
            yield f"with --carry ended with status {done.returncode}: {done.stderr[-600:]!r}"
        if os.path.exists(carried):
            with open(output, "rb") as plain, open(carried, "rb") as file:
                beginning = plain.read()
                if file.read(len(beginning)) != beginning:
                    yield "is not the beginning of the output with --carry"
            os.remove(carried)

    def _broken_promises(self, done, folder, originals):
        if done.returncode < 0 or done.returncode > 3:
            yield f"ended with status {done.returncode}: {done.stderr[-600:]!r}"
        if done.stdout:
            yield f"standard output holds {done.stdout[:120]!r}"
        if sorted(os.listdir(folder)) != sorted(originals):
            yield f"the input folder now holds {sorted(os.listdir(folder))}"
        for name, path in originals.items():
            copy = os.path.join(folder, name)
            if os.path.exists(copy) and not same_bytes(copy, path):
                yield f"input {name} was changed"
        for name in ("home", "tmp", "start"):
            if os.listdir(self.path(name)):
                yield f"left behind in {name}: {sorted(os.listdir(self.path(name)))}"
        if set(os.listdir(self.path("out"))) - {"joined.pdf"}:
            yield f"left behind beside the output: {sorted(os.listdir(self.path('out')))}"
        if set(os.listdir(self.path("config"))) - {"folioweld"}:
            yield f"left behind beside the settings: {sorted(os.listdir(self.path('config')))}"


def same_bytes(path_a, path_b):
    with open(path_a, "rb") as a, open(path_b, "rb") as b:
        return a.read() == b.read()
