// Disks and folders that go away while documents are joined, and limits on the size of files.

#include <csignal>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <sys/resource.h>

#include "batch/batch_run.h"
#include "dirmerge/command_line.h"
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
using testing::InChild;
using testing::ReadFile;

class LostFolders : public ::testing::Test {
 protected:
  LostFolders() {
    for (const char* name : {"docs", "config"}) folder_.MakeFolder(name);
    MakeFolders();
    for (const char* name : {"a", "b", "c", "d", "e"}) {
      folder_.Write(std::string("docs/") + name + ".pdf",
                    testing::SimpleDocument(1, std::string("text of ") + name));
    }
    testing::QuietSystem system;
    EXPECT_EQ(Run(system), kEverythingJoined) << system.Said;
    whole_ = ReadFile(Output());
    fs::remove(Output());
  }
  ~LostFolders() override { fs::current_path(startFolder_); }

  [[nodiscard]] std::string Output() const { return folder_.File("out/joined.pdf"); }

  void MakeFolders() const {
    for (const char* name : {"tmp", "out"}) folder_.MakeFolder(name);
  }

  ExitStatus Run(testing::QuietSystem& system) const {
    system.Environment = {{"XDG_CONFIG_HOME", folder_.File("config")}, {"TMPDIR", folder_.File("tmp")}};
    const ExitStatus status = RunBatch(system, ParseArguments({Output(), folder_.File("docs")}));
    fs::current_path(startFolder_);
    return status;
  }

  /// Makes the change at every call of a directory merge in turn.
  void ChangeAtEveryCall(const std::function<void()>& change) {
    const std::size_t stride = testing::FullRun() ? 1 : testing::kSanitized ? 11 : 3;
    for (std::size_t site = 0;; site += stride) {
      MakeFolders();
      testing::QuietSystem system;
      bool reached = false;
      system.Decide = [&](const testing::FaultingSystem::Call&, std::size_t index) {
        if (index >= site && !reached) {
          reached = true;
          change();
        }
        return testing::FaultingSystem::Fault{};
      };
      const ExitStatus status = Run(system);
      const std::string output = Exists(Output()) ? ReadFile(Output()) : std::string();
      EXPECT_TRUE(output.empty() || output == whole_ || status == kJoinedWithLosses)
          << "a partial output remains";
      EXPECT_TRUE(status != kEverythingJoined || output == whole_ || !Exists(folder_.File("out")))
          << "reported as good and is not";
      EXPECT_TRUE(status == kEverythingJoined || !system.Said.empty()) << "failed without a word";
      for (const char* name : {"a", "b", "c", "d", "e"}) {
        EXPECT_EQ(ReadFile(folder_.File(std::string("docs/") + name + ".pdf")),
                  testing::SimpleDocument(1, std::string("text of ") + name));
      }
      if (Exists(folder_.File("tmp"))) {
        EXPECT_TRUE(fs::is_empty(folder_.File("tmp")));
      }
      fs::remove(Output());
      ASSERT_FALSE(HasFailure()) << "with the change at call " << site << ", status " << status << ": "
                                 << system.Said;
      if (reached) continue;
      EXPECT_GT(site, 100U);
      return;
    }
  }

  testing::TempFolder folder_;
  const std::string startFolder_ = fs::current_path().string();
  std::string whole_;
};

TEST_F(LostFolders, AnOutputFolderThatIsRemovedFailsTheDirectoryMerge) {
  ChangeAtEveryCall([this] { fs::remove_all(folder_.File("out")); });
}

TEST_F(LostFolders, ATemporaryFolderThatIsRemovedIsToldAndLosesNoDocument) {
  ChangeAtEveryCall([this] { fs::remove_all(folder_.File("tmp")); });
}

TEST_F(LostFolders, ATemporaryFolderThatIsEmptiedIsToldAndLosesNoDocument) {
  ChangeAtEveryCall([this] {
    for (const auto& entry : fs::directory_iterator(folder_.File("tmp"))) fs::remove(entry);
  });
}

/// A file-size limit sends SIGXFSZ to whoever writes beyond it, which ends programs that do not expect it.
void LimitFiles(rlim_t bytes) {
  std::signal(SIGXFSZ, SIG_DFL);
  const struct rlimit limit { bytes, bytes };
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
}

TEST_F(LostFolders, AFileSizeLimitFailsADirectoryMergeAndLeavesNothing) {
  // From nothing at all to just too little.
  for (const rlim_t limit : {rlim_t{0}, rlim_t{1}, rlim_t{1000}, static_cast<rlim_t>(whole_.size() - 1)}) {
    const testing::ChildEnd end = InChild([&] {
      LimitFiles(limit);
      testing::QuietSystem system;
      EXPECT_EQ(Run(system), kNoOutput) << system.Said;
      EXPECT_NE(system.Said.find(SystemError{EFBIG}.Words()), std::string::npos) << system.Said;
      EXPECT_FALSE(Exists(Output()));
      EXPECT_TRUE(fs::is_empty(folder_.File("tmp")));
      return 0;
    });
    EXPECT_EQ(end.Signal, 0) << limit;
    EXPECT_EQ(end.Status, 0) << limit;
  }
  const testing::ChildEnd end = InChild([&] {
    LimitFiles(static_cast<rlim_t>(whole_.size()));
    testing::QuietSystem system;
    return static_cast<int>(Run(system));
  });
  EXPECT_EQ(end.Status, kEverythingJoined);
  EXPECT_TRUE(ReadFile(Output()) == whole_);
}

TEST_F(LostFolders, AFileSizeLimitKeepsTheOldSettings) {
  const auto prepare = [this](testing::QuietSystem& system) {
    system.Environment = {{"XDG_CONFIG_HOME", folder_.File("config")}};
  };
  testing::QuietSystem system;
  prepare(system);
  ASSERT_EQ(SettingsStore(system).WriteSetting("MergeTmpDir", "/old/"), 0);
  const std::string before = ReadFile(folder_.File("config/folioweld/settings.ini"));
  for (const rlim_t limit : {rlim_t{0}, rlim_t{1}, static_cast<rlim_t>(before.size())}) {
    const testing::ChildEnd end = InChild([&] {
      LimitFiles(limit);
      testing::QuietSystem own;
      prepare(own);
      EXPECT_NE(SettingsStore(own).WriteSetting("MergeTmpDir", "/a new and longer one/"), 0);
      EXPECT_EQ(SettingsStore(own).ReadSetting("MergeTmpDir"), "/old/");
      return 0;
    });
    EXPECT_EQ(end.Signal, 0) << limit;
    EXPECT_EQ(end.Status, 0) << limit;
    EXPECT_EQ(ReadFile(folder_.File("config/folioweld/settings.ini")), before);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_.File("config/folioweld")), {}), 2);
  }
}

/// Inputs on a file system of their own, which is unmounted while it is in use.
class LostDisk : public ::testing::Test {
 protected:
  const std::string first_ = testing::DocumentWithLongStream("first", 150000);
  const std::string second_ = testing::DocumentWithLongStream("second", 150000);

  static bool MountDisk(const std::string& folder) {
    return ::mount("none", folder.c_str(), "tmpfs", 0, "size=1m") == 0;
  }

  /// Unmounts the disk of the input at every call in turn, in a name space of the child's own.
  static void LoseAtEveryCall(bool firstInput, const std::string& first, const std::string& second) {
    const std::string whole = testing::Joined(first, second);
    const std::string alone = testing::Joined(first, "");
    for (std::size_t site = 0;; ++site) {
      testing::MergeRun merge(first, second);
      const std::string disk = merge.Folder.MakeFolder("disk");
      ASSERT_TRUE(MountDisk(disk));
      std::string& name = merge.State.DocFileName(firstInput ? 1 : 2);
      name = merge.Folder.Write("disk/in.pdf", firstInput ? first : second);
      bool reached = false;
      merge.System.Decide = [&](const testing::FaultingSystem::Call&, std::size_t index) {
        if (index == site) {
          reached = true;
          EXPECT_EQ(::umount2(disk.c_str(), MNT_DETACH), 0);
        }
        return testing::FaultingSystem::Fault{};
      };
      merge.Run();
      merge.System.Decide = nullptr;
      const std::string output = Exists(merge.OutputPath) ? merge.Output() : std::string();
      if (merge.Failed()) {
        EXPECT_TRUE(firstInput) << "a second input that is gone is left out";
        EXPECT_EQ(output, "");
        EXPECT_FALSE(merge.Shell.Notices.empty()) << "failed without a word";
      } else {
        EXPECT_TRUE(output == whole || (!firstInput && output == alone && !merge.Shell.Notices.empty()));
      }
      if (!reached) {
        EXPECT_EQ(::umount2(disk.c_str(), MNT_DETACH), 0);
        EXPECT_TRUE(output == whole);
        EXPECT_GT(site, 20U);
        return;
      }
      ASSERT_FALSE(::testing::Test::HasFailure()) << "unmounted at call " << site;
    }
  }
};

TEST_F(LostDisk, ThatHoldsAnInputIsReadToItsEndOrTheInputIsMissed) {
  for (const bool firstInput : {true, false}) {
    const testing::ChildEnd end = InChild([&] {
      if (::unshare(CLONE_NEWNS) < 0) return testing::kChildSkips;
      if (::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) < 0) return testing::kChildSkips;
      LoseAtEveryCall(firstInput, first_, second_);
      return 0;
    });
    if (end.Status == testing::kChildSkips) GTEST_SKIP() << "no file system can be mounted here";
    EXPECT_EQ(end.Status, 0);
    EXPECT_EQ(end.Signal, 0);
  }
}

}  // namespace
}  // namespace folioweld
