#include "engine/conversions.h"

#include <array>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>

namespace folioweld::Conversions {
namespace {

TEST(CharacterSets, ATokenEndsAtWhiteSpaceAndBrackets) {
  for (const char c : std::string_view(" \r\n()<>[]{}/%")) {
    EXPECT_EQ(LeftUntilFirstOf(std::string("ab") + c + "cd", kDelimiters, 1), "ab") << c;
  }
  for (const char c : std::string_view("#*+-.0:Az\\_")) {
    EXPECT_EQ(LeftUntilFirstOf(std::string("ab") + c + "cd", kDelimiters, 1), std::string("ab") + c + "cd");
  }
}

TEST(CharacterSets, OthersDifferByLineEndsAndTheBackslashOnly) {
  for (int code = 0; code < 256; ++code) {
    const std::string text(1, static_cast<char>(code));
    const bool ends = IsCharInSet(text, 1, kDelimiters);
    const bool endsInLine = ends && text != "\r" && text != "\n";
    EXPECT_EQ(IsCharInSet(text, 1, kDelimitersInLine), endsInLine) << code;
    EXPECT_EQ(IsCharInSet(text, 1, kDelimitersWithEscape), ends || text == "\\") << code;
    EXPECT_EQ(IsCharInSet(text, 1, kDelimitersInLineWithEscape), endsInLine || text == "\\") << code;
  }
}

TEST(CharacterSets, TabFormFeedAndNulAreNoWhiteSpace) {
  for (const char c : {'\t', '\f', '\0'}) {
    const std::string text(1, c);
    EXPECT_EQ(TrimBlanks(text), text);
    EXPECT_FALSE(IsCharInSet(text, 1, kDelimiters));
    EXPECT_FALSE(IsCharInSet(text, 1, kDelimitersWithEscape));
  }
}

TEST(FindFirstOf, GivesThePositionOfTheFirstMemberAtOrAfterTheStart) {
  EXPECT_EQ(FindFirstOf("ab cd ef", kWhiteSpace, 1), 3);
  EXPECT_EQ(FindFirstOf("ab cd ef", kWhiteSpace, 3), 3);
  EXPECT_EQ(FindFirstOf("ab cd ef", kWhiteSpace, 4), 6);
  EXPECT_EQ(FindFirstOf("ab\n", kWhiteSpace, 3), 3);
}

TEST(FindFirstOf, GivesZeroWhenThereIsNone) {
  EXPECT_EQ(FindFirstOf("ab cd ef", kWhiteSpace, 7), 0);
  EXPECT_EQ(FindFirstOf("ab", kWhiteSpace, 3), 0);
  EXPECT_EQ(FindFirstOf("", kWhiteSpace, 1), 0);
  EXPECT_EQ(FindFirstOf("ab", "", 1), 0);
}

TEST(FindFirstOf, StartBelowOneIsAnInvalidArgument) {
  EXPECT_THROW(static_cast<void>(FindFirstOf("ab", "b", 0)), std::invalid_argument);
  EXPECT_THROW(static_cast<void>(FindFirstOf("ab", "b", -1)), std::invalid_argument);
}

TEST(FindFirstOf, EmptyTextOrSetIsSeenBeforeTheStart) {
  EXPECT_EQ(FindFirstOf("", "b", 0), 0);
  EXPECT_EQ(FindFirstOf("ab", "", 0), 0);
}

TEST(FindFirstNotOf, GivesThePositionOfTheFirstOtherCharacter) {
  EXPECT_EQ(FindFirstNotOf(" \r\nx", kWhiteSpace, 1), 4);
  EXPECT_EQ(FindFirstNotOf("x y", kWhiteSpace, 2), 3);
  EXPECT_EQ(FindFirstNotOf("\t", kWhiteSpace, 1), 1);
}

TEST(FindFirstNotOf, GivesZeroWhenThereIsNone) {
  EXPECT_EQ(FindFirstNotOf(" \r\n", kWhiteSpace, 1), 0);
  EXPECT_EQ(FindFirstNotOf("x", kWhiteSpace, 2), 0);
  EXPECT_EQ(FindFirstNotOf("", kWhiteSpace, 1), 0);
  EXPECT_EQ(FindFirstNotOf("x", "", 1), 0);
}

TEST(FindFirstNotOf, StartBelowOneIsAnInvalidArgument) {
  EXPECT_THROW(static_cast<void>(FindFirstNotOf("ab", "b", 0)), std::invalid_argument);
}

TEST(IsCharInSet, LooksAtOnePosition) {
  EXPECT_TRUE(IsCharInSet("a/b", 2, kDelimiters));
  EXPECT_FALSE(IsCharInSet("a/b", 1, kDelimiters));
  EXPECT_TRUE(IsCharInSet("a/", 2, kDelimiters));
  EXPECT_FALSE(IsCharInSet("a/b", 3, ""));
}

TEST(IsCharInSet, IsFalseAtAPositionPastTheEnd) {
  EXPECT_FALSE(IsCharInSet("a/", 3, kDelimiters));
  EXPECT_FALSE(IsCharInSet("", 1, kDelimiters));
}

TEST(IsCharInSet, PositionBelowOneIsAnInvalidArgument) {
  EXPECT_THROW(static_cast<void>(IsCharInSet("a", 0, "a")), std::invalid_argument);
}

TEST(IsAllDigits, HoldsForDigitsOnly) {
  EXPECT_TRUE(IsAllDigits("0123456789"));
  EXPECT_FALSE(IsAllDigits(""));
  EXPECT_FALSE(IsAllDigits("12 "));
  EXPECT_FALSE(IsAllDigits("-1"));
  EXPECT_FALSE(IsAllDigits("\xB2"));
  EXPECT_FALSE(IsAllDigits("1/"));
  EXPECT_FALSE(IsAllDigits("1:"));
}

TEST(LeftUntilFirstOf, KeepsWhatStandsBeforeTheStart) {
  EXPECT_EQ(LeftUntilFirstOf("ab cd ef", kWhiteSpace, 4), "ab cd");
  EXPECT_EQ(LeftUntilFirstOf("ab cd ef", kWhiteSpace, 1), "ab");
}

TEST(LeftUntilFirstOf, GivesTheWholeTextWhenNothingIsFound) {
  EXPECT_EQ(LeftUntilFirstOf("abc", kWhiteSpace, 1), "abc");
  EXPECT_EQ(LeftUntilFirstOf("", kWhiteSpace, 1), "");
  EXPECT_EQ(LeftUntilFirstOf("a b", kWhiteSpace, 9), "a b");
  EXPECT_EQ(LeftUntilFirstOf(" b", kWhiteSpace, 1), "");
}

TEST(Trimming, TakesMembersOfTheSetOnly) {
  EXPECT_EQ(TrimRightSet(" a \r\n", kWhiteSpace), " a");
  EXPECT_EQ(TrimRightSet("\r\n", kWhiteSpace), "");
  EXPECT_EQ(TrimRightSet("a", ""), "a");
  EXPECT_EQ(TrimSet("xxaxbxx", "x"), "axb");
  EXPECT_EQ(TrimSet("xx", "x"), "");
  EXPECT_EQ(TrimSet("", "x"), "");
  EXPECT_EQ(TrimCrLf("\r\n a \n"), " a ");
  EXPECT_EQ(TrimBlanks("\r\n a b \n"), "a b");
  EXPECT_EQ(TrimBlanks("\ta\t"), "\ta\t");
}

TEST(StripAtNull, CutsAtTheFirstNul) {
  EXPECT_EQ(StripAtNull(std::string_view("ab\0cd\0", 6)), "ab");
  EXPECT_EQ(StripAtNull("abc"), "abc");
  EXPECT_EQ(StripAtNull(std::string_view("\0", 1)), "");
}

TEST(HexDumpMemory, WritesAddressAndBytesInUpperCase) {
  constexpr std::array<unsigned char, 3> kBytes = {0x00, 0xAB, 0x7F};
  EXPECT_THAT(HexDumpMemory(kBytes.data(), 3), ::testing::MatchesRegex("&H[0-9A-F]+: 00 AB 7F"));
  EXPECT_THAT(HexDumpMemory(kBytes.data(), 1), ::testing::EndsWith(": 00"));
}

TEST(HexDumpMemory, NamesTheAddressOfTheBuffer) {
  const char byte = 'x';
  char expected[32];
  std::snprintf(expected, sizeof expected, "&H%lX: 78",
                static_cast<unsigned long>(reinterpret_cast<std::uintptr_t>(&byte)));
  EXPECT_EQ(HexDumpMemory(&byte, 1), expected);
  EXPECT_EQ(HexDumpMemory(nullptr, 0), "");
}

TEST(HexDumpMemory, IsEmptyForACountBelowOne) {
  EXPECT_EQ(HexDumpMemory("a", 0), "");
  EXPECT_EQ(HexDumpMemory("a", -1), "");
}

TEST(PassThroughLong, GivesTheSameValue) {
  EXPECT_EQ(PassThroughLong(-2147483647 - 1), -2147483647 - 1);
  EXPECT_EQ(PassThroughLong(42), 42);
}

TEST(LenientNumber, ReadsAsFarAsTheTextIsANumber) {
  EXPECT_DOUBLE_EQ(LenientNumber("1.4"), 1.4);
  EXPECT_DOUBLE_EQ(LenientNumber("  1.7\r"), 1.7);
  EXPECT_DOUBLE_EQ(LenientNumber("1.10"), 1.1);
  EXPECT_DOUBLE_EQ(LenientNumber("2"), 2);
  EXPECT_DOUBLE_EQ(LenientNumber("2.x"), 2);
  EXPECT_DOUBLE_EQ(LenientNumber(".5"), .5);
  EXPECT_DOUBLE_EQ(LenientNumber("-1.5"), -1.5);
  EXPECT_DOUBLE_EQ(LenientNumber("+3"), 3);
  EXPECT_DOUBLE_EQ(LenientNumber("1.2.9"), 1.2);
}

TEST(LenientNumber, IsZeroWithoutANumber) {
  for (const char* text : {"", "   ", "x", "-", "."}) EXPECT_DOUBLE_EQ(LenientNumber(text), 0) << text;
}

}  // namespace
}  // namespace folioweld::Conversions
