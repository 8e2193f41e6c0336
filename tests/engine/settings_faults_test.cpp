// Settings under failing calls, a process that dies at any call, and several writers at once: what is stored
// is the old or the new, never a mixture, and nothing that was stored is lost.

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "tests/engine/settings_fixture.h"

namespace folioweld {
namespace {

namespace fs = std::filesystem;
using testing::FaultingSystem;
using testing::ReadFile;

const std::string kOld = "# mine\n[Settings]\nMenuSort=1\nFuture=7\n";
const std::string kNew = "# mine\n[Settings]\nMenuSort=2\nFuture=7\n";

class SettingsFaultsTest : public testing::SettingsFixture {
 protected:
  [[nodiscard]] int TemporaryFiles() const {
    int count = 0;
    for (const auto& entry : fs::directory_iterator(Folder.File("folioweld"))) {
      count += entry.path().extension() == ".tmp" ? 1 : 0;
    }
    return count;
  }

  /// Runs the step with the n-th call failing, for every n that it makes.
  template <typename Step>
  void ForEveryFailingCall(int error, bool lasting, Step step) {
    for (std::size_t n = 0;; ++n) {
      WriteSettingsFile(kOld);
      System.Calls.clear();
      System.Decide = [=](const FaultingSystem::Call&, std::size_t index) {
        const bool fails = lasting ? index >= n : index == n;
        return FaultingSystem::Fault{fails ? error : 0, 0};
      };
      SettingsStore store(System);
      SCOPED_TRACE("call " + std::to_string(n) + ", error " + std::to_string(error));
      step(store);
      System.Decide = nullptr;
      if (n >= System.Calls.size()) return;
      ASSERT_LT(n, 1000U);
    }
  }

  void ExpectOldOrNew(int result) const {
    const std::string stored = ReadFile(SettingsFile());
    EXPECT_EQ(stored, result == 0 ? kNew : kOld);
  }
};

TEST_F(SettingsFaultsTest, OneFailingCallLeavesTheOldOrTheNewSettingsAndNoTemporaryFile) {
  for (const int error : {EIO, ENOSPC, EACCES, EINTR, EROFS}) {
    ForEveryFailingCall(error, false, [&](SettingsStore& store) {
      ExpectOldOrNew(store.WriteSetting("MenuSort", "2"));
      EXPECT_EQ(TemporaryFiles(), 0);
    });
  }
}

TEST_F(SettingsFaultsTest, CallsThatFailFromOneOnLeaveTheOldOrTheNewSettings) {
  for (const int error : {EIO, ENOSPC, EINTR}) {
    ForEveryFailingCall(error, true,
                        [&](SettingsStore& store) { ExpectOldOrNew(store.WriteSetting("MenuSort", "2")); });
  }
}

TEST_F(SettingsFaultsTest, ANewTextThatCouldNotBeClosedDoesNotTakeTheOldOnesPlace) {
  WriteSettingsFile(kOld);
  bool written = false;
  System.Decide = [&](const FaultingSystem::Call& call, std::size_t) {
    written = written || call.Is("WriteFile");
    return FaultingSystem::Fault{written && call.Is("CloseHandle") ? EIO : 0, 0};
  };
  EXPECT_EQ(Store.WriteSetting("MenuSort", "2"), EIO);
  EXPECT_EQ(ReadFile(SettingsFile()), kOld);
  EXPECT_EQ(TemporaryFiles(), 0);
}

TEST_F(SettingsFaultsTest, AFailingReadNeverPutsTheDefaultInThePlaceOfAStoredText) {
  for (const bool lasting : {false, true}) {
    ForEveryFailingCall(EIO, lasting, [&](SettingsStore& store) {
      std::string text;
      const int result = store.ReadSettingOrDefault("MenuSort", text, "9");
      EXPECT_EQ(text, result == 0 ? "1" : "9");
      EXPECT_EQ(ReadFile(SettingsFile()), kOld);
    });
  }
}

TEST_F(SettingsFaultsTest, InterruptionsDoNotShow) {
  for (const char* name :
       {"CreateFile", "ReadFile", "WriteFile", "FlushFileBuffers", "TryLockFile", "RandomNumber"}) {
    WriteSettingsFile(kOld);
    long calls = 0;
    System.Decide = [&](const FaultingSystem::Call& call, std::size_t) {
      // Every such call is interrupted three times before it gets through.
      return FaultingSystem::Fault{call.Name == name && ++calls % 4 != 0 ? EINTR : 0, 0};
    };
    EXPECT_EQ(Store.WriteSetting("MenuSort", "2"), 0) << name;
    EXPECT_EQ(Store.ReadSetting("MenuSort"), "2") << name;
    EXPECT_GE(calls, 4) << name;
  }
}

TEST_F(SettingsFaultsTest, ShortReadsAndWritesDoNotShow) {
  WriteSettingsFile(kOld);
  System.Decide = [](const FaultingSystem::Call&, std::size_t) { return FaultingSystem::Fault{0, 1000000}; };
  EXPECT_EQ(Store.WriteSetting("MenuSort", "2"), 0);
  EXPECT_EQ(Store.ReadSetting("MenuSort"), "2");
  EXPECT_EQ(ReadFile(SettingsFile()), kNew);
}

TEST_F(SettingsFaultsTest, TheNewTextIsOnTheDiskBeforeItTakesTheOldOnesPlace) {
  WriteSettingsFile(kOld);
  EXPECT_EQ(Store.WriteSetting("MenuSort", "2"), 0);
  std::vector<std::string> order;
  for (const auto& call : System.Calls) {
    if (call.Is("TryLockFile") || call.Is("WriteFile") || call.Is("FlushFileBuffers") ||
        call.Is("MoveFile")) {
      order.push_back(call.Name);
    }
  }
  EXPECT_EQ(order, (std::vector<std::string>{"TryLockFile", "WriteFile", "FlushFileBuffers", "MoveFile"}));
}

TEST_F(SettingsFaultsTest, AProcessThatDiesAtAnyCallLeavesTheOldOrTheNewSettingsAndNoLock) {
  bool finished = false;
  for (std::size_t n = 0; !finished; ++n) {
    WriteSettingsFile(kOld);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      FaultingSystem dying;
      PointTo(dying);
      dying.Decide = [=](const FaultingSystem::Call&, std::size_t index) {
        if (index == n) ::_exit(1);
        return FaultingSystem::Fault{};
      };
      SettingsStore store(dying);
      ::_exit(store.WriteSetting("MenuSort", "2") == 0 ? 0 : 2);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    ASSERT_NE(WEXITSTATUS(status), 2);
    finished = WEXITSTATUS(status) == 0;
    const std::string stored = ReadFile(SettingsFile());
    EXPECT_TRUE(stored == kNew || (stored == kOld && !finished)) << n << ": " << stored;
    // The next run neither waits for the dead one nor trips over what it left.
    EXPECT_EQ(Store.WriteSetting("MenuSort", "3"), 0);
    EXPECT_EQ(Store.ReadSetting("MenuSort"), "3");
    ASSERT_LT(n, 1000U);
  }
}

TEST_F(SettingsFaultsTest, ADefaultNeverReplacesAChoiceThatAnotherProcessStoredMeanwhile) {
  FaultingSystem otherSystem;
  PointTo(otherSystem);
  SettingsStore other(otherSystem);
  EXPECT_EQ(other.WriteSetting("MergeTmpDir", "/tmp/"), 0);
  bool done = false;
  System.Decide = [&](const FaultingSystem::Call& call, std::size_t) {
    // After this store has looked, and before it has the lock.
    if (call.Is("TryLockFile") && !done) {
      done = true;
      EXPECT_EQ(other.WriteSetting("MenuSort", "3"), 0);
    }
    return FaultingSystem::Fault{};
  };
  std::string text;
  EXPECT_EQ(Store.ReadSettingOrDefault("MenuSort", text, "1"), 0);
  EXPECT_TRUE(done);
  EXPECT_EQ(text, "1");
  EXPECT_EQ(other.ReadSetting("MenuSort"), "3");
}

TEST_F(SettingsFaultsTest, AChangeThatAnotherProcessMadeMeanwhileIsKept) {
  FaultingSystem otherSystem;
  PointTo(otherSystem);
  SettingsStore other(otherSystem);
  WriteSettingsFile(kOld);
  bool done = false;
  System.Decide = [&](const FaultingSystem::Call& call, std::size_t) {
    if (call.Is("TryLockFile") && !done) {
      done = true;
      EXPECT_EQ(other.WriteSetting("MergeTmpDir", "/other/"), 0);
    }
    return FaultingSystem::Fault{};
  };
  EXPECT_EQ(Store.WriteSetting("MenuSort", "2"), 0);
  EXPECT_TRUE(done);
  EXPECT_EQ(ReadFile(SettingsFile()), kNew + "MergeTmpDir=/other/\n");
}

TEST_F(SettingsFaultsTest, ThreadsThatWriteAtOnceLoseNothing) {
  constexpr int kWriters = 3;
  constexpr int kRounds = 15;
  WriteSettingsFile(kOld);
  std::atomic<int> running{kWriters};
  std::vector<std::thread> writers;
  for (int i = 0; i < kWriters; ++i) {
    writers.emplace_back([&, i] {
      FaultingSystem system;
      PointTo(system);
      SettingsStore store(system);
      for (int round = 1; round <= kRounds; ++round) {
        EXPECT_EQ(store.WriteSetting("Writer" + std::to_string(i), std::to_string(round)), 0);
      }
      --running;
    });
  }
  while (running > 0) EXPECT_EQ(Store.ReadSetting("Future"), "7") << "a reader sees whole files only";
  for (auto& writer : writers) writer.join();
  for (int i = 0; i < kWriters; ++i) {
    EXPECT_EQ(Store.ReadSetting("Writer" + std::to_string(i)), std::to_string(kRounds));
  }
  EXPECT_EQ(TemporaryFiles(), 0);
}

TEST_F(SettingsFaultsTest, ProcessesThatStartAtOnceLoseNothing) {
  constexpr int kProcesses = 4;
  // From an empty store on, so that they also race to make it.
  std::vector<pid_t> children;
  for (int i = 0; i < kProcesses; ++i) {
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      FaultingSystem system;
      PointTo(system);
      SettingsStore store(system);
      bool ok = true;
      for (int round = 1; round <= 8; ++round) {
        ok = ok && store.WriteSetting("Process" + std::to_string(i), std::to_string(round)) == 0;
      }
      ::_exit(ok ? 0 : 1);
    }
    children.push_back(child);
  }
  for (const pid_t child : children) {
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  }
  for (int i = 0; i < kProcesses; ++i) EXPECT_EQ(Store.ReadSetting("Process" + std::to_string(i)), "8");
}

}  // namespace
}  // namespace folioweld
