// One key and its value: where each begins and ends.

#include <gtest/gtest.h>
#include <utility>
#include <vector>

#include "tests/support/reader_setup.h"

namespace folioweld {
namespace {

using testing::ReaderSetup;

using Entries = std::vector<std::pair<std::string, std::string>>;

class DictionaryEntryTest : public ::testing::Test, public ReaderSetup {
 protected:
  /// The keys and values of the dictionary with this inner text, in the order of the chain.
  Entries EntriesOf(const std::string& inner) {
    First = -1;
    EXPECT_EQ(Parse("<<" + inner + ">>"), 0) << inner;
    Entries entries;
    for (std::int32_t row = First; row >= 0; row = Row(row).NameId) {
      entries.emplace_back(Row(row).NameText, Row(row).NameValue);
    }
    return entries;
  }
};

TEST_F(DictionaryEntryTest, KeysKeepTheirSlashAndValuesLoseBlanks) {
  EXPECT_EQ(EntriesOf(" /A 1 \r\n/B  2\n"), (Entries{{"/A", "1"}, {"/B", "2"}}));
}

TEST_F(DictionaryEntryTest, TheKeyEndsAtTheNextDelimiter) {
  EXPECT_EQ(EntriesOf("/A(x)/B<ab>/C[1]/D<</E 1>>/F/G/H{/I%c\r1"), (Entries{{"/A", "(x)"},
                                                                            {"/B", "<ab>"},
                                                                            {"/C", "[1]"},
                                                                            {"/D", "<</E 1>>"},
                                                                            {"/F", "/G"},
                                                                            {"/H", "{"},
                                                                            {"/I", "1"}}));
}

TEST_F(DictionaryEntryTest, ATabOrBackslashEndsNoKey) {
  EXPECT_EQ(EntriesOf("/A\t1 2/B\\ 3"), (Entries{{"/A\t1", "2"}, {"/B\\", "3"}}));
}

TEST_F(DictionaryEntryTest, TextBeforeTheFirstKeyIsSkipped) {
  EXPECT_EQ(EntriesOf(" 12 x /A 1"), (Entries{{"/A", "1"}}));
  EXPECT_EQ(EntriesOf("(a/b) /A 1"), (Entries{{"/A", "1"}}));
  EXPECT_EQ(EntriesOf("%/X 9\r/A 1"), (Entries{{"/A", "1"}}));
}

TEST_F(DictionaryEntryTest, ASlashInsideAStringOnlyGivesNoEntry) {
  EXPECT_EQ(EntriesOf("(a/b)"), Entries{});
}

TEST_F(DictionaryEntryTest, AValueThatIsANameIsNotTheNextKey) {
  EXPECT_EQ(EntriesOf("/Type/Page/Parent 2 0 R"), (Entries{{"/Type", "/Page"}, {"/Parent", "2 0 R"}}));
  EXPECT_EQ(EntriesOf("/Type /Page /A /B"), (Entries{{"/Type", "/Page"}, {"/A", "/B"}}));
}

TEST_F(DictionaryEntryTest, AValueThatBeginsWithANameGoesOnToTheNextSlash) {
  EXPECT_EQ(EntriesOf("/A /B 5 (x) /C 1"), (Entries{{"/A", "/B 5 (x)"}, {"/C", "1"}}));
  EXPECT_EQ(EntriesOf("/A/B[/X]/C 1"), (Entries{{"/A", "/B[/X]"}, {"/C", "1"}}));
}

TEST_F(DictionaryEntryTest, EmptyNamesAreNames) {
  EXPECT_EQ(EntriesOf("/A//B 1"), (Entries{{"/A", "/"}, {"/B", "1"}}));
  EXPECT_EQ(EntriesOf("/ 1"), (Entries{{"/", "1"}}));
}

TEST_F(DictionaryEntryTest, AKeyMayEndTheTextWithoutAValue) {
  EXPECT_EQ(EntriesOf("/A"), (Entries{{"/A", ""}}));
  EXPECT_EQ(EntriesOf("/A 1/B  "), (Entries{{"/A", "1"}, {"/B", ""}}));
}

TEST_F(DictionaryEntryTest, ASlashInsideALiteralStringEndsNoValue) {
  EXPECT_EQ(EntriesOf("/A (x/y) /B 1"), (Entries{{"/A", "(x/y)"}, {"/B", "1"}}));
  EXPECT_EQ(EntriesOf("/A (x(/)y/) /B 1"), (Entries{{"/A", "(x(/)y/)"}, {"/B", "1"}}));
  EXPECT_EQ(EntriesOf("/A (x\\)/y) /B 1"), (Entries{{"/A", "(x\\)/y)"}, {"/B", "1"}}));
  EXPECT_EQ(EntriesOf("/A (x\\(/y) /B 1"), (Entries{{"/A", "(x\\(/y)"}, {"/B", "1"}}));
  EXPECT_EQ(EntriesOf("/A (x\\\\) /B 1"), (Entries{{"/A", "(x\\\\)"}, {"/B", "1"}}));
}

TEST_F(DictionaryEntryTest, ASlashInsideAHexStringEndsNoValue) {
  EXPECT_EQ(EntriesOf("/A <ab/> /B 1"), (Entries{{"/A", "<ab/>"}, {"/B", "1"}}));
}

TEST_F(DictionaryEntryTest, ASlashInsideAnArrayEndsNoValue) {
  EXPECT_EQ(EntriesOf("/A [/X [/Y] /Z] /B 1"), (Entries{{"/A", "[/X [/Y] /Z]"}, {"/B", "1"}}));
}

TEST_F(DictionaryEntryTest, ASlashInsideADictionaryEndsNoValue) {
  EXPECT_EQ(EntriesOf("/A <</X <</Y 1>>/Z 2>> /B 1"), (Entries{{"/A", "<</X <</Y 1>>/Z 2>>"}, {"/B", "1"}}));
  EXPECT_EQ(EntriesOf("/A [<</X[/Y]>>] /B 1"), (Entries{{"/A", "[<</X[/Y]>>]"}, {"/B", "1"}}));
}

TEST_F(DictionaryEntryTest, BracketsInsideAStringNeverCount) {
  EXPECT_EQ(EntriesOf("/A [(]) /X] /B 1"), (Entries{{"/A", "[(]) /X]"}, {"/B", "1"}}));
  EXPECT_EQ(EntriesOf("/A ([) /B (<<) /C (>>) /D 1"),
            (Entries{{"/A", "([)"}, {"/B", "(<<)"}, {"/C", "(>>)"}, {"/D", "1"}}));
  EXPECT_EQ(EntriesOf("/A <</X(>>)/Y 1>> /B 1"), (Entries{{"/A", "<</X(>>)/Y 1>>"}, {"/B", "1"}}));
  EXPECT_EQ(EntriesOf("/A [<28]5B> /X] /B 1"), (Entries{{"/A", "[<28]5B> /X]"}, {"/B", "1"}}));
}

TEST_F(DictionaryEntryTest, AHexStringBesideTheEndOfADictionaryIsToldApart) {
  EXPECT_EQ(EntriesOf("/A <</X <ab>>> /B 1"), (Entries{{"/A", "<</X <ab>>>"}, {"/B", "1"}}));
  EXPECT_EQ(EntriesOf("/A [<ab>]/B <ab>"), (Entries{{"/A", "[<ab>]"}, {"/B", "<ab>"}}));
}

TEST_F(DictionaryEntryTest, ClosingBracketsWithoutAnOpeningOneAreOrdinaryText) {
  EXPECT_EQ(EntriesOf("/A ]>> > /B 1"), (Entries{{"/A", "]>> >"}, {"/B", "1"}}));
}

TEST_F(DictionaryEntryTest, AGroupWithoutEndTakesTheRest) {
  EXPECT_EQ(EntriesOf("/A (x /B 1"), (Entries{{"/A", "(x /B 1"}}));
  EXPECT_EQ(EntriesOf("/A <x /B 1"), (Entries{{"/A", "<x /B 1"}}));
  EXPECT_EQ(EntriesOf("/A [x /B 1"), (Entries{{"/A", "[x /B 1"}}));
  EXPECT_EQ(EntriesOf("/A <<x /B 1"), (Entries{{"/A", "<<x /B 1"}}));
}

TEST_F(DictionaryEntryTest, ACommentIsNoPartOfTheValue) {
  EXPECT_EQ(EntriesOf("/A 1 % one\r/B 2 % two\n"), (Entries{{"/A", "1"}, {"/B", "2"}}));
  EXPECT_EQ(EntriesOf("/A [1 % one\r2]/B 1"), (Entries{{"/A", "[1 \r2]"}, {"/B", "1"}}));
  EXPECT_EQ(EntriesOf("/A [1%x\r2%y\n3]"), (Entries{{"/A", "[1\r2\n3]"}}));
}

TEST_F(DictionaryEntryTest, ACommentMayStandBetweenKeyAndValue) {
  EXPECT_EQ(EntriesOf("/A % what follows\r % and more\n 1/B 2"), (Entries{{"/A", "1"}, {"/B", "2"}}));
  EXPECT_EQ(EntriesOf("/A%x\r/X/B 2"), (Entries{{"/A", "/X"}, {"/B", "2"}}));
}

TEST_F(DictionaryEntryTest, WhatACommentHoldsNeverCounts) {
  EXPECT_EQ(EntriesOf("/A 1 % it's (/X [<<\r/B 2"), (Entries{{"/A", "1"}, {"/B", "2"}}));
  EXPECT_EQ(EntriesOf("/A <</X 1 % >>\r/Y 2>>/B 3"), (Entries{{"/A", "<</X 1 \r/Y 2>>"}, {"/B", "3"}}));
}

TEST_F(DictionaryEntryTest, APercentInsideAStringIsText) {
  EXPECT_EQ(EntriesOf("/A (50 % /X)\r/B 1"), (Entries{{"/A", "(50 % /X)"}, {"/B", "1"}}));
  EXPECT_EQ(EntriesOf("/A <5%>\r/B 1"), (Entries{{"/A", "<5%>"}, {"/B", "1"}}));
}

TEST_F(DictionaryEntryTest, APercentThatNoLineEndFollowsIsOrdinaryText) {
  EXPECT_EQ(EntriesOf("/A 1 % one/B 2"), (Entries{{"/A", "1 % one"}, {"/B", "2"}}));
  EXPECT_EQ(EntriesOf("/A%/B 2"), (Entries{{"/A", "%"}, {"/B", "2"}}));
  EXPECT_EQ(EntriesOf("% /A 1"), (Entries{{"/A", "1"}}));
  EXPECT_EQ(EntriesOf("/A 1\r% one/B 2"), (Entries{{"/A", "1\r% one"}, {"/B", "2"}}));
}

TEST_F(DictionaryEntryTest, APercentBehindTheLastLineEndIsTextAndOneBeforeItAComment) {
  EXPECT_EQ(EntriesOf("/A 1 %x\r 2 %y/B 3"), (Entries{{"/A", "1 \r 2 %y"}, {"/B", "3"}}));
}

TEST_F(DictionaryEntryTest, TheSameKeyTwiceGivesTwoEntries) {
  EXPECT_EQ(EntriesOf("/A 1/A 2"), (Entries{{"/A", "1"}, {"/A", "2"}}));
}

TEST_F(DictionaryEntryTest, EveryByteValueIsKept) {
  const std::string bytes("\x00\x01\x7F\x80\xFF", 5);
  EXPECT_EQ(EntriesOf("/A (" + bytes + ")/\xE4 1"), (Entries{{"/A", "(" + bytes + ")"}, {"/\xE4", "1"}}));
}

// Nested dictionaries.

TEST_F(DictionaryEntryTest, ANestedDictionaryIsFlaggedAndLeadsToItsFirstRow) {
  EntriesOf("/A <</X 1/Y 2>>/B 3");
  EXPECT_EQ(Row(First).NameFlag, 1);
  const std::int32_t nested = Row(First).NameRef;
  EXPECT_EQ(Row(nested).NameText, "/X");
  EXPECT_EQ(Row(nested).NameValue, "1");
  EXPECT_EQ(Row(Row(nested).NameId).NameText, "/Y");
  EXPECT_EQ(Row(Row(nested).NameId).NameId, -1);
  EXPECT_EQ(Row(Row(First).NameId).NameFlag, 0);
  EXPECT_EQ(Row(Row(First).NameId).NameRef, -1);
}

TEST_F(DictionaryEntryTest, AnEmptyDictionaryStaysText) {
  EXPECT_EQ(EntriesOf("/A <<>>/B << \r>>"), (Entries{{"/A", "<<>>"}, {"/B", "<< \r>>"}}));
  EXPECT_EQ(Row(First).NameFlag, 0);
  EXPECT_EQ(Row(First).NameRef, -1);
}

TEST_F(DictionaryEntryTest, ADictionaryInAnArrayStaysText) {
  EXPECT_EQ(EntriesOf("/A [<</X 1>>]"), (Entries{{"/A", "[<</X 1>>]"}}));
  EXPECT_EQ(Row(First).NameFlag, 0);
  EXPECT_EQ(State.NameEntryCount, 1);
}

TEST_F(DictionaryEntryTest, ADictionaryThatDoesNotEndTheValueStaysText) {
  EXPECT_EQ(EntriesOf("/A <</X 1>> 5 /B 1"), (Entries{{"/A", "<</X 1>> 5"}, {"/B", "1"}}));
  EXPECT_EQ(Row(First).NameFlag, 0);
}

TEST_F(DictionaryEntryTest, AHexStringIsNoDictionary) {
  EntriesOf("/A <ab>");
  EXPECT_EQ(Row(First).NameFlag, 0);
}

TEST_F(DictionaryEntryTest, ACommentThatOnlyADeeperDictionarySeesIsGoneFromItsValueAlone) {
  // To the outer ones it stands in a hex string.
  Parse("<</A <</B <<%\n<4/C <<%\n<4/D 1> >> >> >>/E 2>>");
  EXPECT_EQ(Row(First).NameValue, "<</B <<\n<4/C <<%\n<4/D 1> >> >> >>");
  const std::int32_t b = Row(First).NameRef;
  EXPECT_EQ(Row(b).NameText, "/B");
  const std::int32_t c = Row(b).NameRef;
  EXPECT_EQ(Row(c).NameText, "/C");
  EXPECT_EQ(Row(c).NameValue, "<<\n<4/D 1> >>");
  const std::int32_t d = Row(c).NameRef;
  EXPECT_EQ(Row(d).NameText, "/D");
  EXPECT_EQ(Row(d).NameValue, "1>");
  EXPECT_EQ(Row(Row(First).NameId).NameText, "/E");
}

TEST_F(DictionaryEntryTest, CommentsAreGoneFromNestedValuesToo) {
  EntriesOf("/A <</X [1 %/Z (\r2]/Y 3>>/B 4");
  const std::int32_t nested = Row(First).NameRef;
  EXPECT_EQ(Row(nested).NameValue, "[1 \r2]");
  EXPECT_EQ(Row(Row(nested).NameId).NameText, "/Y");
}

}  // namespace
}  // namespace folioweld
