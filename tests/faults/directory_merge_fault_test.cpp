// Every system call of a windowless directory merge of five documents fails, in every way that it can.

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <string>

#include "batch/batch_run.h"
#include "engine/settings_text.h"
#include "tests/faults/fault_documents.h"
#include "tests/faults/fault_sweep.h"
#include "tests/faults/quiet_system.h"
#include "tests/support/document_builder.h"
#include "tests/support/merge_run.h"
#include "tests/support/temp_folder.h"

namespace folioweld {
namespace {

namespace fs = std::filesystem;
using testing::Exists;
using testing::FaultTrial;
using testing::ReadFile;

class DirectoryMergeFault : public ::testing::Test {
 protected:
  DirectoryMergeFault() {
    for (const char* name : {"docs", "tmp", "config", "home"}) folder.MakeFolder(name);
    for (const char* name : {"a", "b", "c", "d", "e"}) {
      const std::string bytes = testing::SimpleDocument(1, std::string("text of ") + name);
      documents[std::string(name) + ".pdf"] = bytes;
      folder.Write(std::string("docs/") + name + ".pdf", bytes);
    }
    testing::QuietSystem system;
    EXPECT_EQ(Run(system), kEverythingJoined);
    whole = ReadFile(outputPath);
  }
  ~DirectoryMergeFault() override { fs::current_path(startFolder); }

  ExitStatus Run(testing::QuietSystem& system) const {
    system.Environment = {{"XDG_CONFIG_HOME", folder.File("config")},
                          {"HOME", folder.File("home")},
                          {"TMPDIR", folder.File("tmp")}};
    const ExitStatus status = RunBatch(system, ParseArguments({outputPath + "|" + folder.File("docs")}));
    fs::current_path(startFolder);
    return status;
  }

  void CleanUp() const {
    fs::remove(outputPath);
    fs::remove_all(folder.File("config/folioweld"));
    for (const auto& entry : fs::directory_iterator(folder.File("tmp"))) fs::remove(entry);
  }

  void CheckFolders(const FaultTrial& trial) const {
    std::size_t found = 0;
    for (const auto& entry : fs::directory_iterator(folder.File("docs"))) {
      const auto known = documents.find(entry.path().filename().string());
      ASSERT_NE(known, documents.end()) << entry.path();
      ASSERT_TRUE(ReadFile(entry.path().string()) == known->second) << entry.path();
      ++found;
    }
    ASSERT_EQ(found, documents.size());
    for (const auto& entry : fs::directory_iterator(folder.File("tmp"))) {
      ASSERT_TRUE(trial.NothingCanBeDeleted()) << entry.path() << " was left behind";
    }
    ASSERT_TRUE(fs::is_empty(folder.File("home")));
  }

  void CheckOutcome(ExitStatus status, const testing::QuietSystem& system, const FaultTrial& trial) const {
    const std::string output = Exists(outputPath) ? ReadFile(outputPath) : std::string();
    if (trial.HasToPassUnnoticed()) {
      ASSERT_EQ(status, kEverythingJoined) << system.Said;
    }
    switch (status) {
      case kEverythingJoined:
        ASSERT_TRUE(output == whole) << "reported as good and is not";
        return;
      case kJoinedWithLosses:
        CheckLosses(output, system.Said);
        return;
      default:
        ASSERT_EQ(status, kNoOutput);
        ASSERT_NE(system.Said, "") << "failed without a word";
        if (!output.empty()) {
          ASSERT_TRUE(trial.NothingCanBeDeleted()) << "a partial output remains";
          ASSERT_NE(system.Said.find("not usable"), std::string::npos) << system.Said;
        }
        ASSERT_TRUE(!Exists(outputPath) || trial.MayLeaveAnEmptyFile());
    }
  }

  /// Every document is in the output or named as lost, and what is there is a whole document.
  void CheckLosses(const std::string& output, const std::string& said) const {
    for (const auto& [name, bytes] : documents) {
      const bool joined = output.find("text of " + name.substr(0, 1)) != std::string::npos;
      ASSERT_TRUE(joined || said.find("\"" + name + "\"") != std::string::npos) << name << ": " << said;
    }
    ASSERT_FALSE(testing::Joined(output, "").empty());
    ASSERT_NE(said, "");
  }

  void CheckSettings() const {
    const std::string path = folder.File("config/folioweld/settings.ini");
    const std::string text = Exists(path) ? ReadFile(path) : std::string();
    const std::pair<const char*, std::string> right[] = {{"MenuSort", "1"},
                                                         {"MenuShowLogWindow", "1"},
                                                         {"DisplayOutputAfterMerge", "1"},
                                                         {"MergeCurDir", folder.File("docs/")}};
    for (const auto& [name, value] : right) {
      const auto stored = FindSetting(text, name);
      ASSERT_TRUE(!stored || *stored == value) << name << "=" << *stored;
    }
  }

  void Try(FaultTrial& trial) const {
    CleanUp();
    const std::size_t handles = testing::OpenHandles();
    testing::QuietSystem system;
    system.Decide = trial.Decide();
    const ExitStatus status = Run(system);
    ASSERT_EQ(testing::OpenHandles(), handles);
    CheckFolders(trial);
    CheckOutcome(status, system, trial);
    CheckSettings();
    if (trial.How != FaultTrial::Reach::EverythingElse && !testing::FullRun()) return;
    testing::QuietSystem again;
    ASSERT_EQ(Run(again), kEverythingJoined) << again.Said;
    ASSERT_TRUE(ReadFile(outputPath) == whole) << "the same job without a fault gives something else";
  }

  testing::TempFolder folder;
  std::map<std::string, std::string> documents;
  const std::string outputPath = folder.File("joined.pdf");
  const std::string startFolder = fs::current_path().string();
  std::string whole;
};

TEST_F(DirectoryMergeFault, LosesNothingAndTellsTheTruth) {
  const std::size_t stride = testing::FullRun() ? 1 : testing::kSanitized ? 7 : 2;
  testing::SweepFaults(
      {"CloseHandle", "CreateDirectory", "CreateFile", "DeleteFile", "FindFirstFile", "FindNextFile",
       "FlushFileBuffers", "GetCurrentDirectory", "GetFileAttributes", "GetFileInformationByHandle",
       "GetLinkAttributes", "MoveFile", "RandomNumber", "ReadFile", "SetCurrentDirectory", "SetEndOfFile",
       "TryLockFile", "WriteFile"},
      [this](FaultTrial& trial) { Try(trial); }, stride);
}

}  // namespace
}  // namespace folioweld
