// Programs that the real system starts and watches.

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>
#include <vector>

#include "platform/posix_api.h"
#include "platform/retry.h"
#include "tests/support/child_program.h"
#include "tests/support/temp_folder.h"

namespace folioweld::testing {
namespace {

class PosixChildTest : public ::testing::Test {
 protected:
  StartedProcess StartShell(const std::string& script, const std::vector<int>& kept = {}) {
    const auto started = system_.StartProcess("/bin/sh", {"sh", "-c", script}, kept);
    EXPECT_TRUE(started.Ok());
    return started.Value();
  }

  /// What it wrote until its end, and how it ended.
  std::pair<std::string, int> Watch(const StartedProcess& started) {
    std::string text;
    std::optional<int> status;
    EXPECT_TRUE(WaitUntil([&] {
      char bytes[100];
      const auto count = system_.ReadNext(started.Errors, bytes, sizeof bytes);
      if (count.Ok()) text.append(bytes, count.Value());
      if (!count.Ok() && count.Error().Code == EAGAIN) system_.WaitForInput({started.Errors}, 1000);
      if (!count.Ok() || count.Value() > 0) return false;
      const auto ended = system_.ExitOfProcess(started.Child);
      if (ended.Ok()) status = ended.Value();
      return status.has_value();
    }));
    EXPECT_FALSE(system_.CloseHandle(started.Errors));
    return {text, status.value_or(-1)};
  }

  TempFolder folder_;
  PosixApi system_;
};

TEST_F(PosixChildTest, TellsWhatAProgramWroteAndHowItEnded) {
  EXPECT_EQ(Watch(StartShell("echo no; echo yes >&2; exit 3")), std::pair(std::string("yes\n"), 3));
  EXPECT_EQ(Watch(StartShell("kill -9 $$")), std::pair(std::string(), 137));
}

TEST_F(PosixChildTest, AProgramGetsTheFilesKeptForItAndNoOthers) {
  const int kept = ::open(folder_.Write("kept", "").c_str(), O_RDWR | O_CLOEXEC);
  const int other = ::open(folder_.Write("other", "").c_str(), O_RDWR | O_CLOEXEC);
  const std::string fd = "/proc/self/fd/";
  const auto [text, status] = Watch(
      StartShell("echo kept > " + fd + std::to_string(kept) + "; test -e " + fd + std::to_string(other) +
                     "; echo $? >&2; " + "for n in 0 1; do echo $(readlink /proc/$$/fd/$n) >&2; done",
                 {kept}));
  EXPECT_EQ(text, "1\n/dev/null\n/dev/null\n");
  EXPECT_EQ(status, 0);
  EXPECT_EQ(ReadFile(folder_.File("kept")), "kept\n");
  ::close(kept);
  ::close(other);
}

TEST_F(PosixChildTest, AProgramIsNotLookedForInThePath) {
  EXPECT_EQ(system_.StartProcess("sh", {"sh"}, {}).Error().Code, ENOENT);
}

TEST_F(PosixChildTest, AProgramThatDoesNotEndIsKilled) {
  const StartedProcess started = StartShell("exec sleep 1000");
  const auto running = system_.ExitOfProcess(started.Child);
  EXPECT_TRUE(running.Ok());
  EXPECT_EQ(running.Value(), std::nullopt);
  EXPECT_FALSE(system_.KillProcess(started.Child));
  EXPECT_EQ(Watch(started).second, 128 + SIGKILL);
}

TEST_F(PosixChildTest, OnlyOneProcessIsEverKilled) {
  EXPECT_EQ(system_.KillProcess(0).Code, ESRCH);
  EXPECT_EQ(system_.KillProcess(-1).Code, ESRCH);
  EXPECT_EQ(system_.ExitOfProcess(::getpid()).Error().Code, ECHILD);
}

TEST_F(PosixChildTest, ThereIsAProcessorAtLeast) {
  EXPECT_GE(system_.ProcessorCount(), 1);
}

}  // namespace
}  // namespace folioweld::testing
