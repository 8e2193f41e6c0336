#!/usr/bin/env python3
"""An installation puts the programs and what belongs to them where the system looks, and goes away again."""

import json
import os
import re
import shlex
from pathlib import Path

from project import ID, ROOT, FolderTest, InstallationTest, files, install, main, run, tree, uninstall

COMMAND = {"bin/folioweld", "share/man/man1/folioweld.1.gz", "share/bash-completion/completions/folioweld",
           "share/zsh/site-functions/_folioweld", "share/fish/vendor_completions.d/folioweld.fish"}
WINDOW = {"libexec/folioweld/folioweld-window", f"share/applications/{ID}.desktop",
          f"share/metainfo/{ID}.metainfo.xml", f"share/icons/hicolor/scalable/apps/{ID}.svg",
          f"share/icons/hicolor/symbolic/apps/{ID}-symbolic.svg"}
WINDOW |= {f"share/kio/servicemenus/{ID}.{kind}.desktop" for kind in ("folder", "documents")}
WINDOW |= {f"share/nemo/actions/folioweld-{kind}.nemo_action" for kind in ("folder", "documents")}
WINDOW |= {f"share/icons/hicolor/{size}x{size}/apps/{ID}.png" for size in (16, 22, 24, 32, 48, 64, 128, 256)}
EXTRAS = {"bin/folioweld-prepare", "libexec/folioweld/folioweld-prepare", "share/man/man1/folioweld-prepare.1.gz",
          "bin/folioweld-carry", "libexec/folioweld/folioweld-carry", "share/man/man1/folioweld-carry.1.gz",
          f"share/applications/{ID}.AnyPDF.desktop", "share/bash-completion/completions/folioweld-prepare",
          "share/zsh/site-functions/_folioweld-prepare", "share/fish/vendor_completions.d/folioweld-prepare.fish"}
PROGRAMS = ("bin/folioweld", "bin/folioweld-prepare", "bin/folioweld-carry", "folioweld/folioweld-window",
            "folioweld/folioweld-prepare", "folioweld/folioweld-carry")


def beside_documents(folder):
    return {name for name in files(folder) if not name.startswith("share/doc/folioweld")}


class Installation(InstallationTest):
    def test_a_stage_gets_every_file_below_the_prefix(self):
        install(self.folder)
        self.assertEqual(beside_documents(self.folder / "usr/local"), COMMAND | WINDOW | EXTRAS)
        self.assertEqual(os.listdir(self.folder), ["usr"])

    def test_the_documents_come_with_their_pictures_and_the_examples(self):
        install(self.folder)
        documents = self.folder / "usr/local/share/doc/folioweld"
        self.assertIn("LICENSE", files(documents))
        self.assertIn("format.md", files(documents))
        self.assertEqual({path.name for path in (documents / "examples").iterdir()},
                         {path.name for path in (ROOT / "examples").glob("*.pdf")})
        self.assertIn("README.md", files(documents))
        self.assertNotIn("![", (documents / "user-guide.md").read_text())
        pictures = self.folder / "usr/local/share/doc/folioweld-window/images"
        self.assertEqual({path.name for path in pictures.iterdir()},
                         {path.name for path in (ROOT / "docs" / "images").glob("*.png")})

    def test_the_documents_link_to_nothing_that_is_not_installed(self):
        for component, pages in (("command", 5), ("window", 1)):
            install(self.folder, component=component)
            found = list((self.folder / "usr/local/share/doc").rglob("*.md"))
            self.assertGreaterEqual(len(found), pages)
            for page in found:
                for link in re.findall(r"\]\(([^)#:]+)[)#]", page.read_text()):
                    self.assertTrue((page.parent / link).exists(), f"{page} links to {link}")

    def test_everybody_may_read_and_only_programs_may_be_run(self):
        install(self.folder)
        for name in tree(self.folder):
            path = self.folder / name
            program = name.endswith(PROGRAMS)
            wanted = 0o755 if path.is_dir() or program else 0o644
            self.assertEqual(oct(path.stat().st_mode & 0o7777), oct(wanted), name)

    def test_the_command_line_is_a_component_without_the_window(self):
        install(self.folder, component="command")
        self.assertEqual(beside_documents(self.folder / "usr/local"), COMMAND)

    def test_the_extras_are_a_component_of_their_own(self):
        install(self.folder, component="extras")
        self.assertEqual(beside_documents(self.folder / "usr/local"), EXTRAS)

    def test_an_installation_that_was_moved_joins_documents(self):
        install(prefix=self.folder / "first place")
        (self.folder / "first place").rename(self.folder / "second")
        self.assertTrue((self.folder / "second/libexec/folioweld/folioweld-prepare").exists())
        run(self.folder / "second/bin/folioweld", self.folder / "joined.pdf", ROOT / "examples",
            env={"HOME": str(self.folder / "home")})
        run("qpdf", "--check", self.folder / "joined.pdf")


class DesktopEntry(InstallationTest):
    def entry(self, prefix):
        text = (prefix / f"share/applications/{ID}.desktop").read_text()
        return dict(line.split("=", 1) for line in text.splitlines() if "=" in line)

    def test_names_the_program_where_it_will_be_and_not_where_it_is_staged(self):
        install(self.folder)
        entry = self.entry(self.folder / "usr/local")
        self.assertEqual(entry["Exec"], "/usr/local/libexec/folioweld/folioweld-window")
        self.assertEqual(entry["TryExec"], "/usr/local/libexec/folioweld/folioweld-window")

    def test_names_the_program_under_a_prefix_chosen_at_the_installation(self):
        prefix = self.folder / "my programs"
        install(prefix=prefix)
        entry = self.entry(prefix)
        self.assertEqual(shlex.split(entry["Exec"]), [str(prefix / "libexec/folioweld/folioweld-window")])
        self.assertTrue(Path(entry["TryExec"]).is_file())
        run("desktop-file-validate", prefix / f"share/applications/{ID}.desktop")

    def test_takes_no_file(self):
        install(self.folder)
        entry = self.entry(self.folder / "usr/local")
        self.assertNotIn("MimeType", entry)
        self.assertNotIn("%", entry["Exec"])


class Uninstallation(InstallationTest):
    def test_leaves_nothing_in_a_stage(self):
        install(self.folder)
        uninstall(self.folder)
        self.assertEqual(tree(self.folder), [])

    def test_leaves_nothing_of_two_installations_at_the_same_place(self):
        install(self.folder)
        install(self.folder)
        uninstall(self.folder)
        self.assertEqual(tree(self.folder), [])

    def test_leaves_nothing_of_two_components(self):
        install(self.folder, component="command")
        install(self.folder, component="window")
        uninstall(self.folder)
        self.assertEqual(tree(self.folder), [])

    def test_leaves_what_was_there_before_and_what_others_added(self):
        prefix = self.folder / "prefix"
        (prefix / "share/icons").mkdir(parents=True)
        (prefix / "bin").mkdir()
        install(prefix=prefix)
        (prefix / "share/man/man1/other.1").touch()
        uninstall()
        self.assertEqual(tree(prefix), ["bin", "share", "share/icons", "share/man", "share/man/man1",
                                        "share/man/man1/other.1"])

    def test_says_that_there_is_nothing_to_take_away(self):
        install(self.folder)
        uninstall(self.folder)
        with self.assertRaisesRegex(AssertionError, "Nothing was installed"):
            uninstall(self.folder)


class PrivateFolder(FolderTest):
    """Where the built program would look for the window program, by the folders it was configured with."""

    def folder_with(self, *settings):
        # Compiled several files at a time, no command would name the file that is looked for.
        run("cmake", "-S", ROOT, "--preset", "no-window", "-B", self.folder / "build", "-D", "FOLIOWELD_TESTS=OFF",
            "-D", "FOLIOWELD_UNITY=OFF", *settings)
        commands = json.loads((self.folder / "build/compile_commands.json").read_text())
        command = next(entry["command"] for entry in commands if entry["file"].endswith("app/window_program.cpp"))
        words = [word for word in shlex.split(command) if word.startswith("-DFOLIOWELD_PRIVATE_FOLDER=")]
        return words[0].split("=")[1].strip('"')

    def test_is_found_from_the_programs_by_default(self):
        self.assertEqual(self.folder_with(), "../libexec/folioweld")

    def test_follows_the_folders_that_were_chosen(self):
        self.assertEqual(self.folder_with("-D", "CMAKE_INSTALL_BINDIR=tools/bin",
                                          "-D", "CMAKE_INSTALL_LIBEXECDIR=lib"), "../../lib/folioweld")

    def test_may_lie_outside_of_the_prefix(self):
        self.assertEqual(self.folder_with("-D", "CMAKE_INSTALL_PREFIX=/usr", "-D",
                                          "CMAKE_INSTALL_LIBEXECDIR=/opt/private"), "../../opt/private/folioweld")


if __name__ == "__main__":
    main()
