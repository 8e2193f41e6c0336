// Every system call of a two-document merge fails, in every way that it can.

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <set>
#include <string>

#include "tests/faults/fault_documents.h"
#include "tests/faults/fault_sweep.h"
#include "tests/faults/quiet_system.h"
#include "tests/support/document_builder.h"
#include "tests/support/merge_run.h"

namespace folioweld {
namespace {

namespace fs = std::filesystem;
using testing::Exists;
using testing::FaultTrial;
using testing::ReadFile;

const std::set<std::string> kCallsOfAMerge = {
    "CloseHandle",       "CopyFileBytes", "CreateFile",   "GetFileInformationByHandle",
    "GetLinkAttributes", "ReadFile",      "SetEndOfFile", "TryLockFile",
    "WriteFile"};

class TwoDocumentsFault : public ::testing::Test {
 protected:
  const std::string firstBytes = testing::DocumentWithLongStream("first", 400000);
  const std::string secondBytes = testing::SimpleDocument(3, "second");
  const std::string both = testing::Joined(firstBytes, secondBytes);
  const std::string firstAlone = testing::Joined(firstBytes, "");
  const std::string oldOutput = std::string(500000, 'o');

  testing::TempFolder folder;
  const std::string firstPath = folder.Write("a.pdf", firstBytes);
  const std::string secondPath = folder.Write("b.pdf", secondBytes);
  const std::string outputPath = folder.File("out.pdf");

  /// One merge with everything around it.
  struct Merge {
    testing::QuietSystem System;
    FileModule Files{System};
    MergeState State;
    testing::RecordingShell Shell;
    ActivityLog Log{Shell};
    MergeJob Job{State, Files, Shell, Log};
  };

  void Run(Merge& merge) const {
    merge.State.DocFileName(1) = firstPath;
    merge.State.DocFileName(2) = secondPath;
    merge.State.DocFileName(3) = outputPath;
    merge.Job.cmdOK_Click();
  }

  void CheckInputs() const {
    ASSERT_TRUE(ReadFile(firstPath) == firstBytes);
    ASSERT_TRUE(ReadFile(secondPath) == secondBytes);
    for (const std::string& name : folder.Names()) {
      ASSERT_TRUE(name == "a.pdf" || name == "b.pdf" || name == "out.pdf") << name << " was left behind";
    }
  }

  static bool Said(const Merge& merge, const std::string& words) {
    return std::any_of(merge.Shell.Notices.begin(), merge.Shell.Notices.end(),
                       [&](const std::string& line) { return line.find(words) != std::string::npos; });
  }

  void CheckOutcome(const Merge& merge, const FaultTrial& trial, const std::string& before) const {
    const std::string output = Exists(outputPath) ? ReadFile(outputPath) : std::string();
    if (trial.HasToPassUnnoticed()) {
      ASSERT_EQ(merge.State.MergeStatus, 2) << "the fault was to pass unnoticed";
    }
    if (merge.State.MergeStatus != -1) {
      ASSERT_EQ(merge.State.DocFileName(3), outputPath);
      ASSERT_TRUE(output == (merge.State.DocUsed(2) ? both : firstAlone)) << "reported as good and is not";
      ASSERT_TRUE(merge.State.DocUsed(2) || Said(merge, "left out"));
      return;
    }
    ASSERT_FALSE(merge.Shell.Notices.empty()) << "failed without a word";
    const bool shown = merge.Shell.StatusText(0).find("FAILED") != std::string::npos ||
                       merge.Shell.StatusText(1).find("FAILED") != std::string::npos ||
                       merge.Shell.StatusText(2).find("FAILED") != std::string::npos;
    ASSERT_TRUE(shown || !merge.Shell.Messages.empty()) << "failed and looks as if nothing had happened";
    const bool untouched = output == before;
    if (!untouched && !output.empty()) {
      ASSERT_TRUE(trial.NothingCanBeDeleted()) << "a partial output of " << output.size() << " bytes remains";
      ASSERT_TRUE(Said(merge, "not usable")) << "a partial output remains and nobody was told";
    }
    if (before.empty() && Exists(outputPath)) {
      ASSERT_TRUE(trial.MayLeaveAnEmptyFile());
    }
  }

  void Try(FaultTrial& trial, const std::string& before) const {
    fs::remove(outputPath);
    if (!before.empty()) folder.Write("out.pdf", before);
    const std::size_t handles = testing::OpenHandles();
    Merge merge;
    merge.System.Decide = trial.Decide();
    Run(merge);
    merge.System.Decide = nullptr;
    CheckInputs();
    ASSERT_EQ(testing::OpenHandles(), handles);
    CheckOutcome(merge, trial, before);

    Merge again;
    Run(again);
    ASSERT_EQ(again.State.MergeStatus, 2);
    ASSERT_TRUE(ReadFile(outputPath) == both) << "the same job without a fault gives something else";
  }
};

TEST_F(TwoDocumentsFault, LosesNothingWhereThereIsNoOutputYet) {
  testing::SweepFaults(kCallsOfAMerge, [this](FaultTrial& trial) { Try(trial, ""); });
}

TEST_F(TwoDocumentsFault, LosesNothingWhereAnOlderOutputIsReplaced) {
  testing::SweepFaults(kCallsOfAMerge, [this](FaultTrial& trial) { Try(trial, oldOutput); });
}

}  // namespace
}  // namespace folioweld
