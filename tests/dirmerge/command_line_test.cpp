#include "dirmerge/command_line.h"

#include <cerrno>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/dirmerge/directory_merge_fixture.h"

namespace folioweld {
namespace {

using testing::Exists;
using testing::FaultingSystem;
using testing::Names;
using testing::PageTexts;

class CommandLineRun : public testing::DirectoryMergeFixture {
 protected:
  CommandLineRun() {
    program_.CommandLineOutput.clear();
    AddDocument("a");
    AddDocument("b");
  }

  CommandLineOutcome Process(const std::string& commandLine) {
    return ProcessCommandLine(ParseArguments({commandLine}), program_, files_, settings_, merge_);
  }

  void ExpectJoined(const std::string& output) const {
    EXPECT_TRUE(merge_.Report().Complete());
    EXPECT_EQ(PageTexts(output), (Names{"a", "b"}));
    EXPECT_EQ(std::filesystem::current_path().string(), startFolder_);
  }

  void ExpectNotReached(const std::string& folder) {
    EXPECT_EQ(program_.Merge.DocFileName(1), folder);
    EXPECT_EQ(program_.CommandLineOutput, "");
    EXPECT_EQ(program_.CommandLineDirectory, "");
    EXPECT_EQ(std::filesystem::current_path().string(), startFolder_);
    EXPECT_TRUE(shell_.Messages.empty());
    EXPECT_EQ(settings_.ReadSetting("MergeCurDir"), "") << "nothing was stored";
  }
};

TEST_F(CommandLineRun, JoinsTheFolderIntoTheOutput) {
  EXPECT_EQ(Process(Output() + "|" + folder_.File("docs")), CommandLineOutcome::Done);
  ExpectJoined(Output());
  EXPECT_EQ(program_.CommandLineOutput, Output());
  EXPECT_EQ(program_.CommandLineDirectory, Docs());
  EXPECT_EQ(program_.Merge.DocFileName(1), "");
  EXPECT_TRUE(shell_.FolderQuestions.empty());
  EXPECT_TRUE(shell_.OutputQuestions.empty());
}

TEST_F(CommandLineRun, StoresTheFolderWithASeparator) {
  EXPECT_EQ(Process(Output() + "|" + folder_.File("docs")), CommandLineOutcome::Done);
  EXPECT_EQ(settings_.ReadSetting("MergeCurDir"), Docs());
}

TEST_F(CommandLineRun, FolderWithASeparatorWorksTheSame) {
  EXPECT_EQ(Process(Output() + "|" + Docs()), CommandLineOutcome::Done);
  ExpectJoined(Output());
  EXPECT_EQ(settings_.ReadSetting("MergeCurDir"), Docs());
}

TEST_F(CommandLineRun, TheFolderDoesNotStayInTheFirstPlaceWhereNothingIsJoined) {
  folder_.MakeFolder("empty");
  EXPECT_EQ(Process(Output() + "|" + folder_.File("empty")), CommandLineOutcome::Done);
  EXPECT_FALSE(merge_.Report().OutputWritten);
  EXPECT_EQ(program_.Merge.DocFileName(1), "");
}

TEST_F(CommandLineRun, LoneFileNameIsIgnored) {
  EXPECT_EQ(Process(Doc("a")), CommandLineOutcome::Ignored);
  EXPECT_EQ(Process(""), CommandLineOutcome::Ignored);
  EXPECT_EQ(program_.Merge.DocFileName(1), "");
  EXPECT_TRUE(LogLines().empty());
}

TEST_F(CommandLineRun, LineWithoutABarLeavesNoOutputAndNoFolder) {
  program_.CommandLineOutput = "left over";
  program_.CommandLineDirectory = "left over";
  EXPECT_EQ(Process(Doc("a")), CommandLineOutcome::Ignored);
  EXPECT_EQ(program_.CommandLineOutput, "");
  EXPECT_EQ(program_.CommandLineDirectory, "");
}

TEST_F(CommandLineRun, EmptyOutputPartAsksForTheOutput) {
  shell_.OutputAnswer = Output();
  EXPECT_EQ(Process("|" + Docs()), CommandLineOutcome::Done);
  EXPECT_EQ(shell_.OutputQuestions.size(), 1U);
  ExpectJoined(Output());
}

TEST_F(CommandLineRun, RelativePartsAreTakenFromTheCurrentFolder) {
  std::filesystem::current_path(folder_.Path());
  EXPECT_EQ(Process("joined.pdf|docs"), CommandLineOutcome::Done);
  std::filesystem::current_path(startFolder_);
  ExpectJoined(Output());
  EXPECT_FALSE(Exists(Doc("joined.pdf")));
  EXPECT_EQ(settings_.ReadSetting("MergeCurDir"), Docs());
}

TEST_F(CommandLineRun, FolderOfOneDotIsTheCurrentOne) {
  std::filesystem::current_path(folder_.File("docs"));
  EXPECT_EQ(Process("../joined.pdf|."), CommandLineOutcome::Done);
  std::filesystem::current_path(startFolder_);
  ExpectJoined(Output());
}

TEST_F(CommandLineRun, FolderThatCannotBeEnteredLeavesItsTextInTheFirstPlace) {
  EXPECT_EQ(Process(Output() + "|/no/such/folder"), CommandLineOutcome::FolderNotReached);
  ExpectNotReached("/no/such/folder");
  EXPECT_TRUE(LogLines().empty());
}

TEST_F(CommandLineRun, FileIsNoFolder) {
  EXPECT_EQ(Process(Output() + "|" + Doc("a")), CommandLineOutcome::FolderNotReached);
  ExpectNotReached(Doc("a"));
}

TEST_F(CommandLineRun, EmptyFolderPartCannotBeEntered) {
  EXPECT_EQ(Process(Output() + "|"), CommandLineOutcome::FolderNotReached);
  ExpectNotReached("");
}

TEST_F(CommandLineRun, FolderIsTrimmedWhenItDoesNotExistAsItStands) {
  EXPECT_EQ(Process(Output() + "|  " + folder_.File("docs") + " "), CommandLineOutcome::Done);
  ExpectJoined(Output());
  EXPECT_EQ(settings_.ReadSetting("MergeCurDir"), Docs());
}

TEST_F(CommandLineRun, ExistingFolderIsNotTrimmed) {
  std::filesystem::rename(folder_.File("docs"), folder_.File("docs "));
  folder_.MakeFolder("docs");
  EXPECT_EQ(Process(Output() + "|" + folder_.File("docs ")), CommandLineOutcome::Done);
  ExpectJoined(Output());
  EXPECT_EQ(settings_.ReadSetting("MergeCurDir"), folder_.File("docs /"));
}

TEST_F(CommandLineRun, OutputIsNeverTrimmed) {
  EXPECT_EQ(Process(folder_.File("joined ") + "|" + Docs()), CommandLineOutcome::Done);
  ExpectJoined(folder_.File("joined "));
}

TEST_F(CommandLineRun, FirstBarSplitsAndFurtherOnesBelongToTheFolder) {
  std::filesystem::rename(folder_.File("docs"), folder_.File("do|cs"));
  EXPECT_EQ(Process(Output() + "|" + folder_.File("do|cs")), CommandLineOutcome::Done);
  ExpectJoined(Output());
}

TEST_F(CommandLineRun, RelativeOutputCannotBeReachedWithoutACurrentFolder) {
  system_.Decide = FaultingSystem::Failing("GetCurrentDirectory", ENOENT);
  EXPECT_EQ(Process("joined.pdf|" + Docs()), CommandLineOutcome::OutputNotReached);
  ExpectNotReached(Docs());
  EXPECT_FALSE(Exists(Doc("joined.pdf")));
  EXPECT_TRUE(shell_.OutputQuestions.empty()) << "an output that was named is not asked for";
}

TEST_F(CommandLineRun, FullPathsNeedNoCurrentFolder) {
  system_.Decide = FaultingSystem::Failing("GetCurrentDirectory", ENOENT);
  EXPECT_EQ(Process(Output() + "|" + Docs()), CommandLineOutcome::Done);
  std::filesystem::current_path(startFolder_);
  ExpectJoined(Output());
}

}  // namespace
}  // namespace folioweld
