#include "batch/batch_shell.h"

#include <csignal>
#include <gtest/gtest.h>
#include <string>

#include "tests/batch/screen_system.h"

namespace folioweld {
namespace {

using testing::ScreenSystem;

constexpr char kRowsGone[] = "\x1b[4A\r\x1b[K\n\r\x1b[K\n\r\x1b[K\n\r\x1b[K\n\x1b[4A";
constexpr char kHeadline[] = "\r\x1b[KMerge 7 of 11 (round 2 of 4): b.pdf\n";

class BatchShellTest : public ::testing::Test {
 protected:
  ScreenSystem system_;
  MergeState state_;
};

TEST_F(BatchShellTest, MessageIsTheProgramsNameAndTheTextOnOneLine) {
  BatchShell shell(system_, state_, {});
  shell.ShowMessage(MessageIcon::Critical, "File Tallowby - Folioweld",
                    "Merge of documents ABORTed\r(could not reach intput directory)");
  EXPECT_EQ(system_.Take(), "folioweld: Merge of documents ABORTed (could not reach intput directory)\n");
}

TEST_F(BatchShellTest, NoticeIsTheLineItself) {
  BatchShell shell(system_, state_, {});
  shell.Notice("[Folioweld-MergeDirectory]=>File: \"a\nb\"  is not acceptable for merging");
  EXPECT_EQ(system_.Take(), "[Folioweld-MergeDirectory]=>File: \"a b\"  is not acceptable for merging\n");
}

TEST_F(BatchShellTest, NothingButMessagesIsPrintedWhereThereIsNoTerminal) {
  {
    BatchShell shell(system_, state_, {});
    shell.SetStatusText(0, "Parsing");
    shell.AppendStatusText(0, "+");
    shell.EnterRunningState();
    shell.RefreshControls();
    shell.LeaveRunningState();
    shell.ShowOutput("/out.pdf");
  }
  EXPECT_EQ(system_.Writes, 0);
}

TEST_F(BatchShellTest, BytesOfAMessageStayAsTheyAreWhereThereIsNoTerminal) {
  BatchShell shell(system_, state_, {});
  shell.Notice("\x1b\xFF\t\u202E");
  EXPECT_EQ(system_.Take(), "\x1b\xFF\t\u202E\n");
}

TEST_F(BatchShellTest, MessageNeverCommandsATerminal) {
  system_.IsTerminal = true;
  BatchShell shell(system_, state_, {});
  shell.Notice("\x1b[2J");
  EXPECT_EQ(system_.Take(), "?[2J\n");
}

TEST_F(BatchShellTest, StatusLinesAreShownLiveOnATerminal) {
  system_.IsTerminal = true;
  BatchShell shell(system_, state_, {});
  shell.MergeStarts({7, 11, 2, 4}, "b.pdf");
  shell.SetStatusText(1, "Parsing");
  EXPECT_EQ(system_.Take(), std::string(kHeadline) + "\r\x1b[K\n\r\x1b[KParsing\n\r\x1b[K\n");
}

TEST_F(BatchShellTest, StatusLinesAreDrawnAnewUnderAMessage) {
  system_.IsTerminal = true;
  BatchShell shell(system_, state_, {});
  shell.MergeStarts({7, 11, 2, 4}, "b.pdf");
  shell.SetStatusText(1, "Parsing");
  system_.Take();
  shell.Notice("line");
  EXPECT_EQ(system_.Take(),
            std::string(kRowsGone) + "line\n" + kHeadline + "\r\x1b[K\n\r\x1b[KParsing\n\r\x1b[K\n");
}

TEST_F(BatchShellTest, AVerboseRunPrintsTheLogAndEveryLineOnce) {
  Arguments arguments;
  arguments.Verbose = true;
  BatchShell shell(system_, state_, arguments);
  shell.LogLineAdded("[a]=>line");
  shell.Notice("[a]=>line");
  EXPECT_EQ(system_.Take(), "[a]=>line\n");
}

TEST_F(BatchShellTest, AnOrdinaryRunPrintsNoLog) {
  BatchShell shell(system_, state_, {});
  shell.LogLineAdded("[a]=>line");
  EXPECT_EQ(system_.Take(), "");
  shell.Notice("[a]=>line");
  EXPECT_EQ(system_.Take(), "[a]=>line\n");
}

TEST_F(BatchShellTest, AQuietRunKeepsItsNoticesUntilTheyAreReasons) {
  system_.IsTerminal = true;
  Arguments arguments;
  arguments.Quiet = true;
  BatchShell shell(system_, state_, arguments);
  shell.MergeStarts({1, 1, 1, 1}, "a.pdf");
  shell.SetStatusText(0, "Parsing");
  shell.Notice("first");
  EXPECT_EQ(system_.Take(), "");
  shell.ShowMessage(MessageIcon::Plain, "", "message");
  EXPECT_EQ(system_.Take(), "first\nfolioweld: message\n");
  shell.Notice("second");
  shell.PrintKeptNotices();
  shell.PrintKeptNotices();
  EXPECT_EQ(system_.Take(), "second\n");
}

TEST_F(BatchShellTest, StatusLinesGoAtTheEnd) {
  system_.IsTerminal = true;
  {
    BatchShell shell(system_, state_, {});
    shell.MergeStarts({7, 11, 2, 4}, "b.pdf");
    shell.SetStatusText(1, "Parsing");
    system_.Take();
  }
  EXPECT_EQ(system_.Take(), kRowsGone);
}

TEST_F(BatchShellTest, StopSignalDoesWhatCancelDoesAtEveryYield) {
  BatchShell shell(system_, state_, {});
  shell.Yield();
  EXPECT_FALSE(state_.AbortRequested);
  system_.Signal = SIGTERM;
  shell.Yield();
  EXPECT_TRUE(state_.AbortRequested);
  state_.AbortRequested = false;
  shell.Yield();
  EXPECT_TRUE(state_.AbortRequested) << "a job that takes the flag down is told again";
}

TEST_F(BatchShellTest, QuestionsStayUnanswered) {
  BatchShell shell(system_, state_, {});
  EXPECT_EQ(shell.AskForOutputFile({}), "");
  EXPECT_EQ(shell.BrowseForFolder("title", "/tmp"), "");
  EXPECT_EQ(system_.Writes, 0);
}

}  // namespace
}  // namespace folioweld
