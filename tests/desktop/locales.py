"""Locales of a test's own: made from the system's sources in a folder, the system is left alone."""

import subprocess


def make_locales(folder, names):
    """What the environment has to say so that these locales, "xx_YY.CHARSET", are found there."""
    folder.mkdir()
    for name in names:
        source, _, charset = name.partition(".")
        subprocess.run(["localedef", "-i", source, "-f", charset, str(folder / name)], check=True,
                       stdout=subprocess.DEVNULL)
    return {"LOCPATH": str(folder)}


def is_known(name, environment):
    """Whether a program under this environment gets the locale when it asks for it."""
    known = subprocess.run(["locale", "charmap"], env=dict(environment, LC_ALL=name), capture_output=True, check=True)
    return known.stdout.decode().strip() == name.partition(".")[2] and not known.stderr
