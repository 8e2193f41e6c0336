#include "batch/stopped_run.h"

#include <csignal>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <initializer_list>
#include <string>
#include <tuple>
#include <unistd.h>

#include "batch/batch_run.h"
#include "tests/batch/screen_system.h"
#include "tests/support/document_builder.h"
#include "tests/support/temp_folder.h"

namespace folioweld {
namespace {

using ::testing::KilledBySignal;
using testing::ReadFile;
using testing::ScreenSystem;
using testing::SimpleDocument;
using testing::TempFolder;

TEST(EndIfStopped, ComesBackWithoutASignalAndNoneIsCaughtAnyLonger) {
  ScreenSystem system;
  system.CatchesSignals = true;
  EndIfStopped(system, kEverythingJoined);
  EXPECT_FALSE(system.CatchesSignals);
  EXPECT_EQ(system.EndedBy, 0);
  EXPECT_EQ(system.Written, "");
}

TEST(EndIfStopped, SaysByWhichSignalAndWhatCameOfTheOutput) {
  for (const auto& [signal, status, line] : std::initializer_list<std::tuple<int, ExitStatus, std::string>>{
           {SIGINT, kNoOutput, "folioweld: ended by SIGINT; no output was written\n"},
           {SIGTERM, kEverythingJoined, "folioweld: ended by SIGTERM; the output was written before\n"},
           {SIGHUP, kJoinedWithLosses, "folioweld: ended by SIGHUP; the output was written before\n"},
           {SIGQUIT, kNoOutput, "folioweld: ended by SIGQUIT; no output was written\n"}}) {
    ScreenSystem system;
    system.Signal = signal;
    EndIfStopped(system, status);
    EXPECT_EQ(system.Written, line);
    EXPECT_EQ(system.EndedBy, signal);
  }
}

/// The real signals; something happens when a temporary file is deleted.
class DeletingSystem : public testing::FaultingSystem {
 public:
  explicit DeletingSystem(const TempFolder& folder) {
    Environment = {{"XDG_CONFIG_HOME", folder.File("config")}, {"TMPDIR", folder.File("tmp")}};
  }
  SystemError DeleteFile(const std::string& path) override {
    if (path.ends_with(".tmp") && AtDeletion) AtDeletion();
    return FaultingSystem::DeleteFile(path);
  }
  std::function<void()> AtDeletion;
};

class StoppedRunDeathTest : public ::testing::Test {
 protected:
  StoppedRunDeathTest() {
    for (const char* name : {"config", "docs", "tmp"}) folder_.MakeFolder(name);
    for (const char* name : {"docs/a", "docs/b", "docs/c"}) folder_.Write(name, SimpleDocument(1));
  }

  /// What the program does with its command line.
  void Run(DeletingSystem& system) const {
    const ExitStatus status =
        RunBatch(system, ParseArguments({folder_.File("joined.pdf") + "|" + folder_.File("docs")}));
    EndIfStopped(system, status);
    ::_exit(status);
  }

  TempFolder folder_;
};

TEST_F(StoppedRunDeathTest, ASignalAfterTheOutputIsCompleteLeavesItAndEndsTheRunByItself) {
  EXPECT_EXIT(
      {
        DeletingSystem system(folder_);
        system.AtDeletion = [] { ::raise(SIGTERM); };
        Run(system);
      },
      KilledBySignal(SIGTERM), "^folioweld: ended by SIGTERM; the output was written before\n$");
  EXPECT_NE(ReadFile(folder_.File("joined.pdf")), "");
  EXPECT_TRUE(std::filesystem::is_empty(folder_.File("tmp")));
}

TEST_F(StoppedRunDeathTest, ASecondSignalEndsACleanUpThatHangs) {
  EXPECT_EXIT(
      {
        DeletingSystem system(folder_);
        system.AtDeletion = [] {
          ::raise(SIGINT);
          ::raise(SIGTERM);
          for (;;) ::pause();
        };
        Run(system);
      },
      KilledBySignal(SIGTERM), "^$");
}

}  // namespace
}  // namespace folioweld
