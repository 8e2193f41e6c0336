// The process dies at every system call.

#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <iostream>
#include <map>
#include <set>
#include <string>

#include "batch/batch_run.h"
#include "engine/settings_store.h"
#include "tests/faults/child.h"
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
using testing::ReadFile;

/// Ends the process at the given call; `half` lets half of what it was to move get through first, and ends
/// the process at the next one.
std::function<testing::FaultingSystem::Fault(const testing::FaultingSystem::Call&, std::size_t)> DieAt(
    std::size_t site, bool half) {
  return [=](const testing::FaultingSystem::Call&, std::size_t index) {
    if (index == site + (half ? 1U : 0U)) static_cast<void>(::raise(SIGKILL));
    return testing::FaultingSystem::Fault{0, half && index == site ? std::size_t{2000} : std::size_t{0}};
  };
}

class SuddenDeath : public ::testing::Test {
 protected:
  /// Whatever is there must not pass for a document unless it is the whole one or the old one.
  void CheckOutput(const std::string& path, const std::string& whole, const std::string& old) {
    if (!Exists(path)) return;
    const std::string output = ReadFile(path);
    if (output == whole || output == old || !judged_.insert(output).second) return;
    if (testing::HaveQpdf()) {
      ASSERT_FALSE(testing::IsSound(path))
          << output.size() << " of " << whole.size() << " bytes pass for a sound document";
    }
    ASSERT_EQ(output.find("%%EOF\r\n", output.size() < 7 ? 0 : output.size() - 7), std::string::npos);
  }

  /// Calls `run` in a child that dies at every call, until one lives through; returns how many died.
  template <typename Run, typename Check>
  static std::size_t DieEverywhere(std::size_t stride, Run run, Check check) {
    std::size_t deaths = 0;
    for (std::size_t site = 0;; site += stride) {
      bool lived = false;
      for (const bool half : {false, true}) {
        const testing::ChildEnd end = testing::InChild([&] { return run(DieAt(site, half)); });
        if (end.Signal == 0) {
          EXPECT_EQ(end.Status, 0);
          lived = !half;
        } else {
          EXPECT_EQ(end.Signal, SIGKILL);
          ++deaths;
        }
        check();
        if (HasFailure()) {
          ADD_FAILURE() << "when it dies at call " << site << (half ? ", half of it done" : "");
          return deaths;
        }
        if (lived) break;
      }
      if (lived) break;
    }
    std::cout << "  deaths: " << deaths << '\n';
    RecordProperty("deaths", static_cast<int>(deaths));
    return deaths;
  }

  testing::TempFolder folder_;

 private:
  std::set<std::string> judged_;
};

TEST_F(SuddenDeath, OfATwoDocumentMergeLeavesNothingThatPassesForADocument) {
  const std::string first = testing::DocumentWithLongStream("first", 400000);
  const std::string second = testing::SimpleDocument(4, "second");
  const std::string whole = testing::Joined(first, second);
  const std::string firstPath = folder_.Write("a.pdf", first);
  const std::string secondPath = folder_.Write("b.pdf", second);
  const std::string outputPath = folder_.File("out.pdf");
  for (const std::string& old : {std::string(), testing::SimpleDocument(90, "an older output")}) {
    const auto run = [&](const auto& decide) {
      testing::QuietSystem system;
      FileModule files(system);
      MergeState state;
      MergeShell shell;
      ActivityLog log(shell);
      MergeJob job(state, files, shell, log);
      state.DocFileName(1) = firstPath;
      state.DocFileName(2) = secondPath;
      state.DocFileName(3) = outputPath;
      system.Decide = decide;
      job.cmdOK_Click();
      return state.MergeStatus == 2 ? 0 : 1;
    };
    const auto check = [&] {
      ASSERT_TRUE(ReadFile(firstPath) == first);
      ASSERT_TRUE(ReadFile(secondPath) == second);
      CheckOutput(outputPath, whole, old);
      fs::remove(outputPath);
      if (!old.empty()) folder_.Write("out.pdf", old);
    };
    check();
    EXPECT_GT(DieEverywhere(1, run, check), 20U);
  }
}

TEST_F(SuddenDeath, OfADirectoryMergeLeavesTheDocumentsAsTheyWere) {
  for (const char* name : {"docs", "tmp", "config", "home"}) folder_.MakeFolder(name);
  std::map<std::string, std::string> documents;
  for (const char* name : {"a", "b", "c", "d", "e"}) {
    documents[name] = testing::SimpleDocument(1, name);
    folder_.Write(std::string("docs/") + name, documents[name]);
  }
  const std::string outputPath = folder_.File("joined.pdf");
  const auto run = [&](const auto& decide) {
    testing::QuietSystem system;
    system.Environment = {{"XDG_CONFIG_HOME", folder_.File("config")},
                          {"HOME", folder_.File("home")},
                          {"TMPDIR", folder_.File("tmp")}};
    system.Decide = decide;
    return static_cast<int>(RunBatch(system, ParseArguments({outputPath + "|" + folder_.File("docs")})));
  };
  ASSERT_EQ(testing::InChild([&] { return run(testing::QuietSystem().Decide); }).Status, 0);
  const std::string whole = ReadFile(outputPath);
  fs::remove(outputPath);
  const auto check = [&] {
    for (const auto& [name, bytes] : documents) ASSERT_TRUE(ReadFile(folder_.File("docs/" + name)) == bytes);
    CheckOutput(outputPath, whole, "");
    fs::remove(outputPath);
    for (const auto& entry : fs::directory_iterator(folder_.File("tmp"))) fs::remove(entry);
    fs::remove_all(folder_.File("config/folioweld"));
  };
  const std::size_t stride = testing::FullRun() ? 1 : testing::kSanitized ? 11 : 3;
  EXPECT_GT(DieEverywhere(stride, run, check), 100U / stride);
}

TEST_F(SuddenDeath, OfASettingsWriteLeavesTheOldOnesOrTheNewOnes) {
  const std::string old = "[Settings]\nMenuSort=1\nOther=kept\n";
  const std::string wanted = "[Settings]\nMenuSort=2\nOther=kept\n";
  const std::string path = folder_.File("folioweld/settings.ini");
  folder_.MakeFolder("folioweld");
  const auto run = [&](const auto& decide) {
    testing::QuietSystem system;
    system.Environment = {{"XDG_CONFIG_HOME", folder_.Path()}};
    system.Decide = decide;
    return SettingsStore(system).WriteSetting("MenuSort", "2");
  };
  const auto check = [&] {
    const std::string text = Exists(path) ? ReadFile(path) : "missing";
    ASSERT_TRUE(text == old || text == wanted) << text;
    // A file that a dead process left behind is in nobody's way.
    testing::QuietSystem system;
    system.Environment = {{"XDG_CONFIG_HOME", folder_.Path()}};
    ASSERT_EQ(SettingsStore(system).WriteSetting("MenuSort", "2"), 0);
    ASSERT_EQ(ReadFile(path), wanted);
    for (const auto& entry : fs::directory_iterator(folder_.File("folioweld"))) fs::remove(entry);
    folder_.Write("folioweld/settings.ini", old);
  };
  folder_.Write("folioweld/settings.ini", old);
  EXPECT_GT(DieEverywhere(1, run, check), 10U);
}

}  // namespace
}  // namespace folioweld
