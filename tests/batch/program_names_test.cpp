// Names that a shell, a terminal or a settings file could trip over.

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/batch/program_fixture.h"

namespace folioweld {
namespace {

const std::vector<std::string>& OddNames() {
  static const std::vector<std::string> names{
      "line\nend.pdf",
      "carriage\rreturn.pdf",
      "\"quoted\".pdf",
      "it's.pdf",
      "-rf",
      "--help",
      "\xFF\xFE.pdf",
      "\xC3\xA4.pdf",
      " blanks ",
      "$(touch x).pdf",
      "`touch x`.pdf",
      "*",
      "back\\slash.pdf",
      "a=b;c.pdf",
      "[Settings].pdf",
      "%s%n.pdf",
      "~",
      "\x1b[2J.pdf",
      "tab\tname.pdf",
      "...",
  };
  return names;
}

class OddlyNamed : public testing::ProgramFixture {};

TEST_F(OddlyNamed, DocumentsAreJoined) {
  for (const std::string& name : OddNames()) AddDocument(name);
  AddDocument("a|b.pdf");
  ExpectRun({"out.pdf", "docs"}, 0, "");
  EXPECT_EQ(Pages(folder_.File("out.pdf")), static_cast<int>(OddNames().size()) + 1);
}

TEST_F(OddlyNamed, OutputsAreWritten) {
  AddDocument("a");
  folder_.MakeFolder("out");
  setup_.Folder = folder_.File("out");
  for (const std::string& name : OddNames()) {
    ExpectRun({"--", name, "../docs"}, 0, "");
    EXPECT_EQ(Pages(folder_.File("out/" + name)), 1) << name;
  }
  std::size_t count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder_.File("out"))) {
    count += entry.is_regular_file() ? 1U : 0U;
  }
  EXPECT_EQ(count, OddNames().size()) << "nothing but the outputs";
}

TEST_F(OddlyNamed, FoldersAreJoinedAndStoredAsTheyAre) {
  for (const std::string& name : OddNames()) {
    std::filesystem::create_directory(folder_.File(name));
    folder_.Write(name + "/a", testing::SimpleDocument(1));
    ExpectRun({"out.pdf", name}, 0, "");
    EXPECT_EQ(Setting("MergeCurDir"), folder_.File(name) + "/");
    ExpectRun({"out.pdf|" + name}, 0, "");
    EXPECT_EQ(Setting("MergeCurDir"), folder_.File(name) + "/");
  }
}

TEST_F(OddlyNamed, FolderWithABarIsNamedInOneArgument) {
  folder_.MakeFolder("a|b");
  folder_.Write("a|b/a", testing::SimpleDocument(1));
  ExpectRun({"out.pdf|a|b"}, 0, "");
  EXPECT_EQ(Pages(folder_.File("out.pdf")), 1);
  EXPECT_EQ(Setting("MergeCurDir"), folder_.File("a|b/"));
}

TEST_F(OddlyNamed, FolderWithBlanksAtItsEndsIsNotTheTrimmedOne) {
  for (const char* name : {" x ", "x"}) folder_.MakeFolder(name);
  folder_.Write(" x /a", testing::SimpleDocument(2));
  folder_.Write("x/a", testing::SimpleDocument(1));
  ExpectRun({"out.pdf", " x "}, 0, "");
  EXPECT_EQ(Pages(folder_.File("out.pdf")), 2);
  ExpectRun({"out.pdf|  x"}, 0, "");
  EXPECT_EQ(Pages(folder_.File("out.pdf")), 1);
  ExpectRun({"out.pdf", "  x"}, 1,
            "folioweld: the source \"  x\" cannot be joined: No such file or directory\n");
}

TEST_F(OddlyNamed, RefusedDocumentIsNamedOnOneLine) {
  AddDocument("a");
  folder_.Write("docs/line\r\nend", "%PDF-1.4\nno comment");
  ExpectRun(
      {"out.pdf", "docs"}, 3,
      "[Folioweld-MergeDirectory]=>File: \"line end\"  is not acceptable for merging\n"
      "[Folioweld-MergeDirectory]=>  because of file offset 8: the second line is no comment of at least 5 "
      "characters (\"line end\")\n" +
          Advice());
}

TEST_F(OddlyNamed, MessageKeepsTheBytesOfAName) {
  AddDocument("a");
  ExpectRun({"\xFF/out\n.pdf", "docs"}, 1,
            "folioweld: The output file " + folder_.Path() +
                "/\xFF/out .pdf cannot be created. I cannot do this operation!\n"
                "[Folioweld-MergeDirectory]=>  because of No such file or directory\n");
}

TEST_F(OddlyNamed, FolderForTemporaryFilesIsUsed) {
  for (const char* name : {"a", "b", "c"}) AddDocument(name);
  for (const std::string& name : OddNames()) {
    if (name == " blanks ") continue;  // is trimmed
    const std::string folder = folder_.File("tmp/" + name);
    std::filesystem::create_directory(folder);
    StoreSetting("MergeTmpDir", folder);
    const Outcome outcome = Run({"out.pdf", "docs"});
    EXPECT_EQ(outcome.Status, 0) << name;
    EXPECT_EQ(outcome.Errors, "");
    EXPECT_EQ(Setting("MergeTmpDir"), folder + "/");
    EXPECT_TRUE(std::filesystem::is_empty(folder)) << name;
  }
}

}  // namespace
}  // namespace folioweld
