// What others put in the way: links, pipes, devices, odd names, a second process.

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "batch/batch_run.h"
#include "dirmerge/command_line.h"
#include "engine/settings_store.h"
#include "engine/settings_text.h"
#include "tests/faults/child.h"
#include "tests/faults/fault_documents.h"
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

class Safety : public ::testing::Test {
 protected:
  Safety() {
    for (const char* name : {"docs", "tmp", "config"}) folder_.MakeFolder(name);
  }
  ~Safety() override { fs::current_path(startFolder_); }

  void AddDocuments(int count, const std::string& in = "docs") const {
    for (int i = 0; i < count; ++i) {
      const std::string name(1, static_cast<char>('a' + i));
      folder_.Write(in + "/" + name + ".pdf", testing::SimpleDocument(1, "text of " + name));
    }
  }

  void Prepare(testing::QuietSystem& system) const {
    system.Environment = {{"XDG_CONFIG_HOME", folder_.File("config")}, {"TMPDIR", folder_.File("tmp")}};
  }

  ExitStatus Run(testing::QuietSystem& system, const std::string& output, const std::string& docs) const {
    Prepare(system);
    const ExitStatus status = RunBatch(system, ParseArguments({output, docs}));
    fs::current_path(startFolder_);
    return status;
  }

  testing::TempFolder folder_;
  const std::string startFolder_ = fs::current_path().string();
};

TEST_F(Safety, TemporariesAreTheOwnersAloneFromTheFirstMoment) {
  AddDocuments(5);
  testing::QuietSystem system;
  std::size_t seen = 0;
  system.Decide = [&](const testing::FaultingSystem::Call&, std::size_t) {
    for (const auto& entry : fs::directory_iterator(folder_.File("tmp"))) {
      ++seen;
      EXPECT_EQ(fs::symlink_status(entry).type(), fs::file_type::regular);
      EXPECT_EQ(fs::symlink_status(entry).permissions(), fs::perms(0600));
    }
    return testing::FaultingSystem::Fault{};
  };
  EXPECT_EQ(Run(system, folder_.File("out.pdf"), folder_.File("docs")), kEverythingJoined);
  EXPECT_GT(seen, 100U);
}

TEST_F(Safety, ALinkInTheOutputsPlaceIsNeitherFollowedNorRemoved) {
  AddDocuments(3);
  const std::string victim = folder_.Write("victim", "precious");
  const std::string output = folder_.File("out.pdf");
  fs::create_symlink(victim, output);
  testing::QuietSystem system;
  EXPECT_EQ(Run(system, output, folder_.File("docs")), kNoOutput);
  EXPECT_EQ(ReadFile(victim), "precious");
  EXPECT_TRUE(fs::is_symlink(output));
  fs::remove(output);
  fs::create_symlink(folder_.File("not there"), output);
  EXPECT_EQ(Run(system, output, folder_.File("docs")), kNoOutput);
  EXPECT_FALSE(Exists(folder_.File("not there")));
}

TEST_F(Safety, ALinkPlantedForATemporaryAtAnyMomentReachesNothing) {
  AddDocuments(5);
  const std::string victim = folder_.Write("victim", "precious");
  for (std::size_t site = 0;; ++site) {
    testing::QuietSystem system;
    bool planted = false;
    system.Decide = [&](const testing::FaultingSystem::Call&, std::size_t index) {
      if (index < site || planted) return testing::FaultingSystem::Fault{};
      for (const auto& entry : fs::directory_iterator(folder_.File("tmp"))) {
        if (planted) break;
        planted = true;
        fs::remove(entry);
        fs::create_symlink(victim, entry.path());
      }
      return testing::FaultingSystem::Fault{};
    };
    static_cast<void>(Run(system, folder_.File("out.pdf"), folder_.File("docs")));
    ASSERT_EQ(ReadFile(victim), "precious") << "planted at call " << site;
    for (const auto& entry : fs::directory_iterator(folder_.File("tmp"))) {
      ASSERT_TRUE(entry.is_symlink()) << "planted at call " << site;
      fs::remove(entry);
    }
    if (!planted) {
      EXPECT_GT(site, 100U);
      return;
    }
    site += 4;
  }
}

TEST_F(Safety, NothingInAFolderBlocksTheMerge) {
  AddDocuments(3);
  const std::string docs = folder_.File("docs/");
  ASSERT_EQ(::mkfifo((docs + "pipe.pdf").c_str(), 0600), 0);
  const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  struct sockaddr_un address {};
  address.sun_family = AF_UNIX;
  const std::string socketPath = docs + "s.pdf";
  ASSERT_LT(socketPath.size(), sizeof address.sun_path);
  std::copy(socketPath.begin(), socketPath.end(), address.sun_path);
  EXPECT_EQ(::bind(socket, reinterpret_cast<struct sockaddr*>(&address), sizeof address), 0);
  ::close(socket);
  // Where no device may be made, the rest still counts.
  static_cast<void>(::mknod((docs + "zero.pdf").c_str(), S_IFCHR | 0600, ::makedev(1, 5)));
  fs::create_symlink("/dev/zero", docs + "link to a device.pdf");
  fs::create_symlink(docs + "nowhere", docs + "dangling.pdf");
  fs::create_symlink(docs + "loop.pdf", docs + "loop.pdf");
  fs::create_symlink(folder_.Path(), docs + "folder.pdf");
  fs::create_directory(docs + "real folder.pdf");
  folder_.Write("docs/empty", "");
  for (int i = 0; i < 10000; ++i) folder_.Write("docs/" + std::to_string(i), i % 2 == 0 ? "" : "no document");
  const testing::ChildEnd end = InChild([&] {
    testing::QuietSystem system;
    return static_cast<int>(Run(system, folder_.File("out.pdf"), docs));
  });
  EXPECT_EQ(end.Status, kEverythingJoined);
  const std::string output = ReadFile(folder_.File("out.pdf"));
  for (const char* text : {"text of a", "text of b", "text of c"}) {
    EXPECT_NE(output.find(text), std::string::npos);
  }
}

TEST_F(Safety, NamesOfAnyBytesGoThroughUnharmed) {
  const std::string odd = "-rf $(touch x) `y` \"q\" 'a'\n\r|\xFF\xC0 ;&";
  folder_.MakeFolder(odd);
  for (const char* name : {"a", "b", "c"}) {
    folder_.Write(odd + "/" + name + odd, testing::SimpleDocument(1, "text of " + std::string(name)));
  }
  const std::string output = folder_.File("-o \"$(x)\"\n\xFE.pdf");
  testing::QuietSystem system;
  Prepare(system);
  EXPECT_EQ(RunBatch(system, ParseArguments({output + "|" + folder_.File(odd)})), kEverythingJoined)
      << system.Said;
  fs::current_path(startFolder_);
  EXPECT_NE(ReadFile(output).find("text of c"), std::string::npos);
  EXPECT_EQ(FindSetting(ReadFile(folder_.File("config/folioweld/settings.ini")), "MergeCurDir"),
            folder_.File(odd) + "/");
  EXPECT_FALSE(Exists("x"));
}

TEST_F(Safety, TwoProcessesThatMergeIntoOneFolderDoEachOtherNoHarm) {
  AddDocuments(5);
  folder_.MakeFolder("others");
  AddDocuments(7, "others");
  const std::map<std::string, std::string> jobs = {{"one.pdf", "docs"}, {"two.pdf", "others"}};
  std::map<std::string, std::string> right;
  for (const auto& [output, docs] : jobs) {
    testing::QuietSystem system;
    ASSERT_EQ(Run(system, folder_.File(output), folder_.File(docs)), kEverythingJoined);
    right[output] = ReadFile(folder_.File(output));
  }
  for (int round = 0; round < 10; ++round) {
    std::vector<pid_t> children;
    for (const auto& [output, docs] : jobs) {
      const pid_t child = ::fork();
      if (child == 0) {
        ::alarm(300);
        testing::QuietSystem system;
        ::_exit(Run(system, folder_.File(output), folder_.File(docs)));
      }
      children.push_back(child);
    }
    for (const pid_t child : children) {
      int status = -1;
      ASSERT_EQ(::waitpid(child, &status, 0), child);
      ASSERT_EQ(status, 0);
    }
    for (const auto& [output, bytes] : right) ASSERT_TRUE(ReadFile(folder_.File(output)) == bytes) << output;
    ASSERT_TRUE(fs::is_empty(folder_.File("tmp")));
  }
}

TEST_F(Safety, TwoProcessesThatWriteOneOutputLeaveNoMixture) {
  const std::string first = testing::DocumentWithLongStream("first", 400000);
  const std::string second = testing::DocumentWithLongStream("second", 200000);
  const std::string output = folder_.File("out.pdf");
  const std::string wholes[] = {testing::Joined(first, ""), testing::Joined(second, "")};
  folder_.Write("first.pdf", first);
  folder_.Write("second.pdf", second);
  // The other process merges while this one is between two of its calls.
  for (std::size_t site = 0;; ++site) {
    const auto merge = [&](const char* input, const auto& decide) {
      testing::QuietSystem system;
      FileModule files(system);
      MergeState state;
      MergeShell shell;
      ActivityLog log(shell);
      MergeJob job(state, files, shell, log);
      state.DocFileName(1) = folder_.File(input);
      state.DocFileName(3) = output;
      system.Decide = decide;
      job.cmdOK_Click();
      return state.MergeStatus == 2;
    };
    bool reached = false;
    bool otherGood = false;
    const bool good = merge("first.pdf", [&](const testing::FaultingSystem::Call&, std::size_t index) {
      if (index == site) {
        reached = true;
        otherGood =
            InChild([&] { return merge("second.pdf", testing::QuietSystem().Decide) ? 0 : 1; }).Status == 0;
      }
      return testing::FaultingSystem::Fault{};
    });
    ASSERT_TRUE(good || otherGood) << "at call " << site;
    const std::string bytes = ReadFile(output);
    const bool rightFirst = good && bytes == wholes[0];
    const bool rightSecond = otherGood && bytes == wholes[1];
    ASSERT_TRUE(rightFirst || rightSecond) << "a mixture, at call " << site;
    if (!reached) break;
  }
}

/// Waits in earnest, for a lock that another process gives back in a moment, or in two minutes: a busy
/// machine may stop it while it holds the lock.
class WaitingSystem : public testing::QuietSystem {
 public:
  void WaitForStopSignal(int milliseconds) override {
    // NOLINTNEXTLINE(bugprone-parent-virtual-call): the next one only counts
    PosixApi::WaitForStopSignal(milliseconds);
  }
  std::int64_t MillisecondsNow() override { return QuietSystem::MillisecondsNow() / 60; }
};

TEST_F(Safety, TwoProcessesThatChangeSettingsLoseNone) {
  testing::QuietSystem system;
  Prepare(system);
  ASSERT_EQ(SettingsStore(system).WriteSetting("Unknown", "kept"), 0);
  std::vector<pid_t> children;
  for (const char* name : {"MenuSort", "MergeTmpDir"}) {
    const pid_t child = ::fork();
    if (child == 0) {
      ::alarm(300);
      WaitingSystem own;
      Prepare(own);
      SettingsStore settings(own);
      int failed = 0;
      for (int i = 1; i <= 200; ++i) failed += settings.WriteSetting(name, std::to_string(i)) == 0 ? 0 : 1;
      ::_exit(failed == 0 ? 0 : 1);
    }
    children.push_back(child);
  }
  for (const pid_t child : children) {
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
  }
  SettingsStore settings(system);
  EXPECT_EQ(settings.ReadSetting("MenuSort"), "200");
  EXPECT_EQ(settings.ReadSetting("MergeTmpDir"), "200");
  EXPECT_EQ(settings.ReadSetting("Unknown"), "kept");
}

}  // namespace
}  // namespace folioweld
