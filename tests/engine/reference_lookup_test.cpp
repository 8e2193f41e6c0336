// Where "3 0 R" is a reference and where it only looks like one.

#include <gtest/gtest.h>
#include <utility>
#include <vector>

#include "engine/lexer.h"
#include "engine/pdf_builder.h"
#include "tests/support/processor_time.h"
#include "tests/support/reader_setup.h"

namespace folioweld {
namespace {

using testing::ProcessorSeconds;
using testing::ReaderSetup;
using testing::Repeat;

using Numbers = std::vector<std::pair<std::int32_t, std::int32_t>>;

/// Every reference of the text, as the callers walk it.
Numbers ReferencesIn(std::string_view text) {
  Numbers numbers;
  NumberPair found;
  while (FindReference(text, found.End, kReferenceKeyword, found)) {
    numbers.emplace_back(found.Number, found.Generation);
  }
  return numbers;
}

TEST(ReferenceLookup, FindsEveryReferenceOfAnArray) {
  EXPECT_EQ(ReferencesIn("/Kids[3 0 R 4 0 R]"), (Numbers{{3, 0}, {4, 0}}));
  EXPECT_EQ(ReferencesIn("[3 0 R\r4 1 R\n5 2 R]"), (Numbers{{3, 0}, {4, 1}, {5, 2}}));
}

TEST(ReferenceLookup, ATokenMayBeginTheText) {
  EXPECT_EQ(ReferencesIn("3 0 R "), (Numbers{{3, 0}}));
}

TEST(ReferenceLookup, ATokenMayBeginAfterAnyDelimiter) {
  for (const char* before : {" ", "\r", "\n", "[", "]", "{", "}", ">", ">>", "(x)", "<ab>", "%c\r", "<<"}) {
    EXPECT_EQ(ReferencesIn(before + std::string("3 0 R ")), (Numbers{{3, 0}})) << before;
  }
}

TEST(ReferenceLookup, AMatchThatEndsWithTheTextEndsTheSearch) {
  NumberPair found;
  EXPECT_TRUE(FindReference("/A 3 0 R", 0, kReferenceKeyword, found));
  EXPECT_EQ(found.Number, 3);
  EXPECT_EQ(found.Start, 3U);
  EXPECT_EQ(found.NumberEnd, 4U);
  EXPECT_EQ(found.End, 8U);
  EXPECT_EQ(ReferencesIn("/A 3 0 R/B 4 0 R"), (Numbers{{3, 0}, {4, 0}}));
}

TEST(ReferenceLookup, NothingFoundLeavesBothNumbersAtMinusOne) {
  for (const char* text : {"/A 3 0 /B", "/A", ""}) {
    NumberPair found = {7, 7, 7};
    EXPECT_FALSE(FindReference(text, 0, kReferenceKeyword, found)) << text;
    EXPECT_EQ(found.Number, -1) << text;
    EXPECT_EQ(found.Generation, -1) << text;
    EXPECT_EQ(found.Keyword, -1) << text;
  }
}

TEST(ReferenceLookup, AnIndexOutsideTheTextFindsNothing) {
  NumberPair found;
  for (const std::size_t index : {5U, 6U, 100U}) {
    EXPECT_FALSE(FindReference("3 0 R", index, kReferenceKeyword, found)) << index;
  }
}

TEST(ReferenceLookup, PassesOverLiteralStrings) {
  EXPECT_EQ(ReferencesIn("(3 0 R) 4 0 R"), (Numbers{{4, 0}}));
  EXPECT_EQ(ReferencesIn("(a(3 0 R)3 0 R) 4 0 R"), (Numbers{{4, 0}}));
  EXPECT_EQ(ReferencesIn("(a\\) 3 0 R ) 4 0 R"), (Numbers{{4, 0}}));
  EXPECT_EQ(ReferencesIn("(a\\( ) 4 0 R"), (Numbers{{4, 0}}));
  EXPECT_EQ(ReferencesIn("(a\\\\) 4 0 R"), (Numbers{{4, 0}}));
  EXPECT_EQ(ReferencesIn("(a\r3 0 R\r) 4 0 R"), (Numbers{{4, 0}}));
}

TEST(ReferenceLookup, AStringWithoutEndReachesToTheEnd) {
  EXPECT_EQ(ReferencesIn("1 0 R (3 0 R 4 0 R "), (Numbers{{1, 0}}));
}

TEST(ReferenceLookup, PassesOverHexStrings) {
  EXPECT_EQ(ReferencesIn("<3 0 R > 4 0 R"), (Numbers{{4, 0}}));
  EXPECT_EQ(ReferencesIn("1 0 R <3 0 R "), (Numbers{{1, 0}}));
  EXPECT_EQ(ReferencesIn("<<</A 3 0 R>>> 4 0 R"), (Numbers{{4, 0}}));
}

TEST(ReferenceLookup, LooksIntoDictionaries) {
  EXPECT_EQ(ReferencesIn("<<3 0 R>>4 0 R>>"), (Numbers{{3, 0}, {4, 0}}));
  EXPECT_EQ(ReferencesIn("<</A<</B 3 0 R>>>>"), (Numbers{{3, 0}}));
}

TEST(ReferenceLookup, PassesOverNames) {
  EXPECT_EQ(ReferencesIn("/3 0 R "), Numbers{});
  EXPECT_EQ(ReferencesIn("/F1 0 R "), Numbers{});
  EXPECT_EQ(ReferencesIn("/F1 3 0 R"), (Numbers{{3, 0}}));
  EXPECT_EQ(ReferencesIn("/ 3 0 R"), (Numbers{{3, 0}}));
  EXPECT_EQ(ReferencesIn("/3/4 0 R/5"), Numbers{});
}

TEST(ReferenceLookup, PassesOverComments) {
  EXPECT_EQ(ReferencesIn("%3 0 R \r4 0 R "), (Numbers{{4, 0}}));
  EXPECT_EQ(ReferencesIn("% it's (3 0 R\n4 0 R "), (Numbers{{4, 0}}));
  EXPECT_EQ(ReferencesIn("1 0 R %3 0 R "), (Numbers{{1, 0}}));
}

TEST(ReferenceLookup, ACommentInAStringIsNone) {
  EXPECT_EQ(ReferencesIn("(50% 3 0 R) 4 0 R"), (Numbers{{4, 0}}));
}

TEST(ReferenceLookup, OnlyTokensOfDigitsBeginAReference) {
  EXPECT_EQ(ReferencesIn("a3 0 R "), Numbers{});
  EXPECT_EQ(ReferencesIn("-3 0 R "), Numbers{});
  EXPECT_EQ(ReferencesIn("1.3 0 R "), Numbers{});
  EXPECT_EQ(ReferencesIn("\t3 0 R "), Numbers{});
  EXPECT_EQ(ReferencesIn("\\3 0 R "), Numbers{});
  EXPECT_EQ(ReferencesIn("3 -0 R "), Numbers{});
  EXPECT_EQ(ReferencesIn("3x 0 R "), Numbers{});
}

TEST(ReferenceLookup, NumbersBeforeAReferenceDoNotHideIt) {
  EXPECT_EQ(ReferencesIn("0 5 7 3 0 R 9 9 "), (Numbers{{3, 0}}));
  EXPECT_EQ(ReferencesIn("[1 2 3 4 5 0 R]"), (Numbers{{5, 0}}));
}

TEST(ReferenceLookup, TheKeywordIsTheWholeToken) {
  EXPECT_EQ(ReferencesIn("3 0 RG 1 0 r 2 0 R1 "), Numbers{});
}

TEST(ReferenceLookup, ABackslashEndsTheKeyword) {
  EXPECT_EQ(ReferencesIn("3 0 R\\4 0 R\\"), (Numbers{{3, 0}}));
  EXPECT_EQ(ReferencesIn("3 0 R\\ 4 0 R\\"), (Numbers{{3, 0}, {4, 0}}));
}

TEST(ReferenceLookup, ANumberTooLargeForAnObjectIsNone) {
  EXPECT_EQ(ReferencesIn("2147483647 0 R 2147483646 0 R "), (Numbers{{2147483646, 0}}));
}

TEST(ReferenceLookup, ANumberHasTenDigitsAtMost) {
  EXPECT_EQ(ReferencesIn("0000000012 0000000003 R "), (Numbers{{12, 3}}));
  EXPECT_EQ(ReferencesIn("00000000012 3 R "), Numbers());
  EXPECT_EQ(ReferencesIn("12 00000000003 R "), Numbers());
  EXPECT_EQ(ReferencesIn("4294967308 3 R 18446744073709551628 3 R "), Numbers());
}

TEST(ReferenceLookup, ACommentBetweenTheNumbersHidesTheReference) {
  EXPECT_EQ(ReferencesIn("3 %c\r0 R "), Numbers{});
}

TEST(ReferenceLookup, TellsWhichKeywordStoodThere) {
  NumberPair found;
  EXPECT_TRUE(FindReference("7 0 obj<<", 0, kObjectOrReference, found));
  EXPECT_EQ(found.Keyword, 0);
  EXPECT_EQ(found.End, 7U);
  EXPECT_TRUE(FindReference("7 0 R<<", 0, kObjectOrReference, found));
  EXPECT_EQ(found.Keyword, 1);
  EXPECT_EQ(found.End, 5U);
}

// The lookup serves the builder.

class ReferenceUsers : public ::testing::Test, public ReaderSetup {
 protected:
  ReferenceUsers() {
    State.ObjectsInDoc1 = 10;
    State.DocObjectCount(1) = 10;
    State.ObjectsTotal = 10;
    static_cast<void>(Reader.GrowObjectTable(1));
  }
  PdfBuilder Builder{State, Files, Shell};
};

TEST_F(ReferenceUsers, EveryReferenceOfALineIsShiftedOnce) {
  EXPECT_EQ(Builder.ShiftObjectReferences("/Kids[3 0 R 4 0 R]"), "/Kids[13 0 R 14 0 R]");
  EXPECT_EQ(Builder.ShiftObjectReferences("<</A 3 0 R/B(3 0 R)/C<3 0 R>/3 0 R%3 0 R\r/D 1 0 R>>"),
            "<</A 13 0 R/B(3 0 R)/C<3 0 R>/3 0 R%3 0 R\r/D 11 0 R>>");
}

TEST_F(ReferenceUsers, AReferenceThatEndsTheLineIsShiftedOnce) {
  EXPECT_EQ(Builder.ShiftObjectReferences("3 0 R"), "13 0 R");
  EXPECT_EQ(Builder.ShiftObjectReferences("1 0 R 3 0 R"), "11 0 R 13 0 R");
  EXPECT_EQ(Builder.ShiftObjectReferences("3 0 obj"), "13 0 obj");
}

TEST_F(ReferenceUsers, ThePagesReferenceIsFoundBehindWhatLooksLikeOne) {
  State.Objects[1].LastLine = AppendObjLine(State, "<</A(/Pages 9 0 R)/Pages 3 5 R/B 1 0 R>>\r");
  std::int32_t number = -1;
  std::int32_t generation = -1;
  EXPECT_TRUE(Builder.FindPagesReference(1, number, generation));
  EXPECT_EQ(number, 3);
  EXPECT_EQ(generation, 5);
}

TEST_F(ReferenceUsers, AnIntegerIsFoundThroughItsReference) {
  State.Objects[4].ValueText = "17";
  EXPECT_EQ(Builder.ResolveIntegerValue("4 0 R"), 17);
  EXPECT_EQ(Builder.ResolveIntegerValue("[(5 0 R)4 0 R]"), 17);
}

// Linear time: each of these takes minutes when the lookup starts over at every token.

class ReferenceLookupSpeed : public ReferenceUsers,
                             public ::testing::WithParamInterface<std::pair<const char*, std::string>> {};

TEST_P(ReferenceLookupSpeed, AMegabyteIsPassedInNoTime) {
  const std::string text = Repeat(GetParam().second, static_cast<int>(1000000 / GetParam().second.size()));
  const double begin = ProcessorSeconds();
  static_cast<void>(ReferencesIn(text));
  static_cast<void>(Builder.ShiftObjectReferences(text));
  EXPECT_LT(ProcessorSeconds() - begin, 5);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, ReferenceLookupSpeed,
    ::testing::Values(std::pair{"Numbers", std::string("1 ")}, std::pair{"References", std::string("1 0 R ")},
                      std::pair{"Pairs", std::string("1 0 x ")}, std::pair{"Digits", std::string("1")},
                      std::pair{"Spaces", std::string(" ")}, std::pair{"OpenStrings", std::string("(")},
                      std::pair{"OpenHexStrings", std::string("1 <")},
                      std::pair{"Comments", std::string("%")}, std::pair{"Names", std::string("/1")},
                      std::pair{"Escapes", std::string("\\")}, std::pair{"OpenArrays", std::string("[1")},
                      std::pair{"NumberAndName", std::string("1 /")},
                      std::pair{"WideNumbers", "1" + std::string(999, ' ')}),
    [](const auto& named) { return std::string(named.param.first); });

}  // namespace
}  // namespace folioweld
