// The windowless run inside the test's own process.

#include "batch/batch_run.h"

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>

#include "engine/settings_store.h"
#include "tests/batch/screen_system.h"
#include "tests/support/document_builder.h"
#include "tests/support/temp_folder.h"

namespace folioweld {
namespace {

using testing::Exists;
using testing::FaultingSystem;
using testing::ScreenSystem;
using testing::SimpleDocument;
using testing::TempFolder;

class BatchRun : public ::testing::Test {
 protected:
  BatchRun() {
    for (const char* name : {"docs", "tmp", "config"}) folder_.MakeFolder(name);
    system_.Environment = {{"XDG_CONFIG_HOME", folder_.File("config")}, {"TMPDIR", folder_.File("tmp")}};
  }
  ~BatchRun() override { std::filesystem::current_path(before_); }

  int Run() {
    return RunBatch(system_, ParseArguments({folder_.File("joined.pdf") + "|" + folder_.File("docs")}));
  }
  std::string Setting(const std::string& name) { return SettingsStore(system_).ReadSetting(name); }
  void Store(const std::string& name, const std::string& text) {
    ASSERT_EQ(SettingsStore(system_).WriteSetting(name, text), 0);
  }

  std::filesystem::path before_ = std::filesystem::current_path();
  TempFolder folder_;
  ScreenSystem system_;
};

TEST_F(BatchRun, CatchesTheStopSignalsAndJoins) {
  folder_.Write("docs/a", SimpleDocument(1));
  EXPECT_EQ(Run(), kEverythingJoined);
  EXPECT_TRUE(system_.CatchesSignals);
  EXPECT_TRUE(Exists(folder_.File("joined.pdf")));
  EXPECT_EQ(system_.Written, "");
}

TEST_F(BatchRun, SignalThatCameBeforeTheStartStopsItBeforeAnythingIsWritten) {
  folder_.Write("docs/a", SimpleDocument(1));
  system_.Signal = SIGINT;
  EXPECT_EQ(Run(), kNoOutput);
  EXPECT_FALSE(Exists(folder_.File("joined.pdf")));
}

TEST_F(BatchRun, FolderThatCannotBeEnteredIsAMessage) {
  EXPECT_EQ(RunBatch(system_, ParseArguments({"out.pdf|no such\nfolder"})), kNoOutput);
  EXPECT_EQ(system_.Written,
            "folioweld: the folder \"no such folder\" cannot be entered\n"
            "[Folioweld-ProcessCommandLine]=>  because of No such file or directory\n");
}

TEST_F(BatchRun, RelativeOutputWithoutACurrentFolderIsAMessage) {
  folder_.Write("docs/a", SimpleDocument(1));
  system_.Decide = FaultingSystem::Failing("GetCurrentDirectory", ENOENT);
  EXPECT_EQ(RunBatch(system_, ParseArguments({"out.pdf|" + folder_.File("docs")})), kNoOutput);
  EXPECT_EQ(system_.Written,
            "folioweld: the folder in which the program was started cannot be had\n"
            "[Folioweld-ProcessCommandLine]=>  because of No such file or directory\n");
  EXPECT_FALSE(Exists(folder_.File("docs/out.pdf")));
}

TEST_F(BatchRun, WithoutAStoreForSettingsTheDefaultsHold) {
  folder_.Write("docs/a", SimpleDocument(1));
  folder_.Write("docs/b", SimpleDocument(1));
  system_.Environment[0].second = "";
  system_.Environment.emplace_back("HOME", "");
  EXPECT_EQ(Run(), kEverythingJoined);
}

TEST_F(BatchRun, SettingsLockedElsewhereAreToldOnceAndChangeNothingElse) {
  for (const char* name : {"docs/a", "docs/b", "docs/c"}) folder_.Write(name, SimpleDocument(1));
  Store("MenuSort", "-1");
  std::string opened;
  system_.Decide = [&](const FaultingSystem::Call& call, std::size_t) {
    if (call.Is("CreateFile")) opened = call.Path;
    const bool settingsLock = call.Is("TryLockFile") && opened.ends_with(".lock");
    return FaultingSystem::Fault{settingsLock ? EWOULDBLOCK : 0, 0};
  };
  EXPECT_EQ(Run(), kEverythingJoined);
  EXPECT_EQ(system_.Written,
            "[Folioweld-WriteSetting]=>The settings are not stored: another program holds the lock \"" +
                folder_.File("config/folioweld/settings.ini.lock") + "\"\n");
  EXPECT_EQ(system_.Now, 2000);
  EXPECT_EQ(Setting("MergeCurDir"), "");
}

TEST_F(BatchRun, VanishedFolderForTemporaryFilesIsReplacedByTheSystemsOne) {
  for (const char* name : {"docs/a", "docs/b", "docs/c"}) folder_.Write(name, SimpleDocument(1));
  Store("MergeTmpDir", folder_.File("vanished"));
  EXPECT_EQ(Run(), kEverythingJoined);
  EXPECT_EQ(Setting("MergeTmpDir"), folder_.File("tmp/"));
}

}  // namespace
}  // namespace folioweld
