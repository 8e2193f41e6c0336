#include "engine/lexer.h"

#include <gtest/gtest.h>
#include <string>

namespace folioweld {
namespace {

TEST(SkipLiteralString, CountsNestedBracketsAndEscapes) {
  EXPECT_EQ(SkipLiteralString("(a(b)\\)c)d", 0), 9U);
  EXPECT_EQ(SkipLiteralString("x(a)", 1), 4U);
  EXPECT_EQ(SkipLiteralString("(\\\\)x", 0), 4U);
}

TEST(SkipLiteralString, RunsToTheEndWhenTheStringNeverEnds) {
  EXPECT_EQ(SkipLiteralString("(abc", 0), 4U);
  EXPECT_EQ(SkipLiteralString("(abc\\", 0), 5U);
}

TEST(SkipHexString, EndsBehindTheFirstClosingAngle) {
  EXPECT_EQ(SkipHexString("<3 0>x", 0), 5U);
  EXPECT_EQ(SkipHexString("<3 0", 0), 4U);
}

TEST(SkipComment, EndsAtTheLineEnd) {
  EXPECT_EQ(SkipComment("%ab\rc", 0), 3U);
  EXPECT_EQ(SkipComment("%ab\nc", 0), 3U);
  EXPECT_EQ(SkipComment("%ab", 0), 3U);
}

TEST(SkipName, EndsBeforeTheNextDelimiter) {
  EXPECT_EQ(SkipName("/A(x)", 0), 2U);
  EXPECT_EQ(SkipName("x/A\tB C", 1), 5U);
  EXPECT_EQ(SkipName("//A", 0), 1U);
  EXPECT_EQ(SkipName("/A", 0), 2U);
}

TEST(NumberOf, AWordOfOneToTenDigitsIsANumber) {
  EXPECT_EQ(NumberOf("0"), 0);
  EXPECT_EQ(NumberOf("0000000123"), 123);
  EXPECT_EQ(NumberOf("2147483646"), 2147483646);
}

TEST(NumberOf, AnyOtherWordIsNone) {
  for (const char* word :
       {"", " 1", "1 ", "-1", "+1", "1.0", "x", "2147483647", "9999999999", "00000000001"}) {
    EXPECT_EQ(NumberOf(word), -1) << word;
  }
  EXPECT_EQ(NumberOf(std::string(65537, '1')), -1);
}

TEST(FirstNumberOf, SpacesAlonePartTheWords) {
  EXPECT_EQ(FirstNumberOf("  42  xref"), 42);
  EXPECT_EQ(FirstNumberOf("42\rx"), -1);
  EXPECT_EQ(FirstNumberOf(""), -1);
}

TEST(FirstWord, EndsAtTheNextSeparator) {
  EXPECT_EQ(FirstWord(" \rxref\n1", kWhiteSpaceSet), "xref");
  EXPECT_EQ(FirstWord("xref", kWhiteSpaceSet), "xref");
  EXPECT_EQ(FirstWord(" \r", kWhiteSpaceSet), "");
  EXPECT_EQ(FirstWord("xref\r1 2", kSpaceSet), "xref\r1");
}

TEST(DecimalDigits, WritesTheSmallestAndTheLargestNumber) {
  EXPECT_EQ(DecimalDigits(2147483647).View(), "2147483647");
  EXPECT_EQ(DecimalDigits(-2147483647 - 1).View(), "-2147483648");
  EXPECT_EQ(DecimalDigits(0).View(), "0");
}

TEST(ReadNumberPair, ReadsTwoNumbersAndAKeyword) {
  NumberPair pair;
  EXPECT_TRUE(ReadNumberPair("x 12  3\robj<<", 1, kObjectKeyword, pair));
  EXPECT_EQ(pair.Number, 12);
  EXPECT_EQ(pair.Generation, 3);
  EXPECT_EQ(pair.Keyword, 0);
  EXPECT_EQ(pair.Start, 2U);
  EXPECT_EQ(pair.NumberEnd, 4U);
  EXPECT_EQ(pair.SecondStart, 6U);
  EXPECT_EQ(pair.KeywordStart, 8U);
  EXPECT_EQ(pair.End, 11U);
}

TEST(ReadNumberPair, ADelimiterEndsNoNumber) {
  NumberPair pair;
  EXPECT_FALSE(ReadNumberPair("12/A 0 obj", 0, kObjectKeyword, pair));
  EXPECT_EQ(pair.Number, -1);
  EXPECT_FALSE(ReadNumberPair("12 0[ obj", 0, kObjectKeyword, pair));
  EXPECT_EQ(pair.Number, 12);
  EXPECT_EQ(pair.Generation, -1);
}

}  // namespace
}  // namespace folioweld
