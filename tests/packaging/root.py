"""A fresh system in a folder, made of the packages that this system's sources offer."""

import os
import re
import shutil
import subprocess
import tempfile
from pathlib import Path

from project import run

RELEASE = "bookworm"
USER = 65534
# How packages are fetched here; everything else of the system's settings stays out.
_FETCHING = re.compile(r"Acquire::(Check-|Retries|Force|https?\b)")
_PROXY = re.compile(r"(https?|no)_proxy", re.IGNORECASE)


def obstacle():
    """Why no root can be made here; nothing when it can."""
    if os.geteuid() != 0:
        return "only root may install packages into a folder"
    tried = subprocess.run(["unshare", "--mount", "true"], capture_output=True, text=True, check=False)
    return f"no file system can be mounted here: {tried.stderr.strip()}" if tried.returncode else None


def sources():
    """The files that name Debian's packages of the release."""
    apt = Path("/etc/apt")
    found = [apt / "sources.list", *sorted((apt / "sources.list.d").iterdir())]
    return [file for file in found if file.suffix in (".list", ".sources") and file.is_file()
            and RELEASE in file.read_text().split()]


class Root:
    def __init__(self):
        self.folder = Path(tempfile.mkdtemp(prefix="folioweld-root-"))
        self.path = self.folder / "root"
        try:
            self._make()
        except BaseException:
            self.close()
            raise

    def _make(self):
        fetching = [line for line in run("apt-config", "dump").splitlines() if _FETCHING.match(line)]
        # A source that is busy for a moment is asked again.
        fetching.append('Acquire::Retries "5";')
        (self.folder / "fetching").write_text("\n".join(fetching) + "\n")
        run("mmdebstrap", "--mode=root", "--variant=minbase", "--skip=cleanup/apt/lists",
            f"--aptopt={self.folder / 'fetching'}", RELEASE, self.path, *sources())
        shutil.copy("/etc/resolv.conf", self.path / "etc/resolv.conf")
        for name in ("home/user", "packages"):
            (self.path / name).mkdir()
        os.chown(self.path / "home/user", USER, USER)

    def close(self):
        shutil.rmtree(self.folder)

    def command(self, *words, user=False):
        """The words of a command that runs inside. What is mounted for it nobody else sees, and it ends with it."""
        inside = ["chroot", *([f"--userspec={USER}:{USER}"] if user else []), self.path, *words]
        script = 'mount -t proc proc "$0" && exec "$@"'
        return list(map(str, ["unshare", "--mount", "sh", "-c", script, self.path / "proc", *inside]))

    def environment(self, **more):
        proxies = {name: value for name, value in os.environ.items() if _PROXY.fullmatch(name)}
        return {"PATH": "/usr/sbin:/usr/bin:/sbin:/bin", "HOME": "/home/user", "LC_ALL": "C.UTF-8", **proxies, **more}

    def run(self, *words, user=False, **more):
        """The result of a command inside."""
        return subprocess.run(self.command(*words, user=user), env=self.environment(**more), capture_output=True,
                              stdin=subprocess.DEVNULL, text=True, check=False)

    def apt(self, *words):
        run(*self.command("apt-get", "--yes", "-o", "APT::Install-Recommends=false", *words),
            env=self.environment(DEBIAN_FRONTEND="noninteractive"))

    def installed(self):
        """The packages inside."""
        said = run(*self.command("dpkg-query", "-W", "-f", "${db:Status-Abbrev} ${Package}\n"),
                   env=self.environment())
        return {line.split()[1] for line in said.splitlines() if line.startswith("ii")}

    def tree(self):
        """Every path inside but those of the running system."""
        found = set()
        for folder, folders, files in os.walk(self.path):
            here = Path(folder).relative_to(self.path)
            if here == Path("."):
                folders[:] = [name for name in folders if name not in ("proc", "sys", "dev", "run", "tmp")]
            found.update(str(here / name) for name in folders + files)
        return found
