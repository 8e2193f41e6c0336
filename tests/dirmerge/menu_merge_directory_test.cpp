// The menu entry that starts a directory merge.

#include <cerrno>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "tests/dirmerge/directory_merge_fixture.h"

namespace folioweld {
namespace {

using testing::Exists;
using testing::FaultingSystem;
using testing::Names;
using testing::PageTexts;

constexpr char kSetting[] = "MergeCurDir";

class MenuMergeDirectory : public testing::DirectoryMergeFixture {
 protected:
  MenuMergeDirectory() { AddDocument("a"); }

  const DirectoryMergeReport& Click() {
    merge_.MenuPdfMergeDir_Click();
    return merge_.Report();
  }
  [[nodiscard]] std::string StartFolder() const {
    return startFolder_ + (startFolder_.back() == '/' ? "" : "/");
  }
  std::string Stored() { return settings_.ReadSetting(kSetting); }
};

TEST_F(MenuMergeDirectory, WritesItsNameToTheLogFirst) {
  program_.CommandLineDirectory = Docs();
  Click();
  EXPECT_EQ(LogLines().front(), "[Folioweld-MenuPdfMergeDir_Click]=>");
}

TEST_F(MenuMergeDirectory, LogsNothingWhenTheLogIsOff) {
  program_.Merge.LogEnabled = false;
  program_.CommandLineDirectory = Docs();
  EXPECT_TRUE(Click().Complete());
  EXPECT_TRUE(LogLines().empty());
}

TEST_F(MenuMergeDirectory, TakesTheFolderOfTheCommandLineWithoutAsking) {
  program_.CommandLineDirectory = Docs();
  EXPECT_TRUE(Click().Complete());
  EXPECT_TRUE(shell_.FolderQuestions.empty());
  EXPECT_EQ(Stored(), Docs());
}

TEST_F(MenuMergeDirectory, AsksFromTheStoredFolderOn) {
  const std::string before = folder_.MakeFolder("before") + "/";
  ASSERT_EQ(settings_.WriteSetting(kSetting, before), 0);
  shell_.FolderAnswer = folder_.File("docs");
  EXPECT_TRUE(Click().Complete());
  const std::vector<std::pair<std::string, std::string>> asked{{"Folioweld: Choose FOLDER TO MERGE", before}};
  EXPECT_EQ(shell_.FolderQuestions, asked);
}

TEST_F(MenuMergeDirectory, StoresTheFolderWithASeparator) {
  shell_.FolderAnswer = folder_.File("docs");
  EXPECT_TRUE(Click().Complete());
  EXPECT_EQ(Stored(), Docs());
}

TEST_F(MenuMergeDirectory, DefaultOfTheStoredFolderIsTheCurrentOne) {
  Click();
  EXPECT_EQ(Stored(), StartFolder());
  EXPECT_EQ(shell_.FolderQuestions[0].second, StartFolder());
}

TEST_F(MenuMergeDirectory, StoredFolderThatVanishedIsResetToTheCurrentOne) {
  ASSERT_EQ(settings_.WriteSetting(kSetting, folder_.File("vanished/")), 0);
  Click();
  EXPECT_EQ(Stored(), StartFolder());
  EXPECT_EQ(shell_.FolderQuestions[0].second, StartFolder());
}

TEST_F(MenuMergeDirectory, SaysSoWhenNoFolderIsChosen) {
  Click();
  ASSERT_EQ(shell_.Messages.size(), 1U);
  EXPECT_EQ(shell_.Messages[0].Title, "File Tallowby - Folioweld");
  EXPECT_EQ(shell_.Messages[0].Text, "Merge of documents cancelled");
  EXPECT_FALSE(merge_.Report().OutputWritten);
  EXPECT_FALSE(Exists(Output()));
}

TEST_F(MenuMergeDirectory, KeepsTheStoredFolderWhenNoneIsChosen) {
  const std::string before = folder_.MakeFolder("before") + "/";
  ASSERT_EQ(settings_.WriteSetting(kSetting, before), 0);
  Click();
  EXPECT_EQ(Stored(), before);
}

TEST_F(MenuMergeDirectory, GoesBackToTheCurrentFolder) {
  ASSERT_EQ(settings_.WriteSetting(kSetting, folder_.MakeFolder("before")), 0);
  Click();
  EXPECT_EQ(std::filesystem::current_path().string(), startFolder_);
  shell_.FolderAnswer = Docs();
  Click();
  EXPECT_EQ(std::filesystem::current_path().string(), startFolder_);
}

TEST_F(MenuMergeDirectory, ForgetsTheReportOfTheRunBefore) {
  shell_.FolderAnswer = Docs();
  EXPECT_TRUE(Click().OutputWritten);
  shell_.FolderAnswer.clear();
  EXPECT_FALSE(Click().OutputWritten);
}

TEST_F(MenuMergeDirectory, WorksWithoutAStoreForSettings) {
  system_.Environment[0].second = "";
  system_.Environment.emplace_back("HOME", "");
  shell_.FolderAnswer = Docs();
  EXPECT_TRUE(Click().Complete());
  EXPECT_EQ(PageTexts(Output()), Names{"a"});
}

TEST_F(MenuMergeDirectory, WorksWhenTheCurrentFolderCannotBeHad) {
  program_.CommandLineDirectory = Docs();
  system_.Decide = FaultingSystem::Failing("GetCurrentDirectory", ENOENT);
  EXPECT_TRUE(Click().OutputWritten);
  EXPECT_EQ(PageTexts(Output()), Names{"a"});
}

}  // namespace
}  // namespace folioweld
