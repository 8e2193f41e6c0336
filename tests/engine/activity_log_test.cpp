// The activity log's ring, its text and its rules.

#include "engine/activity_log.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <regex>
#include <stdexcept>
#include <string>

#include "tests/support/recording_shell.h"

namespace folioweld {
namespace {

class ActivityLogTest : public ::testing::Test {
 protected:
  void AddLines(int first, int last) {
    for (int i = first; i <= last; ++i) Log.AddLogLine("line " + std::to_string(i));
  }

  static std::string Lines(int first, int last) {
    std::string text;
    for (int i = first; i <= last; ++i) text += "line " + std::to_string(i) + "\r\n";
    return text;
  }

  /// How often a tick shows the text; the last one is kept.
  int Tick() {
    int shown = 0;
    Log.Tick([&](const std::string& text) {
      ++shown;
      Shown = text;
    });
    return shown;
  }

  testing::RecordingShell Shell;
  ActivityLog Log{Shell};
  std::string Shown;
};

TEST_F(ActivityLogTest, BeginsEmpty) {
  EXPECT_EQ(Log.LogText(), "");
  EXPECT_EQ(Log.LogIndex(), 0);
  EXPECT_EQ(Log.LogShownIndex, 0);
  EXPECT_FALSE(Log.LogBusy);
  EXPECT_FALSE(Log.LogPainting);
}

TEST_F(ActivityLogTest, StoresTheFirstLineAtIndexOneAndAddsNothingToIt) {
  Log.AddLogLine("[Folioweld-cmdOK]=>text");
  EXPECT_EQ(Log.LogIndex(), 1);
  EXPECT_EQ(Log.LogLine(1), "[Folioweld-cmdOK]=>text");
  EXPECT_EQ(Log.LogText(), "[Folioweld-cmdOK]=>text\r\n");
}

TEST_F(ActivityLogTest, TheTextRunsFromTheOldestLineToTheNewest) {
  AddLines(1, 3);
  EXPECT_EQ(Log.LogText(), "line 1\r\nline 2\r\nline 3\r\n");
}

TEST_F(ActivityLogTest, AfterTheLastIndexComesIndexZero) {
  AddLines(1, 299);
  EXPECT_EQ(Log.LogIndex(), 299);
  AddLines(300, 300);
  EXPECT_EQ(Log.LogIndex(), 0);
  EXPECT_EQ(Log.LogLine(0), "line 300");
  EXPECT_EQ(Log.LogText(), Lines(1, 300));
}

TEST_F(ActivityLogTest, TheThreeHundredAndFirstLineOverwritesTheFirst) {
  AddLines(1, 301);
  EXPECT_EQ(Log.LogIndex(), 1);
  EXPECT_EQ(Log.LogLine(1), "line 301");
  EXPECT_EQ(Log.LogText(), Lines(2, 301));
}

TEST_F(ActivityLogTest, EmptyLinesAreLeftOutButForTheNewest) {
  Log.AddLogLine("one");
  Log.AddLogLine("");
  EXPECT_EQ(Log.LogText(), "one\r\n\r\n");
  Log.AddLogLine("two");
  EXPECT_EQ(Log.LogText(), "one\r\ntwo\r\n");
}

TEST_F(ActivityLogTest, ALongLogShowsItsLast32760BytesOnly) {
  Log.AddLogLine(std::string(20000, 'a'));
  Log.AddLogLine(std::string(12756, 'b'));
  const std::string most = std::string(20000, 'a') + "\r\n" + std::string(12756, 'b') + "\r\n";
  ASSERT_EQ(most.size(), 32760U);
  EXPECT_EQ(Log.LogText(), most) << "the limit itself is shown whole";
  Log.ClearLogScreen();
  Log.AddLogLine(std::string(32759, 'e'));
  EXPECT_EQ(Log.LogText(), std::string(32758, 'e') + "\r\n") << "one byte more is cut";
  Log.ClearLogScreen();
  Log.AddLogLine(std::string(20000, 'a'));
  Log.AddLogLine(std::string(12756, 'b'));
  Log.AddLogLine("c");
  EXPECT_EQ(Log.LogText(), most.substr(3) + "c\r\n") << "cut in the middle of a line";
  Log.AddLogLine(std::string(50000, 'd'));
  EXPECT_EQ(Log.LogText(), std::string(32758, 'd') + "\r\n");
  EXPECT_EQ(Log.LogLine(4), std::string(50000, 'd')) << "the stored line is whole";
}

TEST_F(ActivityLogTest, AStoredLineKeepsItsBytes) {
  const std::string line("a\0b\x1F\x7F\x80\x9F\xA0\xFF\t", 10);
  Log.AddLogLine(line);
  EXPECT_EQ(Log.LogLine(1), line);
  EXPECT_EQ(Log.LogText(), line + "\r\n");
}

TEST_F(ActivityLogTest, ClearingEmptiesTheRingAndTheNextLineIsStoredAtIndexOne) {
  AddLines(1, 350);
  Log.ClearLogScreen();
  EXPECT_EQ(Log.LogIndex(), 0);
  EXPECT_EQ(Log.LogText(), "");
  for (std::int16_t i = 0; i < ActivityLog::kRingSize; ++i) EXPECT_EQ(Log.LogLine(i), "");
  EXPECT_FALSE(Log.LogBusy);
  Log.AddLogLine("next");
  EXPECT_EQ(Log.LogIndex(), 1);
  EXPECT_EQ(Log.LogText(), "next\r\n");
}

TEST_F(ActivityLogTest, TheRingHasNoOtherIndex) {
  EXPECT_THROW(static_cast<void>(Log.LogLine(300)), std::out_of_range);
  EXPECT_THROW(static_cast<void>(Log.LogLine(-1)), std::out_of_range);
}

TEST_F(ActivityLogTest, AWriterYieldsOnceAndIsBusyMeanwhile) {
  bool busy = false;
  Shell.OnYield = [&] { busy = Log.LogBusy; };
  Log.AddLogLine("line");
  EXPECT_EQ(Shell.Yields, 1);
  EXPECT_TRUE(busy);
  EXPECT_FALSE(Log.LogBusy);
}

TEST_F(ActivityLogTest, AWriterWaitsUntilThePaintingIsDone) {
  Log.LogPainting = true;
  Shell.OnYield = [&] {
    EXPECT_EQ(Log.LogIndex(), 0) << "nothing is stored while the text is painted";
    if (Shell.Yields == 5) Log.LogPainting = false;
  };
  Log.AddLogLine("line");
  EXPECT_EQ(Shell.Yields, 5);
  EXPECT_EQ(Log.LogLine(1), "line");
}

TEST_F(ActivityLogTest, ALineWrittenWhileAWriterYieldsIsNotLost) {
  Shell.OnYield = [&] {
    if (Shell.Yields == 1) Log.AddLogLine("inner");
  };
  Log.AddLogLine("outer");
  EXPECT_EQ(Log.LogText(), "inner\r\nouter\r\n");
}

TEST_F(ActivityLogTest, ATickShowsTheTextWhenTheNewestIndexChangedAndOnlyThen) {
  EXPECT_EQ(Tick(), 0);
  AddLines(1, 2);
  EXPECT_EQ(Tick(), 1);
  EXPECT_EQ(Shown, Lines(1, 2));
  EXPECT_EQ(Log.LogShownIndex, 2);
  EXPECT_EQ(Tick(), 0);
  AddLines(3, 3);
  EXPECT_EQ(Tick(), 1);
}

TEST_F(ActivityLogTest, ABurstOfExactlyThreeHundredLinesIsShownWithTheNextLineOnly) {
  AddLines(1, 1);
  EXPECT_EQ(Tick(), 1);
  AddLines(2, 301);
  EXPECT_EQ(Tick(), 0);
  AddLines(302, 302);
  EXPECT_EQ(Tick(), 1);
  EXPECT_EQ(Shown, Lines(3, 302));
}

TEST_F(ActivityLogTest, ATickIsSkippedWhileAWriterOrAnotherTickIsAtWork) {
  Shell.OnYield = [&] { EXPECT_EQ(Tick(), 0); };
  AddLines(1, 2);
  Log.LogPainting = true;
  EXPECT_EQ(Tick(), 0);
  EXPECT_TRUE(Log.LogPainting) << "the other tick's flag stays";
  Log.LogPainting = false;
  EXPECT_EQ(Tick(), 1);
}

TEST_F(ActivityLogTest, TheTextIsPaintedUnderTheFlag) {
  AddLines(1, 1);
  bool painting = false;
  Log.Tick([&](const std::string&) { painting = Log.LogPainting; });
  EXPECT_TRUE(painting);
  EXPECT_FALSE(Log.LogPainting);
}

TEST_F(ActivityLogTest, ALineOfBytesIsTheHeaderAndTheirDump) {
  const std::string bytes(
      "\x00\x01\x7F\xFF"
      "A",
      5);
  Log.displayLogByteArray("source", bytes, 1, 3);
  EXPECT_TRUE(std::regex_match(Log.LogLine(1), std::regex(R"(\[source\]=>&H[0-9A-F]+: 01 7F FF)")))
      << Log.LogLine(1);
  Log.displayLogByteArray("source", bytes, 0, 5);
  EXPECT_TRUE(std::regex_match(Log.LogLine(2), std::regex(R"(\[source\]=>&H[0-9A-F]+: 00 01 7F FF 41)")))
      << Log.LogLine(2);
}

TEST_F(ActivityLogTest, ADumpEndsWithTheBytes) {
  Log.displayLogByteArray("source", "AB", 1, 1000);
  EXPECT_TRUE(std::regex_match(Log.LogLine(1), std::regex(R"(\[source\]=>&H[0-9A-F]+: 42)")))
      << Log.LogLine(1);
}

TEST_F(ActivityLogTest, NoBytesWriteNoLine) {
  Log.displayLogByteArray("source", "AB", 0, 0);
  Log.displayLogByteArray("source", "AB", 0, -1);
  Log.displayLogByteArray("source", "AB", 2, 1);
  Log.displayLogByteArray("source", "AB", -1, 1);
  Log.displayLogByteArray("source", "", 0, 1);
  EXPECT_EQ(Log.LogIndex(), 0);
}

}  // namespace
}  // namespace folioweld
