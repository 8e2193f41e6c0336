#include <algorithm>
#include <cstdint>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

#include "dirmerge/file_ordering.h"
#include "tests/support/faulting_system.h"
#include "tests/support/recording_shell.h"

namespace folioweld {
namespace {

using Names = std::vector<std::string>;

class QuickSortNames : public ::testing::Test {
 protected:
  Names Sorted(Names names) {
    ordering_.QuickSortNames(names, 0, static_cast<std::int16_t>(names.size() - 1));
    return names;
  }

  testing::FaultingSystem system_;
  testing::RecordingShell shell_;
  MergeState state_;
  FileOrdering ordering_{system_, shell_, state_, [](const std::string&) {}};
};

TEST_F(QuickSortNames, SortsEveryArrangementOfUpToSevenNames) {
  for (int count = 1; count <= 7; ++count) {
    Names sorted;
    for (int i = 0; i < count; ++i) sorted.emplace_back(1, static_cast<char>('a' + i));
    Names names = sorted;
    do {
      ASSERT_EQ(Sorted(names), sorted) << ::testing::PrintToString(names);
    } while (std::next_permutation(names.begin(), names.end()));
  }
}

TEST_F(QuickSortNames, SortsEveryArrangementWithEqualNames) {
  Names sorted{"a", "a", "b", "b", "b", "c", "c"};
  Names names = sorted;
  do {
    ASSERT_EQ(Sorted(names), sorted) << ::testing::PrintToString(names);
  } while (std::next_permutation(names.begin(), names.end()));
}

TEST_F(QuickSortNames, SortsNothingOutsideTheGivenRange) {
  Names names{"z", "c", "b", "a", "0"};
  ordering_.QuickSortNames(names, 1, 3);
  EXPECT_EQ(names, (Names{"z", "a", "b", "c", "0"}));
}

TEST_F(QuickSortNames, LeavesASingleNameAndAnEmptyRange) {
  Names names{"b", "a"};
  ordering_.QuickSortNames(names, 1, 1);
  ordering_.QuickSortNames(names, 1, 0);
  EXPECT_EQ(names, (Names{"b", "a"}));
}

TEST_F(QuickSortNames, AShorterNameSortsBeforeItsContinuation) {
  EXPECT_EQ(Sorted({"ab", "a", "", "abc"}), (Names{"", "a", "ab", "abc"}));
}

TEST_F(QuickSortNames, ComparesBytesAsUnsigned) {
  EXPECT_EQ(Sorted({"\xFF", "\x7F", "\x80", "\x01"}), (Names{"\x01", "\x7F", "\x80", "\xFF"}));
}

TEST_F(QuickSortNames, KeepsEveryNameWhenItIsCancelled) {
  Names names;
  for (int i = 0; i < 100; ++i) names.push_back(std::to_string((i * 37) % 100));
  Names before = names;
  long left = 20;
  shell_.OnYield = [&] {
    if (--left == 0) state_.AbortRequested = true;
  };
  ordering_.QuickSortNames(names, 0, 99);
  EXPECT_FALSE(std::is_sorted(names.begin(), names.end()));
  std::sort(names.begin(), names.end());
  std::sort(before.begin(), before.end());
  EXPECT_EQ(names, before);
}

TEST_F(QuickSortNames, PartsTheRangeByItsMiddleName) {
  // Cancelled after the first partition: what was smaller than the third name stands before it now.
  shell_.OnYield = [&] { state_.AbortRequested = shell_.Yields >= 3; };
  EXPECT_EQ(Sorted({"b", "d", "a", "c", "e"}), (Names{"a", "d", "b", "c", "e"}));
}

TEST_F(QuickSortNames, StopsAtOnceWhenCancelledBefore) {
  state_.AbortRequested = true;
  EXPECT_EQ(Sorted({"b", "a"}), (Names{"b", "a"}));
}

TEST_F(QuickSortNames, SortsAsManyNamesAsTheJobCanCount) {
  Names names;
  for (int i = 0; i < 32767; ++i) names.push_back(std::to_string(i));
  std::shuffle(names.begin(), names.end(), std::mt19937(1));  // NOLINT(cert-msc51-cpp)
  const Names sorted = Sorted(names);
  EXPECT_TRUE(std::is_sorted(sorted.begin(), sorted.end()));
}

TEST_F(QuickSortNames, NamesThatAreAlreadySortedEitherWayTakeNoLonger) {
  Names names;
  for (int i = 0; i < 20000; ++i) names.push_back(std::to_string(100000 + i));
  EXPECT_EQ(Sorted(names), names);
  const long yields = shell_.Yields;
  EXPECT_LT(yields, 4L * 20000);
  const Names reversed(names.rbegin(), names.rend());
  EXPECT_EQ(Sorted(reversed), names);
  EXPECT_LT(shell_.Yields - yields, 4L * 20000);
}

}  // namespace
}  // namespace folioweld
