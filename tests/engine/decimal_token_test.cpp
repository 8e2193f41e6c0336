// The number parsers of the interface; every pass reads offsets, counts and numbers with the one below them.

#include <clocale>
#include <gtest/gtest.h>

#include "engine/conversions.h"

namespace folioweld::Conversions {
namespace {

struct Parsed {
  std::int32_t Value;
  std::int16_t Digits;
  bool operator==(const Parsed& other) const { return Value == other.Value && Digits == other.Digits; }
};

void PrintTo(const Parsed& parsed, std::ostream* out) {
  *out << parsed.Value << " with " << parsed.Digits << " digits";
}

Parsed Token(std::string_view text) {
  std::int16_t digits = -1;
  const std::int32_t value = ParseDecimalToken(text, digits);
  return {value, digits};
}

Parsed Leading(std::string_view text) {
  std::int16_t digits = -1;
  const std::int32_t value = ParseLeadingNumber(text, digits);
  return {value, digits};
}

constexpr Parsed kRefused = {0, 0};

TEST(ParseDecimalToken, TenDigitsUpTo2147483646AreAccepted) {
  EXPECT_EQ(Token("2147483646"), (Parsed{2147483646, 10}));
}

TEST(ParseDecimalToken, TheLargest32BitValueItselfIsRefused) {
  EXPECT_EQ(Token("2147483647"), kRefused);
  EXPECT_EQ(Token("2147483648"), kRefused);
  EXPECT_EQ(Token("9999999999"), kRefused);
}

TEST(ParseDecimalToken, AnElevenDigitWordIsRefused) {
  EXPECT_EQ(Token("00000000001"), kRefused);
  EXPECT_EQ(Token("12345678901"), kRefused);
}

TEST(ParseDecimalToken, LeadingZerosCountAsDigits) {
  EXPECT_EQ(Token("0000000123"), (Parsed{123, 10}));
}

TEST(ParseDecimalToken, ZeroIsToldFromFailureByTheDigitCount) {
  EXPECT_EQ(Token("0"), (Parsed{0, 1}));
  EXPECT_EQ(Token("x"), kRefused);
}

TEST(ParseDecimalToken, ReadsTheFirstWordOnly) {
  EXPECT_EQ(Token("  42  xref"), (Parsed{42, 2}));
  EXPECT_EQ(Token("3 0 R"), (Parsed{3, 1}));
}

TEST(ParseDecimalToken, LineEndsAndTabsAreNoSpacesHere) {
  EXPECT_EQ(Token("42\r"), kRefused);
  EXPECT_EQ(Token("\n42"), kRefused);
  EXPECT_EQ(Token("42\t"), kRefused);
}

TEST(ParseDecimalToken, AnEmptyWordIsRefused) {
  EXPECT_EQ(Token(""), kRefused);
  EXPECT_EQ(Token("   "), kRefused);
}

TEST(ParseDecimalToken, SignPointAndExponentAreRefused) {
  for (const char* text : {"-1", "+1", "1.0", "1.", "1e3", "1,000", "0x10"}) {
    EXPECT_EQ(Token(text), kRefused) << text;
  }
}

TEST(ParseDecimalToken, AWordLongerThan16BitsCanCountIsRefused) {
  EXPECT_EQ(Token(std::string(65537, '1')), kRefused);
}

TEST(ParseDecimalToken, DoesNotDependOnTheLocale) {
  // Where the locale is not installed the test still holds; it only shows less.
  std::setlocale(LC_ALL, "de_DE.UTF-8");
  EXPECT_EQ(Token("2147483646"), (Parsed{2147483646, 10}));
  EXPECT_DOUBLE_EQ(LenientNumber("1.5"), 1.5);
  std::setlocale(LC_ALL, "C");
}

TEST(ParseLeadingNumber, SkipsLeadingWhiteSpace) {
  EXPECT_EQ(Leading("\r\n 0000000017 00000 n"), (Parsed{17, 10}));
}

TEST(ParseLeadingNumber, TheTokenEndsAtAnyWhiteSpace) {
  EXPECT_EQ(Leading("17\rx"), (Parsed{17, 2}));
  EXPECT_EQ(Leading("17\nx"), (Parsed{17, 2}));
  EXPECT_EQ(Leading("17"), (Parsed{17, 2}));
}

TEST(ParseLeadingNumber, ATabEndsNoToken) {
  EXPECT_EQ(Leading("17\tx"), kRefused);
  EXPECT_EQ(Leading("\t17"), kRefused);
}

TEST(ParseLeadingNumber, NothingOrNoNumberIsRefused) {
  EXPECT_EQ(Leading(""), kRefused);
  EXPECT_EQ(Leading(" \r\n"), kRefused);
  EXPECT_EQ(Leading(" R"), kRefused);
}

}  // namespace
}  // namespace folioweld::Conversions
