// The job's steps before its first pass: names, inputs, what is left out.

#include <cerrno>
#include <filesystem>
#include <gtest/gtest.h>

#include "tests/support/document_builder.h"
#include "tests/support/merge_run.h"
#include "tests/support/status_texts.h"

namespace folioweld::testing {
namespace {

using Events = std::vector<std::string>;

void ExpectIdle(MergeRun& run) {
  EXPECT_FALSE(run.State.JobRunning);
  EXPECT_FALSE(run.State.AbortRequested);
  for (std::int32_t slot = 1; slot <= 3; ++slot) EXPECT_EQ(run.State.DocFileNumber(slot), -1) << slot;
}

class OutputNameTest : public ::testing::TestWithParam<int> {};

TEST_P(OutputNameTest, EqualToAnInputNameIsRefusedWithAMessageAndNoFileIsTouched) {
  MergeRun run(SimpleDocument(1), SimpleDocument(2));
  run.State.DocFileName(3) = run.State.DocFileName(GetParam());
  run.Run();
  ASSERT_EQ(run.Shell.Messages.size(), 1U);
  EXPECT_EQ(run.Shell.Messages[0].Title, "Folioweld");
  EXPECT_EQ(run.Shell.Messages[0].Icon, MessageIcon::Exclamation);
  EXPECT_EQ(run.Shell.Messages[0].Text,
            "The output file is also an input file!\r\nThis operation cannot be done.");
  EXPECT_TRUE(run.Failed());
  ExpectIdle(run);
  EXPECT_TRUE(run.System.Calls.empty());
  EXPECT_EQ(run.Shell.Calls, Events{}) << "the window's state is left alone";
  EXPECT_EQ(run.State.DocFileName(1), run.FirstPath);
  EXPECT_EQ(run.State.DocFileName(2), run.SecondPath);
  EXPECT_EQ(run.LogLines(), Events{"[Folioweld-cmdOK]=>The output file is also an input file: \"" +
                                   run.State.DocFileName(3) + "\""});
}

TEST_P(OutputNameTest, EqualToAnInputNameIsRefusedWithoutAMessageWhenSilent) {
  MergeRun run(SimpleDocument(1), SimpleDocument(2));
  run.State.DocFileName(3) = run.State.DocFileName(GetParam());
  run.State.SilentMode = true;
  run.Run();
  EXPECT_TRUE(run.Shell.Messages.empty());
  EXPECT_TRUE(run.Failed());
  ExpectIdle(run);
}

INSTANTIATE_TEST_SUITE_P(Inputs, OutputNameTest, ::testing::Values(1, 2));

TEST(MergeJobRefusalsTest, TheStatusLinesOfTheLastJobStayWhenTheOutputNameIsRefused) {
  MergeRun run(SimpleDocument(1), "");
  run.Shell.SetStatusText(0, "before");
  run.State.DocFileName(3) = run.FirstPath;
  run.Run();
  EXPECT_EQ(run.Status(0), "before");
}

TEST(MergeJobRefusalsTest, NamesAreComparedCharacterByCharacter) {
  MergeRun run(SimpleDocument(1), "");
  run.OutputPath = run.Folder.File("A.PDF");
  run.State.DocFileName(3) = run.OutputPath;
  run.Run();
  EXPECT_TRUE(run.Shell.Messages.empty());
  EXPECT_TRUE(Exists(run.OutputPath));
}

TEST(MergeJobRefusalsTest, AnEmptyOutputNameEqualsAnEmptyInputName) {
  MergeRun run(SimpleDocument(1), "");
  run.State.DocFileName(3).clear();
  run.Run();
  EXPECT_EQ(run.Shell.Messages.size(), 1U);
  EXPECT_TRUE(run.Failed());
  ExpectIdle(run);
}

TEST(MergeJobRefusalsTest, WithOnlyASecondInputTheJobEndsAtOnce) {
  MergeRun run("", SimpleDocument(1));
  run.Run();
  EXPECT_TRUE(run.Failed());
  ExpectIdle(run);
  EXPECT_FALSE(Exists(run.OutputPath));
  EXPECT_TRUE(run.Shell.Messages.empty());
  EXPECT_EQ(run.Shell.Events, (Events{"0|", "1|", "2|", "DisableInputPicking", "RefreshControls"}));
  EXPECT_EQ(run.LogLines(), Events{}) << "nothing was refused";
  EXPECT_TRUE(run.System.Calls.empty());
}

TEST(MergeJobRefusalsTest, AFirstInputThatIsNoDocumentEndsTheJob) {
  MergeRun run(kNoDocument, SimpleDocument(1));
  const std::size_t handles = OpenHandles();
  run.Folder.Write("out.pdf", "old");
  run.Run();
  EXPECT_TRUE(run.Failed());
  ExpectIdle(run);
  EXPECT_EQ(OpenHandles(), handles);
  EXPECT_EQ(run.State.DocFileName(1), "");
  EXPECT_EQ(run.State.DocHeader(1), "");
  EXPECT_EQ(run.State.DocSecondLine(1), "");
  EXPECT_EQ(run.State.DocXrefStart(1), -1);
  EXPECT_FALSE(run.State.DocUsed(1));
  EXPECT_FALSE(run.State.DocUsed(2));
  EXPECT_EQ(run.State.DocFileName(2), run.SecondPath);
  EXPECT_EQ(run.State.DocFileName(3), run.OutputPath) << "no pass has run";
  EXPECT_EQ(run.Output(), "old");
  EXPECT_TRUE(run.Shell.Messages.empty());
}

TEST(MergeJobRefusalsTest, AFirstInputThatIsRefusedIsToldOnItsStatusLineAndInTheLog) {
  MergeRun run(kNoDocument, "");
  run.Run();
  const std::string why = "\"" + run.FirstPath + "\", file offset 0: the file does not begin with \"%PDF-\"";
  EXPECT_EQ(run.Shell.Events, (Events{"0|", "1|", "2|", "DisableInputPicking", "RefreshControls",
                                      "0|FAILED or cancelled: " + why, "Notice"}));
  EXPECT_EQ(run.LogLines(), Events{"[Folioweld-cmdOK]=>The first input is not accepted: " + why});
  EXPECT_EQ(run.Shell.Notices, run.LogLines());
}

TEST(MergeJobRefusalsTest, AFirstInputThatDoesNotExistEndsTheJob) {
  MergeRun run(SimpleDocument(1), "");
  run.State.DocFileName(1) = run.Folder.File("missing.pdf");
  run.Run();
  EXPECT_TRUE(run.Failed());
  ExpectIdle(run);
  EXPECT_EQ(run.LogLines(),
            Events{"[Folioweld-cmdOK]=>The first input is not accepted: \"" + run.Folder.File("missing.pdf") +
                   "\": the file cannot be opened: No such file or directory"});
}

TEST(MergeJobRefusalsTest, ASecondInputThatIsNoDocumentIsLeftOut) {
  MergeRun run(SimpleDocument(2), kNoDocument);
  const std::size_t handles = OpenHandles();
  run.Run();
  EXPECT_EQ(run.State.MergeStatus, 2);
  ExpectIdle(run);
  EXPECT_EQ(OpenHandles(), handles);
  EXPECT_TRUE(run.Shell.Messages.empty());
  EXPECT_EQ(run.State.DocFileName(2), "");
  EXPECT_EQ(run.State.DocHeader(2), "");
  EXPECT_EQ(run.State.DocSecondLine(2), "");
  EXPECT_EQ(run.State.DocXrefStart(2), -1);
  EXPECT_FALSE(run.State.DocUsed(2));
  MergeRun alone(SimpleDocument(2), "");
  alone.Run();
  EXPECT_EQ(run.Output(), alone.Output());
}

TEST(MergeJobRefusalsTest, ASecondInputThatIsLeftOutIsToldOnItsStatusLineAndInTheLog) {
  MergeRun run(SimpleDocument(2), kNoDocument);
  run.Run();
  const std::string why = "\"" + run.SecondPath + "\", file offset 0: the file does not begin with \"%PDF-\"";
  EXPECT_EQ(run.LogLines(),
            Events{"[Folioweld-cmdOK]=>The second input is not accepted and left out: " + why});
  EXPECT_EQ(run.Shell.Notices, run.LogLines());
  EXPECT_EQ(run.Status(1), "FAILED or cancelled: " + why);
  EXPECT_EQ(run.Shell.Calls, (Events{"DisableInputPicking", "RefreshControls", "RefreshControls",
                                     "EnterRunningState", "LeaveRunningState", "RefreshControls"}));
}

TEST(MergeJobRefusalsTest, ASecondInputWithoutANameIsLeftOutWithoutAWord) {
  MergeRun run(SimpleDocument(2), "");
  run.Run();
  EXPECT_EQ(run.State.MergeStatus, 2);
  EXPECT_EQ(run.LogLines(), Events{});
  EXPECT_EQ(run.Status(1), "");
}

TEST(MergeJobRefusalsTest, AFolderAsAnInputIsRefused) {
  MergeRun run(SimpleDocument(1), "");
  run.State.DocFileName(2) = run.Folder.MakeFolder("folder");
  run.Run();
  EXPECT_EQ(run.State.MergeStatus, 2);
  ASSERT_EQ(run.LogLines().size(), 1U);
  EXPECT_NE(run.LogLines()[0].find("Is a directory"), std::string::npos);
}

TEST(MergeJobRefusalsTest, WhatARefusedInputLeftOfAnEarlierJobIsNotUsed) {
  MergeRun run(SimpleDocument(1), SimpleDocument(1, "b", "1.7"));
  run.Run();
  EXPECT_EQ(run.Output().substr(0, 9), "%PDF-1.7\r");
  run.State.DocFileName(2) = run.Folder.Write("c.pdf", kNoDocument);
  run.Run();
  EXPECT_EQ(run.Output().substr(0, 9), "%PDF-1.4\r");
}

TEST(MergeJobRefusalsTest, WhatAMissingInputLeftOfAnEarlierJobIsEmptied) {
  MergeRun run(SimpleDocument(1), SimpleDocument(1));
  run.Run();
  for (const std::int16_t slot : {std::int16_t{2}, std::int16_t{1}}) {
    // As a job that was ended in the middle of a chain leaves it.
    run.State.DocXrefStart(slot) = 17;
    run.State.DocFileName(slot) = run.Folder.File("missing.pdf");
    run.Run();
    EXPECT_EQ(run.State.DocHeader(slot), "");
    EXPECT_EQ(run.State.DocSecondLine(slot), "");
    EXPECT_EQ(run.State.DocXrefStart(slot), -1);
    EXPECT_FALSE(run.State.DocUsed(slot));
  }
}

TEST(MergeJobRefusalsTest, AJobThatRunsIsNotEnteredAgain) {
  MergeRun run(SimpleDocument(1), "");
  run.State.JobRunning = true;
  run.State.AbortRequested = true;
  run.Run();
  EXPECT_TRUE(run.Shell.Events.empty());
  EXPECT_TRUE(run.System.Calls.empty());
  EXPECT_TRUE(run.State.JobRunning);
  EXPECT_TRUE(run.State.AbortRequested);
  EXPECT_EQ(run.State.MergeStatus, 2);
}

TEST(MergeJobRefusalsTest, StartingAJobFromWithinAJobDoesNothing) {
  MergeRun run(SimpleDocument(1), SimpleDocument(1));
  run.Shell.OnYield = [&] {
    EXPECT_TRUE(run.State.JobRunning);
    run.Job.cmdOK_Click();
  };
  run.Run();
  EXPECT_EQ(run.State.MergeStatus, 2);
  EXPECT_EQ(run.Shell.Calls, (Events{"DisableInputPicking", "RefreshControls", "EnterRunningState",
                                     "LeaveRunningState", "RefreshControls"}));
}

// The output under another name of an input.

class OutputIsInputTest : public ::testing::Test {
 protected:
  void ExpectRefused(const std::string& output, const std::string& reason) {
    run_.State.DocFileName(3) = output;
    run_.Run();
    ASSERT_EQ(run_.Shell.Messages.size(), 1U);
    EXPECT_EQ(run_.Shell.Messages[0].Text, "Could not open output file: " + output);
    EXPECT_TRUE(run_.Failed());
    EXPECT_EQ(run_.State.DocFileName(3), "");
    ExpectIdle(run_);
    EXPECT_EQ(ReadFile(run_.FirstPath), SimpleDocument(1));
    EXPECT_EQ(ReadFile(run_.SecondPath), SimpleDocument(2));
    EXPECT_TRUE(Exists(output)) << "the name stays";
    EXPECT_EQ(run_.LogLines().back(), "[Folioweld-cmdOK]=>  because of " + reason);
  }

  MergeRun run_{SimpleDocument(1), SimpleDocument(2)};
};

TEST_F(OutputIsInputTest, AsAHardLinkOfTheFirstIsRefused) {
  std::filesystem::create_hard_link(run_.FirstPath, run_.Folder.File("link.pdf"));
  ExpectRefused(run_.Folder.File("link.pdf"), "it is the document \"" + run_.FirstPath + "\"");
}

TEST_F(OutputIsInputTest, AsAHardLinkOfTheSecondIsRefused) {
  std::filesystem::create_hard_link(run_.SecondPath, run_.Folder.File("link.pdf"));
  ExpectRefused(run_.Folder.File("link.pdf"), "it is the document \"" + run_.SecondPath + "\"");
}

TEST_F(OutputIsInputTest, AsASymbolicLinkIsRefused) {
  std::filesystem::create_symlink(run_.SecondPath, run_.Folder.File("link.pdf"));
  ExpectRefused(run_.Folder.File("link.pdf"), "it is a link");
}

TEST_F(OutputIsInputTest, InAnotherSpellingIsRefused) {
  ExpectRefused(run_.Folder.Path() + "/./a.pdf", "it is the document \"" + run_.FirstPath + "\"");
}

TEST_F(OutputIsInputTest, WithADoubledSeparatorIsRefused) {
  ExpectRefused(run_.Folder.Path() + "//b.pdf", "it is the document \"" + run_.SecondPath + "\"");
}

TEST_F(OutputIsInputTest, ThroughALinkedFolderIsRefused) {
  std::filesystem::create_directory_symlink(run_.Folder.Path(), run_.Folder.File("folder"));
  ExpectRefused(run_.Folder.File("folder") + "/a.pdf", "it is the document \"" + run_.FirstPath + "\"");
}

TEST_F(OutputIsInputTest, WhenTheInputWasNamedThroughALinkIsRefused) {
  std::filesystem::create_symlink(run_.FirstPath, run_.Folder.File("link.pdf"));
  run_.State.DocFileName(1) = run_.Folder.File("link.pdf");
  ExpectRefused(run_.FirstPath, "it is the document \"" + run_.Folder.File("link.pdf") + "\"");
}

TEST_F(OutputIsInputTest, ASymbolicLinkToAnyOtherFileIsRefusedToo) {
  const std::string other = run_.Folder.Write("other", "mine");
  std::filesystem::create_symlink(other, run_.Folder.File("link.pdf"));
  ExpectRefused(run_.Folder.File("link.pdf"), "it is a link");
  EXPECT_EQ(ReadFile(other), "mine");
}

TEST_F(OutputIsInputTest, ADanglingLinkIsRefusedAndLeadsToNoNewFile) {
  std::filesystem::create_symlink(run_.Folder.File("nowhere"), run_.Folder.File("link.pdf"));
  ExpectRefused(run_.Folder.File("link.pdf"), "it is a link");
  EXPECT_FALSE(Exists(run_.Folder.File("nowhere")));
}

TEST_F(OutputIsInputTest, IsRefusedWithoutAMessageWhenSilent) {
  std::filesystem::create_hard_link(run_.FirstPath, run_.OutputPath);
  run_.State.SilentMode = true;
  run_.Run();
  EXPECT_TRUE(run_.Shell.Messages.empty());
  EXPECT_TRUE(run_.Failed());
  EXPECT_EQ(run_.State.DocFileName(3), "");
  EXPECT_EQ(ReadFile(run_.FirstPath), SimpleDocument(1));
}

}  // namespace
}  // namespace folioweld::testing
