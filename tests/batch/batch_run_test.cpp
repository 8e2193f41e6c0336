// The windowless run inside the test's own process.

#include "batch/batch_run.h"

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>

#include "dirmerge/program_state.h"
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

DirectoryMergeReport WrittenReport() {
  DirectoryMergeReport report;
  report.OutputWritten = true;
  return report;
}

TEST(StatusOf, IsZeroWhenEveryDocumentIsInTheOutput) {
  EXPECT_EQ(StatusOf(WrittenReport()), 0);
}

TEST(StatusOf, IsOneWithoutAnOutputWhateverElseHappened) {
  EXPECT_EQ(StatusOf({}), 1);
  DirectoryMergeReport report;
  report.FailedMerges = 1;
  report.RefusedDocuments = {"a"};
  EXPECT_EQ(StatusOf(report), 1);
}

TEST(StatusOf, IsThreeForEveryKindOfLoss) {
  DirectoryMergeReport failed = WrittenReport();
  failed.FailedMerges = 1;
  EXPECT_EQ(StatusOf(failed), 3);
  DirectoryMergeReport refused = WrittenReport();
  refused.RefusedDocuments = {"a"};
  EXPECT_EQ(StatusOf(refused), 3);
  DirectoryMergeReport encrypted = WrittenReport();
  encrypted.EncryptedDocuments = {"a"};
  EXPECT_EQ(StatusOf(encrypted), 3);
  DirectoryMergeReport missing = WrittenReport();
  missing.MissingDocuments = {"a"};
  EXPECT_EQ(StatusOf(missing), 3);
}

class BatchRun : public ::testing::Test {
 protected:
  BatchRun() {
    for (const char* name : {"docs", "tmp", "config"}) folder_.MakeFolder(name);
    system_.Environment = {{"XDG_CONFIG_HOME", folder_.File("config")}, {"TMPDIR", folder_.File("tmp")}};
  }
  ~BatchRun() override { std::filesystem::current_path(before_); }

  int Run() { return RunBatch(system_, folder_.File("joined.pdf") + "|" + folder_.File("docs")); }
  std::string Setting(const std::string& name) { return SettingsStore(system_).ReadSetting(name); }
  void Store(const std::string& name, const std::string& text) {
    ASSERT_EQ(SettingsStore(system_).WriteSetting(name, text), 0);
  }

  std::filesystem::path before_ = std::filesystem::current_path();
  TempFolder folder_;
  ScreenSystem system_;
};

TEST_F(BatchRun, DefaultsAreWrittenAtTheFirstStart) {
  ProgramState program;
  SettingsStore settings(system_);
  ReadStartSettings(program, settings);
  EXPECT_EQ(program.SortOrder, 1);
  EXPECT_TRUE(program.Merge.LogEnabled);
  EXPECT_TRUE(program.Merge.ShowOutputAfterMerge);
  EXPECT_EQ(Setting("MenuSort"), "1");
  EXPECT_EQ(Setting("MenuShowLogWindow"), "1");
  EXPECT_EQ(Setting("DisplayOutputAfterMerge"), "1");
}

TEST_F(BatchRun, StoredChoicesHold) {
  Store("MenuSort", "-2");
  Store("MenuShowLogWindow", "0");
  Store("DisplayOutputAfterMerge", "0");
  ProgramState program;
  SettingsStore settings(system_);
  ReadStartSettings(program, settings);
  EXPECT_EQ(program.SortOrder, -2);
  EXPECT_FALSE(program.Merge.LogEnabled);
  EXPECT_FALSE(program.Merge.ShowOutputAfterMerge);
  EXPECT_EQ(Setting("MenuSort"), "-2");
  EXPECT_EQ(Setting("MenuShowLogWindow"), "0");
  EXPECT_EQ(Setting("DisplayOutputAfterMerge"), "0");
}

TEST_F(BatchRun, UnknownChoicesBecomeOnesThatExist) {
  Store("MenuSort", "abc");
  Store("MenuShowLogWindow", "yes");
  Store("DisplayOutputAfterMerge", "yes");
  ProgramState program;
  SettingsStore settings(system_);
  ReadStartSettings(program, settings);
  EXPECT_EQ(program.SortOrder, 1);
  EXPECT_FALSE(program.Merge.LogEnabled);
  EXPECT_FALSE(program.Merge.ShowOutputAfterMerge);
  EXPECT_EQ(Setting("MenuSort"), "1");
  EXPECT_EQ(Setting("MenuShowLogWindow"), "0");
  EXPECT_EQ(Setting("DisplayOutputAfterMerge"), "yes") << "only read at the start";
}

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
  EXPECT_EQ(RunBatch(system_, "out.pdf|no such\nfolder"), kNoOutput);
  EXPECT_EQ(system_.Written, "folioweld: the folder \"no such folder\" cannot be entered\n");
}

TEST_F(BatchRun, RelativeOutputWithoutACurrentFolderIsAMessage) {
  folder_.Write("docs/a", SimpleDocument(1));
  system_.Decide = FaultingSystem::Failing("GetCurrentDirectory", ENOENT);
  EXPECT_EQ(RunBatch(system_, "out.pdf|" + folder_.File("docs")), kNoOutput);
  EXPECT_EQ(system_.Written, "folioweld: the folder in which the program was started cannot be had\n");
  EXPECT_FALSE(Exists(folder_.File("docs/out.pdf")));
}

TEST_F(BatchRun, WithoutAStoreForSettingsTheDefaultsHold) {
  folder_.Write("docs/a", SimpleDocument(1));
  folder_.Write("docs/b", SimpleDocument(1));
  system_.Environment[0].second = "";
  system_.Environment.emplace_back("HOME", "");
  EXPECT_EQ(Run(), kEverythingJoined);
}

TEST_F(BatchRun, VanishedFolderForTemporaryFilesIsReplacedByTheSystemsOne) {
  for (const char* name : {"docs/a", "docs/b", "docs/c"}) folder_.Write(name, SimpleDocument(1));
  Store("MergeTmpDir", folder_.File("vanished"));
  EXPECT_EQ(Run(), kEverythingJoined);
  EXPECT_EQ(Setting("MergeTmpDir"), folder_.File("tmp/"));
}

}  // namespace
}  // namespace folioweld
