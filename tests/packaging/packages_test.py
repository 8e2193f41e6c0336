#!/usr/bin/env python3
"""What the Debian packages hold and ask for."""

import re
import subprocess

from project import ROOT, VERSION, FolderTest, main, packages, run

TOOLKIT = re.compile(r"qt|gtk|x11|xcb|wayland|libgl", re.IGNORECASE)


class Packages(FolderTest):
    def field(self, package, name):
        return run("dpkg-deb", "--field", packages()[package], name).strip()

    def test_have_no_error_and_no_warning(self):
        said = run("lintian", "--allow-root", "--no-cfg", "--show-overrides", *packages().values())
        self.assertEqual(said, "")

    def test_a_faulty_package_has_errors(self):
        wrong = self.folder / "wrong"
        (wrong / "DEBIAN").mkdir(parents=True)
        (wrong / "DEBIAN/control").write_text("Package: wrong\nVersion: 1\nArchitecture: all\nDescription: wrong\n"
                                              "Maintainer: Nobody <nobody@folioweld.example>\n")
        run("dpkg-deb", "--build", wrong, self.folder)
        said = subprocess.run(["lintian", "--allow-root", "--no-cfg", *self.folder.glob("*.deb")],
                              capture_output=True, text=True, check=False)
        self.assertNotEqual(said.returncode, 0)
        self.assertIn("E: wrong: no-copyright-file", said.stdout)

    def test_the_command_line_asks_for_no_toolkit(self):
        self.assertIn("libc6", self.field("folioweld", "Depends"))
        self.assertIsNone(TOOLKIT.search(self.field("folioweld", "Depends")))
        run("dpkg-deb", "--extract", packages()["folioweld"], self.folder)
        run(ROOT / "scripts/check-no-toolkit.sh", self.folder / "usr/bin/folioweld")

    def test_the_window_asks_for_the_command_line_of_the_same_version_and_for_the_toolkit(self):
        depends = self.field("folioweld-window", "Depends").split(", ")
        self.assertIn(f"folioweld (= {VERSION})", depends)
        self.assertTrue(any(entry.startswith("libqt6widgets6 (>=") for entry in depends), depends)

    def test_the_extras_alone_ask_for_libqpdf(self):
        depends = self.field("folioweld-extras", "Depends").split(", ")
        self.assertIn(f"folioweld (= {VERSION})", depends)
        self.assertTrue(any(entry.startswith("libqpdf29 (>") for entry in depends), depends)
        for package in ("folioweld", "folioweld-window"):
            self.assertNotIn("qpdf", self.field(package, "Depends"))

    def test_no_file_is_in_two(self):
        listed = [set(re.findall(r"^-.* \./(.*)$", run("dpkg-deb", "--contents", package), re.MULTILINE))
                  for package in packages().values()]
        self.assertTrue(all(listed))
        self.assertEqual(len(set.union(*listed)), sum(map(len, listed)))

    def test_programs_are_stripped_and_hardened(self):
        for package, program in (("folioweld", "usr/bin/folioweld"),
                                 ("folioweld-window", "usr/libexec/folioweld/folioweld-window"),
                                 ("folioweld-extras", "usr/bin/folioweld-prepare")):
            run("dpkg-deb", "--extract", packages()[package], self.folder)
            told = run("readelf", "--wide", "--sections", "--dynamic", "--program-headers", self.folder / program)
            self.assertNotIn(".symtab", told)
            self.assertNotIn(".debug_info", told)
            self.assertIn("GNU_RELRO", told)
            self.assertIn("BIND_NOW", told)


if __name__ == "__main__":
    main()
