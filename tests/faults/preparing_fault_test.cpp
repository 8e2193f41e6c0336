// Every system call of a run that prepares documents fails, in every way that it can; the process dies at
// each.

#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <string>

#include "batch/batch_run.h"
#include "tests/faults/child.h"
#include "tests/faults/fault_documents.h"
#include "tests/faults/fault_sweep.h"
#include "tests/faults/quiet_system.h"
#include "tests/support/document_builder.h"
#include "tests/support/merge_run.h"
#include "tests/support/preparing_script.h"
#include "tests/support/temp_folder.h"

namespace folioweld {
namespace {

namespace fs = std::filesystem;
using testing::Exists;
using testing::FaultTrial;
using testing::ReadFile;

class PreparingFault : public ::testing::Test {
 protected:
  PreparingFault() {
    for (const char* name : {"docs", "tmp", "config", "home", "bin"}) folder.MakeFolder(name);
    documents = {{"a.pdf", testing::SimpleDocument(1, "text of a")},
                 {"b.pdf", testing::kOtherDocument},
                 {"c.pdf", testing::kOtherDocument}};
    for (const auto& [name, bytes] : documents) folder.Write("docs/" + name, bytes);
    const std::string copy = folder.Write("copy", testing::SimpleDocument(1, "text of b, text of c"));
    testing::WritePreparingScript(folder, "bin/folioweld-prepare", testing::CopyingCommands(copy));
    testing::QuietSystem system;
    EXPECT_EQ(Run(system), kEverythingJoined) << system.Said;
    whole = ReadFile(outputPath);
  }
  ~PreparingFault() override { fs::current_path(startFolder); }

  ExitStatus Run(testing::QuietSystem& system) const {
    system.Environment = {{"XDG_CONFIG_HOME", folder.File("config")},
                          {"HOME", folder.File("home")},
                          {"TMPDIR", folder.File("tmp")}};
    system.ModulePath = folder.File("bin/folioweld");
    system.Processors = 2;
    const ExitStatus status =
        RunBatch(system, ParseArguments({"--prepare", outputPath, folder.File("docs")}));
    fs::current_path(startFolder);
    return status;
  }

  void CleanUp() const {
    fs::remove(outputPath);
    fs::remove_all(folder.File("config/folioweld"));
    for (const auto& entry : fs::directory_iterator(folder.File("tmp"))) fs::remove(entry);
  }

  void CheckDocuments() const {
    for (const auto& [name, bytes] : documents) ASSERT_TRUE(ReadFile(folder.File("docs/" + name)) == bytes);
  }

  void CheckOutcome(ExitStatus status, const std::string& said, const FaultTrial& trial) const {
    const std::string output = Exists(outputPath) ? ReadFile(outputPath) : std::string();
    if (status == kEverythingJoined) {
      ASSERT_TRUE(output == whole) << "reported as good and is not";
    } else if (status == kJoinedWithLosses) {
      for (const auto& [name, bytes] : documents) {
        const bool joined = output.find("text of " + name.substr(0, 1)) != std::string::npos;
        ASSERT_TRUE(joined || said.find("\"" + name + "\"") != std::string::npos) << name << ": " << said;
      }
      ASSERT_FALSE(testing::Joined(output, "").empty());
    } else {
      ASSERT_EQ(status, kNoOutput);
      ASSERT_NE(said, "") << "failed without a word";
      ASSERT_TRUE(output.empty() || trial.NothingCanBeDeleted()) << "a partial output remains";
      ASSERT_TRUE(!Exists(outputPath) || trial.MayLeaveAnEmptyFile());
    }
  }

  void Try(FaultTrial& trial) const {
    CleanUp();
    const std::size_t handles = testing::OpenHandles();
    testing::QuietSystem system;
    system.Decide = trial.Decide();
    const ExitStatus status = Run(system);
    ASSERT_EQ(testing::OpenHandles(), handles);
    CheckDocuments();
    for (const auto& entry : fs::directory_iterator(folder.File("tmp"))) {
      ASSERT_TRUE(trial.NothingCanBeDeleted()) << entry.path() << " was left behind";
    }
    if (trial.HasToPassUnnoticed()) {
      ASSERT_EQ(status, kEverythingJoined) << system.Said;
    }
    CheckOutcome(status, system.Said, trial);
  }

  testing::TempFolder folder;
  std::map<std::string, std::string> documents;
  const std::string outputPath = folder.File("joined.pdf");
  const std::string startFolder = fs::current_path().string();
  std::string whole;
};

TEST_F(PreparingFault, LosesNothingAndTellsTheTruth) {
  const std::size_t stride = testing::FullRun() ? 1 : testing::kSanitized ? 23 : 11;
  testing::SweepFaults(
      {"CloseHandle",
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
       "WriteFile"},
      [this](FaultTrial& trial) { Try(trial); }, stride);
}

/// Where the run dies its children may go on for a moment; whatever they still write, nobody joins it.
TEST_F(PreparingFault, SuddenDeathLeavesTheDocumentsAsTheyWereAndNoHalfOutput) {
  const std::size_t stride = testing::FullRun() ? 1 : testing::kSanitized ? 23 : 11;
  std::size_t deaths = 0;
  for (std::size_t site = 0; !HasFailure(); site += stride) {
    CleanUp();
    const testing::ChildEnd end = testing::InChild([&] {
      testing::QuietSystem system;
      system.Decide = [site](const testing::FaultingSystem::Call&, std::size_t index) {
        if (index == site) static_cast<void>(::raise(SIGKILL));
        return testing::FaultingSystem::Fault{};
      };
      return static_cast<int>(Run(system));
    });
    CheckDocuments();
    const bool isWhole = Exists(outputPath) && ReadFile(outputPath) == whole;
    if (end.Signal == 0) {
      EXPECT_EQ(end.Status, kEverythingJoined);
      EXPECT_TRUE(isWhole);
      break;
    }
    ++deaths;
    ASSERT_EQ(end.Signal, SIGKILL);
    if (Exists(outputPath) && !isWhole) {
      EXPECT_FALSE(ReadFile(outputPath).ends_with("%%EOF\r\n")) << site;
    }
    for (const auto& entry : fs::directory_iterator(folder.File("tmp"))) {
      const std::string name = entry.path().filename().string();
      EXPECT_TRUE(name.starts_with("Pdf") && name.ends_with(".tmp")) << name;
      EXPECT_EQ(entry.status().permissions(), fs::perms::owner_read | fs::perms::owner_write) << name;
    }
  }
  EXPECT_GT(deaths, 100U / stride);
}

}  // namespace
}  // namespace folioweld
