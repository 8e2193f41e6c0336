// A folder's merge in which each request for memory fails in turn.

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

#include "platform/posix_api.h"
#include "tests/dirmerge/directory_merge_fixture.h"
#include "tests/support/failing_memory.h"
#include "tests/support/merge_run.h"

namespace folioweld {
namespace {

/// With the real system and nobody watching, so that all requests are the program's.
class ExhaustedFolder : public testing::DirectoryMergeFixture {
 protected:
  ExhaustedFolder() { program.CommandLineOutput = Output(); }

  const DirectoryMergeReport& Join() {
    std::filesystem::remove(Output());
    merge.MergeDirectory(Docs());
    return merge.Report();
  }

  /// Whether the log's last lines tell of it.
  [[nodiscard]] bool IsTold() const { return log.LogText().find("emory") != std::string::npos; }

  static constexpr char kOlder[] = "an older output";
  PosixApi system;
  ProgramState program;
  MergeShell shell;
  ActivityLog log{shell};
  FileModule files{system};
  SettingsStore settings{system};
  DirectoryMerge merge{program, files, settings, shell, log};
};

TEST_F(ExhaustedFolder, EveryRequestForMemoryThatFailsLeavesNothingBehindAndTheNextMergeWorks) {
  for (const char* name : {"a", "b", "c"}) AddDocument(name);
  ASSERT_TRUE(Join().Complete());
  const std::string joined = testing::ReadFile(Output());
  const std::size_t handles = testing::OpenHandles();
  const std::string docs = Docs();
  long failed = 0;
  for (long n = 1;; ++n) {
    log.ClearLogScreen();
    folder_.Write("joined.pdf", kOlder);
    bool reached = false;
    {
      const testing::FailingRequest failing(n);
      merge.MergeDirectory(docs);
      reached = testing::FailingRequest::Reached();
    }
    if (!reached) break;
    ++failed;
    const bool isComplete = merge.Report().Complete();
    ASSERT_TRUE(isComplete || IsTold()) << n << log.LogText();
    // Where only the report of it failed, the whole output stays; a document that there was no memory to try
    // is named as refused.
    const bool isWritten = std::filesystem::exists(Output()) && testing::ReadFile(Output()) != kOlder;
    ASSERT_TRUE(isWritten || !isComplete) << n;
    if (isWritten && merge.Report().RefusedDocuments.empty()) {
      ASSERT_EQ(testing::ReadFile(Output()), joined) << n << log.LogText();
    }
    ASSERT_EQ(testing::OpenHandles(), handles) << n;
    ASSERT_EQ(Temporaries(), testing::Names{}) << n;
    ASSERT_FALSE(program.ExternalBusy) << n;
    if (n % 7 != 0) continue;
    ASSERT_TRUE(Join().Complete()) << n;
    ASSERT_EQ(testing::ReadFile(Output()), joined) << n;
  }
  EXPECT_GT(failed, 100);
}

}  // namespace
}  // namespace folioweld
