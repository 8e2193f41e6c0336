// A disk that is really full, a limit on the size of files, folders and inputs that change during the merge.

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <sys/resource.h>
#include <unistd.h>

#include "batch/batch_run.h"
#include "engine/settings_store.h"
#include "tests/faults/child.h"
#include "tests/faults/fault_documents.h"
#include "tests/faults/fault_sweep.h"
#include "tests/faults/quiet_system.h"
#include "tests/support/carrying_script.h"
#include "tests/support/document_builder.h"
#include "tests/support/merge_run.h"

namespace folioweld {
namespace {

namespace fs = std::filesystem;
using testing::Exists;
using testing::InChild;
using testing::MergeRun;
using testing::ReadFile;

/// Mounts a file system of the size in a name space of the process's own; false where that may not be.
bool MountSmallDisk(const std::string& folder, const std::string& options) {
  if (::unshare(CLONE_NEWNS) < 0) return false;
  if (::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) < 0) return false;
  return ::mount("none", folder.c_str(), "tmpfs", 0, options.c_str()) == 0;
}

bool NoticeHolds(const MergeRun& merge, const std::string& words) {
  for (const std::string& line : merge.Shell.Notices) {
    if (line.find(words) != std::string::npos) return true;
  }
  return false;
}

class FullDisk : public ::testing::Test {
 protected:
  /// Runs the body in a child with a small disk; skips where none can be mounted.
  void OnSmallDisk(const std::string& options, const std::function<void()>& body) {
    disk_ = folder_.MakeFolder("disk");
    const testing::ChildEnd end = InChild([&] {
      if (!MountSmallDisk(disk_, options)) return testing::kChildSkips;
      body();
      return 0;
    });
    if (end.Status == testing::kChildSkips) GTEST_SKIP() << "no small file system can be mounted here";
    EXPECT_EQ(end.Status, 0);
    EXPECT_EQ(end.Signal, 0);
  }

  testing::TempFolder folder_;
  std::string disk_;
};

TEST_F(FullDisk, FailsTheMergeAndLeavesNothing) {
  OnSmallDisk("size=256k", [this] {
    const std::string first = testing::DocumentWithLongStream("first", 400000);
    const std::string second = testing::DocumentWithLongStream("second", 200000);
    MergeRun merge(first, second);
    merge.State.DocFileName(3) = disk_ + "/out.pdf";
    merge.Run();
    EXPECT_TRUE(merge.Failed());
    EXPECT_TRUE(NoticeHolds(merge, SystemError{ENOSPC}.Words()));
    EXPECT_TRUE(fs::is_empty(disk_));
    EXPECT_TRUE(ReadFile(merge.FirstPath) == first && ReadFile(merge.SecondPath) == second);
  });
}

TEST_F(FullDisk, OfExactlyTheRightSizeIsEnough) {
  OnSmallDisk("size=256k", [this] {
    MergeRun merge(testing::DocumentWithLongStream("first", 120000),
                   testing::DocumentWithLongStream("second", 120000));
    merge.State.DocFileName(3) = disk_ + "/out.pdf";
    merge.Run();
    EXPECT_FALSE(merge.Failed());
    EXPECT_TRUE(testing::Joined(ReadFile(merge.FirstPath), ReadFile(merge.SecondPath)) ==
                ReadFile(disk_ + "/out.pdf"));
  });
}

TEST_F(FullDisk, ForTemporariesFailsTheDirectoryMergeAndLeavesNothing) {
  folder_.MakeFolder("docs");
  for (const char* name : {"a", "b", "c"}) {
    folder_.Write(std::string("docs/") + name, testing::DocumentWithLongStream(name, 200000));
  }
  OnSmallDisk("size=256k", [this] {
    testing::QuietSystem system;
    system.Environment = {{"XDG_CONFIG_HOME", folder_.MakeFolder("config")}, {"TMPDIR", disk_}};
    EXPECT_NE(RunBatch(system, ParseArguments({folder_.File("out.pdf") + "|" + folder_.File("docs")})),
              kEverythingJoined);
    EXPECT_NE(system.Said.find(SystemError{ENOSPC}.Words()), std::string::npos) << system.Said;
    EXPECT_TRUE(fs::is_empty(disk_));
  });
}

TEST_F(FullDisk, ForACopyLeavesTheDocumentOutAndJoinsTheRest) {
  for (const char* name : {"docs", "config", "bin"}) folder_.MakeFolder(name);
  folder_.Write("docs/a", testing::SimpleDocument(1, "text of a"));
  folder_.Write("docs/b", testing::kOtherDocument);
  const std::string copy = folder_.Write("copy", testing::DocumentWithLongStream("text of b", 200000));
  testing::WritePreparingScript(folder_, "bin/folioweld-prepare", testing::CopyingCommands(copy));
  const auto join = [this](const std::string& tmpFolder, std::string& said) {
    testing::QuietSystem system;
    system.Environment = {{"XDG_CONFIG_HOME", folder_.File("config")}, {"TMPDIR", tmpFolder}};
    system.ModulePath = folder_.File("bin/folioweld");
    const ExitStatus status =
        RunBatch(system, ParseArguments({"--prepare", folder_.File("out.pdf"), folder_.File("docs")}));
    said = system.Said;
    return status;
  };
  std::string said;
  EXPECT_EQ(join(folder_.MakeFolder("room"), said), kEverythingJoined) << said;
  fs::remove(folder_.File("out.pdf"));
  fs::remove_all(folder_.File("config/folioweld"));
  OnSmallDisk("size=64k", [&] {
    EXPECT_EQ(join(disk_, said), kJoinedWithLosses) << said;
    EXPECT_NE(said.find("\"b\""), std::string::npos) << said;
    EXPECT_NE(ReadFile(folder_.File("out.pdf")).find("text of a"), std::string::npos);
    EXPECT_TRUE(fs::is_empty(disk_));
  });
}

TEST_F(FullDisk, WhileSomethingIsCarriedOverLeavesTheJoinedFile) {
  for (const char* name : {"docs", "config", "bin"}) folder_.MakeFolder(name);
  folder_.Write("docs/a", testing::DocumentWithLongStream("text of a", 30000));
  testing::WriteCarryingScript(
      folder_, "bin/folioweld-carry",
      "head -c 100000 /dev/zero >> $joined || { echo 'failed: no space' >&2; exit 1; }");
  OnSmallDisk("size=64k", [&] {
    const std::string output = disk_ + "/out.pdf";
    testing::QuietSystem system;
    system.Environment = {{"XDG_CONFIG_HOME", folder_.File("config")}};
    system.ModulePath = folder_.File("bin/folioweld");
    EXPECT_EQ(RunBatch(system, ParseArguments({output, folder_.File("docs")})), kEverythingJoined);
    const std::string joined = ReadFile(output);
    EXPECT_EQ(RunBatch(system, ParseArguments({"--carry", output, folder_.File("docs")})), kJoinedWithLosses);
    EXPECT_NE(system.Said.find("without what --carry adds: no space"), std::string::npos) << system.Said;
    EXPECT_TRUE(ReadFile(output) == joined);
  });
}

TEST_F(FullDisk, KeepsTheOldSettings) {
  OnSmallDisk("size=16k,nr_inodes=16", [this] {
    testing::QuietSystem system;
    system.Environment = {{"XDG_CONFIG_HOME", disk_}};
    SettingsStore settings(system);
    ASSERT_EQ(settings.WriteSetting("MenuSort", "2"), 0);
    const std::string before = ReadFile(disk_ + "/folioweld/settings.ini");
    const int filler = ::open((disk_ + "/filler").c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
    while (::write(filler, before.data(), before.size()) > 0) {
    }
    ::close(filler);
    EXPECT_NE(settings.WriteSetting("MergeTmpDir", std::string(3000, 'x')), 0);
    EXPECT_EQ(ReadFile(disk_ + "/folioweld/settings.ini"), before);
    EXPECT_EQ(settings.ReadSetting("MenuSort"), "2");
  });
}

TEST_F(FullDisk, AFileSizeLimitFailsTheMergeAndDoesNotEndTheProgram) {
  const testing::ChildEnd end = InChild([] {
    const std::string first = testing::DocumentWithLongStream("first", 400000);
    MergeRun merge(first, testing::SimpleDocument(2));
    const struct rlimit limit { 100000, 100000 };
    EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    merge.Run();
    EXPECT_TRUE(merge.Failed());
    EXPECT_TRUE(NoticeHolds(merge, SystemError{EFBIG}.Words()));
    EXPECT_FALSE(Exists(merge.OutputPath));
    return 0;
  });
  EXPECT_EQ(end.Signal, 0);
  EXPECT_EQ(end.Status, 0);
}

TEST_F(FullDisk, AClosedPipeForMessagesDoesNotEndTheProgram) {
  const testing::ChildEnd end = InChild([] {
    int pipe[2];
    EXPECT_EQ(::pipe(pipe), 0);
    ::close(pipe[0]);
    ::dup2(pipe[1], STDERR_FILENO);
    PosixApi system;
    EXPECT_EQ(system.WriteErrorOutput("x", 1).Error().Code, EPIPE);
    return 0;
  });
  EXPECT_EQ(end.Signal, 0);
  EXPECT_EQ(end.Status, 0);
}

/// What a merge may come to when something changes at one of its calls.
class ChangedMeanwhile : public ::testing::Test {
 protected:
  using Change = std::function<void(MergeRun&)>;

  /// Makes the change at every call in turn; `alsoGood` are outputs that are right when the change came
  /// before the bytes were needed.
  void ChangeAtEveryCall(const Change& change, const std::vector<std::string>& alsoGood) {
    for (std::size_t site = 0;; ++site) {
      MergeRun merge(first_, second_);
      testing::MakeOld(merge.FirstPath);
      testing::MakeOld(merge.SecondPath);
      merge.State.DocFileName(3) = merge.OutputPath = merge.Folder.MakeFolder("out") + "/out.pdf";
      bool reached = false;
      merge.System.Decide = [&](const testing::FaultingSystem::Call&, std::size_t index) {
        if (index == site && !reached) {
          reached = true;
          change(merge);
        }
        return testing::FaultingSystem::Fault{};
      };
      merge.Run();
      merge.System.Decide = nullptr;
      const std::string output = Exists(merge.OutputPath) ? ReadFile(merge.OutputPath) : std::string();
      if (merge.Failed()) {
        EXPECT_FALSE(merge.Shell.Notices.empty()) << "failed without a word";
        EXPECT_TRUE(output.empty() || output == kForeign) << "a partial output remains";
      } else {
        const bool good = output == whole_ || std::count(alsoGood.begin(), alsoGood.end(), output) > 0;
        EXPECT_TRUE(good || (site + 2 >= merge.System.Calls.size())) << "reported as good and is not";
      }
      if (HasFailure()) {
        ADD_FAILURE() << "with the change at call " << site;
        return;
      }
      if (!reached) {
        EXPECT_GT(site, 20U);
        return;
      }
    }
  }

  static constexpr const char* kForeign = "somebody else's";
  const std::string first_ = testing::DocumentWithLongStream("first", 400000);
  const std::string second_ = testing::DocumentWithLongStream("second", 150000);
  const std::string whole_ = testing::Joined(first_, second_);
  const std::string alone_ = testing::Joined(first_, "");
};

TEST_F(ChangedMeanwhile, AnInputThatIsCutShortIsAFailureAndNoCrash) {
  ChangeAtEveryCall([this](MergeRun& merge) { fs::resize_file(merge.FirstPath, first_.size() / 2); }, {});
  ChangeAtEveryCall([](MergeRun& merge) { fs::resize_file(merge.SecondPath, 100); }, {alone_});
  ChangeAtEveryCall([](MergeRun& merge) { fs::resize_file(merge.SecondPath, 0); }, {alone_});
}

TEST_F(ChangedMeanwhile, AnInputThatGrowsIsAFailure) {
  ChangeAtEveryCall(
      [](MergeRun& merge) { fs::resize_file(merge.SecondPath, fs::file_size(merge.SecondPath) + 100); },
      {alone_});
}

TEST_F(ChangedMeanwhile, AnInputThatIsWrittenOverIsAFailure) {
  std::string other = second_;
  for (std::size_t at = 0; (at = other.find("second", at)) != std::string::npos;)
    other.replace(at, 6, "SECOND");
  ChangeAtEveryCall([&](MergeRun& merge) { merge.Folder.Write("b.pdf", other); },
                    {testing::Joined(first_, other)});
}

TEST_F(ChangedMeanwhile, AnInputThatIsReplacedGivesTheOldOrTheNewDocument) {
  const std::string other = testing::SimpleDocument(2, "another");
  ChangeAtEveryCall(
      [&](MergeRun& merge) { fs::rename(merge.Folder.Write("new.pdf", other), merge.SecondPath); },
      {testing::Joined(first_, other)});
}

TEST_F(ChangedMeanwhile, AnInputThatIsRemovedIsReadToItsEndOrLeftOut) {
  ChangeAtEveryCall([](MergeRun& merge) { fs::remove(merge.SecondPath); }, {alone_});
}

TEST_F(ChangedMeanwhile, AnOutputFolderThatIsRemovedIsAFailure) {
  ChangeAtEveryCall([](MergeRun& merge) { fs::remove_all(merge.Folder.File("out")); }, {""});
}

TEST_F(ChangedMeanwhile, AFileThatTakesTheOutputsPlaceIsLeftAlone) {
  for (std::size_t site = 0;; ++site) {
    MergeRun merge(first_, second_);
    bool reached = false;
    bool opened = false;
    merge.System.Decide = [&](const testing::FaultingSystem::Call& call, std::size_t index) {
      // Up to its opening, the output is whatever stands there.
      opened = opened || call.Is("WriteFile");
      if (opened && index >= site && !reached) {
        reached = true;
        fs::remove(merge.OutputPath);
        merge.Folder.Write("out.pdf", kForeign);
      }
      return testing::FaultingSystem::Fault{};
    };
    merge.Run();
    if (!reached) break;
    // The last calls cut and look at the finished output by its name.
    if (merge.Failed()) {
      EXPECT_EQ(ReadFile(merge.OutputPath), kForeign) << "changed at call " << site;
    }
    if (HasFailure()) return;
  }
}

}  // namespace
}  // namespace folioweld
