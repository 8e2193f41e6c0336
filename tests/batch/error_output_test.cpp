#include "batch/error_output.h"

#include <cerrno>
#include <gtest/gtest.h>
#include <string>

#include "tests/batch/screen_system.h"

namespace folioweld {
namespace {

using testing::ScreenSystem;

TEST(WriteError, WritesEveryByte) {
  ScreenSystem system;
  WriteError(system, std::string("a\0b\n", 4));
  EXPECT_EQ(system.Written, std::string("a\0b\n", 4));
}

TEST(WriteError, GoesOnAfterShortWrites) {
  ScreenSystem system;
  system.MostBytes = 3;
  WriteError(system, "ten bytes.");
  EXPECT_EQ(system.Written, "ten bytes.");
  EXPECT_EQ(system.Writes, 4);
}

TEST(WriteError, GoesOnAfterInterruptions) {
  ScreenSystem system;
  system.Interruptions = 3;
  WriteError(system, "text");
  EXPECT_EQ(system.Written, "text");
}

TEST(WriteError, GivesUpAtAnErrorAndWhenNothingIsTaken) {
  ScreenSystem system;
  system.WriteError = EPIPE;
  WriteError(system, "text");
  EXPECT_EQ(system.Writes, 1);
  system.WriteError = 0;
  system.MostBytes = 0;
  WriteError(system, "text");
  EXPECT_EQ(system.Writes, 2);
}

TEST(WriteError, WritesNothingForAnEmptyText) {
  ScreenSystem system;
  WriteError(system, "");
  EXPECT_EQ(system.Writes, 0);
}

TEST(OnOneLine, EveryRunOfLineEndsBecomesOneBlank) {
  EXPECT_EQ(OnOneLine("a\r\nb\rc\nd\r\n\r\n\ne"), "a b c d e");
}

TEST(OnOneLine, NoBlankIsDoubled) {
  EXPECT_EQ(OnOneLine("The output file\r\nx\r\n cannot"), "The output file x cannot");
  EXPECT_EQ(OnOneLine("a \r\nb"), "a b");
}

TEST(OnOneLine, LineEndsAtEitherEndVanish) {
  EXPECT_EQ(OnOneLine("\r\na\r\n"), "a");
  EXPECT_EQ(OnOneLine("\r\n"), "");
  EXPECT_EQ(OnOneLine(""), "");
}

TEST(OnOneLine, OtherBytesStayAsTheyAre) {
  EXPECT_EQ(OnOneLine("a  b\t\x01\xFF"), "a  b\t\x01\xFF");
}

TEST(ShownOnTerminal, OrdinaryTextStays) {
  EXPECT_EQ(ShownOnTerminal("a b ~ \xC3\xA9\xE2\x82\xAC \xC2\xA0"), "a b ~ \xC3\xA9\xE2\x82\xAC \xC2\xA0");
}

TEST(ShownOnTerminal, ControlCharactersBecomeQuestionMarks) {
  EXPECT_EQ(ShownOnTerminal("\x1b[2J\a\x7F\t" + std::string(1, '\0')), "?[2J????");
}

TEST(ShownOnTerminal, CommandsBeyondAsciiBecomeQuestionMarks) {
  EXPECT_EQ(ShownOnTerminal("\xC2\x9B"
                            "2J\xC2\x80\xC2\x9F"),
            "?2J??");
}

TEST(ShownOnTerminal, MarksThatTurnTheDirectionOfReadingBecomeQuestionMarks) {
  const std::string name = "a\u061C\u200E\u200F\u202A\u202B\u202C\u202D\u202E\u2066\u2067\u2068\u2069z";
  EXPECT_EQ(ShownOnTerminal(name), "a????????????z");
}

TEST(ShownOnTerminal, NeighboursOfThoseMarksStay) {
  const std::string name = "\u061B\u061D\u200D\u2010\u2029\u202F\u2065\u206A\U0001202E";
  EXPECT_EQ(ShownOnTerminal(name), name);
}

TEST(ShownOnTerminal, TextThatIsNotUtf8KeepsItsAsciiOnly) {
  EXPECT_EQ(ShownOnTerminal("a\x9B"
                            "b\xC3\xA9"),
            "a?b??");
  EXPECT_EQ(ShownOnTerminal("a\xC2"), "a?");
}

}  // namespace
}  // namespace folioweld
