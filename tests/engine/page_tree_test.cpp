// Output pass #3: one page tree, one catalog, the trailer.

#include <gtest/gtest.h>

#include "engine/pdf_builder.h"
#include "tests/support/hand_made_state.h"
#include "tests/support/merge_run.h"
#include "tests/support/status_texts.h"

namespace folioweld::testing {
namespace {

const std::string kInformation =
    "<<\r/CreationDate (D:20080101010101)\r/ModDate (D:20080101010101)\r/Producer (Folioweld)\r>>\r";

/// Two inputs of five objects each, renumbered: 1 and 6 the catalogs, 2 and 7 the roots, 3 and 8 pages, 4 and
/// 9 the information dictionaries.
struct TwoInputs {
  TwoInputs() {
    MakeObjects(State, 5, 5);
    PutDictionary(State, 1, "<</Type/Catalog/Pages 2 0 R/Lang(en)>>");
    PutDictionary(State, 2, "<</Type/Pages/Kids[3 0 R]/Count 3>>");
    PutDictionary(State, 3, "<</Type/Page/Parent 2 0 R>>");
    PutDictionary(State, 4, "<</Producer(one)>>");
    PutDictionary(State, 5, "19540716");
    PutDictionary(State, 6, "<</Type/Catalog/Pages 7 0 R>>");
    PutDictionary(State, 7, "<</Type/Pages/Kids[8 0 R]/Count 5>>");
    PutDictionary(State, 8, "<</Type/Page/Parent 7 0 R>>");
    PutDictionary(State, 9, "<</Producer(two)>>");
    for (std::int32_t i = 5; i < 10; ++i) State.Objects[i].ObjNumber = i;
    State.DocRootNumber(1) = 1;
    State.DocInfoNumber(1) = 4;
    State.DocRootNumber(2) = 1;
    State.DocInfoNumber(2) = 4;
    // Row 0 is a trailer's in every merge.
    PdfReader reader(State, Run.Files, Run.Shell);
    std::int32_t first = -1;
    reader.ParseDictionary("<</Size 5>>", 1, first);
    Run.Shell.Yields = 0;
  }

  [[nodiscard]] bool Paste() { return PdfBuilder(State, Run.Files, Run.Shell).PastePageCatalogs(); }

  MergeRun Run;
  MergeState& State = Run.State;
};

class PageTreeTest : public ::testing::Test {
 protected:
  MergeState& State() { return inputs_.State; }

  [[nodiscard]] bool Paste() { return inputs_.Paste(); }

  void Replace(std::int32_t index, const std::string& body) {
    State().ObjLines[State().Objects[index].LastLine] = State().Texts.Keep(body + '\r');
  }

  void WithoutSecondInput() {
    MergeState& state = State();
    state.DocUsed(2) = false;
    state.DocObjectCount(2) = 0;
    state.ObjectsInDoc2 = 0;
    state.ObjectsTotal = 5;
  }

  void ExpectFailure(std::int16_t slot, std::int32_t object, const std::string& rule) {
    EXPECT_FALSE(Paste());
    EXPECT_EQ(run_.Status(2), kPass3) << "a failure leaves the line without an outcome";
    EXPECT_EQ(State().Failure.DocumentSlot, slot);
    EXPECT_EQ(State().Failure.ObjectNumber, object);
    EXPECT_EQ(State().Failure.Rule, rule);
  }

  TwoInputs inputs_;
  MergeRun& run_ = inputs_.Run;
};

TEST_F(PageTreeTest, TheSecondCatalogsSlotBecomesTheRootOfBothTreesFirstInputFirst) {
  ASSERT_TRUE(Paste());
  EXPECT_EQ(LastLineOf(State(), 6), "<<\r/Type /Pages /Kids [ 2 0 R 7 0 R ] /Count 8\r>>\r");
}

TEST_F(PageTreeTest, TheNewRootIsAnObjectWithoutStreamAndKeepsItsGeneration) {
  State().Objects[6].ObjState = kWithStream;
  State().Objects[6].ObjAux = 3;
  State().Objects[6].Generation = 2;
  Replace(2, "<</Count 1>>");
  ASSERT_TRUE(Paste());
  EXPECT_EQ(State().Objects[6].ObjState, kWithoutStream);
  EXPECT_EQ(State().Objects[6].ObjAux, -1);
  EXPECT_EQ(State().Objects[6].Generation, 2);
  EXPECT_EQ(LastLineOf(State(), 2), "<</Count 1/Parent 6 2 R >>\r");
}

TEST_F(PageTreeTest, TheFirstCatalogKeepsEverythingButItsPages) {
  ASSERT_TRUE(Paste());
  EXPECT_EQ(LastLineOf(State(), 1), "<<\r/Type/Catalog/Pages 6 0 R /Lang (en)\r>>");
}

TEST_F(PageTreeTest, OnlyTheFirstPagesEntryOfTheCatalogIsRedirected) {
  Replace(1, "<</Pages 2 0 R/Pages 3 0 R>>");
  ASSERT_TRUE(Paste());
  EXPECT_EQ(LastLineOf(State(), 1), "<<\r/Pages 6 0 R /Pages 3 0 R\r>>");
}

TEST_F(PageTreeTest, BothOldRootsGetTheNewOneAsParent) {
  ASSERT_TRUE(Paste());
  EXPECT_EQ(LastLineOf(State(), 2), "<</Type/Pages/Kids[3 0 R]/Count 3/Parent 6 0 R >>\r");
  EXPECT_EQ(LastLineOf(State(), 7), "<</Type/Pages/Kids[8 0 R]/Count 5/Parent 6 0 R >>\r");
}

TEST_F(PageTreeTest, TheParentGoesBeforeTheLastClosingBrackets) {
  Replace(2, "\r\n<</Count 3/Resources<</Font<<>>>> >> \r\n");
  ASSERT_TRUE(Paste());
  EXPECT_EQ(LastLineOf(State(), 2), "<</Count 3/Resources<</Font<<>>>> /Parent 6 0 R >>\r");
}

TEST_F(PageTreeTest, AnOldParentIsNotRemoved) {
  Replace(2, "<</Count 3/Parent 3 0 R>>");
  ASSERT_TRUE(Paste());
  EXPECT_EQ(LastLineOf(State(), 2), "<</Count 3/Parent 3 0 R/Parent 6 0 R >>\r");
}

TEST_F(PageTreeTest, TheGenerationsOfBothRootsGoIntoTheKids) {
  Replace(1, "<</Pages 2 3 R>>");
  Replace(6, "<</Pages 7 4 R>>");
  ASSERT_TRUE(Paste());
  EXPECT_EQ(LastLineOf(State(), 6), "<<\r/Type /Pages /Kids [ 2 3 R 7 4 R ] /Count 8\r>>\r");
}

TEST_F(PageTreeTest, TheTrailerNamesSizeRootAndInformation) {
  State().Objects[1].Generation = 3;
  State().Objects[4].Generation = 2;
  ASSERT_TRUE(Paste());
  EXPECT_EQ(State().OutputTrailerText,
            "trailer\r\n<< /Size 10\r/Root 1 3 R\r/Info 4 2 R\r>>\r\nstartxref\r\n");
  EXPECT_EQ(State().DocRootNumber(3), 1);
  EXPECT_EQ(State().DocInfoNumber(3), 4);
}

TEST_F(PageTreeTest, WithoutAnInformationDictionaryTheTrailerRefersToTheFreeSlotZero) {
  State().DocInfoNumber(1) = -1;
  ASSERT_TRUE(Paste());
  EXPECT_EQ(State().OutputTrailerText,
            "trailer\r\n<< /Size 10\r/Root 1 0 R\r/Info 0 65535 R\r>>\r\nstartxref\r\n");
  EXPECT_EQ(LastLineOf(State(), 4), "<</Producer(one)>>\r");
}

TEST_F(PageTreeTest, AnInformationNumberOfZeroIsWrittenAsItStands) {
  State().DocInfoNumber(1) = 0;
  ASSERT_TRUE(Paste());
  EXPECT_NE(State().OutputTrailerText.find("/Info 0 65535 R\r"), std::string::npos);
}

TEST_F(PageTreeTest, AnInformationNumberBeyondTheFirstInputNeverHitsAnObjectOfTheSecond) {
  State().DocInfoNumber(1) = 9;
  State().DocInfoNumber(2) = -1;
  ASSERT_TRUE(Paste());
  EXPECT_NE(State().OutputTrailerText.find("/Info 0 65535 R\r"), std::string::npos);
  EXPECT_EQ(LastLineOf(State(), 9), "<</Producer(two)>>\r");
}

TEST_F(PageTreeTest, AnInformationNumberBeyondTheSecondInputChangesNothing) {
  State().DocInfoNumber(2) = 5;
  ASSERT_TRUE(Paste());
  EXPECT_EQ(LastLineOf(State(), 9), "<</Producer(two)>>\r");
  EXPECT_NE(run_.Status(2).find("   -> OK\r\n"), std::string::npos);
}

TEST_F(PageTreeTest, ASecondInformationNumberOfZeroLeavesTheFillerAlone) {
  State().DocInfoNumber(2) = 0;
  ASSERT_TRUE(Paste());
  EXPECT_EQ(LastLineOf(State(), 5), "19540716\r");
}

TEST_F(PageTreeTest, BothInformationDictionariesBecomeTheFixedOne) {
  ASSERT_TRUE(Paste());
  EXPECT_EQ(LastLineOf(State(), 4), kInformation);
  EXPECT_EQ(LastLineOf(State(), 9), kInformation);
  EXPECT_EQ(State().DocInfoNumber(2), 9);
}

TEST_F(PageTreeTest, AnInformationSlotThatCarriesAnotherNumberIsLeftAlone) {
  State().Objects[4].ObjNumber = 3;
  State().Objects[9].ObjNumber = 3;
  ASSERT_TRUE(Paste());
  EXPECT_EQ(LastLineOf(State(), 4), "<</Producer(one)>>\r");
  EXPECT_EQ(LastLineOf(State(), 9), "<</Producer(two)>>\r");
}

TEST_F(PageTreeTest, AnInformationSlotWithoutTextIsLeftAlone) {
  State().Objects[4].LastLine = -1;
  State().Objects[9].LastLine = -1;
  EXPECT_TRUE(Paste());
}

TEST_F(PageTreeTest, TheStatusLineShowsTheCaptionAndTheOutcome) {
  ASSERT_TRUE(Paste());
  EXPECT_EQ(run_.Status(2), kPass3 + "   -> OK\r\n");
  EXPECT_EQ(run_.Shell.Events[0], "2|Pass #3 of building output file:");
}

TEST_F(PageTreeTest, OfOneInputOnlyTheInformationDictionaryAndTheTrailerAreMade) {
  WithoutSecondInput();
  ASSERT_TRUE(Paste());
  EXPECT_EQ(run_.Status(2), kPass3 + " -> OK \r\n");
  EXPECT_EQ(State().OutputTrailerText,
            "trailer\r\n<< /Size 5\r/Root 1 0 R\r/Info 4 0 R\r>>\r\nstartxref\r\n");
  EXPECT_EQ(LastLineOf(State(), 1), "<</Type/Catalog/Pages 2 0 R/Lang(en)>>\r");
  EXPECT_EQ(LastLineOf(State(), 2), "<</Type/Pages/Kids[3 0 R]/Count 3>>\r");
  EXPECT_EQ(LastLineOf(State(), 4), kInformation);
}

TEST_F(PageTreeTest, OfOneInputThePageCountIsNotNeeded) {
  WithoutSecondInput();
  Replace(2, "<</Type/Pages>>");
  EXPECT_TRUE(Paste());
}

TEST_F(PageTreeTest, ACountGivenAsAReferenceIsResolvedThroughTheNumberObject) {
  Replace(7, "<</Count 8 0 R>>");
  State().Objects[8].ValueText = "40";
  ASSERT_TRUE(Paste());
  EXPECT_EQ(LastLineOf(State(), 6), "<<\r/Type /Pages /Kids [ 2 0 R 7 0 R ] /Count 43\r>>\r");
}

TEST_F(PageTreeTest, TheFirstCountOfTwoIsTaken) {
  Replace(2, "<</Count 3/Count 30>>");
  ASSERT_TRUE(Paste());
  EXPECT_EQ(LastLineOf(State(), 6), "<<\r/Type /Pages /Kids [ 2 0 R 7 0 R ] /Count 8\r>>\r");
}

TEST_F(PageTreeTest, AFirstCatalogWithoutPagesFails) {
  Replace(1, "<</Type/Catalog>>");
  ExpectFailure(1, 1, "the catalog has no page tree (/Pages)");
}

TEST_F(PageTreeTest, ARootThatEndsALineOfTheTrailerIsToldAsThat) {
  Replace(1, "<</Type/Catalog>>");
  Replace(6, "<</Type/Catalog>>");
  State().PageKids.Grow(1);
  State().PageKids[0] = "<</Size 5/Root";
  State().PageKids[1] = "1 0 R>>";
  State().PageKidsCount = 2;
  const std::string rule =
      "/Root ends a line of the trailer and its value stands on the next, which are joined without a blank "
      "between them";
  ExpectFailure(1, 1, rule);
  // The lines are the second document's now.
  State().PageKidsLast = 0;
  run_.Shell.SetStatusText(2, {});
  ExpectFailure(1, 1, "the catalog has no page tree (/Pages)");
  Replace(1, "<</Type/Catalog/Pages 2 0 R>>");
  run_.Shell.SetStatusText(2, {});
  ExpectFailure(2, 1, rule);
}

TEST_F(PageTreeTest, ASecondCatalogWithoutPagesFails) {
  Replace(6, "<</Type/Catalog>>");
  ExpectFailure(2, 1, "the catalog has no page tree (/Pages)");
}

TEST_F(PageTreeTest, ATrailerWithoutARootFails) {
  State().DocRootNumber(1) = -1;
  ExpectFailure(1, -1, "the trailer names no catalog (/Root)");
}

TEST_F(PageTreeTest, ASecondTrailerWithoutARootFails) {
  State().DocRootNumber(2) = -1;
  ExpectFailure(2, -1, "the trailer names no catalog (/Root)");
}

TEST_F(PageTreeTest, ARootBeyondTheFirstInputNeverLeadsIntoTheSecond) {
  State().DocRootNumber(1) = 6;
  ExpectFailure(1, 6, "the catalog (/Root) is not in the document");
}

TEST_F(PageTreeTest, ARootBeyondTheSecondInputFails) {
  State().DocRootNumber(2) = 5;
  ExpectFailure(2, 5, "the catalog (/Root) is not in the document");
}

TEST_F(PageTreeTest, APageTreeBeyondTheFirstInputNeverLeadsIntoTheSecond) {
  Replace(1, "<</Pages 7 0 R>>");
  ExpectFailure(1, 1, "the root of the page tree (/Pages) is not in the document");
}

TEST_F(PageTreeTest, APageTreeBeyondTheSecondInputFails) {
  Replace(6, "<</Pages 10 0 R>>");
  ExpectFailure(2, 1, "the root of the page tree (/Pages) is not in the document");
}

TEST_F(PageTreeTest, APageTreeOfTheSecondInputNeverLeadsIntoTheFirst) {
  Replace(6, "<</Pages 2 0 R>>");
  ExpectFailure(2, 1, "the root of the page tree (/Pages) is not in the document");
}

TEST_F(PageTreeTest, ARootOfThePageTreeThatIsNoDictionaryFails) {
  Replace(2, "[3 0 R]");
  ExpectFailure(1, 2, "the root of the page tree is no dictionary");
}

TEST_F(PageTreeTest, ARootOfThePageTreeThatIsAFreeSlotFails) {
  State().Objects[7].LastLine = -1;
  ExpectFailure(2, 2, "the root of the page tree is a free object");
}

TEST_F(PageTreeTest, ARootOfThePageTreeWithoutCountFails) {
  Replace(7, "<</Kids[8 0 R]/Counts 5>>");
  ExpectFailure(2, 2, "the root of the page tree has no /Count");
}

TEST_F(PageTreeTest, ACountThatIsNoNumberFails) {
  for (const char* const count : {"-1", "(5)", "1.5", "99 0 R", "8 0 R"}) {
    run_.Shell.SetStatusText(2, "");
    Replace(2, std::string("<</Count ") + count + ">>");
    ExpectFailure(1, 2, "the page tree's /Count is no number of 0 or more");
  }
}

TEST_F(PageTreeTest, CountsWhoseSumIsTooLargeFail) {
  Replace(2, "<</Count 2147483646>>");
  EXPECT_FALSE(Paste());
  EXPECT_EQ(run_.Status(2), kPass3);
  EXPECT_FALSE(State().Failure.Empty());
}

TEST_F(PageTreeTest, AnOldRootWhoseTextIsCutOffFails) {
  Replace(2, "<</Count 3");
  ExpectFailure(1, 2, "the root of the page tree is no dictionary");
}

TEST_F(PageTreeTest, EveryKeyOfTheCatalogIsALookInTheSearchForItsPagesAndInTheRewriting) {
  const auto yields = [](int keys) {
    TwoInputs inputs;
    std::string catalog = "<<";
    for (int i = 0; i < keys; ++i) catalog += "/A 1";
    inputs.State.ObjLines[inputs.State.Objects[1].LastLine] =
        inputs.State.Texts.Keep(catalog + "/Pages 2 0 R>>");
    EXPECT_TRUE(inputs.Paste());
    return inputs.Run.Shell.Yields;
  };
  // Each look yields twice.
  EXPECT_EQ(yields(20) - yields(10), 10 * 2 * 2);
}

TEST_F(PageTreeTest, ACancelAtAnyYieldFailsAndIsCalledACancel) {
  for (long yield = 1;; ++yield) {
    TwoInputs inputs;
    inputs.Run.Shell.OnYield = [&] {
      if (inputs.Run.Shell.Yields == yield) inputs.State.AbortRequested = true;
    };
    const bool pasted = inputs.Paste();
    if (!inputs.State.AbortRequested) {
      EXPECT_TRUE(pasted);
      EXPECT_GT(yield, 20) << "the pass yields while it walks dictionaries";
      return;
    }
    EXPECT_FALSE(pasted) << yield;
    EXPECT_EQ(inputs.State.Failure.Rule, kCancelled) << yield;
    EXPECT_EQ(inputs.Run.Status(2), kPass3) << yield;
  }
}

}  // namespace
}  // namespace folioweld::testing
