// Documents that are tried before they are joined.

#include "engine/document_judge.h"

#include <gtest/gtest.h>

#include "tests/support/document_builder.h"
#include "tests/support/faulting_system.h"
#include "tests/support/merge_run.h"
#include "tests/support/recording_shell.h"
#include "tests/support/temp_folder.h"

namespace folioweld::testing {
namespace {

class DocumentJudgeTest : public ::testing::Test {
 protected:
  DocumentJudgement JudgementOf(const std::string& document, bool alone = false) {
    return judge_.Judge(folder_.Write("a.pdf", document), alone);
  }

  TempFolder folder_;
  FaultingSystem system_;
  FileModule files_{system_};
  RecordingShell shell_;
  MergeState watched_;
  DocumentJudge judge_{files_, shell_, watched_};
};

DocumentBuilder WithPage(const std::string& page,
                         const std::string& root = "/Type/Pages/Kids[3 0 R]/Count 1") {
  DocumentBuilder builder;
  builder.Object(1, "<</Type/Catalog/Pages 2 0 R>>").Object(2, "<<" + root + ">>");
  builder.Object(3, "<</Type/Page/Parent 2 0 R/MediaBox[0 0 9 9]" + page + ">>");
  return builder;
}

TEST_F(DocumentJudgeTest, APlainDocumentIsPlainInEveryPlaceAndCounted) {
  const DocumentJudgement judgement = JudgementOf(WithPage("").Build());
  EXPECT_TRUE(judgement.IsPlain()) << judgement.Refusal.Rule;
  EXPECT_TRUE(judgement.IsPlainAt({true, 100}));
  EXPECT_TRUE(judgement.IsPlainAt({false, 100}));
  EXPECT_EQ(judgement.Objects, 3);
  EXPECT_EQ(judgement.ObjectNumbers, 4);
}

TEST_F(DocumentJudgeTest, ARefusedDocumentBringsTheRuleThatItBreaks) {
  const DocumentJudgement judgement =
      JudgementOf("%PDF-1.5\n%abcd\nno end of a document stands in these words");
  EXPECT_FALSE(judgement.IsJoinable());
  EXPECT_FALSE(judgement.IsPlainAt({}));
  EXPECT_EQ(judgement.Refusal.Rule, "no \"%%EOF\" stands in the last 40 bytes");
}

TEST_F(DocumentJudgeTest, ADocumentThatFailsInAReadingPassIsRefusedWithItsObject) {
  DocumentBuilder builder = WithPage("");
  builder.Object(4, "true");
  const DocumentJudgement judgement = JudgementOf(builder.Build());
  EXPECT_FALSE(judgement.IsJoinable());
  EXPECT_EQ(judgement.Refusal.ObjectNumber, 4);
}

TEST_F(DocumentJudgeTest, APageTreeThatCannotBeJoinedIsFoundUnlessTheDocumentIsAlone) {
  const std::string document = WithPage("", "/Type/Pages/Kids[3 0 R]").Build();
  EXPECT_EQ(JudgementOf(document).Refusal.Rule, "the root of the page tree has no /Count");
  EXPECT_TRUE(JudgementOf(document, true).IsPlain());
}

TEST_F(DocumentJudgeTest, AWarningThatShowsInEveryPlaceIsOneInEveryPlace) {
  const DocumentJudgement judgement = JudgementOf(WithPage("/T(a  \nb)").Build());
  ASSERT_EQ(judgement.Warnings.size(), 1U);
  EXPECT_EQ(judgement.Warnings[0].Kind, AlterationKind::StringLosesBytes);
  EXPECT_TRUE(judgement.IsJoinable());
  EXPECT_FALSE(judgement.IsPlainAt({true, 0}));
}

TEST_F(DocumentJudgeTest, AWrongCountIsAWarningAmongOthersOnly) {
  const std::string document = WithPage("", "/Type/Pages/Kids[3 0 R]/Count 2").Build();
  ASSERT_EQ(JudgementOf(document).Warnings.size(), 1U);
  EXPECT_EQ(JudgementOf(document).Warnings[0].Kind, AlterationKind::PageCountWrong);
  EXPECT_TRUE(JudgementOf(document, true).IsPlain());
}

TEST_F(DocumentJudgeTest, AReferenceThatTheRenumberingDoesNotSeeHarmsALaterDocumentOnly) {
  const DocumentJudgement judgement = JudgementOf(WithPage("/X 2\t0 R").Build());
  ASSERT_EQ(judgement.Warnings.size(), 1U);
  EXPECT_EQ(judgement.Warnings[0].Kind, AlterationKind::ReferenceNotSeen);
  EXPECT_TRUE(judgement.IsPlainAt({true, 100}));
  EXPECT_FALSE(judgement.IsPlainAt({false, 0}));
}

TEST_F(DocumentJudgeTest, AReferenceToObjectZeroHarmsALaterDocumentOnly) {
  const DocumentJudgement judgement = JudgementOf(WithPage("/X 0 0 R").Build());
  EXPECT_TRUE(judgement.IsPlainAt({true, 100}));
  EXPECT_FALSE(judgement.IsPlainAt({false, 0}));
}

TEST_F(DocumentJudgeTest, AReferenceToAMissingObjectHarmsWhereAnotherDocumentHasIt) {
  const DocumentJudgement judgement = JudgementOf(WithPage("/X 9 0 R/Y 7 0 R").Build());
  EXPECT_EQ(judgement.LowestMissing, 7);
  EXPECT_FALSE(judgement.IsPlain());
  EXPECT_TRUE(judgement.IsPlainAt({true, 3}));
  EXPECT_FALSE(judgement.IsPlainAt({true, 4}));
}

TEST_F(DocumentJudgeTest, TheFormOfALaterDocumentIsNoReasonToTakeAnotherFormOfIt) {
  DocumentBuilder builder;
  builder.Object(1, "<</Type/Catalog/Pages 2 0 R/AcroForm<</NeedAppearances true/Fields[4 0 R]>>>>");
  builder.Object(2, "<</Type/Pages/Kids[3 0 R]/Count 1>>");
  builder.Object(3, "<</Type/Page/Parent 2 0 R/Annots[4 0 R]>>");
  builder.Object(4, "<</Subtype/Widget/FT/Tx/T(n)/V(v)/AP<<>>>>");
  EXPECT_TRUE(JudgementOf(builder.Build()).IsPlainAt({false, 0}));
}

TEST_F(DocumentJudgeTest, ACancelIsSeenAndNothingStaysOpen) {
  shell_.OnYield = [&] { watched_.AbortRequested = true; };
  const std::size_t open = OpenHandles();
  const DocumentJudgement judgement = JudgementOf(WithPage("").Build());
  EXPECT_TRUE(judgement.WasCancelled());
  EXPECT_EQ(OpenHandles(), open);
}

TEST_F(DocumentJudgeTest, OneJudgementLeavesNothingForTheNext) {
  EXPECT_FALSE(JudgementOf(WithPage("/X 0 0 R/T(a \nb)").Build()).IsPlain());
  EXPECT_TRUE(JudgementOf(WithPage("").Build()).IsPlain());
  EXPECT_TRUE(shell_.Events.empty());
}

}  // namespace
}  // namespace folioweld::testing
