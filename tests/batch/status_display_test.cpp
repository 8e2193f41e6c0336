#include "batch/status_display.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>

#include "engine/merge_shell.h"
#include "tests/batch/screen_system.h"

namespace folioweld {
namespace {

using testing::ScreenSystem;

constexpr char kUp[] = "\x1b[4A";
constexpr char kLine[] = "\r\x1b[K";
constexpr char kHeadline[] = "Merge 1 of 1: a";

std::string Rows(const std::string& first, const std::string& second, const std::string& third) {
  std::string rows;
  for (const std::string& row : {std::string(kHeadline), first, second, third}) rows += kLine + row + "\n";
  return rows;
}

/// What takes the rows away, one by one: other things may stand below them.
std::string Erasing(int rows) {
  const std::string up = "\x1b[" + std::to_string(rows) + "A";
  std::string text = up;
  for (int row = 0; row < rows; ++row) text += std::string(kLine) + "\n";
  return text + up;
}

class StatusDisplayTest : public ::testing::Test {
 protected:
  StatusDisplayTest() { system_.IsTerminal = true; }

  [[nodiscard]] StatusDisplay Display(ProgressChoice choice = ProgressChoice::Auto) {
    StatusDisplay display(system_, choice);
    display.SetHeadline("Merge 1 of 1: ", "a");
    return display;
  }

  static std::string RowIn(const std::string& drawn, int row) {
    std::size_t start = 0;
    for (int i = 0; i < row; ++i) start = drawn.find('\n', start) + 1;
    start += sizeof kLine - 1;
    return drawn.substr(start, drawn.find('\n', start) - start);
  }

  /// The row that is drawn for the first status line when that holds the text; wide enough for all rows.
  std::string RowOf(const std::string& text) {
    shell_.SetStatusText(0, text);
    StatusDisplay display = Display();
    display.Draw(shell_);
    return RowIn(system_.Take(), 1);
  }

  std::string HeadlineOf(const std::string& name) {
    StatusDisplay display(system_, ProgressChoice::Auto);
    display.SetHeadline("Merge 7 of 11 (round 2 of 4): ", name);
    display.Draw(shell_);
    return RowIn(system_.Take(), 0);
  }

  void ExpectNothingDrawn(StatusDisplay display) {
    shell_.SetStatusText(0, "text");
    display.Update(shell_);
    display.Draw(shell_);
    EXPECT_FALSE(display.Clear());
    EXPECT_EQ(system_.Writes, 0);
  }

  ScreenSystem system_;
  MergeShell shell_;
};

TEST_F(StatusDisplayTest, ShowsNothingWhereStandardErrorIsNoTerminal) {
  system_.IsTerminal = false;
  ExpectNothingDrawn(Display());
}

TEST_F(StatusDisplayTest, ShowsNothingOnATerminalThatCannotMoveItsCursor) {
  for (const char* terminal : {"dumb", "", "\x01"}) {
    system_.Environment = {{"TERM", terminal}};
    ExpectNothingDrawn(Display());
  }
}

TEST_F(StatusDisplayTest, ShowsNothingWhereItIsNotWanted) {
  ExpectNothingDrawn(Display(ProgressChoice::Never));
}

TEST_F(StatusDisplayTest, ShowsNothingBeforeTheFirstMerge) {
  ExpectNothingDrawn(StatusDisplay(system_, ProgressChoice::Auto));
}

TEST_F(StatusDisplayTest, ShowsEverythingAnywhereWhereItIsAlwaysWanted) {
  system_.IsTerminal = false;
  system_.IsInForeground = false;
  system_.Environment = {{"TERM", "dumb"}};
  Display(ProgressChoice::Always).Update(shell_);
  EXPECT_EQ(system_.Take(), Rows("", "", ""));
}

TEST_F(StatusDisplayTest, AsksAtEveryDrawWhetherItIsInTheForeground) {
  StatusDisplay display = Display();
  system_.IsInForeground = false;
  display.Update(shell_);
  EXPECT_EQ(system_.Take(), "");
  system_.IsInForeground = true;
  display.Update(shell_);
  EXPECT_EQ(system_.Take(), Rows("", "", ""));
  system_.IsInForeground = false;
  EXPECT_FALSE(display.Clear()) << "the terminal is somebody else's now";
  EXPECT_EQ(system_.Take(), "");
}

TEST_F(StatusDisplayTest, ShowsTheHeadlineAboveTheThreeLinesInOneRowEach) {
  StatusDisplay display = Display();
  shell_.SetStatusText(0, "one\r\ntwo");
  shell_.SetStatusText(2, "three");
  display.Update(shell_);
  EXPECT_EQ(system_.Take(), Rows("one two", "", "three"));
}

TEST_F(StatusDisplayTest, ShowsTheHeadlineAloneOnANarrowTerminal) {
  system_.Columns = 59;
  StatusDisplay display = Display();
  shell_.SetStatusText(0, "one");
  display.Update(shell_);
  EXPECT_EQ(system_.Take(), std::string(kLine) + kHeadline + "\n");
  system_.Columns = 60;
  display.Draw(shell_);
  EXPECT_EQ(system_.Take(), Erasing(1) + Rows("one", "", ""));
}

TEST_F(StatusDisplayTest, RewritesTheRowsInPlace) {
  StatusDisplay display = Display();
  display.Update(shell_);
  system_.Take();
  system_.Now = 100;
  shell_.SetStatusText(1, "now");
  display.Update(shell_);
  EXPECT_EQ(system_.Take(), kUp + Rows("", "now", ""));
}

TEST_F(StatusDisplayTest, RewritesAtMostTenTimesASecond) {
  StatusDisplay display = Display();
  for (int millisecond = 0; millisecond < 1000; ++millisecond) {
    system_.Now = millisecond;
    display.Update(shell_);
  }
  EXPECT_EQ(system_.Writes, 10);
}

TEST_F(StatusDisplayTest, ClearTakesTheRowsAwayAndNothingBelowThem) {
  StatusDisplay display = Display();
  EXPECT_FALSE(display.Clear());
  EXPECT_EQ(system_.Take(), "") << "nothing is shown yet";
  display.Update(shell_);
  system_.Take();
  EXPECT_TRUE(display.Clear());
  EXPECT_EQ(system_.Take(), Erasing(4));
  EXPECT_FALSE(display.Clear());
  EXPECT_EQ(system_.Take(), "");
}

TEST_F(StatusDisplayTest, ShowsTheRowsAgainAtOnceAfterAClear) {
  StatusDisplay display = Display();
  display.Update(shell_);
  EXPECT_TRUE(display.Clear());
  system_.Take();
  display.Update(shell_);
  EXPECT_EQ(system_.Take(), Rows("", "", ""));
}

TEST_F(StatusDisplayTest, RowsOfBeforeAStopAreLeftAsTheyAre) {
  StatusDisplay display = Display();
  display.Update(shell_);
  system_.Take();
  system_.Continued = 1;
  display.Draw(shell_);
  EXPECT_EQ(system_.Take(), Rows("", "", "")) << "the shell has written below the old ones";
  system_.Continued = 2;
  EXPECT_FALSE(display.Clear());
  EXPECT_EQ(system_.Take(), "");
}

TEST_F(StatusDisplayTest, AStopBetweenTheLookAndTheDrawingLeavesTheTerminalToOthers) {
  for (int look = 1; look <= 6; ++look) {
    StatusDisplay display = Display();
    system_.IsInForeground = true;
    system_.Looks = 0;
    system_.StopAtLook = look;
    display.Draw(shell_);
    display.Clear();
    display.Draw(shell_);
    EXPECT_FALSE(system_.WroteInBackground) << "a stop after look " << look;
    EXPECT_FALSE(system_.StopsArePutOff);
  }
  EXPECT_NE(system_.Take(), "");
}

TEST_F(StatusDisplayTest, HeadlineShortensTheNameInFront) {
  system_.Columns = 46;
  EXPECT_EQ(HeadlineOf("chapter-07.pdf"), "Merge 7 of 11 (round 2 of 4): chapter-07.pdf");
  system_.Columns = 41;
  EXPECT_EQ(HeadlineOf("chapter-07.pdf"), "Merge 7 of 11 (round 2 of 4): ...-07.pdf");
  for (int columns = -1; columns < 60; ++columns) {
    system_.Columns = columns;
    EXPECT_LE(HeadlineOf("chapter-07.pdf").size(), static_cast<std::size_t>(std::max(columns - 1, 5)));
  }
}

TEST_F(StatusDisplayTest, RowThatFitsIsShownWhole) {
  system_.Columns = 61;
  EXPECT_EQ(RowOf(std::string(60, 'x')), std::string(60, 'x'));
}

TEST_F(StatusDisplayTest, LongRowKeepsTheLabelAndTheEndsOfTheNameAndOfTheProgress) {
  system_.Columns = 61;
  const std::string row = RowOf(
      "Parsing file #1: /home/somebody/documents/book/chapter-07.pdf\r\nPass #2 (getting "
      "description of the objects):\r\n+++++ 50% (300)");
  EXPECT_EQ(row, "Parsing file #1: ...ok/chapter-07.pdf...ts): +++++ 50% (300)");
  EXPECT_EQ(row.size(), 60U);
}

TEST_F(StatusDisplayTest, RowIsMeasuredAnewEveryTime) {
  StatusDisplay display = Display();
  shell_.SetStatusText(0, std::string(70, 'x'));
  display.Draw(shell_);
  EXPECT_EQ(system_.Take(), Rows(std::string(70, 'x'), "", ""));
  system_.Columns = 61;
  display.Draw(shell_);
  EXPECT_EQ(system_.Take(), kUp + Rows("..." + std::string(57, 'x'), "", ""));
}

TEST_F(StatusDisplayTest, NoRowIsLongerThanTheTerminal) {
  for (int columns = 60; columns < 130; ++columns) {
    system_.Columns = columns;
    for (std::size_t name = 0; name < 120; name += 7) {
      for (std::size_t rest = 0; rest < 120; rest += 7) {
        const std::string row =
            RowOf("Parsing file #1: " + std::string(name, 'n') + "\r\n" + std::string(rest, 'r'));
        EXPECT_LT(row.size(), static_cast<std::size_t>(columns)) << name << " " << rest;
      }
    }
  }
}

TEST_F(StatusDisplayTest, NoCharacterIsCutInTwo) {
  system_.Columns = 61;
  for (int blanks = 0; blanks < 3; ++blanks) {
    std::string text(static_cast<std::size_t>(blanks), 'a');
    for (int i = 0; i < 30; ++i) text += "\xE2\x82\xAC";
    for (int end = 0; end < 3; ++end) {
      const std::string row = RowOf(text);
      EXPECT_LE(row.size(), 60U);
      EXPECT_GE(row.size(), 55U);
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
