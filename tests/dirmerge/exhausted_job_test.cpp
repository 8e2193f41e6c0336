// A merge of two documents in which each request for memory fails in turn.

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

#include "platform/posix_api.h"
#include "tests/support/document_builder.h"
#include "tests/support/failing_memory.h"
#include "tests/support/merge_run.h"
#include "tests/support/temp_folder.h"

namespace folioweld {
namespace {

/// With the real system and nobody watching, so that all requests are the engine's.
class ExhaustedJob : public ::testing::Test {
 protected:
  void Join() {
    state_.DocFileName(1) = first_;
    state_.DocFileName(2) = second_;
    state_.DocFileName(3) = output_;
    std::filesystem::remove(output_);
    job_.cmdOK_Click();
  }

  /// Over an older output. False when the run makes fewer requests.
  bool JoinWithout(long n) {
    state_.DocFileName(1) = first_;
    state_.DocFileName(2) = second_;
    state_.DocFileName(3) = output_;
    folder_.Write("out.pdf", kOlder);
    const testing::FailingRequest failing(n);
    job_.cmdOK_Click();
    return testing::FailingRequest::Reached();
  }

  [[nodiscard]] const std::string& LastLine() const { return log_.LogLine(log_.LogIndex()); }

  static constexpr char kOlder[] = "an older output";
  const std::string input_ = testing::SimpleDocument(2);
  testing::TempFolder folder_;
  const std::string first_ = folder_.Write("a.pdf", input_);
  const std::string second_ = folder_.Write("b.pdf", input_);
  const std::string output_ = folder_.File("out.pdf");
  PosixApi system_;
  FileModule files_{system_};
  MergeState state_;
  MergeShell shell_;
  ActivityLog log_{shell_};
  MergeJob job_{state_, files_, shell_, log_};
};

TEST_F(ExhaustedJob, EveryRequestForMemoryThatFailsEndsTheJobAsFailedAndTheNextOneWorks) {
  Join();
  const std::string joined = testing::ReadFile(output_);
  ASSERT_FALSE(joined.empty());
  const std::size_t handles = testing::OpenHandles();
  long failed = 0;
  long kept = 0;
  for (long n = 1; JoinWithout(n); ++n) {
    ++failed;
    ASSERT_EQ(state_.MergeStatus, -1) << n;
    ASSERT_NE(LastLine().find("out of memory"), std::string::npos) << n << LastLine();
    ASSERT_TRUE(state_.DocFileName(3).empty()) << n;
    ASSERT_FALSE(state_.JobRunning) << n;
    // Once it was opened for writing, the older output is gone.
    if (std::filesystem::exists(output_)) {
      ++kept;
      ASSERT_EQ(testing::ReadFile(output_), kOlder) << n;
    }
    ASSERT_EQ(testing::OpenHandles(), handles) << n;
    ASSERT_EQ(testing::ReadFile(first_), input_) << n;
    ASSERT_EQ(testing::ReadFile(second_), input_) << n;
    Join();
    ASSERT_EQ(testing::ReadFile(output_), joined) << n;
  }
  EXPECT_GT(failed, 30);
  EXPECT_GT(kept, 20) << "before it is opened";
  EXPECT_GT(failed, kept) << "and after that";
}

}  // namespace
}  // namespace folioweld
