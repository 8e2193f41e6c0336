// "12 0 obj" and "12 0 R": two numbers and a keyword.

#include <gtest/gtest.h>
#include <vector>

#include "engine/conversions.h"

namespace folioweld {
namespace {

struct Outcome {
  std::int32_t Result = -2;
  NumberPairKeyword Found;
};

Outcome ParseWith(std::string_view text, std::int32_t start, const std::vector<std::string_view>& keywords) {
  Outcome outcome;
  // What was found before must not shine through.
  outcome.Found = {77, 77, 77, 77, 77};
  outcome.Result = ParseNumberPairKeyword(text, start, keywords, outcome.Found);
  return outcome;
}

Outcome Parse(std::string_view text, std::int32_t start = 1) {
  return ParseWith(text, start, {"obj"});
}

void ExpectNumbers(const Outcome& outcome, std::int32_t first, std::int32_t second, std::int32_t keyword,
                   std::int32_t result) {
  EXPECT_EQ(outcome.Found.FirstNumber, first);
  EXPECT_EQ(outcome.Found.SecondNumber, second);
  EXPECT_EQ(outcome.Found.KeywordIndex, keyword);
  EXPECT_EQ(outcome.Result, result);
}

TEST(ParseNumberPairKeyword, AKeywordThatEndsTheTextGivesZero) {
  const Outcome outcome = Parse("12 0 obj");
  ExpectNumbers(outcome, 12, 0, 0, 0);
  EXPECT_EQ(outcome.Found.FirstTokenStart, 1);
  EXPECT_EQ(outcome.Found.DigitCount, 2);
}

TEST(ParseNumberPairKeyword, GivesThePositionOfTheDelimiterBehindTheKeyword) {
  ExpectNumbers(Parse("12 0 obj <<"), 12, 0, 0, 9);
  ExpectNumbers(Parse("12 0 obj<<"), 12, 0, 0, 9);
}

TEST(ParseNumberPairKeyword, AnotherKeywordResumesAtTheSecondNumber) {
  ExpectNumbers(Parse("12 0 R"), -1, -1, -1, 4);
}

TEST(ParseNumberPairKeyword, ThreeNumbersAreTriedAgainFromTheSecond) {
  const std::string text = "5 0 7 0 obj";
  ExpectNumbers(Parse(text), -1, -1, -1, 3);
  ExpectNumbers(Parse(text, 3), -1, -1, -1, 5);
  ExpectNumbers(Parse(text, 5), 7, 0, 0, 0);
}

TEST(ParseNumberPairKeyword, AStartOutsideTheTextGivesZero) {
  ExpectNumbers(Parse("1 0 obj", 0), -1, -1, -1, 0);
  ExpectNumbers(Parse("1 0 obj", -1), -1, -1, -1, 0);
  ExpectNumbers(Parse("1 0 obj", 8), -1, -1, -1, 0);
  ExpectNumbers(Parse(""), -1, -1, -1, 0);
}

TEST(ParseNumberPairKeyword, SkipsWhiteSpaceBeforeEveryToken) {
  const Outcome outcome = Parse(" \r\n12\r\n 0 \n obj/");
  ExpectNumbers(outcome, 12, 0, 0, 16);
  EXPECT_EQ(outcome.Found.FirstTokenStart, 4);
}

TEST(ParseNumberPairKeyword, NothingButWhiteSpaceGivesZero) {
  ExpectNumbers(Parse(" \r\n"), -1, -1, -1, 0);
}

TEST(ParseNumberPairKeyword, AFirstNumberThatEndsTheTextGivesZero) {
  ExpectNumbers(Parse("12"), -1, -1, -1, 0);
}

TEST(ParseNumberPairKeyword, AFirstTokenThatIsNoNumberResumesAtItsEnd) {
  ExpectNumbers(Parse("abc 0 obj"), -1, -1, -1, 4);
  ExpectNumbers(Parse("2147483647 0 obj"), -1, -1, -1, 11);
  ExpectNumbers(Parse("1/2 0 obj"), -1, -1, -1, 4);
}

TEST(ParseNumberPairKeyword, AMissingSecondNumberGivesZero) {
  ExpectNumbers(Parse("12 "), -1, -1, -1, 0);
}

TEST(ParseNumberPairKeyword, ASecondNumberThatEndsTheTextGivesZero) {
  ExpectNumbers(Parse("12 0"), -1, -1, -1, 0);
}

TEST(ParseNumberPairKeyword, ASecondTokenThatIsNoNumberResumesAtItsEnd) {
  ExpectNumbers(Parse("12 x0 obj"), -1, -1, -1, 6);
  ExpectNumbers(Parse("12 0R obj"), -1, -1, -1, 6);
}

TEST(ParseNumberPairKeyword, AMissingKeywordGivesZero) {
  ExpectNumbers(Parse("12 0 "), -1, -1, -1, 0);
  ExpectNumbers(Parse("12 0 \r\n"), -1, -1, -1, 0);
}

TEST(ParseNumberPairKeyword, KeywordsAreComparedExactly) {
  ExpectNumbers(Parse("12 0 OBJ "), -1, -1, -1, 4);
  ExpectNumbers(Parse("12 0 objx "), -1, -1, -1, 4);
  ExpectNumbers(Parse("12 0 ob "), -1, -1, -1, 4);
  ExpectNumbers(Parse("12 0 /obj "), -1, -1, -1, 4);
}

TEST(ParseNumberPairKeyword, ABackslashEndsTheKeywordAndATabDoesNot) {
  ExpectNumbers(Parse("12 0 obj\\"), 12, 0, 0, 9);
  ExpectNumbers(Parse("12 0 obj\t"), -1, -1, -1, 4);
}

TEST(ParseNumberPairKeyword, EveryDelimiterEndsTheKeyword) {
  for (const char c : std::string(" ()<>[]{}/%\\\r\n")) {
    ExpectNumbers(Parse(std::string("12 0 obj") + c), 12, 0, 0, 9);
  }
}

TEST(ParseNumberPairKeyword, GivesTheIndexOfTheKeywordThatMatched) {
  ExpectNumbers(ParseWith("1 2 R]", 1, {"obj", "R"}), 1, 2, 1, 6);
  ExpectNumbers(ParseWith("1 2 obj]", 1, {"obj", "R"}), 1, 2, 0, 8);
  ExpectNumbers(ParseWith("1 2 R]", 1, {"R", "R"}), 1, 2, 0, 6);
}

TEST(ParseNumberPairKeyword, WithoutAUsableListTwoNumbersSuffice) {
  for (const std::vector<std::string_view>& list : {std::vector<std::string_view>{}, {""}, {"obj", ""}}) {
    ExpectNumbers(ParseWith("12 34 rest", 1, list), 12, 34, 0, 6);
    ExpectNumbers(ParseWith("12 34", 1, list), 12, 34, 0, 0);
    ExpectNumbers(ParseWith("12 x4 ", 1, list), -1, -1, -1, 6);
    ExpectNumbers(ParseWith("12", 1, list), -1, -1, -1, 0);
  }
}

TEST(ParseNumberPairKeyword, CountsTheDigitsOfTheFirstNumberWithItsZeros) {
  EXPECT_EQ(Parse("0012 0 obj").Found.DigitCount, 4);
}

}  // namespace
}  // namespace folioweld
