#include "engine/lexer.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

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

using Pieces = std::vector<std::string>;

Pieces OpaqueIn(std::string_view text) {
  Pieces pieces;
  OpaquePiece piece;
  while (FindOpaque(text, piece.End, piece))
    pieces.emplace_back(text.substr(piece.Start, piece.End - piece.Start));
  return pieces;
}

TEST(FindOpaque, FindsStringsHexStringsAndComments) {
  EXPECT_EQ(OpaqueIn("<</A(b(c))/D<65>%f (g\r/H 1>>"), (Pieces{"(b(c))", "<65>", "%f (g"}));
  EXPECT_EQ(OpaqueIn("<</A 1>>"), Pieces{});
  EXPECT_EQ(OpaqueIn("(%)(<"), (Pieces{"(%)", "(<"}));
  EXPECT_EQ(OpaqueIn("<"), (Pieces{"<"}));
  EXPECT_EQ(OpaqueIn(""), Pieces{});
}

TEST(HasOtherWhiteSpace, IsATabAFormFeedOrANul) {
  EXPECT_FALSE(HasOtherWhiteSpace(" a\r\n"));
  EXPECT_TRUE(HasOtherWhiteSpace("a\t"));
  EXPECT_TRUE(HasOtherWhiteSpace("\f"));
  EXPECT_TRUE(HasOtherWhiteSpace(std::string_view("a\0b", 3)));
}

TEST(HasLongNumber, FindsElevenDigitsWhereverTheyStand) {
  for (std::size_t before = 0; before < 30; ++before) {
    const std::string start = std::string(before, 'x') + std::string(before % 10, '5') + " ";
    for (const char* end : {"", " 5", " 555555555"}) {
      EXPECT_TRUE(HasLongNumber(start + "12345678901" + end)) << start << end;
      EXPECT_TRUE(HasLongNumber(start + "12345678901234567890" + end)) << start << end;
      EXPECT_FALSE(HasLongNumber(start + "1234567890" + end)) << start << end;
    }
  }
  EXPECT_TRUE(HasLongNumber("12345678901"));
  EXPECT_FALSE(HasLongNumber("1234567890"));
  EXPECT_FALSE(HasLongNumber(""));
}

Pieces GuessedIn(std::string_view text) {
  Pieces numbers;
  GuessReferences(text, [&](std::string_view digits) { numbers.emplace_back(digits); });
  return numbers;
}

TEST(GuessReferences, FindsTheNumberOfWhateverLooksLikeAReference) {
  EXPECT_EQ(GuessedIn("/A 12 0 R/B(3 0 R)/C 4\t0\fR"), (Pieces{"12", "3", "4"}));
  EXPECT_EQ(GuessedIn("R 0 R /R 1 R 5 0R 0 0 /Rotate 5 R"), Pieces{});
  EXPECT_EQ(GuessedIn("1 2 R"), (Pieces{"1"}));
}

/// Whatever the lookup finds has been guessed: in random texts of the characters that count.
TEST(GuessReferences, MissesNoReferenceOfRandomTexts) {
  std::mt19937 random(7);
  constexpr std::string_view kCharacters = "R R R 0123  \r\n()<>[]/%\\\t";
  int references = 0;
  for (int round = 0; round < 100000; ++round) {
    std::string text(20, ' ');
    for (char& c : text) c = kCharacters[random() % kCharacters.size()];
    std::vector<std::string> guessed = GuessedIn(text);
    NumberPair found;
    while (FindReference(text, found.End, kReferenceKeyword, found)) {
      ++references;
      const std::string digits = text.substr(found.Start, found.NumberEnd - found.Start);
      ASSERT_NE(std::find(guessed.begin(), guessed.end(), digits), guessed.end()) << text;
    }
  }
  EXPECT_GT(references, 100);
}

}  // namespace
}  // namespace folioweld
