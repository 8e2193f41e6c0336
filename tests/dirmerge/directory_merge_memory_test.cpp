// Directory merges that run out of something.

#include <filesystem>
#include <gtest/gtest.h>
#include <new>
#include <optional>
#include <string>

#include "tests/dirmerge/crowded_system.h"
#include "tests/dirmerge/directory_merge_fixture.h"
#include "tests/support/document_builder.h"
#include "tests/support/failing_memory.h"

namespace folioweld {
namespace {

using testing::Exists;
using testing::Names;
using testing::PageTexts;

class ExhaustedMerge : public testing::DirectoryMergeFixture {};

TEST_F(ExhaustedMerge, FolderOfMoreFilesThanSixteenBitsCountIsLoggedAndLeft) {
  testing::CrowdedSystem crowd(folder_.Write("one", testing::SimpleDocument(1)), 40000);
  FileModule files(crowd);
  DirectoryMerge merge(program_, files, settings_, shell_, log_);
  merge.MergeDirectory(Docs());
  EXPECT_FALSE(merge.Report().OutputWritten);
  const std::string line = "Out of memory - Could not extend filesToMerge()";
  EXPECT_EQ(MergeLines(), Names{line});
  EXPECT_EQ(shell_.Notices, Names{"[Folioweld-MergeDirectory]=>" + line});
  EXPECT_TRUE(shell_.Messages.empty());
  EXPECT_FALSE(Exists(Output()));
  ExpectIdle();
}

TEST_F(ExhaustedMerge, ListOfTemporariesThatCannotGrowGoesToCleanUp) {
  for (const char* name : {"a", "b", "c"}) AddDocument(name);
  // The list's first entry is asked for right after the second look at Cancel before the first pair.
  constexpr std::size_t kEntry = sizeof(std::string) + sizeof(FileInformation);
  std::optional<testing::FailingMemory> failing;
  int looks = 0;
  shell_.OnYield = [&] {
    failing.reset();
    const Names lines = MergeLines();
    const bool rounds = !lines.empty() && lines.back().rfind("iNumFilesToMerge: 3", 0) == 0;
    if (rounds && ++looks == 2) failing.emplace(kEntry, kEntry);
  };
  EXPECT_FALSE(Merge().OutputWritten);
  EXPECT_EQ(shell_.Notices[0], "[Folioweld-MergeDirectory]=> Memory allocation problem!");
  EXPECT_EQ(MergeLines().back(), "File: \"c\"  is missing in the output");
  EXPECT_EQ(MessageTexts(), Names{"Unable to Merge and Create " + Output()});
  ExpectIdle();
}

TEST_F(ExhaustedMerge, MemoryThatRunsOutAtAnyMomentLeavesNothingBehind) {
  for (const char* name : {"a", "b", "c"}) AddDocument(name);
  EXPECT_TRUE(Merge().Complete());
  const long all = shell_.Yields;
  ASSERT_GT(all, 100);
  int notices = 0;
  for (long n = 1; n <= all; ++n) {
    shell_.Yields = 0;
    shell_.Calls.clear();
    shell_.Notices.clear();
    std::filesystem::remove(Output());
    shell_.OnYield = [&] {
      if (shell_.Yields == n) throw std::bad_alloc();
    };
    const DirectoryMergeReport& report = Merge();
    ASSERT_EQ(report.OutputWritten, Exists(Output())) << "at yield " << n;
    if (report.OutputWritten) {
      EXPECT_EQ(PageTexts(Output())[0], "a");
    }
    if (!shell_.Notices.empty()) ++notices;
    for (const std::string& notice : shell_.Notices) {
      EXPECT_EQ(notice.find("bad_alloc"), std::string::npos) << notice;
    }
    ExpectIdle();
    if (HasFailure()) FAIL() << "at yield " << n;
  }
  EXPECT_GT(notices, all / 2) << "it is told";
}

}  // namespace
}  // namespace folioweld
