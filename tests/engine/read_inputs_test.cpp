// The reading phase: both passes of each input.

#include <gtest/gtest.h>

#include "tests/support/document_builder.h"
#include "tests/support/merge_run.h"

namespace folioweld::testing {
namespace {

std::string Parsing(int slot, const std::string& path) {
  return "Parsing file #" + std::to_string(slot) + ": " + path +
         "\r\nPass #1 (getting general document structure):    \r\n";
}

const std::string kSecondPassLabel = "\r\nPass #2 (getting description of the objects):\r\n+";

/// Three objects: 0 to 2.
std::string Small() {
  return DocumentBuilder().Object(1, "<</Type/Catalog>>").Object(2, "<<>>").Build();
}

std::string WithABrokenObject() {
  return DocumentBuilder().Object(1, "<</Type/Catalog>>").Object(2, "null").Build();
}

std::string WithABrokenTrailer() {
  return DocumentBuilder().Object(1, "<<>>").Object(2, "<<>>").Trailer("/Size 1").Build();
}

TEST(ReadInputsTest, CountsTheObjectsOfBothInputs) {
  MergeRun run(SimpleDocument(1), Small());
  EXPECT_TRUE(run.Read());
  EXPECT_EQ(run.State.ObjectsInDoc1, 7);
  EXPECT_EQ(run.State.ObjectsInDoc2, 3);
  EXPECT_EQ(run.State.ObjectsTotal, 10);
  EXPECT_EQ(run.State.Objects.UpperBound(), 9);
  EXPECT_EQ(run.State.Objects[8].ObjNumber, 1);
  EXPECT_EQ(run.State.Objects[8].DocNo, 2);
}

TEST(ReadInputsTest, ResetsTheStateFirst) {
  MergeRun run(Small(), "");
  run.State.MergeStatus = -1;
  run.State.DictDepth = 50;
  run.State.MissingLengthCount = 7;
  EXPECT_TRUE(run.Read());
  EXPECT_EQ(run.State.MergeStatus, 2);
  EXPECT_EQ(run.State.DictDepth, 0);
  EXPECT_EQ(run.State.MissingLengthCount, 0);
  EXPECT_EQ(run.State.DocHeader(3), "%PDF-1.4\r");
}

TEST(ReadInputsTest, TheStatusLinesTellBothPassesOfBothInputs) {
  MergeRun run(Small(), Small());
  EXPECT_TRUE(run.Read());
  EXPECT_EQ(run.Status(0),
            Parsing(1, run.FirstPath) + "+0-2   -> OK" + kSecondPassLabel + "++++++++++ 100% (2)   -> OK");
  EXPECT_EQ(run.Status(1),
            Parsing(2, run.SecondPath) + "+0-2   -> OK" + kSecondPassLabel + "++++++++++ 100% (5)   -> OK");
  EXPECT_EQ(run.Status(2), "");
}

TEST(ReadInputsTest, ThePassesBeginWithTheirCaptions) {
  MergeRun run(Small(), "");
  EXPECT_TRUE(run.Read());
  const std::string pass1 = Parsing(1, run.FirstPath);
  EXPECT_EQ(run.Shell.Events.at(0), "0|" + pass1);
  EXPECT_EQ(run.Shell.Events.at(1), "0|" + pass1 + "+");
  EXPECT_EQ(std::count(run.Shell.Events.begin(), run.Shell.Events.end(), "0|" + pass1 + "+0-2   -> OK"), 1);
  EXPECT_EQ(std::count(run.Shell.Events.begin(), run.Shell.Events.end(),
                       "0|" + pass1 + "+0-2   -> OK" + kSecondPassLabel),
            1);
}

TEST(ReadInputsTest, AFailedFirstPassIsToldAndNothingElseIsRead) {
  MergeRun run(WithABrokenTrailer(), Small());
  EXPECT_FALSE(run.Read());
  EXPECT_EQ(run.Status(0), Parsing(1, run.FirstPath) + "+0-2   -> FAILED or cancelled");
  EXPECT_EQ(run.Status(1), "");
}

TEST(ReadInputsTest, AFailedSecondPassIsToldAndNothingElseIsRead) {
  MergeRun run(WithABrokenObject(), Small());
  EXPECT_FALSE(run.Read());
  EXPECT_EQ(run.Status(0), Parsing(1, run.FirstPath) + "+0-2   -> OK" + kSecondPassLabel +
                               " 0% (0)   -> FAILED or cancelled");
  EXPECT_EQ(run.Status(1), "");
}

TEST(ReadInputsTest, AFailureOfTheSecondInputIsToldOnItsOwnLine) {
  MergeRun run(Small(), WithABrokenTrailer());
  EXPECT_FALSE(run.Read());
  EXPECT_EQ(run.Status(0).substr(run.Status(0).rfind("   -> ")), "   -> OK");
  EXPECT_EQ(run.Status(1), Parsing(2, run.SecondPath) + "+0-2   -> FAILED or cancelled");
  EXPECT_EQ(run.State.Failure.DocumentSlot, 2);
}

TEST(ReadInputsTest, WithoutAFirstInputTheResultIsFalseAndTheSecondIsNotRead) {
  MergeRun run("", Small());
  EXPECT_FALSE(run.Read());
  EXPECT_EQ(run.Status(1), "");
  EXPECT_EQ(run.State.ObjectsTotal, 0);
}

TEST(ReadInputsTest, TheCountsAreTakenAfterAFailureToo) {
  MergeRun run(WithABrokenObject(), "");
  EXPECT_FALSE(run.Read());
  EXPECT_EQ(run.State.ObjectsInDoc1, 3);
  EXPECT_EQ(run.State.ObjectsTotal, 3);
}

TEST(ReadInputsTest, AnObjectTableOfAnotherSizeFails) {
  MergeRun run(Small(), "");
  run.Shell.OnStatus = [&](int) {
    const std::string& text = run.Shell.StatusText(0);
    if (text.size() > 2 && text.substr(text.size() - 2) == "OK") run.State.Objects.Grow(5);
  };
  EXPECT_FALSE(run.Read());
  EXPECT_EQ(run.State.Failure.Rule, "the object table does not cover the objects of both inputs");
}

TEST(ReadInputsTest, CountsWhoseSumIsTooLargeFail) {
  MergeRun run(Small(), "");
  run.Shell.OnStatus = [&](int) { run.State.DocObjectCount(2) = 2147483647; };
  EXPECT_FALSE(run.Read());
  EXPECT_FALSE(run.State.Failure.Empty());
}

TEST(ReadOneInputTest, OtherSlotsThanTheInputsGiveFalseWithoutDoingAnything) {
  MergeRun run(Small(), "");
  for (const int slot : {-1, 0, 3, 4}) {
    bool ok = true;
    run.Job.ReadOneInput(static_cast<std::int16_t>(slot), ok);
    EXPECT_FALSE(ok) << slot;
  }
  EXPECT_TRUE(run.Shell.Events.empty());
}

TEST(ReadOneInputTest, ASlotThatIsNotUsedGivesFalseWithoutDoingAnything) {
  MergeRun run(Small(), "");
  bool ok = true;
  run.Job.ReadOneInput(2, ok);
  EXPECT_FALSE(ok);
  EXPECT_TRUE(run.Shell.Events.empty());
}

TEST(ReadOneInputTest, EachPassStartsAtNestingDepthZero) {
  MergeRun run(Small(), "");
  run.Shell.OnStatus = [&](int) {
    // Each pass shows its caption before it starts; what is left here must not count.
    const std::string& text = run.Shell.StatusText(0);
    if (text.back() == '\n' || text.substr(text.size() - 2) == "OK") run.State.DictDepth = 100;
  };
  EXPECT_TRUE(run.Read());
}

TEST(ReadOneInputTest, LabelAndNameShare116Characters) {
  MergeRun run(Small(), "");
  const std::string folder = run.Folder.MakeFolder(std::string(60, 'f'));
  run.FirstPath = run.Folder.Write(std::string(60, 'f') + "/" + std::string(100, 'n') + ".pdf", Small());
  run.State.DocFileName(1) = run.FirstPath;
  EXPECT_TRUE(run.Read());
  const std::string& text = run.Status(0);
  // The label takes 17 characters; of the other 99 the two ends get 47 each.
  const std::string expected = "Parsing file #1: " + run.FirstPath.substr(0, 47) + " ... " +
                               run.FirstPath.substr(run.FirstPath.size() - 47);
  EXPECT_EQ(text.substr(0, text.find("\r\n")), expected);
  EXPECT_EQ(folder.size() + 105, run.FirstPath.size());
}

}  // namespace
}  // namespace folioweld::testing
