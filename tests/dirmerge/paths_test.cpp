#include "dirmerge/paths.h"

#include <cerrno>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>

#include "tests/support/faulting_system.h"
#include "tests/support/temp_folder.h"

namespace folioweld {
namespace {

using testing::FaultingSystem;
using testing::TempFolder;

struct Split {
  std::string Name = "untouched";
  std::string Folder = "untouched";
};

Split SplitOf(const std::string& path) {
  Split split;
  SplitPath(path, split.Name, split.Folder);
  return split;
}

TEST(SplitPath, SplitsAtTheLastSeparatorAndLeavesItOut) {
  const Split split = SplitOf("/home/a/b.pdf");
  EXPECT_EQ(split.Name, "b.pdf");
  EXPECT_EQ(split.Folder, "/home/a");
}

TEST(SplitPath, NameWithoutSeparatorHasAnEmptyFolder) {
  const Split split = SplitOf("b.pdf");
  EXPECT_EQ(split.Name, "b.pdf");
  EXPECT_EQ(split.Folder, "");
}

TEST(SplitPath, SeparatorAtTheStartGivesAnEmptyFolder) {
  const Split split = SplitOf("/b.pdf");
  EXPECT_EQ(split.Name, "b.pdf");
  EXPECT_EQ(split.Folder, "");
}

TEST(SplitPath, SeparatorAtTheEndGivesAnEmptyName) {
  const Split split = SplitOf("/a/b/");
  EXPECT_EQ(split.Name, "");
  EXPECT_EQ(split.Folder, "/a/b");
}

TEST(SplitPath, EmptyTextGivesTwoEmptyParts) {
  const Split split = SplitOf("");
  EXPECT_EQ(split.Name, "");
  EXPECT_EQ(split.Folder, "");
}

TEST(SplitPath, BackslashIsAnOrdinaryCharacter) {
  EXPECT_EQ(SplitOf("/a/b\\c").Name, "b\\c");
}

TEST(SplitPath, EitherOutputMayBeTheTextItself) {
  std::string text = "/a/b.pdf";
  std::string other;
  SplitPath(text, text, other);
  EXPECT_EQ(text, "b.pdf");
  EXPECT_EQ(other, "/a");
  text = "/a/b.pdf";
  SplitPath(text, other, text);
  EXPECT_EQ(other, "b.pdf");
  EXPECT_EQ(text, "/a");
}

TEST(FullPath, LeavesAPathFromTheRootAsItIs) {
  FaultingSystem system;
  EXPECT_EQ(FullPath(system, "/a/../b/./c"), "/a/../b/./c");
}

TEST(FullPath, TakesARelativePathFromTheCurrentFolder) {
  const TempFolder folder;
  FaultingSystem system;
  const CurrentDirectoryKeeper keeper(system);
  ASSERT_FALSE(system.SetCurrentDirectory(folder.Path()));
  EXPECT_EQ(FullPath(system, "b/c.pdf"), folder.Path() + "/b/c.pdf");
}

TEST(FullPath, PutsOneSeparatorBehindTheRootFolder) {
  FaultingSystem system;
  const CurrentDirectoryKeeper keeper(system);
  ASSERT_FALSE(system.SetCurrentDirectory("/"));
  EXPECT_EQ(FullPath(system, "b"), "/b");
}

TEST(FullPath, IsEmptyForAnEmptyPath) {
  FaultingSystem system;
  EXPECT_EQ(FullPath(system, ""), "");
}

TEST(FullPath, IsEmptyWhenTheCurrentFolderCannotBeHad) {
  FaultingSystem system;
  system.Decide = FaultingSystem::Failing("GetCurrentDirectory", ENOENT);
  EXPECT_EQ(FullPath(system, "b"), "");
}

TEST(WithSeparator, AddsTheSeparatorOnlyWhereItIsMissing) {
  EXPECT_EQ(WithSeparator("/a"), "/a/");
  EXPECT_EQ(WithSeparator("/a/"), "/a/");
  EXPECT_EQ(WithSeparator("/"), "/");
  EXPECT_EQ(WithSeparator(""), "/");
}

TEST(SystemTempFolder, ComesFromTheEnvironment) {
  FaultingSystem system;
  system.Environment = {{"TMPDIR", "/some/folder"}};
  EXPECT_EQ(GetSystemTempFolder(system), "/some/folder");
}

TEST(SystemTempFolder, IsTheUsualOneWithoutOrWithAnEmptyVariable) {
  FaultingSystem system;
  system.Environment = {{"TMPDIR", "\x01"}};
  EXPECT_EQ(GetSystemTempFolder(system), "/tmp");
  system.Environment = {{"TMPDIR", ""}};
  EXPECT_EQ(GetSystemTempFolder(system), "/tmp");
}

TEST(SystemTempFolder, IsMadeAFullPath) {
  const TempFolder folder;
  FaultingSystem system;
  const CurrentDirectoryKeeper keeper(system);
  ASSERT_FALSE(system.SetCurrentDirectory(folder.Path()));
  system.Environment = {{"TMPDIR", "scratch"}};
  EXPECT_EQ(GetSystemTempFolder(system), folder.Path() + "/scratch");
}

TEST(SystemTempFolder, IsEmptyWhenItCannotBeMadeAFullPath) {
  FaultingSystem system;
  system.Environment = {{"TMPDIR", "scratch"}};
  system.Decide = FaultingSystem::Failing("GetCurrentDirectory", ENOENT);
  EXPECT_EQ(GetSystemTempFolder(system), "");
}

TEST(CurrentDirectoryKeeper, GoesBackAtTheEndOfItsLife) {
  const TempFolder folder;
  FaultingSystem system;
  const std::string before = std::filesystem::current_path().string();
  {
    const CurrentDirectoryKeeper keeper(system);
    ASSERT_FALSE(system.SetCurrentDirectory(folder.Path()));
    ASSERT_EQ(std::filesystem::current_path().string(), folder.Path());
  }
  EXPECT_EQ(std::filesystem::current_path().string(), before);
}

TEST(CurrentDirectoryKeeper, StaysWhereItIsWhenTheFolderCouldNotBeHad) {
  FaultingSystem system;
  system.Decide = FaultingSystem::Failing("GetCurrentDirectory", EACCES);
  { const CurrentDirectoryKeeper keeper(system); }
  for (const auto& call : system.Calls) EXPECT_NE(call.Name, "SetCurrentDirectory");
}

}  // namespace
}  // namespace folioweld
