#!/usr/bin/env python3
"""What the Debian packages hold and ask for."""

import re
import subprocess

from project import ROOT, VERSION, FolderTest, debug_packages, main, packages, run

TOOLKIT = re.compile(r"qt|gtk|x11|xcb|wayland|libgl", re.IGNORECASE)


class Packages(FolderTest):
    def field(self, package, name):
        return run("dpkg-deb", "--field", packages()[package], name).strip()

    def test_have_no_error_and_no_warning(self):
        said = run("lintian", "--allow-root", "--no-cfg", "--show-overrides", *packages().values(),
                   *debug_packages().values())
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

    def programs(self):
        """Every program of the packages, with the package that it is in."""
        for package, path in packages().items():
            inside = self.folder / package
            run("dpkg-deb", "--extract", path, inside)
            for file in sorted(inside.rglob("*")):
                if file.is_file() and not file.is_symlink() and file.read_bytes()[:4] == b"\x7fELF":
                    yield package, file

    def test_programs_are_stripped_hardened_and_look_at_their_indices(self):
        found = list(self.programs())
        self.assertEqual({package for package, _ in found}, set(packages()))
        for _, program in found:
            told = run("readelf", "--wide", "--sections", "--dynamic", "--dyn-syms", "--program-headers", program)
            self.assertNotIn(".symtab", told)
            self.assertNotIn(".debug_info", told)
            self.assertIn("GNU_RELRO", told)
            self.assertIn("BIND_NOW", told)
            self.assertIn("__glibcxx_assert_fail", told)

    def test_programs_bring_no_library_along(self):
        for _, program in self.programs():
            told = run("readelf", "--wide", "--dynamic", program)
            for library in ("libc.so.6", "libstdc++.so.6"):
                self.assertIn(f"[{library}]", told, program)

    def test_the_debug_symbols_are_those_of_the_programs(self):
        symbols = debug_packages()
        self.assertEqual(set(symbols), set(packages()))
        for package, program in self.programs():
            build = re.search(r"Build ID: (\w+)", run("readelf", "--notes", program)).group(1)
            inside = self.folder / "symbols" / package
            inside.mkdir(parents=True, exist_ok=True)
            run("dpkg-deb", "--extract", symbols[package], inside)
            file = inside / f"usr/lib/debug/.build-id/{build[:2]}/{build[2:]}.debug"
            self.assertIn(".debug_info", run("readelf", "--wide", "--sections", file))
            self.assertIn(f"{package} (= {VERSION})", run("dpkg-deb", "--field", symbols[package], "Depends"))

    def test_the_pictures_of_the_guide_come_with_the_window(self):
        pictures = {package: [line for line in run("dpkg-deb", "--contents", path).splitlines()
                              if "/doc/" in line and line.endswith(".png")] for package, path in packages().items()}
        self.assertEqual({package for package, found in pictures.items() if found}, {"folioweld-window"})

    def test_their_sections_and_what_they_suggest(self):
        self.assertEqual({name: self.field(name, "Section") for name in ("folioweld", "folioweld-window")},
                         {"folioweld": "text", "folioweld-window": "graphics"})
        suggested = self.field("folioweld", "Suggests").split(", ")
        told = " ".join((ROOT / "docs" / page).read_text() for page in ("recipes.md", "user-guide.md"))
        named = set(re.findall(r"\(Debian package: ([\w-]+)\)", told)) | set(
            re.findall(r"^\| `.*` \| ([\w-]+) \|", told, re.MULTILINE))
        self.assertGreater(len(named), 2)
        self.assertLessEqual(named, set(suggested))


if __name__ == "__main__":
    main()
