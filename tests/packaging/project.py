"""Where the tests of the packaging find what they look at, and what they share."""

import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
BUILD = Path(os.environ.get("FOLIOWELD_BUILD", ROOT / "build" / "dev"))
PACKAGES = Path(os.environ.get("FOLIOWELD_PACKAGES", ROOT / "build" / "packages"))
ID = "org.folioweld.Folioweld"
VERSION = (ROOT / "VERSION").read_text().strip()
SKIPPED = 77


def run(*command, **more):
    """Runs a command that has to succeed; what it wrote, to either stream."""
    result = subprocess.run(list(map(str, command)), stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                            stderr=subprocess.STDOUT, text=True, check=False, **more)
    if result.returncode != 0:
        raise AssertionError(f"{command} ended with {result.returncode}:\n{result.stdout}")
    return result.stdout


def install(stage=None, prefix=None, component=None):
    """Installs out of the build folder, into a stage, under another prefix than the configured one, or both."""
    command = ["cmake", "--install", BUILD]
    if prefix:
        command += ["--prefix", prefix]
    if component:
        command += ["--component", component]
    return run(*command, env=with_stage(stage), umask=0o077)


def uninstall(stage=None):
    return run("cmake", "--build", BUILD, "--target", "uninstall", env=with_stage(stage))


def forget_installation():
    """Takes the records of an installation in a folder that goes away out of the build folder."""
    for record in (*BUILD.glob("install_manifest*.txt"), *BUILD.glob("install_folders.txt")):
        record.unlink()


def with_stage(stage):
    environment = {name: value for name, value in os.environ.items() if name != "DESTDIR"}
    return dict(environment, DESTDIR=str(stage)) if stage else environment


def tree(folder):
    """All that is below a folder, by its path from there."""
    return sorted(str(path.relative_to(folder)) for path in Path(folder).rglob("*"))


def files(folder):
    return sorted(str(path.relative_to(folder)) for path in Path(folder).rglob("*") if not path.is_dir())


def packages():
    """The packages by their names."""
    found = {path.name.split("_")[0]: path for path in PACKAGES.glob("*.deb")}
    if set(found) != {"folioweld", "folioweld-window", "folioweld-extras"}:
        raise AssertionError(f"{PACKAGES} holds {sorted(found)}; scripts/package.sh builds the packages")
    return found


def debug_packages():
    """Those with the debug symbols, by the names of the packages that they belong to."""
    return {path.name.split("-dbgsym_")[0]: path for path in (PACKAGES / "debug").glob("*.deb")}


class FolderTest(unittest.TestCase):
    """A test with a folder of its own."""

    def setUp(self):
        holder = tempfile.TemporaryDirectory(prefix="folioweld-packaging-")
        self.addCleanup(holder.cleanup)
        self.folder = Path(holder.name)


class InstallationTest(FolderTest):
    """A test that installs into its folder. No two of them may run at once: see RESOURCE_LOCK."""

    def setUp(self):
        super().setUp()
        self.addCleanup(forget_installation)


def skip(reason):
    """Ends the test program as one that cannot be run here."""
    print("skipped:", reason)
    sys.exit(SKIPPED)


def main():
    """Runs the tests. Ones that were skipped make the program one that was skipped, unless others failed."""
    result = unittest.main(verbosity=2, exit=False).result
    if result.skipped and result.wasSuccessful():
        skip("; ".join(reason for _, reason in result.skipped))
    sys.exit(not result.wasSuccessful())
