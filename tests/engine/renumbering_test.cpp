// Output pass #2: new object numbers for the second input.

#include <gtest/gtest.h>
#include <limits>

#include "engine/pdf_builder.h"
#include "tests/support/hand_made_state.h"
#include "tests/support/merge_run.h"

namespace folioweld::testing {
namespace {

class ShiftObjectReferencesTest : public ::testing::Test {
 protected:
  ShiftObjectReferencesTest() { MakeObjects(run_.State, 99, 1); }

  std::string Shift(const std::string& line) {
    return PdfBuilder(run_.State, run_.Files, run_.Shell).ShiftObjectReferences(line);
  }

  MergeRun run_;
};

TEST_F(ShiftObjectReferencesTest, AddsTheFirstInputsCountToAHeader) {
  EXPECT_EQ(Shift("12 0 obj"), "111 0 obj");
  EXPECT_EQ(Shift("12 0 obj\r"), "111 0 obj\r");
}

TEST_F(ShiftObjectReferencesTest, AddsTheFirstInputsCountToAReference) {
  EXPECT_EQ(Shift("<</Parent 3 0 R>>"), "<</Parent 102 0 R>>");
}

TEST_F(ShiftObjectReferencesTest, KeepsItsPlaceWhenANumberGrowsByADigit) {
  EXPECT_EQ(Shift("<</A 9 0 R/B 1 0 R/C 500 0 R/D 901 2 R>>"),
            "<</A 108 0 R/B 100 0 R/C 599 0 R/D 1000 2 R>>");
}

TEST_F(ShiftObjectReferencesTest, FindsReferencesThatTouchBrackets) {
  EXPECT_EQ(Shift("/Kids[3 0 R 4 0 R]"), "/Kids[102 0 R 103 0 R]");
  EXPECT_EQ(Shift("[3 0 R]"), "[102 0 R]");
  EXPECT_EQ(Shift("<</A<</B 3 0 R>>/C[[4 0 R]]>>"), "<</A<</B 102 0 R>>/C[[103 0 R]]>>");
  EXPECT_EQ(Shift("{3 0 R}"), "{102 0 R}");
}

TEST_F(ShiftObjectReferencesTest, FindsTheReferenceBehindOtherNumbers) {
  EXPECT_EQ(Shift("[1 2 3 0 R]"), "[1 2 102 0 R]");
  EXPECT_EQ(Shift("5 0 7 0 R "), "5 0 106 0 R ");
}

TEST_F(ShiftObjectReferencesTest, ShiftsAMatchAtTheVeryEndOnce) {
  EXPECT_EQ(Shift("/Parent 3 0 R"), "/Parent 102 0 R");
  EXPECT_EQ(Shift("3 0 R 4 0 R"), "102 0 R 103 0 R");
}

TEST_F(ShiftObjectReferencesTest, TakesTheShortestReferenceOfFiveCharacters) {
  EXPECT_EQ(Shift("3 0 R"), "102 0 R");
}

TEST_F(ShiftObjectReferencesTest, DoesNotLookAtTheLastFourCharactersOfALine) {
  for (const char* const line : {"", "R", "0 R", " 0 R", "/A 3 0", "/A 3 0 "}) EXPECT_EQ(Shift(line), line);
}

TEST_F(ShiftObjectReferencesTest, LeavesLiteralStringsAlone) {
  EXPECT_EQ(Shift("(see 3 0 R) 4 0 R"), "(see 3 0 R) 103 0 R");
  EXPECT_EQ(Shift("(a(3 0 R)4 0 R)"), "(a(3 0 R)4 0 R)");
  EXPECT_EQ(Shift("(a\\) 3 0 R) 4 0 R"), "(a\\) 3 0 R) 103 0 R");
  EXPECT_EQ(Shift("(a\\\\) 3 0 R"), "(a\\\\) 102 0 R");
  EXPECT_EQ(Shift("(never closed 3 0 R"), "(never closed 3 0 R");
}

TEST_F(ShiftObjectReferencesTest, LeavesHexStringsAlone) {
  EXPECT_EQ(Shift("<31 0 R> 4 0 R"), "<31 0 R> 103 0 R");
}

TEST_F(ShiftObjectReferencesTest, LeavesNamesAlone) {
  EXPECT_EQ(Shift("/F3 0 R 4 0 R"), "/F3 0 R 103 0 R");
  EXPECT_EQ(Shift("/3 0 R"), "/3 0 R");
}

TEST_F(ShiftObjectReferencesTest, LeavesCommentsAloneAndGoesOnBehindThem) {
  EXPECT_EQ(Shift("% 3 0 R\r/A 4 0 R"), "% 3 0 R\r/A 103 0 R");
  EXPECT_EQ(Shift("% 3 0 R\n4 0 R "), "% 3 0 R\n103 0 R ");
}

TEST_F(ShiftObjectReferencesTest, WantsTheKeywordsAsWholeWords) {
  for (const char* const line : {"1 0 0 RG ", "3 0 object ", "3 0 r ", "3 0 OBJ ", "3 0 Rx "}) {
    EXPECT_EQ(Shift(line), line);
  }
  EXPECT_EQ(Shift("3 0 R/Next 4 0 R>>"), "102 0 R/Next 103 0 R>>");
  EXPECT_EQ(Shift("3 0 obj<</A 4 0 R>>"), "102 0 obj<</A 103 0 R>>");
}

TEST_F(ShiftObjectReferencesTest, WantsPlainDigits) {
  for (const char* const line : {"+3 0 R ", "-3 0 R ", "3.0 0 R ", "3 x R ", "a3 0 R ", "3 -1 R "}) {
    EXPECT_EQ(Shift(line), line);
  }
}

TEST_F(ShiftObjectReferencesTest, ATabEndsNoToken) {
  EXPECT_EQ(Shift("3\t0 R "), "3\t0 R ");
  EXPECT_EQ(Shift("3 0\tR "), "3 0\tR ");
}

TEST_F(ShiftObjectReferencesTest, TakesLineEndsAndRowsOfBlanksBetweenTheParts) {
  EXPECT_EQ(Shift("/A 3\r0\nR /B 4   0  R "), "/A 102\r0\nR /B 103   0  R ");
}

TEST_F(ShiftObjectReferencesTest, WritesTheNewNumberWithoutPadding) {
  EXPECT_EQ(Shift("0003 0 R "), "102 0 R ");
}

TEST_F(ShiftObjectReferencesTest, ShiftsTheNullReferenceToTheFiller) {
  EXPECT_EQ(Shift("[0 0 R]"), "[99 0 R]");
}

TEST_F(ShiftObjectReferencesTest, LeavesNumbersAboveTheLimitAlone) {
  EXPECT_EQ(Shift("2147483647 0 R "), "2147483647 0 R ");
}

TEST_F(ShiftObjectReferencesTest, RaisesAnErrorForASumThatDoesNotFit) {
  EXPECT_THROW(Shift("2147483646 0 R "), OverflowError);
}

TEST_F(ShiftObjectReferencesTest, ShiftsEveryOneOfManyReferences) {
  std::string line;
  std::string expected;
  for (int i = 0; i < 50000; ++i) {
    line += std::to_string(i) + " 0 R ";
    expected += std::to_string(i + 99) + " 0 R ";
  }
  EXPECT_TRUE(Shift(line) == expected);
}

class RenumberSecondInputTest : public ::testing::Test {
 protected:
  RenumberSecondInputTest() { MakeObjects(run_.State, 3, 5); }

  MergeState& State() { return run_.State; }
  [[nodiscard]] bool Renumber() { return PdfBuilder(State(), run_.Files, run_.Shell).RenumberSecondInput(); }

  MergeRun run_;
};

TEST_F(RenumberSecondInputTest, RewritesHeaderAndBodyOfEveryObject) {
  PutDictionary(State(), 4, "<</Pages 2 0 R>>");
  PutObject(State(), 5, kWithStream, {"2 0 obj\r", "<</Length 1 0 R>>\n"});
  EXPECT_TRUE(Renumber());
  EXPECT_EQ(State().ObjLines[0], "4 0 obj\r");
  EXPECT_EQ(State().ObjLines[1], "<</Pages 5 0 R>>\r");
  EXPECT_EQ(State().ObjLines[2], "5 0 obj\r");
  EXPECT_EQ(State().ObjLines[3], "<</Length 4 0 R>>\r");
}

TEST_F(RenumberSecondInputTest, TrimsEachLineAtBothEndsAndEndsItWithOneCarriageReturn) {
  PutObject(State(), 4, kWithoutStream, {"  1 0 obj", "\r\n <</A 2 0 R>> \n\r\n", "[ 1 0 R ]"});
  EXPECT_TRUE(Renumber());
  EXPECT_EQ(State().ObjLines[0], "4 0 obj\r");
  EXPECT_EQ(State().ObjLines[1], "<</A 5 0 R>>\r");
  EXPECT_EQ(State().ObjLines[2], "[ 4 0 R ]\r");
}

TEST_F(RenumberSecondInputTest, LeavesTheFirstInputsLinesAndNumbersAlone) {
  PutObject(State(), 1, kWithoutStream, {"1 0 obj\r", "  <</A 2 0 R>> \n"});
  EXPECT_TRUE(Renumber());
  EXPECT_EQ(State().ObjLines[0], "1 0 obj\r");
  EXPECT_EQ(State().ObjLines[1], "  <</A 2 0 R>> \n");
  EXPECT_EQ(State().Objects[1].ObjNumber, 1);
}

TEST_F(RenumberSecondInputTest, GivesEmptyAndUncopiedSlotsTheirNumberAllTheSame) {
  State().Objects[5].ObjState = kNoObject;
  State().Objects[6].ObjState = kListed;
  EXPECT_TRUE(Renumber());
  for (std::int32_t i = 3; i < 8; ++i) EXPECT_EQ(State().Objects[i].ObjNumber, i);
}

TEST_F(RenumberSecondInputTest, LeavesTheLinesOfUncopiedSlotsAlone) {
  PutObject(State(), 4, kNoObject, {"1 0 obj\r"});
  PutObject(State(), 5, kListed, {"2 0 obj\r"});
  PutObject(State(), 6, kWithoutStream, {"3 0 obj\r"});
  State().Objects[6].FirstLine = -1;
  EXPECT_TRUE(Renumber());
  EXPECT_EQ(State().ObjLines[0], "1 0 obj\r");
  EXPECT_EQ(State().ObjLines[1], "2 0 obj\r");
  EXPECT_EQ(State().ObjLines[2], "3 0 obj\r");
}

TEST_F(RenumberSecondInputTest, YieldsTwiceForEverySlot) {
  EXPECT_TRUE(Renumber());
  EXPECT_EQ(run_.Shell.Yields, 10);
}

TEST_F(RenumberSecondInputTest, StopsAtACancelAndKeepsWhatItRewrote) {
  PutDictionary(State(), 4, "<</A 1 0 R>>");
  PutDictionary(State(), 5, "<</A 1 0 R>>");
  run_.Shell.OnYield = [&] { State().AbortRequested = run_.Shell.Yields == 6; };
  EXPECT_FALSE(Renumber());
  EXPECT_EQ(LastLineOf(State(), 4), "<</A 4 0 R>>\r");
  EXPECT_EQ(LastLineOf(State(), 5), "<</A 1 0 R>>\r");
  EXPECT_EQ(State().Objects[4].ObjNumber, 4);
  EXPECT_EQ(State().Objects[5].ObjNumber, 2);
  EXPECT_EQ(State().Failure.Rule, kCancelled);
}

TEST_F(RenumberSecondInputTest, ACancelIsShownAsTheOutcomeOfThePass) {
  run_.Shell.OnStatus = [&](int) {
    State().AbortRequested = run_.Status(2).find("Pass #2") != std::string::npos;
  };
  EXPECT_FALSE(PdfBuilder(State(), run_.Files, run_.Shell).BuildOutputPasses1And2());
  EXPECT_EQ(run_.Status(2),
            "Pass #1 of building output file: get missing lengths and relocate objects"
            "   -> OK : the missing length of 0  object has been found\r\n"
            "Pass #2 for output file: compute new object numbers   -> FAILED or cancelled\r\n");
}

TEST_F(RenumberSecondInputTest, ANumberThatGrowsTooLargeFailsThePass) {
  PutDictionary(State(), 4, "<</A 2147483646 0 R>>");
  EXPECT_FALSE(PdfBuilder(State(), run_.Files, run_.Shell).BuildOutputPasses1And2());
  EXPECT_EQ(run_.Status(2).substr(run_.Status(2).rfind("   -> ")), "   -> FAILED or cancelled\r\n");
  EXPECT_EQ(State().Failure.DocumentSlot, 2);
}

TEST_F(RenumberSecondInputTest, ALineIndexOutsideTheTableFailsThePass) {
  PutDictionary(State(), 4, "<</A 1 0 R>>");
  State().Objects[4].LastLine = 100;
  EXPECT_FALSE(PdfBuilder(State(), run_.Files, run_.Shell).BuildOutputPasses1And2());
  EXPECT_TRUE(State().Failure.Rule.ends_with("lies outside its table")) << State().Failure.Rule;
}

TEST_F(RenumberSecondInputTest, WithoutASecondInputDoesNothing) {
  MakeObjects(State(), 3, 0);
  EXPECT_TRUE(Renumber());
  EXPECT_EQ(run_.Shell.Yields, 0);
}

}  // namespace
}  // namespace folioweld::testing
