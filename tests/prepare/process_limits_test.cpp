#include <csignal>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <new>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/windows_api.h"
#include "tests/prepare/address_sanitizer.h"

namespace folioweld {
namespace {

constexpr ProcessLimits kLimits{256 * 1024 * 1024, 1, 4096};

/// How a process ends that has the limits and does this: its exit status, or 128 and the signal.
int EndOf(const std::function<int()>& work) {
  const pid_t child = ::fork();
  if (child == 0) {
    const bool limited = !RealSystem().LimitProcess(kLimits);
    ::_exit(limited ? work() : 99);
  }
  int status = -1;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

TEST(ProcessLimits, EndAProcessThatTakesTooLong) {
  const int end = EndOf([] {
    for (;;) static_cast<void>(::getpid());
    return 0;
  });
  EXPECT_TRUE(end == 128 + SIGXCPU || end == 128 + SIGKILL) << end;
}

#ifndef UNDER_ADDRESS_SANITIZER
// Sanitizers reserve more memory than any limit.
TEST(ProcessLimits, GiveNoMoreMemory) {
  EXPECT_EQ(EndOf([] {
              const std::unique_ptr<char[]> bytes(new (std::nothrow) char[512 * 1024 * 1024]);
              return bytes == nullptr ? 7 : 0;
            }),
            7);
}
#endif

TEST(ProcessLimits, EndAProcessWhoseParentEnds) {
  int pipe[2] = {-1, -1};
  ASSERT_EQ(::pipe(pipe), 0);
  // The child's child keeps the pipe open for as long as it lives.
  const pid_t child = ::fork();
  if (child == 0) {
    const pid_t grandchild = ::fork();
    if (grandchild == 0) {
      static_cast<void>(RealSystem().LimitProcess(kLimits));
      static_cast<void>(!::write(pipe[1], "x", 1));
      for (;;) ::pause();
    }
    char ready = 0;
    static_cast<void>(!::read(pipe[0], &ready, 1));
    ::_exit(0);
  }
  ::close(pipe[1]);
  ASSERT_EQ(::waitpid(child, nullptr, 0), child);
  struct pollfd end {
    pipe[0], POLLIN, 0
  };
  EXPECT_EQ(::poll(&end, 1, 60'000), 1);
  ::close(pipe[0]);
}

}  // namespace
}  // namespace folioweld
