// The parts of output pass #3 that read and write dictionary texts.

#include <gtest/gtest.h>

#include "engine/pdf_builder.h"
#include "tests/support/hand_made_state.h"
#include "tests/support/merge_run.h"

namespace folioweld::testing {
namespace {

class DictionaryTextTest : public ::testing::Test {
 protected:
  DictionaryTextTest() { MakeObjects(run_.State, 6, 0); }

  MergeState& State() { return run_.State; }
  PdfBuilder Builder() { return {State(), run_.Files, run_.Shell}; }

  /// Row of the text's first key; row 0 is used up before, as a trailer does.
  std::int32_t Parse(const std::string& text) {
    PdfReader reader(State(), run_.Files, run_.Shell);
    std::int32_t first = -1;
    if (State().NameEntryCount == 0) reader.ParseDictionary(State().Texts.Keep("<</X 1>>"), 1, first);
    reader.ParseDictionary(State().Texts.Keep(text), 1, first);
    return first;
  }

  std::string Rebuild(const std::string& text) { return Builder().RebuildDictionaryText(Parse(text)); }

  MergeRun run_;
};

class FindPagesReferenceTest : public DictionaryTextTest {
 protected:
  void ExpectNone(std::int32_t slot) {
    std::int32_t number = 7;
    std::int32_t generation = 7;
    EXPECT_FALSE(Builder().FindPagesReference(slot, number, generation));
    EXPECT_EQ(number, -1);
    EXPECT_EQ(generation, -1);
  }

  void ExpectFound(const std::string& body, std::int32_t wantedNumber, std::int32_t wantedGeneration) {
    PutDictionary(State(), 1, body);
    std::int32_t number = -1;
    std::int32_t generation = -1;
    EXPECT_TRUE(Builder().FindPagesReference(1, number, generation)) << body;
    EXPECT_EQ(number, wantedNumber) << body;
    EXPECT_EQ(generation, wantedGeneration) << body;
  }
};

TEST_F(FindPagesReferenceTest, GivesNumberAndGeneration) {
  ExpectFound("<</Type/Catalog/Pages 2 0 R>>", 2, 0);
  ExpectFound("<</Pages 0 65535 R/Type/Catalog>>", 0, 65535);
}

TEST_F(FindPagesReferenceTest, TrimsTheLineFirst) {
  ExpectFound("\r\n<</Pages 2 0 R>> \r\n \r", 2, 0);
}

TEST_F(FindPagesReferenceTest, WorksOnTheVeryFirstRowOfTheNameTable) {
  ASSERT_EQ(State().NameEntryCount, 0);
  ExpectFound("<</Pages 2 0 R>>", 2, 0);
}

TEST_F(FindPagesReferenceTest, TakesTheFirstOfTwo) {
  ExpectFound("<</Pages 2 0 R/Pages 3 0 R>>", 2, 0);
}

TEST_F(FindPagesReferenceTest, WantsTheWholeKey) {
  ExpectFound("<</PagesX 3 0 R/Pages 2 0 R>>", 2, 0);
  PutDictionary(State(), 1, "<</PageMode 3 0 R/pages 3 0 R>>");
  ExpectNone(1);
}

TEST_F(FindPagesReferenceTest, FailsForASlotOutsideTheObjects) {
  ExpectNone(-1);
  ExpectNone(6);
  ExpectNone(1000);
}

TEST_F(FindPagesReferenceTest, FailsForAnObjectThatCarriesAnotherNumber) {
  PutDictionary(State(), 1, "<</Pages 2 0 R>>");
  State().Objects[1].ObjNumber = 2;
  ExpectNone(1);
}

TEST_F(FindPagesReferenceTest, FailsForAnObjectWithoutText) {
  ExpectNone(3);
}

TEST_F(FindPagesReferenceTest, FailsForAnObjectThatIsNoDictionary) {
  for (const char* const body : {"", "42", "[2 0 R]", "<<>>", "<<", "null"}) {
    PutDictionary(State(), 1, body);
    ExpectNone(1);
  }
}

TEST_F(FindPagesReferenceTest, FailsForAValueThatIsNoReference) {
  for (const char* const value : {"2", "2 0", "(2 0 R)", "null", "/Name", "<<>>", "2 0 obj"}) {
    PutDictionary(State(), 1, std::string("<</Pages ") + value + ">>");
    ExpectNone(1);
  }
}

TEST_F(FindPagesReferenceTest, DoesNotTakeAReferenceFromInsideADirectPageTree) {
  for (const char* const value : {"<</Kids[3 0 R]/Count 1>>", "[2 0 R]"}) {
    PutDictionary(State(), 1, std::string("<</Pages ") + value + ">>");
    ExpectNone(1);
  }
}

class ResolveIntegerValueTest : public DictionaryTextTest {
 protected:
  std::int32_t Resolve(const std::string& text) { return Builder().ResolveIntegerValue(text); }
};

TEST_F(ResolveIntegerValueTest, ReadsADirectNumber) {
  EXPECT_EQ(Resolve("0"), 0);
  EXPECT_EQ(Resolve("12"), 12);
  EXPECT_EQ(Resolve("\r\n 12 \r\n"), 12);
  EXPECT_EQ(Resolve("2147483646"), 2147483646);
}

TEST_F(ResolveIntegerValueTest, FollowsAReferenceToANumberObject) {
  PutNumber(State(), 4, "31");
  EXPECT_EQ(Resolve("4 0 R"), 31);
  EXPECT_EQ(Resolve(" 4 0 R\r"), 31);
}

TEST_F(ResolveIntegerValueTest, DoesNotCompareTheGeneration) {
  PutNumber(State(), 4, "31");
  EXPECT_EQ(Resolve("4 9 R"), 31);
}

TEST_F(ResolveIntegerValueTest, GivesMinusOneForAnythingElse) {
  for (const char* const text : {"", "-1", "1.5", "x", "1 2", "/3", "(1)", "2147483647"}) {
    EXPECT_EQ(Resolve(text), -1) << text;
  }
}

TEST_F(ResolveIntegerValueTest, GivesMinusOneForAReferenceBeyondTheObjects) {
  EXPECT_EQ(Resolve("6 0 R"), -1);
  EXPECT_EQ(Resolve("2147483646 0 R"), -1);
}

TEST_F(ResolveIntegerValueTest, GivesMinusOneForAReferenceToAnObjectThatIsNoNumber) {
  PutDictionary(State(), 4, "<</A 1>>");
  EXPECT_EQ(Resolve("4 0 R"), -1);
  EXPECT_EQ(Resolve("5 0 R"), -1);
}

using RebuildDictionaryTextTest = DictionaryTextTest;

TEST_F(RebuildDictionaryTextTest, PutsKeysAndValuesBetweenTheBracketsInTheirOrder) {
  EXPECT_EQ(Rebuild("<</Type/Catalog/Pages 2 0 R>>"), "<<\r/Type/Catalog/Pages 2 0 R\r>>");
}

TEST_F(RebuildDictionaryTextTest, PutsASpaceOnlyWhereNothingSeparatesThePieces) {
  EXPECT_EQ(Rebuild("<</A(x)/B[1]/C<1F>/D 4/E/F/G true>>"), "<<\r/A (x)/B [1]/C <1F>/D 4/E/F/G true\r>>");
}

TEST_F(RebuildDictionaryTextTest, KeepsTheSpacesThatAValueBringsAlong) {
  const std::int32_t first = Parse("<</Pages 2 0 R/Lang(en)>>");
  State().NameEntries[first].NameValue = " 8 0 R ";
  EXPECT_EQ(Builder().RebuildDictionaryText(first), "<<\r/Pages 8 0 R /Lang (en)\r>>");
}

TEST_F(RebuildDictionaryTextTest, PutsNoSpaceBesideALineEnd) {
  const std::int32_t first = Parse("<</A 1/B 2>>");
  State().NameEntries[first].NameValue = "\r1\n";
  State().NameEntries[State().NameEntries[first].NameId].NameText = "B";
  EXPECT_EQ(Builder().RebuildDictionaryText(first), "<<\r/A\r1\nB 2\r>>");
}

TEST_F(RebuildDictionaryTextTest, PutsASpaceBeforeAKeyThatBeginsWithoutSlash) {
  const std::int32_t first = Parse("<</A 1/B 2>>");
  State().NameEntries[State().NameEntries[first].NameId].NameText = "B";
  EXPECT_EQ(Builder().RebuildDictionaryText(first), "<<\r/A 1 B 2\r>>");
}

TEST_F(RebuildDictionaryTextTest, RebuildsNestedDictionariesTheSameWay) {
  EXPECT_EQ(Rebuild("<</A<</B<</C 1>>/D 2>>/E 3>>"), "<<\r/A <<\r/B <<\r/C 1\r>>/D 2\r>>/E 3\r>>");
}

TEST_F(RebuildDictionaryTextTest, KeepsAnEmptyNestedDictionary) {
  EXPECT_EQ(Rebuild("<</A<<>>/E 3>>"), "<<\r/A <<>>/E 3\r>>");
}

TEST_F(RebuildDictionaryTextTest, LeavesCommentsOut) {
  EXPECT_EQ(Rebuild("<</A 1 % one\r/B 2>>"), "<<\r/A 1/B 2\r>>");
}

TEST_F(RebuildDictionaryTextTest, GivesNothingForARowOutsideTheTable) {
  Parse("<</A 1>>");
  EXPECT_EQ(Builder().RebuildDictionaryText(-1), "");
  EXPECT_EQ(Builder().RebuildDictionaryText(State().NameEntryCount), "");
}

TEST_F(RebuildDictionaryTextTest, StopsAtRowsBelowOneSoThatRowZeroIsNeverWritten) {
  Parse("<</A 1>>");
  EXPECT_EQ(Builder().RebuildDictionaryText(0), "<<\r\r>>");
}

TEST_F(RebuildDictionaryTextTest, GivesNothingAfterACancel) {
  const std::int32_t first = Parse("<</A 1/B 2>>");
  State().AbortRequested = true;
  EXPECT_EQ(Builder().RebuildDictionaryText(first), "");
}

TEST_F(RebuildDictionaryTextTest, GivesNothingAfterACancelInANestedDictionary) {
  const std::int32_t first = Parse("<</A<</B 1>>>>");
  run_.Shell.Yields = 0;
  run_.Shell.OnYield = [&] { State().AbortRequested = run_.Shell.Yields >= 4; };
  EXPECT_EQ(Builder().RebuildDictionaryText(first), "");
}

}  // namespace
}  // namespace folioweld::testing
