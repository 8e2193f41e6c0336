// time-command OUTPUT ERRORS PROGRAM [ARGUMENT...]: runs a program with its standard output and error in
// these files and prints how it went: nanoseconds, exit status, peak memory in KiB.
//
// A program of its own, because the peak memory of a process includes that of whoever started it: from within
// an interpreter every small program would seem to need the interpreter's memory.

#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

int OpenForOutput(const char* path) {
  return open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 4) return 2;
  const int output = OpenForOutput(argv[1]);
  const int errors = OpenForOutput(argv[2]);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, errors, STDERR_FILENO);

  using Clock = std::chrono::steady_clock;
  const Clock::time_point start = Clock::now();
  pid_t child = -1;
  const int error = posix_spawnp(&child, argv[3], &actions, nullptr, argv + 3, environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) {
    std::fprintf(stderr, "time-command: %s cannot be started (error %d)\n", argv[3], error);
    return 1;
  }
  int status = 0;
  rusage usage{};
  if (wait4(child, &status, 0, &usage) != child) return 1;
  const std::chrono::nanoseconds elapsed = Clock::now() - start;

  const int exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  std::printf("%lld %d %ld\n", static_cast<long long>(elapsed.count()), exitStatus, usage.ru_maxrss);
  return 0;
}
