#include "platform/child_process.h"

#include <cerrno>
#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

namespace folioweld {

namespace {

/// What a child does with its streams and files before it becomes the program.
class FileActions {
 public:
  FileActions() : error_(::posix_spawn_file_actions_init(&actions_)) {}
  FileActions(const FileActions&) = delete;
  FileActions& operator=(const FileActions&) = delete;
  ~FileActions() { ::posix_spawn_file_actions_destroy(&actions_); }

  /// A handle that becomes itself is no longer closed when the program begins.
  void Put(int file, int number) {
    if (error_ == 0) error_ = ::posix_spawn_file_actions_adddup2(&actions_, file, number);
  }
  void PutNothing(int number) {
    if (error_ == 0) error_ = ::posix_spawn_file_actions_addopen(&actions_, number, "/dev/null", O_RDWR, 0);
  }
  [[nodiscard]] int Error() const { return error_; }
  [[nodiscard]] const posix_spawn_file_actions_t* Get() const { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_{};
  int error_;
};

int Spawn(const std::string& program, const std::vector<std::string>& arguments, const FileActions& actions,
          pid_t& child) {
  if (actions.Error() != 0) return actions.Error();
  std::vector<char*> pointers;
  pointers.reserve(arguments.size() + 1);
  for (const std::string& argument : arguments) pointers.push_back(const_cast<char*>(argument.c_str()));
  pointers.push_back(nullptr);
  return ::posix_spawn(&child, program.c_str(), actions.Get(), nullptr, pointers.data(), ::environ);
}

}  // namespace

SystemResult<StartedProcess> SpawnProcess(const std::string& program,
                                          const std::vector<std::string>& arguments,
                                          const std::vector<WindowsAPI::Handle>& kept) {
  int ends[2] = {-1, -1};
  if (::pipe2(ends, O_CLOEXEC) < 0) return SystemError{errno};
  FileActions actions;
  actions.PutNothing(STDIN_FILENO);
  actions.PutNothing(STDOUT_FILENO);
  actions.Put(ends[1], STDERR_FILENO);
  for (const WindowsAPI::Handle file : kept) actions.Put(file, file);
  pid_t child = -1;
  int error = Spawn(program, arguments, actions, child);
  ::close(ends[1]);
  // Only the reading end: the child is to wait where the pipe is full.
  if (error == 0 && ::fcntl(ends[0], F_SETFL, O_NONBLOCK) == 0) return StartedProcess{child, ends[0]};
  if (error == 0) error = errno;
  ::close(ends[0]);
  return SystemError{error};
}

}  // namespace folioweld
