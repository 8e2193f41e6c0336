#include "tests/faults/child.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace folioweld::testing {

ChildEnd InChild(const std::function<int()>& body) {
  std::fflush(nullptr);
  const pid_t child = ::fork();
  if (child < 0) {
    ADD_FAILURE() << "no child process can be started";
    return {-1, 0};
  }
  if (child == 0) {
    const bool failedBefore = ::testing::Test::HasFailure();
    // The end of a child that hangs.
    std::signal(SIGALRM, SIG_DFL);
    ::alarm(120);
    const int status = body();
    const bool failed = ::testing::Test::HasFailure() && !failedBefore;
    std::fflush(nullptr);
    ::_exit(failed ? kChildFailed : status);
  }
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  if (WIFSIGNALED(status)) {
    EXPECT_NE(WTERMSIG(status), SIGALRM) << "the child hung";
    return {-1, WTERMSIG(status)};
  }
  return {WEXITSTATUS(status), 0};
}

}  // namespace folioweld::testing
