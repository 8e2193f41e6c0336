#include "dirmerge/tmp_directory.h"

#include <cerrno>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <utility>
#include <vector>

#include "tests/dirmerge/directory_merge_fixture.h"

namespace folioweld {
namespace {

using testing::FaultingSystem;

constexpr char kTmpSetting[] = "MergeTmpDir";
constexpr char kTitle[] = "Folioweld: Choose FOLDER FOR TEMPORARY FILES";

class TmpDirectoryTest : public testing::DirectoryMergeFixture {
 protected:
  void Store(const std::string& folder) { ASSERT_EQ(settings_.WriteSetting(kTmpSetting, folder), 0); }
  std::string Stored() { return settings_.ReadSetting(kTmpSetting); }
  [[nodiscard]] std::string Made(const std::string& name) const { return folder_.MakeFolder(name); }

  TmpDirectory tmp_{system_, settings_, shell_};
};

TEST_F(TmpDirectoryTest, ResetStoresAndReturnsTheSystemsFolderWithASeparator) {
  Store(Made("mine"));
  EXPECT_EQ(tmp_.ResetTmpDirectory(), Tmp());
  EXPECT_EQ(Stored(), Tmp());
}

TEST_F(TmpDirectoryTest, ResetTrimsTheSystemsFolder) {
  system_.Environment[1].second = Tmp() + "  ";
  EXPECT_EQ(tmp_.ResetTmpDirectory(), Tmp());
}

TEST_F(TmpDirectoryTest, ResetNeitherStoresNorReturnsASystemsFolderThatCannotBeEntered) {
  const std::string mine = Made("mine");
  Store(mine);
  system_.Environment[1].second = "/no/such/folder";
  EXPECT_EQ(tmp_.ResetTmpDirectory(), "");
  EXPECT_EQ(Stored(), mine);
}

TEST_F(TmpDirectoryTest, GetGivesAndStoresTheSystemsFolderWhenNoneIsStored) {
  EXPECT_EQ(tmp_.GetTmpDirectory(), Tmp());
  EXPECT_EQ(Stored(), Tmp());
}

TEST_F(TmpDirectoryTest, GetGivesTheSystemsFolderWhenTheStoredOneIsEmptyOrBlank) {
  Store("");
  EXPECT_EQ(tmp_.GetTmpDirectory(), Tmp());
  Store("   ");
  EXPECT_EQ(tmp_.GetTmpDirectory(), Tmp());
}

TEST_F(TmpDirectoryTest, GetGivesTheStoredFolderTrimmedAndWithASeparator) {
  const std::string mine = Made("mine");
  Store("  " + mine + " ");
  EXPECT_EQ(tmp_.GetTmpDirectory(), mine + "/");
  EXPECT_EQ(Stored(), mine + "/");
}

TEST_F(TmpDirectoryTest, GetLeavesTheCurrentFolderAsItIs) {
  Store(Made("mine"));
  ASSERT_NE(tmp_.GetTmpDirectory(), "");
  EXPECT_EQ(std::filesystem::current_path().string(), startFolder_);
}

TEST_F(TmpDirectoryTest, GetStoresAVanishedFolderAsEmptyAndReturnsThat) {
  Store(folder_.File("vanished"));
  EXPECT_EQ(tmp_.GetTmpDirectory(), "");
  EXPECT_EQ(Stored(), "");
}

TEST_F(TmpDirectoryTest, GetTakesAFileForAVanishedFolder) {
  Store(folder_.Write("file", ""));
  EXPECT_EQ(tmp_.GetTmpDirectory(), "");
}

TEST_F(TmpDirectoryTest, NextUseAfterAVanishedFolderFallsBackToTheSystemsOne) {
  Store(folder_.File("vanished"));
  ASSERT_EQ(tmp_.GetTmpDirectory(), "");
  EXPECT_EQ(tmp_.GetTmpDirectory(), Tmp());
}

TEST_F(TmpDirectoryTest, GetIsEmptyWhenTheSystemHasNoFolder) {
  system_.Environment[1].second = "relative";
  system_.Decide = FaultingSystem::Failing("GetCurrentDirectory", ENOENT);
  EXPECT_EQ(tmp_.GetTmpDirectory(), "");
  EXPECT_EQ(tmp_.ResetTmpDirectory(), "");
  EXPECT_EQ(tmp_.ChooseTmpDirectory(), "");
}

TEST_F(TmpDirectoryTest, ChooseAsksFromTheStoredFolderOn) {
  const std::string mine = Made("mine");
  Store(mine);
  shell_.FolderAnswer = Made("picked");
  EXPECT_EQ(tmp_.ChooseTmpDirectory(), folder_.File("picked/"));
  EXPECT_EQ(Stored(), folder_.File("picked/"));
  const std::vector<std::pair<std::string, std::string>> asked{{kTitle, mine + "/"}};
  EXPECT_EQ(shell_.FolderQuestions, asked);
}

TEST_F(TmpDirectoryTest, ChooseStartsFromTheSystemsFolderWhenTheStoredOneVanished) {
  Store(folder_.File("vanished"));
  shell_.FolderAnswer = Made("picked");
  EXPECT_EQ(tmp_.ChooseTmpDirectory(), folder_.File("picked/"));
  ASSERT_EQ(shell_.FolderQuestions.size(), 1U);
  EXPECT_EQ(shell_.FolderQuestions[0].second, folder_.File("tmp"));
}

TEST_F(TmpDirectoryTest, ChooseTrimsTheAnswer) {
  folder_.MakeFolder("picked");
  shell_.FolderAnswer = " " + folder_.File("picked/") + " ";
  EXPECT_EQ(tmp_.ChooseTmpDirectory(), folder_.File("picked/"));
}

TEST_F(TmpDirectoryTest, CancellingThePickerKeepsThePreviousFolder) {
  const std::string mine = Made("mine");
  Store(mine);
  EXPECT_EQ(tmp_.ChooseTmpDirectory(), mine + "/");
  EXPECT_EQ(Stored(), mine + "/");
}

TEST_F(TmpDirectoryTest, CancellingThePickerWithoutAValidFolderGivesTheSystemsOne) {
  Store(folder_.File("vanished"));
  EXPECT_EQ(tmp_.ChooseTmpDirectory(), Tmp());
  EXPECT_EQ(Stored(), Tmp());
}

TEST_F(TmpDirectoryTest, CancellingThePickerGivesNoSystemsFolderThatCannotBeEntered) {
  system_.Environment[1].second = folder_.File("gone");
  EXPECT_EQ(tmp_.ChooseTmpDirectory(), "");
  EXPECT_EQ(tmp_.RequireTmpDirectory(), "");
  EXPECT_EQ(Stored(), "");
}

TEST_F(TmpDirectoryTest, RequireGivesTheStoredFolderWithoutAsking) {
  const std::string mine = Made("mine");
  Store(mine);
  EXPECT_EQ(tmp_.RequireTmpDirectory(), mine + "/");
  EXPECT_TRUE(shell_.FolderQuestions.empty());
}

TEST_F(TmpDirectoryTest, RequireStoresTheSystemsFolderWithoutAskingWhenNoneIsStored) {
  EXPECT_EQ(tmp_.RequireTmpDirectory(), Tmp());
  EXPECT_EQ(Stored(), Tmp());
  EXPECT_TRUE(shell_.FolderQuestions.empty());
}

TEST_F(TmpDirectoryTest, RequireAsksWhenTheStoredFolderVanished) {
  Store(folder_.File("vanished"));
  shell_.FolderAnswer = Made("picked");
  EXPECT_EQ(tmp_.RequireTmpDirectory(), folder_.File("picked/"));
  EXPECT_EQ(shell_.FolderQuestions.size(), 1U);
}

TEST_F(TmpDirectoryTest, RequireTakesTheSystemsFolderWhereNobodyAnswers) {
  Store(folder_.File("vanished"));
  EXPECT_EQ(tmp_.RequireTmpDirectory(), Tmp());
  EXPECT_EQ(Stored(), Tmp());
}

class SafeTmpDirectoryTest : public TmpDirectoryTest {
 protected:
  std::string Safe() {
    return tmp_.SafeTmpDirectory([this](const std::string& line) { told_.push_back(line); }, why_);
  }
  void Open(const std::string& folder, unsigned mode) { ASSERT_EQ(::chmod(folder.c_str(), mode), 0); }

  std::vector<std::string> told_;
  std::string why_;
  const std::string open_ = "everybody may write to the folder and it has no sticky bit";
};

TEST_F(SafeTmpDirectoryTest, IsTheStoredOneWhenThatIsSafe) {
  const std::string mine = Made("mine");
  Store(mine);
  EXPECT_EQ(Safe(), mine + "/");
  EXPECT_EQ(why_, "");
  EXPECT_TRUE(told_.empty());
}

TEST_F(SafeTmpDirectoryTest, IsTheSystemsOneWhereOthersCanWriteToTheStoredOneWhichStaysStored) {
  const std::string mine = Made("mine") + "/";
  Store(mine);
  Open(mine, 0777);
  EXPECT_EQ(Safe(), Tmp());
  EXPECT_EQ(Stored(), mine);
  EXPECT_EQ(told_, std::vector<std::string>{"The folder for temporary files \"" + mine +
                                            "\" is not used: " + open_});
  Open(mine, 01777);
  EXPECT_EQ(Safe(), mine);
  EXPECT_EQ(told_.size(), 1U);
}

TEST_F(SafeTmpDirectoryTest, IsNoneWhenTheSystemsOneIsNoBetter) {
  const std::string mine = Made("mine") + "/";
  Store(mine);
  Open(mine, 0777);
  Open(Tmp(), 0777);
  EXPECT_EQ(Safe(), "");
  EXPECT_EQ(told_.size(), 1U);
  EXPECT_EQ(why_, open_ + " (\"" + Tmp() + "\")");
  EXPECT_EQ(Stored(), mine);
}

TEST_F(SafeTmpDirectoryTest, IsNoneWhenTheSystemsOneIsTheStoredOne) {
  Open(Tmp(), 0777);
  EXPECT_EQ(Safe(), "");
  EXPECT_TRUE(told_.empty());
  EXPECT_EQ(why_, open_ + " (\"" + Tmp() + "\")");
}

TEST_F(SafeTmpDirectoryTest, IsNoneWhenTheSystemsOneCannotBeEntered) {
  system_.Environment[1].second = folder_.File("gone");
  EXPECT_EQ(Safe(), "");
  EXPECT_EQ(why_, "No such file or directory (\"" + folder_.File("gone") + "/\")");
}

}  // namespace
}  // namespace folioweld
