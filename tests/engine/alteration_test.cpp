// How alterations are kept and told: data with the document they are in, one line each, once.

#include <gtest/gtest.h>

#include "engine/alteration_record.h"
#include "tests/support/document_builder.h"
#include "tests/support/merge_run.h"

namespace folioweld::testing {
namespace {

using Lines = std::vector<std::string>;

/// One page, and the catalog as the information dictionary.
std::string Warned() {
  return DocumentBuilder()
      .Object(1, "<</Type/Catalog/Pages 2 0 R>>")
      .Object(2, "<</Type/Pages/Kids[]/Count 0>>")
      .TrailerExtra("/Info 1 0 R")
      .Build();
}

/// The lines about alterations among the last ones of a status line.
std::string AfterTheLastOutcome(const MergeRun& run) {
  const std::string status = run.Status(2);
  const std::string outcome = "   -> OK\r\n";
  const std::size_t at = status.rfind(outcome);
  return at == std::string::npos ? "no outcome in " + status : status.substr(at + outcome.size());
}

/// A state whose second input is an output of this run that holds three documents.
struct HeldDocuments {
  HeldDocuments() { State.DocSources(2) = {{"/a", 0, true, {}}, {"/b", 10, true, {}}, {"/c", 20, true, {}}}; }
  void Note(std::int32_t number) { NoteAlteration(State, 2, AlterationKind::InformationShared, number); }
  const Alteration* Of(std::size_t document) {
    const auto& found = State.DocSources(2)[document].Alterations;
    return found.empty() ? nullptr : &found.front();
  }
  MergeState State;
};

TEST(AlterationTest, IsKeptWithTheDocumentThatTheObjectIsFrom) {
  const struct {
    std::int32_t Number;
    std::size_t Document;
    std::int32_t Own;
  } cases[] = {{-1, 0, -1}, {0, 0, 0}, {9, 0, 9}, {10, 1, 0}, {19, 1, 9}, {20, 2, 0}, {500, 2, 480}};
  for (const auto& c : cases) {
    HeldDocuments held;
    held.Note(c.Number);
    for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(held.Of(i) != nullptr, i == c.Document) << c.Number;
    ASSERT_NE(held.Of(c.Document), nullptr) << c.Number;
    EXPECT_EQ(held.Of(c.Document)->ObjectNumber, c.Own);
    EXPECT_EQ(held.Of(c.Document)->FileOffset, -1) << "the temporary file's offset says nothing";
  }
}

TEST(AlterationTest, CountsFurtherPlacesAndKeepsTheFirst) {
  HeldDocuments held;
  for (const std::int32_t number : {12, 11, 13}) held.Note(number);
  EXPECT_EQ(held.Of(1)->ObjectNumber, 2);
  EXPECT_EQ(held.Of(1)->Count, 3);
}

TEST(AlterationTest, ToldInAnEarlierRoundIsNotCountedAgain) {
  HeldDocuments held;
  held.Note(12);
  held.State.DocSources(2)[1].Alterations[0].Told = true;
  held.Note(13);
  EXPECT_EQ(held.Of(1)->Count, 1);
}

TEST(AlterationTest, OfADocumentItselfHasTheOffsetInItsFile) {
  MergeRun run(Warned(), "");
  ASSERT_TRUE(run.Read());
  NoteAlteration(run.State, 1, AlterationKind::InformationShared, 2);
  const Alteration& found = run.State.DocSources(1).at(0).Alterations.at(0);
  EXPECT_EQ(found.FileOffset, static_cast<std::int64_t>(Warned().find("2 0 obj")));
  EXPECT_EQ(run.State.DocSources(1)[0].Name, run.FirstPath);
}

TEST(AlterationTest, TheSentenceTellsDocumentObjectOffsetDetailAndHowMany) {
  Alteration one{AlterationKind::InformationShared, 3, 99, 1, "a stream", false};
  const std::string words =
      "/Info names an object that is more than an information dictionary, and the output has one in its "
      "place";
  EXPECT_EQ(Sentence(one, "/a"), "\"/a\", object 3, file offset 99: " + words + " (a stream)");
  one.Count = 2;
  EXPECT_EQ(Sentence(one, "/a"),
            "\"/a\", object 3, file offset 99: " + words + " (a stream), the first of 2 such places");
  EXPECT_EQ(Sentence({AlterationKind::InformationShared, -1, -1, 1, "", false}, "/a"), "\"/a\": " + words);
}

TEST(AlterationTest, APieceOfADocumentIsShownShortAndPlain) {
  EXPECT_EQ(ShownPiece("/Key"), "/Key");
  EXPECT_EQ(ShownPiece("/\x1b[2J\xE9\x7F~"), "/?[2J??~");
  EXPECT_EQ(ShownPiece(std::string(40, 'a')), std::string(40, 'a'));
  EXPECT_EQ(ShownPiece(std::string(41, 'a')), std::string(40, 'a') + "...");
}

TEST(AlterationsOfAJob, AreALineOfTheLogEachAndANotice) {
  MergeRun run(Warned(), Warned());
  run.Run();
  EXPECT_EQ(run.State.MergeStatus, 2) << "a success all the same";
  ASSERT_EQ(run.LogLines().size(), 2U);
  EXPECT_EQ(run.LogLines()[0].find("[Folioweld-cmdOK]=>\"" + run.FirstPath + "\", object 1, file offset "),
            0U);
  EXPECT_EQ(run.LogLines()[1].find("[Folioweld-cmdOK]=>\"" + run.SecondPath + "\", object 1, file offset "),
            0U);
  EXPECT_EQ(run.Shell.Notices, run.LogLines());
}

TEST(AlterationsOfAJob, AreCountedAfterTheLastOutcome) {
  MergeRun one(Warned(), SimpleDocument(1));
  one.Run();
  EXPECT_EQ(AfterTheLastOutcome(one), "1 warning, see the log\r\n");
  MergeRun two(Warned(), Warned());
  two.Run();
  EXPECT_EQ(AfterTheLastOutcome(two), "2 warnings, see the log\r\n");
  MergeRun none(SimpleDocument(1), SimpleDocument(1));
  none.Run();
  EXPECT_EQ(AfterTheLastOutcome(none), "");
}

TEST(AlterationsOfAJob, ShowTheFirstSentenceWhereTheLogIsOff) {
  MergeRun run(SimpleDocument(1), Warned());
  run.State.LogEnabled = false;
  run.Run();
  EXPECT_EQ(run.LogLines(), Lines{});
  ASSERT_EQ(run.Shell.Notices.size(), 1U);
  EXPECT_EQ("[Folioweld-cmdOK]=>" + AfterTheLastOutcome(run), run.Shell.Notices[0] + "\r\n");
}

TEST(AlterationsOfAJob, AreNotToldWhereThereIsNoOutput) {
  MergeRun run(Warned(), "");
  run.State.DocFileName(3) = run.Folder.File("missing/out.pdf");
  run.Run();
  EXPECT_TRUE(run.Failed());
  ASSERT_EQ(run.LogLines().size(), 2U);
  EXPECT_NE(run.LogLines()[0].find("The merge failed: "), std::string::npos);
  EXPECT_EQ(run.LogLines()[1], "[Folioweld-cmdOK]=>  because of No such file or directory");
}

TEST(AlterationsOfAJob, AreToldAnewByEveryJob) {
  MergeRun run(Warned(), SimpleDocument(1));
  run.Run();
  run.Run();
  EXPECT_EQ(run.LogLines().size(), 2U);
  EXPECT_EQ(AfterTheLastOutcome(run), "1 warning, see the log\r\n");
}

TEST(AlterationsOfAJob, LeaveTheDocumentsOfTheOutput) {
  MergeRun run(SimpleDocument(2), Warned());
  run.Run();
  const auto& held = run.State.DocSources(3);
  ASSERT_EQ(held.size(), 2U);
  EXPECT_EQ(held[0].Name, run.FirstPath);
  EXPECT_EQ(held[1].Name, run.SecondPath);
  EXPECT_EQ(held[1].FirstObject, run.State.ObjectsInDoc1);
  EXPECT_TRUE(held[0].Rewritten);
  EXPECT_TRUE(held[0].Alterations.empty());
  EXPECT_EQ(held[1].Alterations.size(), 1U);
  EXPECT_TRUE(run.State.DocSources(1).empty());
}

}  // namespace
}  // namespace folioweld::testing
