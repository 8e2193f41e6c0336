#!/usr/bin/env python3
"""Every place that tells a version tells the one in the file VERSION. The window's own are in window_test.py."""

import re
import xml.etree.ElementTree as ElementTree

from project import ID, ROOT, VERSION, FolderTest, main, packages, run


class Version(FolderTest):
    def setUp(self):
        super().setUp()
        for package in packages().values():
            run("dpkg-deb", "--extract", package, self.folder)
        self.share = self.folder / "usr/share"

    def newest_release(self):
        """Version and date of the newest section of the changelog that is a release."""
        return re.search(r"^## (\d[\d.]*) - (\d{4}-\d{2}-\d{2})$", (ROOT / "CHANGELOG.md").read_text(),
                         re.MULTILINE).groups()

    def test_of_the_changelog(self):
        self.assertEqual(self.newest_release()[0], VERSION)

    def test_of_the_metainfo_and_its_date(self):
        metainfo = ElementTree.parse(self.share / f"metainfo/{ID}.metainfo.xml").getroot()
        releases = [(release.get("version"), release.get("date")) for release in metainfo.iter("release")]
        self.assertEqual(releases[0], self.newest_release())
        in_changelog = re.findall(r"^## (\d[\d.]*) - (\S+)$", (ROOT / "CHANGELOG.md").read_text(), re.MULTILINE)
        self.assertEqual(releases, in_changelog)

    def test_of_the_manual_page(self):
        page = run("gzip", "-dc", self.share / "man/man1/folioweld.1.gz")
        self.assertIn(f"This page describes version {VERSION}.\n", page)

    def test_of_the_packages(self):
        for name, package in packages().items():
            self.assertEqual(run("dpkg-deb", "--field", package, "Version").strip(), VERSION)
            self.assertEqual(package.name.split("_")[:2], [name, VERSION])

    def test_of_the_packages_changelog(self):
        for name in packages():
            text = run("gzip", "-dc", self.share / f"doc/{name}/changelog.gz")
            self.assertEqual(text.splitlines()[0], f"folioweld ({VERSION}) stable; urgency=medium")


if __name__ == "__main__":
    main()
