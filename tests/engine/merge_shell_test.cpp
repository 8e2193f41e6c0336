#include "engine/merge_shell.h"

#include <csignal>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <vector>

namespace folioweld {
namespace {

class WatchingShell : public MergeShell {
 public:
  std::vector<int> Changed;

 protected:
  void StatusTextChanged(int line) override { Changed.push_back(line); }
};

TEST(MergeShellTest, KeepsThreeStatusLines) {
  MergeShell shell;
  for (int line = 0; line < 3; ++line) EXPECT_EQ(shell.StatusText(line), "");
  shell.SetStatusText(0, "first");
  shell.SetStatusText(2, "output");
  shell.AppendStatusText(2, "+");
  shell.AppendStatusText(1, "+");
  EXPECT_EQ(shell.StatusText(0), "first");
  EXPECT_EQ(shell.StatusText(1), "+");
  EXPECT_EQ(shell.StatusText(2), "output+");
  shell.SetStatusText(0, "other");
  EXPECT_EQ(shell.StatusText(0), "other");
}

TEST(MergeShellTest, AStatusLineThatGrowsTooLongLosesItsBeginning) {
  MergeShell shell;
  const std::string full(MergeShell::kLongestStatusText - 3, '+');
  shell.SetStatusText(1, "abc" + full);
  EXPECT_EQ(shell.StatusText(1), "abc" + full);
  shell.AppendStatusText(1, "OK");
  EXPECT_EQ(shell.StatusText(1), "c" + full + "OK");
}

TEST(MergeShellTest, HasNoFourthStatusLine) {
  MergeShell shell;
  EXPECT_THROW(static_cast<void>(shell.StatusText(3)), std::out_of_range);
  EXPECT_THROW(shell.SetStatusText(-1, ""), std::out_of_range);
  EXPECT_THROW(shell.AppendStatusText(3, "+"), std::out_of_range);
}

TEST(MergeShellTest, TellsAboutEveryChangeOfAStatusLine) {
  WatchingShell shell;
  shell.SetStatusText(1, "a");
  shell.AppendStatusText(2, "b");
  EXPECT_EQ(shell.Changed, (std::vector<int>{1, 2}));
}

/// Counts how often events were handled.
class CountingShell : public MergeShell {
 public:
  using MergeShell::HandleEventsOnlyWhile;
  int Handled = 0;

 protected:
  void HandleEvents() override { ++Handled; }
};

TEST(MergeShellTest, HandlesEventsAtEveryYield) {
  CountingShell shell;
  shell.Yield();
  shell.Yield();
  EXPECT_EQ(shell.Handled, 2);
}

TEST(MergeShellTest, WithAFlagHandlesEventsOnlyWhileItIsSet) {
  CountingShell shell;
  volatile std::sig_atomic_t waiting = 0;
  shell.HandleEventsOnlyWhile(waiting);
  shell.Yield();
  EXPECT_EQ(shell.Handled, 0);
  waiting = 15;
  shell.Yield();
  shell.Yield();
  EXPECT_EQ(shell.Handled, 2);
  waiting = 0;
  shell.Yield();
  EXPECT_EQ(shell.Handled, 2);
}

TEST(MergeShellTest, LetsAJobRunWithoutAnybodyWatching) {
  MergeShell shell;
  shell.Yield();
  shell.RefreshControls();
  shell.DisableInputPicking();
  shell.EnterRunningState();
  shell.LeaveRunningState();
  shell.ShowMessage(MessageIcon::Critical, "title", "text");
  shell.ShowOutput("/tmp/out.pdf");
  shell.Notice("line");
  EXPECT_EQ(shell.AskForOutputFile({"title", "pdf", "filter", "name"}), "");
  EXPECT_EQ(shell.BrowseForFolder("title", "/tmp"), "");
}

}  // namespace
}  // namespace folioweld
