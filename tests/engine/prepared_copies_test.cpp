// Inputs that are read from a copy which was prepared in their place.

#include <filesystem>
#include <gtest/gtest.h>

#include "tests/support/document_builder.h"
#include "tests/support/merge_run.h"

namespace folioweld::testing {
namespace {

namespace fs = std::filesystem;

class PreparedCopiesTest : public ::testing::Test {
 protected:
  PreparedCopiesTest() {
    copyPath_ = run_.Folder.Write("copy", SimpleDocument(2, "copy"));
    fs::permissions(copyPath_, fs::perms::owner_read | fs::perms::owner_write);
    run_.Files.Own().Add(copyPath_, run_.System.GetFileAttributes(copyPath_).Value());
    run_.Files.Prepared().Add(run_.SecondPath,
                              {copyPath_, run_.System.GetFileAttributes(run_.SecondPath).Value().Identity});
  }

  void ExpectRefused(const std::string& output, const std::string& contents) {
    run_.State.DocFileName(3) = output;
    run_.Run();
    EXPECT_TRUE(run_.Failed());
    ASSERT_EQ(run_.Shell.Messages.size(), 1U);
    EXPECT_EQ(run_.Shell.Messages[0].Text, "Could not open output file: " + output);
    EXPECT_EQ(ReadFile(output), contents);
  }

  MergeRun run_{SimpleDocument(1), "%PDF-1.5\nnothing that could be joined"};
  std::string copyPath_;
};

TEST_F(PreparedCopiesTest, ADocumentIsReadFromItsCopyAndToldByItsOwnName) {
  run_.Run();
  EXPECT_FALSE(run_.Failed());
  EXPECT_NE(run_.Output().find("copy"), std::string::npos);
  EXPECT_NE(run_.Status(1).find(run_.SecondPath), std::string::npos);
  EXPECT_EQ(run_.Status(1).find(copyPath_), std::string::npos);
  ASSERT_EQ(run_.State.DocSources(3).size(), 2U);
  EXPECT_EQ(run_.State.DocSources(3)[1].Name, run_.SecondPath);
}

TEST_F(PreparedCopiesTest, TheOutputIsTheOneThatTheCopyAloneWouldGive) {
  run_.Run();
  const std::string output = run_.Output();
  MergeRun plain(SimpleDocument(1), SimpleDocument(2, "copy"));
  plain.Run();
  EXPECT_EQ(output, plain.Output());
}

TEST_F(PreparedCopiesTest, AnOutputThatIsTheOriginalUnderAnotherNameIsRefused) {
  const std::string other = run_.Folder.File("other.pdf");
  fs::create_hard_link(run_.SecondPath, other);
  ExpectRefused(other, "%PDF-1.5\nnothing that could be joined");
}

TEST_F(PreparedCopiesTest, AnOutputThatIsTheCopyIsRefused) {
  ExpectRefused(copyPath_, SimpleDocument(2, "copy"));
}

TEST_F(PreparedCopiesTest, AnotherFileInTheCopysPlaceIsNotRead) {
  fs::remove(copyPath_);
  run_.Folder.Write("copy", SimpleDocument(1, "somebody else's"));
  // Beside its number, which may be the same again, this is what tells it from the program's own.
  fs::permissions(copyPath_, fs::perms(0644));
  run_.Run();
  EXPECT_EQ(run_.Output().find("somebody else's"), std::string::npos);
  ASSERT_EQ(run_.LogLines().size(), 1U);
  EXPECT_NE(run_.LogLines()[0].find("another file has taken its place"), std::string::npos);
}

TEST_F(PreparedCopiesTest, ADocumentWithoutACopyIsReadAsItIs) {
  run_.Files.Prepared().Remove(run_.SecondPath);
  run_.Run();
  EXPECT_EQ(run_.Output().find("copy"), std::string::npos);
}

}  // namespace
}  // namespace folioweld::testing
