#!/usr/bin/env python3
"""Somebody else builds the same packages to the byte: elsewhere, in another language, at another time."""

import hashlib
import os
import shutil

from project import ROOT, FolderTest, debug_packages, main, packages, run


def leave_out(folder, names):
    here = os.path.relpath(folder, ROOT)
    return [name for name in names if name == "__pycache__" or here == "." and name in ("build", ".git")]


class Reproducible(FolderTest):
    def test_a_second_build_gives_the_same_bytes(self):
        first = [*packages().values(), *debug_packages().values()]
        sources = self.folder / "another place" / "sources of it"
        shutil.copytree(ROOT, sources, ignore=leave_out)
        for file in sources.rglob("*"):
            os.utime(file, (1000000000, 1000000000))
        environment = {name: value for name, value in os.environ.items() if name != "SOURCE_DATE_EPOCH"}
        environment.update(LC_ALL="C", LANG="de_DE.UTF-8", TZ="Pacific/Kiritimati", HOME=str(self.folder), USER="x")
        run(sources / "scripts/package.sh", self.folder / "again", self.folder / "build", env=environment, umask=0o077)
        for package in first:
            again = self.folder / "again" / ("debug" if "-dbgsym_" in package.name else "") / package.name
            if again.read_bytes() != package.read_bytes():
                self.fail(f"{package.name} differs:\n{self.difference(package, again)}")

    def difference(self, first, second):
        return "\n".join(sorted(self.contents(first) ^ self.contents(second)))

    def contents(self, package):
        """A line for every file of a package and its control data, with all that the package says of it."""
        folder = self.folder / hashlib.sha256(str(package).encode()).hexdigest()
        run("dpkg-deb", "--raw-extract", package, folder)
        told = set(run("dpkg-deb", "--contents", package).splitlines())
        for file in folder.rglob("*"):
            if file.is_file():
                told.add(f"{hashlib.sha256(file.read_bytes()).hexdigest()} {file.relative_to(folder)}")
        return told


if __name__ == "__main__":
    main()
