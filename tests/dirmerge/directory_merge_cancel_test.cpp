// Cancel at every stage of a directory merge.

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/dirmerge/directory_merge_fixture.h"

namespace folioweld {
namespace {

using testing::Exists;
using testing::Names;
using testing::PageTexts;
using testing::ReadFile;

class CancelledMerge : public testing::DirectoryMergeFixture {
 protected:
  /// The user presses Cancel once, the first time that anybody looks while `moment` holds.
  template <typename Moment>
  void CancelWhen(Moment moment) {
    shell_.OnYield = [this, moment] {
      if (pressed_ || !moment()) return;
      pressed_ = true;
      program_.Merge.AbortRequested = true;
    };
  }

  [[nodiscard]] bool LastLineBegins(const std::string& begin) const {
    const Names lines = MergeLines();
    return !lines.empty() && lines.back().rfind(begin, 0) == 0;
  }

  void ExpectCancelled() {
    const DirectoryMergeReport& report = Merge();
    EXPECT_TRUE(pressed_);
    EXPECT_TRUE(report.Cancelled);
    EXPECT_FALSE(report.OutputWritten);
    EXPECT_FALSE(report.Complete());
    EXPECT_FALSE(Exists(Output()));
    EXPECT_TRUE(LastLineBegins("The merge was cancelled"));
    EXPECT_TRUE(report.MissingDocuments.empty()) << "a cancel needs no list of them";
    ExpectIdle();
  }

  void AddFive() const {
    for (const char* name : {"a", "b", "c", "d", "e"}) AddDocument(name);
  }

  bool pressed_ = false;
};

TEST_F(CancelledMerge, DuringTheEnumerationStopsInSilence) {
  AddFive();
  CancelWhen([] { return true; });
  ExpectCancelled();
  EXPECT_TRUE(shell_.Messages.empty());
  EXPECT_EQ(MergeLines(), Names{"The merge was cancelled"});
}

TEST_F(CancelledMerge, DuringTheOrderingStopsInSilence) {
  AddFive();
  CancelWhen([this] { return LastLineBegins("File name(4)"); });
  ExpectCancelled();
  EXPECT_TRUE(shell_.Messages.empty());
  const Names lines = MergeLines();
  EXPECT_EQ(lines.at(lines.size() - 2).rfind("File name(4)", 0), 0U);
}

TEST_F(CancelledMerge, InRoundOneGoesToCleanUp) {
  AddFive();
  CancelWhen([this] { return LastLineBegins("sPdfM(1)= \"" + Doc("c")); });
  ExpectCancelled();
  const Names lines = MergeLines();
  EXPECT_EQ(lines.at(lines.size() - 2).rfind(" Kill ", 0), 0U);
  EXPECT_TRUE(shell_.Messages.empty()) << "there is no output to speak of";
}

TEST_F(CancelledMerge, GivesTheMessageAboutAnEmptyOutputThatWasThereBefore) {
  AddFive();
  folder_.Write("joined.pdf", "");
  CancelWhen([this] { return LastLineBegins("sPdfM(1)= \"" + Doc("c")); });
  EXPECT_FALSE(Merge().OutputWritten);
  EXPECT_EQ(MessageTexts(), Names{"Unable to Merge and Create " + Output()});
  EXPECT_TRUE(Exists(Output()));
}

TEST_F(CancelledMerge, InRoundTwoDeletesTheTemporariesOfRoundOne) {
  AddFive();
  CancelWhen([this] { return Temporaries().size() == 3; });
  ExpectCancelled();
  const Names lines = MergeLines();
  const auto kills = std::count_if(lines.begin(), lines.end(),
                                   [](const auto& line) { return line.rfind(" Kill ", 0) == 0; });
  EXPECT_EQ(kills, 3);
  for (const char* name : {"a", "b", "c", "d", "e"}) EXPECT_EQ(PageTexts(Doc(name)), Names{name});
}

TEST_F(CancelledMerge, BeforeTheNextPairIsBegunStartsItNoMore) {
  AddFive();
  CancelWhen([this] { return !program_.Merge.JobRunning && LastLineBegins("sPdfM(1)= \"" + Doc("a")); });
  ExpectCancelled();
  const Names lines = MergeLines();
  EXPECT_EQ(
      std::count_if(lines.begin(), lines.end(), [](const auto& line) { return line.rfind("sPdfM", 0) == 0; }),
      1);
}

TEST_F(CancelledMerge, WhileThePairIsLoggedDoesNotRunIt) {
  AddDocument("a");
  AddDocument("b");
  CancelWhen([this] { return program_.Merge.DocFileName(3) == Output(); });
  ExpectCancelled();
  EXPECT_EQ(std::count(shell_.Calls.begin(), shell_.Calls.end(), "DisableInputPicking"), 0);
}

TEST_F(CancelledMerge, OfAnEarlierJobDoesNotStopTheNextOne) {
  AddFive();
  program_.Merge.AbortRequested = true;
  program_.Merge.CancelSeen = true;
  const DirectoryMergeReport& report = Merge();
  EXPECT_TRUE(report.Complete());
  EXPECT_FALSE(report.Cancelled);
}

TEST_F(CancelledMerge, OfAnEarlierJobIsNotReportedAgain) {
  program_.Merge.CancelSeen = true;
  EXPECT_FALSE(Merge().Cancelled) << "there was no document";
}

TEST_F(CancelledMerge, LeavesAnExistingOutputAsItWasUntilItIsWritten) {
  AddFive();
  folder_.Write("joined.pdf", "an older output of some length");
  CancelWhen([this] { return Temporaries().size() == 3; });
  EXPECT_FALSE(Merge().OutputWritten);
  EXPECT_EQ(ReadFile(Output()), "an older output of some length");
  EXPECT_TRUE(shell_.Messages.empty());
}

TEST_F(CancelledMerge, IsNeverLostWheneverItComes) {
  for (const char* name : {"a", "b", "c"}) AddDocument(name);
  program_.SortOrder = -2;
  EXPECT_TRUE(Merge().Complete());
  const long all = shell_.Yields;
  ASSERT_GT(all, 100);
  long late = 0;
  for (long n = 1; n <= all; ++n) {
    shell_.Yields = 0;
    shell_.Calls.clear();
    std::filesystem::remove(Output());
    shell_.OnYield = [&] {
      if (shell_.Yields == n) program_.Merge.AbortRequested = true;
    };
    const DirectoryMergeReport& report = Merge();
    ASSERT_TRUE(report.Cancelled) << "at yield " << n;
    ASSERT_EQ(report.OutputWritten, Exists(Output())) << "at yield " << n;
    if (report.OutputWritten) ++late;
    ExpectIdle();
    if (HasFailure()) FAIL() << "at yield " << n;
  }
  // Once the output is complete only the clean-up is left to be cancelled.
  EXPECT_LT(late, 20);
}

}  // namespace
}  // namespace folioweld
