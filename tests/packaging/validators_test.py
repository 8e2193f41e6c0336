#!/usr/bin/env python3
"""Independent judges find no fault in what an installation brings, and it goes by one id."""

import gzip
import subprocess
import xml.etree.ElementTree as ElementTree

from project import ID, ROOT, FolderTest, InstallationTest, install, main, run


class Validators(InstallationTest):
    def setUp(self):
        super().setUp()
        install(self.folder)
        self.share = self.folder / "usr/local/share"

    def test_desktop_entry(self):
        for name in (ID, f"{ID}.AnyPDF"):
            self.assertEqual(run("desktop-file-validate", self.share / f"applications/{name}.desktop"), "")

    def test_metainfo(self):
        said = run("appstreamcli", "validate", "--pedantic", "--no-net", "--no-color",
                   self.share / f"metainfo/{ID}.metainfo.xml")
        # Remarks that change nothing are allowed for the capital letter in the id, and for nothing else.
        remarks = [line for line in said.splitlines() if line[:2] in ("P:", "I:", "W:", "E:")]
        self.assertEqual([line for line in remarks if "cid-contains-uppercase-letter" not in line], [], said)

    def test_manual_page(self):
        for name in ("folioweld.1", "folioweld-prepare.1", "folioweld-carry.1"):
            page = self.folder / name
            page.write_bytes(gzip.decompress((self.share / f"man/man1/{name}.gz").read_bytes()))
            self.assertEqual(run("mandoc", "-T", "lint", page), "")

    def test_manual_page_has_the_sections_that_a_reader_looks_for(self):
        text = gzip.decompress((self.share / "man/man1/folioweld.1.gz").read_bytes()).decode()
        sections = [line[4:] for line in text.splitlines() if line.startswith(".Sh ")]
        for section in ("NAME", "SYNOPSIS", "FILES", "EXIT STATUS", "EXAMPLES"):
            self.assertIn(section, sections)

    def test_icons_have_the_sizes_of_their_folders(self):
        icons = list((self.share / "icons/hicolor").glob("*x*/apps/*.png"))
        self.assertEqual(len(icons), 8)
        for icon in icons:
            header = icon.read_bytes()[:24]
            self.assertEqual(header[:8], b"\x89PNG\r\n\x1a\n")
            size = f"{int.from_bytes(header[16:20], 'big')}x{int.from_bytes(header[20:24], 'big')}"
            self.assertEqual(size, icon.parts[-3])

    def test_metainfo_and_desktop_entry_go_by_the_id_of_their_names(self):
        metainfo = ElementTree.parse(self.share / f"metainfo/{ID}.metainfo.xml").getroot()
        self.assertEqual(metainfo.findtext("id"), ID)
        self.assertEqual(metainfo.findtext("launchable"), ID + ".desktop")
        self.assertIn(f"Icon={ID}\n", (self.share / f"applications/{ID}.desktop").read_text())

    def test_screenshots_are_pictures_of_the_documentation(self):
        metainfo = ElementTree.parse(self.share / f"metainfo/{ID}.metainfo.xml").getroot()
        pictures = [image.text.strip() for image in metainfo.iter("image")]
        self.assertTrue(pictures)
        for picture in pictures:
            self.assertTrue((ROOT / "docs/images" / picture.rsplit("/", 1)[1]).is_file(), picture)


class Judges(FolderTest):
    """The judges do find faults: a silent judge would be no judge."""

    def refused(self, *command):
        result = subprocess.run(list(map(str, command)), capture_output=True, check=False)
        return bool(result.returncode or result.stdout)

    def test_refuse_what_is_broken(self):
        broken = {"x.desktop": "[Desktop Entry]\nName=x\n", "x.metainfo.xml": "<component/>\n", "x.1": ".Dt X\n"}
        for name, text in broken.items():
            (self.folder / name).write_text(text)
        self.assertTrue(self.refused("desktop-file-validate", self.folder / "x.desktop"))
        self.assertTrue(self.refused("appstreamcli", "validate", "--no-net", self.folder / "x.metainfo.xml"))
        self.assertTrue(self.refused("mandoc", "-T", "lint", self.folder / "x.1"))


if __name__ == "__main__":
    main()
