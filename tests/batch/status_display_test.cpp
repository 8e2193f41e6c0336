#include "batch/status_display.h"

#include <gtest/gtest.h>
#include <string>

#include "engine/merge_shell.h"
#include "tests/batch/screen_system.h"

namespace folioweld {
namespace {

using testing::ScreenSystem;

constexpr char kUp[] = "\x1b[3A";
constexpr char kLine[] = "\r\x1b[K";

std::string Rows(const std::string& first, const std::string& second, const std::string& third) {
  return kLine + first + "\n" + kLine + second + "\n" + kLine + third + "\n";
}

class StatusDisplayTest : public ::testing::Test {
 protected:
  StatusDisplayTest() { system_.IsTerminal = true; }

  /// The first row that is drawn when the first line shows the text.
  std::string RowOf(const std::string& text) {
    shell_.SetStatusText(0, text);
    StatusDisplay display(system_);
    display.Draw(shell_);
    const std::string drawn = system_.Take();
    const std::size_t start = sizeof kLine - 1;
    return drawn.substr(start, drawn.find('\n') - start);
  }

  ScreenSystem system_;
  MergeShell shell_;
};

TEST_F(StatusDisplayTest, ShowsNothingWhereStandardErrorIsNoTerminal) {
  system_.IsTerminal = false;
  StatusDisplay display(system_);
  shell_.SetStatusText(0, "text");
  display.Update(shell_);
  display.Draw(shell_);
  display.Clear();
  EXPECT_EQ(system_.Writes, 0);
}

TEST_F(StatusDisplayTest, ShowsTheThreeLinesInOneRowEach) {
  StatusDisplay display(system_);
  shell_.SetStatusText(0, "one\r\ntwo");
  shell_.SetStatusText(2, "three");
  display.Update(shell_);
  EXPECT_EQ(system_.Take(), Rows("one two", "", "three"));
}

TEST_F(StatusDisplayTest, RewritesTheRowsInPlace) {
  StatusDisplay display(system_);
  display.Update(shell_);
  system_.Take();
  system_.Now = 50;
  shell_.SetStatusText(1, "now");
  display.Update(shell_);
  EXPECT_EQ(system_.Take(), kUp + Rows("", "now", ""));
}

TEST_F(StatusDisplayTest, RewritesAtMostTwentyTimesASecond) {
  StatusDisplay display(system_);
  for (int millisecond = 0; millisecond < 1000; ++millisecond) {
    system_.Now = millisecond;
    display.Update(shell_);
  }
  EXPECT_EQ(system_.Writes, 20);
}

TEST_F(StatusDisplayTest, ClearTakesTheRowsAway) {
  StatusDisplay display(system_);
  display.Clear();
  EXPECT_EQ(system_.Take(), "") << "nothing is shown yet";
  display.Update(shell_);
  system_.Take();
  display.Clear();
  EXPECT_EQ(system_.Take(), std::string(kUp) + "\r\x1b[J");
  display.Clear();
  EXPECT_EQ(system_.Take(), "");
}

TEST_F(StatusDisplayTest, ShowsTheRowsAgainAtOnceAfterAClear) {
  StatusDisplay display(system_);
  display.Update(shell_);
  display.Clear();
  system_.Take();
  display.Update(shell_);
  EXPECT_EQ(system_.Take(), Rows("", "", ""));
}

TEST_F(StatusDisplayTest, RowThatFitsIsShownWhole) {
  system_.Columns = 21;
  EXPECT_EQ(RowOf("12345678901234567890"), "12345678901234567890");
}

TEST_F(StatusDisplayTest, LongRowKeepsBothEndsAndLeavesTheLastColumnFree) {
  system_.Columns = 21;
  EXPECT_EQ(RowOf("abcdefghijklmnopqrstu"), "abcdef...klmnopqrstu");
}

TEST_F(StatusDisplayTest, RowIsMeasuredAnewEveryTime) {
  StatusDisplay display(system_);
  shell_.SetStatusText(0, std::string(60, 'x'));
  display.Draw(shell_);
  EXPECT_EQ(system_.Take(), Rows(std::string(60, 'x'), "", ""));
  system_.Columns = 31;
  display.Draw(shell_);
  EXPECT_EQ(system_.Take(), kUp + Rows(std::string(10, 'x') + "..." + std::string(17, 'x'), "", ""));
}

TEST_F(StatusDisplayTest, NarrowTerminalNeverBreaksARow) {
  for (int columns = 6; columns < 40; ++columns) {
    system_.Columns = columns;
    EXPECT_EQ(RowOf(std::string(100, 'x')).size(), static_cast<std::size_t>(columns - 1));
  }
  for (const int columns : {-1, 0, 1, 5}) {
    system_.Columns = columns;
    EXPECT_EQ(RowOf(std::string(100, 'x')), "x...x");
  }
}

TEST_F(StatusDisplayTest, NoCharacterIsCutInTwo) {
  system_.Columns = 21;
  for (int blanks = 0; blanks < 3; ++blanks) {
    std::string text(static_cast<std::size_t>(blanks), 'a');
    for (int i = 0; i < 30; ++i) text += "\xE2\x82\xAC";
    for (int end = 0; end < 3; ++end) {
      const std::string row = RowOf(text);
      EXPECT_LE(row.size(), 20U);
      EXPECT_GE(row.size(), 15U);
      EXPECT_EQ(row.find('?'), std::string::npos);
      std::string left = row;
      for (auto at = left.find("\xE2\x82\xAC"); at != std::string::npos; at = left.find("\xE2\x82\xAC")) {
        left.erase(at, 3);
      }
      EXPECT_EQ(left.find_first_not_of("a.z"), std::string::npos) << left;
      text += 'z';
    }
  }
}

TEST_F(StatusDisplayTest, NameOfAFileNeverCommandsTheTerminal) {
  EXPECT_EQ(RowOf("a\x1b[2Jb\xC2\x9Bz"), "a?[2Jb?z");
}

}  // namespace
}  // namespace folioweld
