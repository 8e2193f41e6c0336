// What a job shows, in which order, and what is left when it has succeeded.

#include <algorithm>
#include <gtest/gtest.h>

#include "tests/support/document_builder.h"
#include "tests/support/merge_run.h"
#include "tests/support/status_texts.h"

namespace folioweld::testing {
namespace {

using Events = std::vector<std::string>;

std::string Parsed(int slot, const std::string& path, int last, int lastIndex) {
  return "Parsing file #" + std::to_string(slot) + ": " + path +
         "\r\nPass #1 (getting general document structure):    \r\n+0-" + std::to_string(last) +
         "   -> OK\r\nPass #2 (getting description of the objects):\r\n+++++++++++ 100% (" +
         std::to_string(lastIndex) + ")   -> OK";
}

const std::string kPasses12 =
    "Pass #1 of building output file: get missing lengths and relocate objects"
    "   -> OK : the missing length of 0  object has been found\r\n"
    "Pass #2 for output file: compute new object numbers   -> OK\r\n";

/// The events without those of the status lines.
Events CallsOf(const MergeRun& run) {
  Events calls;
  for (const std::string& event : run.Shell.Events) {
    if (event.size() < 2 || event[1] != '|') calls.push_back(event);
  }
  return calls;
}

std::ptrdiff_t IndexOf(const MergeRun& run, const std::string& event) {
  const auto at = std::find(run.Shell.Events.begin(), run.Shell.Events.end(), event);
  EXPECT_NE(at, run.Shell.Events.end()) << event;
  return at - run.Shell.Events.begin();
}

class MergeJobOrderTest : public ::testing::Test {
 protected:
  MergeRun run_{SimpleDocument(1), SimpleDocument(2)};
};

TEST_F(MergeJobOrderTest, TheStatusLinesOfASuccess) {
  run_.Run();
  EXPECT_EQ(run_.Status(0), Parsed(1, run_.FirstPath, 6, 6));
  EXPECT_EQ(run_.Status(1), Parsed(2, run_.SecondPath, 8, 15));
  EXPECT_EQ(run_.Status(2), kPasses12 + kPass3 + "   -> OK\r\n" + kPass4 + "   -> OK\r\n");
}

TEST_F(MergeJobOrderTest, TheStatusLinesOfASuccessWithOneInput) {
  run_.State.DocFileName(2).clear();
  run_.Run();
  EXPECT_EQ(run_.Status(0), Parsed(1, run_.FirstPath, 6, 6));
  EXPECT_EQ(run_.Status(1), "");
  EXPECT_EQ(run_.Status(2), kPasses12 + kPass3 + " -> OK \r\n" + kPass4 + "   -> OK\r\n");
}

TEST_F(MergeJobOrderTest, TheCallsOfASuccess) {
  run_.Run();
  EXPECT_EQ(CallsOf(run_), (Events{"DisableInputPicking", "RefreshControls", "EnterRunningState",
                                   "LeaveRunningState", "RefreshControls"}));
}

TEST_F(MergeJobOrderTest, TheStatusLinesAreEmptiedBeforeAnythingElse) {
  for (int line = 0; line < 3; ++line) run_.Shell.SetStatusText(line, "old");
  run_.Shell.Events.clear();
  run_.Run();
  EXPECT_EQ(Events(run_.Shell.Events.begin(), run_.Shell.Events.begin() + 4),
            (Events{"0|", "1|", "2|", "DisableInputPicking"}));
}

TEST_F(MergeJobOrderTest, ThePassesRunBetweenEnteringAndLeavingTheRunningState) {
  run_.Run();
  const auto enter = IndexOf(run_, "EnterRunningState");
  const auto leave = IndexOf(run_, "LeaveRunningState");
  EXPECT_EQ(run_.Shell.Events[static_cast<std::size_t>(enter) + 1].substr(0, 10), "0|Parsing ");
  EXPECT_EQ(run_.Shell.Events[static_cast<std::size_t>(leave) - 1], "2|" + run_.Status(2));
}

TEST_F(MergeJobOrderTest, TheFirstInputIsReadBeforeTheSecondAndBothBeforeTheOutputIsBuilt) {
  run_.Run();
  const auto first = IndexOf(run_, "0|" + run_.Status(0));
  const auto second = IndexOf(run_, "1|" + run_.Status(1));
  const auto output = IndexOf(run_, "2|Pass #1 of building output file:");
  EXPECT_LT(first, second);
  EXPECT_LT(second, output);
}

TEST_F(MergeJobOrderTest, TheOutputIsOpenedAfterThePassesThatBuildIt) {
  run_.Shell.OnStatus = [&](int line) {
    if (line != 2 || run_.Status(2).empty()) return;
    const bool writing = run_.Status(2).find("Pass #4") != std::string::npos;
    EXPECT_EQ(Exists(run_.OutputPath), writing) << run_.Status(2);
  };
  run_.Run();
}

TEST_F(MergeJobOrderTest, TheJobRunsFromItsStartToItsEnd) {
  run_.Shell.OnStatus = [&](int) { EXPECT_TRUE(run_.State.JobRunning); };
  EXPECT_FALSE(run_.State.JobRunning);
  run_.Run();
  EXPECT_FALSE(run_.State.JobRunning);
}

TEST_F(MergeJobOrderTest, TheOutcomeIsShownOnlyWhenTheFileIsClosedAndCut) {
  bool shown = false;
  run_.Shell.OnStatus = [&](int line) {
    const std::string ending = kPass4 + "   -> OK\r\n";
    const std::string& text = run_.Status(2);
    if (line != 2 || text.size() < ending.size() || text.substr(text.size() - ending.size()) != ending)
      return;
    shown = true;
    EXPECT_EQ(run_.State.DocFileNumber(3), -1);
    EXPECT_EQ(run_.System.Calls.back().Name, "CloseHandle") << "of the output";
    EXPECT_EQ((run_.System.Calls.rbegin() + 1)->Name, "SetEndOfFile");
  };
  run_.Run();
  EXPECT_TRUE(shown);
}

TEST_F(MergeJobOrderTest, LeavesNoHandleOpenAndNoNameChanged) {
  const std::size_t handles = OpenHandles();
  run_.Run();
  EXPECT_EQ(OpenHandles(), handles);
  for (std::int32_t slot = 1; slot <= 3; ++slot) EXPECT_EQ(run_.State.DocFileNumber(slot), -1) << slot;
  EXPECT_EQ(run_.State.DocFileName(1), run_.FirstPath);
  EXPECT_EQ(run_.State.DocFileName(2), run_.SecondPath);
  EXPECT_EQ(run_.State.DocFileName(3), run_.OutputPath);
  EXPECT_EQ(run_.State.MergeStatus, 2);
  EXPECT_FALSE(run_.State.AbortRequested);
  EXPECT_FALSE(run_.State.CancelSeen);
}

TEST_F(MergeJobOrderTest, AStatusLeftByAFailedJobDoesNotStick) {
  run_.State.MergeStatus = -1;
  run_.State.Failure = {1, 1, 1, "old"};
  run_.Run();
  EXPECT_EQ(run_.State.MergeStatus, 2);
  EXPECT_TRUE(run_.State.Failure.Empty());
}

TEST_F(MergeJobOrderTest, AnInputThatGetsAnotherNameMeanwhileFailsTheMerge) {
  run_.Shell.OnStatus = [&](int line) {
    if (line != 2 || run_.Status(2).empty()) return;
    if (Exists(run_.SecondPath)) std::rename(run_.SecondPath.c_str(), run_.Folder.File("moved").c_str());
  };
  run_.Run();
  EXPECT_TRUE(run_.Failed());
  EXPECT_FALSE(Exists(run_.OutputPath));
}

// The viewer.

TEST_F(MergeJobOrderTest, TheOutputIsShownWhenTheUserAskedForIt) {
  run_.State.ShowOutputAfterMerge = true;
  run_.Run();
  EXPECT_EQ(run_.Shell.ShownOutputs, Events{run_.OutputPath});
  EXPECT_EQ(CallsOf(run_), (Events{"DisableInputPicking", "RefreshControls", "EnterRunningState",
                                   "LeaveRunningState", "ShowOutput", "RefreshControls"}));
}

TEST_F(MergeJobOrderTest, TheOutputIsNotShownWhenNobodyAskedForIt) {
  run_.Run();
  EXPECT_TRUE(run_.Shell.ShownOutputs.empty());
}

TEST_F(MergeJobOrderTest, TheOutputIsNotShownWhenSilent) {
  run_.State.ShowOutputAfterMerge = true;
  run_.State.SilentMode = true;
  run_.Run();
  EXPECT_TRUE(run_.Shell.ShownOutputs.empty());
  EXPECT_TRUE(Exists(run_.OutputPath));
}

// Cancels that the job finds.

TEST_F(MergeJobOrderTest, ACancelFromBeforeTheStartIsClearedAndHandedOn) {
  run_.State.AbortRequested = true;
  run_.Run();
  EXPECT_EQ(run_.State.MergeStatus, 2) << "the job itself runs";
  EXPECT_TRUE(Exists(run_.OutputPath));
  EXPECT_FALSE(run_.State.AbortRequested);
  EXPECT_TRUE(run_.State.CancelSeen);
}

TEST_F(MergeJobOrderTest, WhatAnEarlierJobHandedOnDoesNotStick) {
  run_.State.CancelSeen = true;
  run_.Run();
  EXPECT_FALSE(run_.State.CancelSeen);
}

TEST_F(MergeJobOrderTest, AbortOperationDoesWhatTheCancelButtonDoes) {
  EXPECT_FALSE(run_.State.AbortRequested);
  run_.Job.AbortOperation();
  EXPECT_TRUE(run_.State.AbortRequested);
}

}  // namespace
}  // namespace folioweld::testing
