#pragma once

#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "batch/batch_run.h"
#include "tests/faults/child.h"
#include "tests/faults/fault_documents.h"
#include "tests/faults/fault_sweep.h"
#include "tests/faults/quiet_system.h"
#include "tests/support/document_builder.h"
#include "tests/support/merge_run.h"
#include "tests/support/temp_folder.h"

namespace folioweld::testing {

/// A windowless run over a folder's documents that starts a program of the package folioweld-extras, with
/// every call failing and dying. The documents are those in `documents`; "bin" is the folder of the program.
class ExtraProgramRun : public ::testing::Test {
 protected:
  explicit ExtraProgramRun(std::string option) : option_(std::move(option)) {
    for (const char* name : {"docs", "tmp", "config", "home", "bin"}) folder.MakeFolder(name);
  }
  ~ExtraProgramRun() override { std::filesystem::current_path(startFolder_); }

  /// Writes the documents and keeps the output of a run that nothing hinders as `whole`.
  void Begin() {
    for (const auto& [name, bytes] : documents) folder.Write("docs/" + name, bytes);
    QuietSystem system;
    EXPECT_EQ(Run(system), kEverythingJoined) << system.Said;
    whole = ReadFile(outputPath);
  }

  ExitStatus Run(QuietSystem& system) const {
    system.Environment = {{"XDG_CONFIG_HOME", folder.File("config")},
                          {"HOME", folder.File("home")},
                          {"TMPDIR", folder.File("tmp")}};
    system.ModulePath = folder.File("bin/folioweld");
    system.Processors = 2;
    const ExitStatus status = RunBatch(system, ParseArguments({option_, outputPath, folder.File("docs")}));
    std::filesystem::current_path(startFolder_);
    return status;
  }

  /// What an output with losses has to be like; `said` is what was told of it.
  virtual void CheckWithLosses(const std::string& output, const std::string& said) const = 0;
  /// Whether an output that a dead run left may pass for a document.
  [[nodiscard]] virtual bool MayPass(const std::string& output) const { return output == whole; }

  void Sweep(const std::set<std::string>& calls) const {
    SweepFaults(
        calls, [this](FaultTrial& trial) { Try(trial); }, Stride());
  }

  void DieEverywhere() const {
    std::size_t deaths = 0;
    for (std::size_t site = 0; !HasFailure(); site += Stride()) {
      CleanUp();
      const ChildEnd end = InChild([&] {
        QuietSystem system;
        system.Decide = [site](const FaultingSystem::Call&, std::size_t index) {
          if (index == site) static_cast<void>(::raise(SIGKILL));
          return FaultingSystem::Fault{};
        };
        return static_cast<int>(Run(system));
      });
      CheckDocuments();
      const std::string output = Exists(outputPath) ? ReadFile(outputPath) : std::string();
      if (end.Signal == 0) {
        EXPECT_EQ(end.Status, kEverythingJoined);
        EXPECT_TRUE(output == whole);
        break;
      }
      ++deaths;
      ASSERT_EQ(end.Signal, SIGKILL);
      if (!MayPass(output)) {
        EXPECT_FALSE(output.ends_with("%%EOF\r\n")) << site;
      }
      CheckLeavings();
    }
    EXPECT_GT(deaths, 100U / Stride());
  }

  TempFolder folder;
  std::map<std::string, std::string> documents;
  const std::string outputPath = folder.File("joined.pdf");
  std::string whole;

 private:
  static std::size_t Stride() { return FullRun() ? 1 : kSanitized ? 23 : 11; }

  void CleanUp() const {
    std::filesystem::remove(outputPath);
    std::filesystem::remove_all(folder.File("config/folioweld"));
    for (const auto& entry : std::filesystem::directory_iterator(folder.File("tmp"))) {
      std::filesystem::remove(entry);
    }
  }

  void CheckDocuments() const {
    for (const auto& [name, bytes] : documents) ASSERT_TRUE(ReadFile(folder.File("docs/" + name)) == bytes);
  }

  void CheckLeavings() const {
    using std::filesystem::perms;
    for (const auto& entry : std::filesystem::directory_iterator(folder.File("tmp"))) {
      const std::string name = entry.path().filename().string();
      EXPECT_TRUE(name.starts_with("Pdf") && name.ends_with(".tmp")) << name;
      EXPECT_EQ(entry.status().permissions(), perms::owner_read | perms::owner_write) << name;
    }
  }

  void CheckOutcome(ExitStatus status, const std::string& said, const FaultTrial& trial) const {
    const std::string output = Exists(outputPath) ? ReadFile(outputPath) : std::string();
    if (status == kEverythingJoined) {
      ASSERT_TRUE(output == whole) << "reported as good and is not";
    } else if (status == kJoinedWithLosses) {
      CheckWithLosses(output, said);
    } else {
      ASSERT_EQ(status, kNoOutput);
      ASSERT_NE(said, "") << "failed without a word";
      ASSERT_TRUE(output.empty() || trial.NothingCanBeDeleted()) << "a partial output remains";
      ASSERT_TRUE(!Exists(outputPath) || trial.MayLeaveAnEmptyFile());
    }
  }

  void Try(FaultTrial& trial) const {
    CleanUp();
    const std::size_t handles = OpenHandles();
    QuietSystem system;
    system.Decide = trial.Decide();
    const ExitStatus status = Run(system);
    ASSERT_EQ(OpenHandles(), handles);
    CheckDocuments();
    for (const auto& entry : std::filesystem::directory_iterator(folder.File("tmp"))) {
      ASSERT_TRUE(trial.NothingCanBeDeleted()) << entry.path() << " was left behind";
    }
    if (trial.HasToPassUnnoticed()) {
      ASSERT_EQ(status, kEverythingJoined) << system.Said;
    }
    CheckOutcome(status, system.Said, trial);
  }

  const std::string option_;
  const std::string startFolder_ = std::filesystem::current_path().string();
};

/// What such a run calls of the system in any case.
inline const std::set<std::string>& CallsOfAnyRun() {
  static const std::set<std::string> calls = {"CloseHandle",
                                              "CreateDirectory",
                                              "CreateFile",
                                              "DeleteFile",
                                              "ExitOfProcess",
                                              "FindFirstFile",
                                              "FindNextFile",
                                              "FlushFileBuffers",
                                              "GetCurrentDirectory",
                                              "GetFileAttributes",
                                              "GetFileInformationByHandle",
                                              "GetLinkAttributes",
                                              "MoveFile",
                                              "RandomNumber",
                                              "ReadFile",
                                              "ReadNext",
                                              "SetCurrentDirectory",
                                              "SetEndOfFile",
                                              "StartProcess",
                                              "TryLockFile",
                                              "WriteFile"};
  return calls;
}

}  // namespace folioweld::testing
