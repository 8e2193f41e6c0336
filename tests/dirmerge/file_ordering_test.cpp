#include "dirmerge/file_ordering.h"

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <string>
#include <sys/stat.h>
#include <vector>

#include "tests/support/faulting_system.h"
#include "tests/support/recording_shell.h"
#include "tests/support/temp_folder.h"

namespace folioweld {
namespace {

using testing::FaultingSystem;
using testing::RecordingShell;
using testing::TempFolder;
using Names = std::vector<std::string>;

/// In a folder of its own, in which it stays, two hours east of Greenwich.
class FileOrderingTest : public ::testing::Test {
 protected:
  FileOrderingTest() {
    std::filesystem::current_path(folder_.Path());
    ::setenv("TZ", "TST-2", 1);
    ::tzset();
  }
  ~FileOrderingTest() override {
    std::filesystem::current_path(before_);
    ::unsetenv("TZ");
    ::tzset();
  }

  void Add(const std::string& name, std::time_t seconds, long nanoseconds = 0) const {
    folder_.Write(name, "");
    const struct timespec times[2] = {{seconds, nanoseconds}, {seconds, nanoseconds}};
    ASSERT_EQ(::utimensat(AT_FDCWD, folder_.File(name).c_str(), times, 0), 0);
  }

  Names Ordered(Names names, std::int16_t sortOrder) {
    EXPECT_TRUE(ordering_.Order(names, sortOrder));
    return names;
  }

  std::filesystem::path before_ = std::filesystem::current_path();
  TempFolder folder_;
  FaultingSystem system_;
  RecordingShell shell_;
  MergeState state_;
  Names log_;
  FileOrdering ordering_{system_, shell_, state_, [this](const std::string& line) { log_.push_back(line); }};
};

constexpr std::time_t kMoment = 1583020799;  // 2020-02-29 23:59:59 UTC

TEST_F(FileOrderingTest, ByNameSortsCapitalsBeforeSmallLetters) {
  EXPECT_EQ(Ordered({"b.pdf", "A.pdf", "a.pdf"}, 1), (Names{"A.pdf", "a.pdf", "b.pdf"}));
}

TEST_F(FileOrderingTest, ByNameSortsDigitsBeforeLettersAndByteByByte) {
  EXPECT_EQ(Ordered({"a", "10", "B", "9", "\xC3\xA4", "~"}, 1),
            (Names{"10", "9", "B", "a", "~", "\xC3\xA4"}));
}

TEST_F(FileOrderingTest, ByNameReversedIsTheReverseOfByName) {
  EXPECT_EQ(Ordered({"b.pdf", "A.pdf", "a.pdf", "c.pdf"}, -1), (Names{"c.pdf", "b.pdf", "a.pdf", "A.pdf"}));
}

TEST_F(FileOrderingTest, OddCountReversedLeavesTheMiddleInPlace) {
  EXPECT_EQ(Ordered({"c", "a", "e", "b", "d"}, -1), (Names{"e", "d", "c", "b", "a"}));
}

TEST_F(FileOrderingTest, ByDateSortsTheOldestFirst) {
  Add("new", kMoment + 60);
  Add("old", kMoment - 60);
  Add("middle", kMoment);
  EXPECT_EQ(Ordered({"new", "old", "middle"}, 2), (Names{"old", "middle", "new"}));
}

TEST_F(FileOrderingTest, ByDateReversedSortsTheNewestFirst) {
  Add("new", kMoment + 60);
  Add("old", kMoment - 60);
  Add("middle", kMoment);
  EXPECT_EQ(Ordered({"new", "old", "middle"}, -2), (Names{"new", "middle", "old"}));
}

TEST_F(FileOrderingTest, FilesOfTheSameSecondSortByName) {
  Add("b", kMoment, 1);
  Add("a", kMoment, 999999999);
  Add("B", kMoment, 500);
  EXPECT_EQ(Ordered({"b", "a", "B"}, 2), (Names{"B", "a", "b"}));
  EXPECT_EQ(Ordered({"b", "a", "B"}, -2), (Names{"b", "a", "B"}));
}

TEST_F(FileOrderingTest, FilesWithoutATimeSortBeforeAllOthers) {
  Add("a", kMoment);
  EXPECT_EQ(Ordered({"a", "missing"}, 2), (Names{"missing", "a"}));
}

TEST_F(FileOrderingTest, SingleFileStaysAsItIs) {
  for (const int order : {1, -1, 2, -2}) {
    EXPECT_EQ(Ordered({"only"}, static_cast<std::int16_t>(order)), Names{"only"});
  }
}

TEST_F(FileOrderingTest, NoFileAtAllIsInOrder) {
  EXPECT_EQ(Ordered({}, -2), Names());
  EXPECT_TRUE(log_.empty());
}

TEST_F(FileOrderingTest, LogsEveryNameOfEveryStageByName) {
  Ordered({"b", "a \"q\""}, 1);
  EXPECT_EQ(log_, (Names{"File name(0) = \"b\"", "File name(1) = \"a \"q\"\"",
                         "Sorted file name(0) = \"a \"q\"\"", "Sorted file name(1) = \"b\""}));
}

TEST_F(FileOrderingTest, LogsEveryNameOfEveryStageByDateReversed) {
  Add("b", kMoment);
  Add("a", kMoment + 1);
  Ordered({"a", "b"}, -2);
  EXPECT_EQ(log_, (Names{"File name(0) = \"a\"", "File name(1) = \"b\"",
                         "Prefixed file name(0) = \"20200301020000  a\"",
                         "Prefixed file name(1) = \"20200301015959  b\"",
                         "De-prefixed sorted file name(0) = \"b\"", "De-prefixed sorted file name(1) = \"a\"",
                         "Reversed ordered file name(0) = \"a\"", "Reversed ordered file name(1) = \"b\""}));
}

TEST_F(FileOrderingTest, LogsTheReversedStageByNameToo) {
  Ordered({"x"}, -1);
  EXPECT_EQ(log_, (Names{"File name(0) = \"x\"", "Sorted file name(0) = \"x\"",
                         "Reversed ordered file name(0) = \"x\""}));
}

TEST_F(FileOrderingTest, LogsNothingWhenTheLogIsOff) {
  state_.LogEnabled = false;
  EXPECT_EQ(Ordered({"b", "a"}, -2), (Names{"b", "a"}));
  EXPECT_TRUE(log_.empty());
}

TEST_F(FileOrderingTest, CancelStopsBeforeTheSortedNamesAreLogged) {
  state_.AbortRequested = true;
  Names names{"b", "a"};
  EXPECT_FALSE(ordering_.Order(names, 1));
  EXPECT_EQ(log_.back(), "File name(1) = \"a\"");
}

TEST_F(FileOrderingTest, CancelIsSeenForASingleFileToo) {
  state_.AbortRequested = true;
  Names names{"a"};
  EXPECT_FALSE(ordering_.Order(names, 1));
}

TEST_F(FileOrderingTest, DateKeyIsTheLocalTimeToTheSecond) {
  Add("a.pdf", kMoment, 999999999);
  EXPECT_EQ(ordering_.GetDatePrefixedName("a.pdf", 16), "20200301015959  a.pdf");
}

TEST_F(FileOrderingTest, DateKeyHasLeadingZerosEverywhere) {
  Add("a.pdf", 1104620645);  // 2005-01-01 23:04:05 UTC
  EXPECT_EQ(ordering_.GetDatePrefixedName("a.pdf", 16), "20050102010405  a.pdf");
}

TEST_F(FileOrderingTest, DateKeyIsCutOrPaddedToTheWidth) {
  Add("a.pdf", kMoment);
  EXPECT_EQ(ordering_.GetDatePrefixedName("a.pdf", 14), "20200301015959a.pdf");
  EXPECT_EQ(ordering_.GetDatePrefixedName("a.pdf", 8), "20200301a.pdf");
  EXPECT_EQ(ordering_.GetDatePrefixedName("a.pdf", 20), "20200301015959      a.pdf");
  EXPECT_EQ(ordering_.GetDatePrefixedName("a.pdf", 0), "a.pdf");
  EXPECT_EQ(ordering_.GetDatePrefixedName("a.pdf", -1), "a.pdf");
}

TEST_F(FileOrderingTest, DateKeyIsSpacesWhenTheFileCannotBeOpened) {
  EXPECT_EQ(ordering_.GetDatePrefixedName("missing", 16), "                missing");
}

TEST_F(FileOrderingTest, DateKeyIsSpacesWhenTheTimeCannotBeRead) {
  Add("a", kMoment);
  for (const char* call : {"GetFileInformationByHandle", "FileTimeToLocalTime"}) {
    system_.Decide = FaultingSystem::Failing(call, EOVERFLOW);
    EXPECT_EQ(ordering_.GetDatePrefixedName("a", 16), "                a") << call;
  }
}

TEST_F(FileOrderingTest, DateKeyLeavesNoFileOpen) {
  Add("a", kMoment);
  static_cast<void>(ordering_.GetDatePrefixedName("a", 16));
  const auto closes = std::count_if(system_.Calls.begin(), system_.Calls.end(),
                                    [](const auto& call) { return call.Name == "CloseHandle"; });
  EXPECT_EQ(closes, 1);
}

TEST_F(FileOrderingTest, NamesThatLookLikeADateAreNotCut) {
  Add("20200301015959  x", kMoment);
  Add("a", kMoment + 1);
  EXPECT_EQ(Ordered({"a", "20200301015959  x"}, 2), (Names{"20200301015959  x", "a"}));
}

}  // namespace
}  // namespace folioweld
