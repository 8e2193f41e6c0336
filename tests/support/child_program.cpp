#include "tests/support/child_program.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <iostream>
#include <mutex>
#include <pty.h>
#include <stdexcept>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "tests/support/temp_folder.h"

namespace folioweld::testing {

namespace {

constexpr std::chrono::seconds kPatience{120};

std::vector<std::string> EnvironmentOf(const ChildProgram::Setup& setup) {
  std::vector<std::string> own{"DISPLAY", "WAYLAND_DISPLAY", "XDG_CONFIG_HOME", "HOME", "TMPDIR"};
  for (const auto& [name, value] : setup.Environment) own.push_back(name);
  std::vector<std::string> all;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string text = *entry;
    if (std::find(own.begin(), own.end(), text.substr(0, text.find('='))) == own.end()) all.push_back(text);
  }
  for (const auto& [name, value] : setup.Environment) all.push_back(name + "=" + value);
  return all;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace

bool WaitUntil(const std::function<bool()>& condition) {
  const auto end = std::chrono::steady_clock::now() + kPatience;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(std::chrono::microseconds(200));
  }
  return true;
}

bool HasEnded(int process) {
  std::string stat;
  std::getline(std::ifstream("/proc/" + std::to_string(process) + "/stat"), stat);
  // The state comes after the name, which may hold anything.
  const std::size_t name = stat.rfind(") ");
  return name == std::string::npos || stat[name + 2] == 'Z' || stat[name + 2] == 'X';
}

struct ChildProgram::State {
  TempFolder Folder;
  pid_t Child = -1;
  int Master = -1;
  int Slave = -1;
  mutable std::mutex Lock;
  std::string Shown;  ///< on the terminal
  std::thread Reader;

  void OpenTerminal(int columns) {
    struct winsize size {};
    size.ws_col = static_cast<unsigned short>(columns);
    size.ws_row = 24;
    if (::openpty(&Master, &Slave, nullptr, nullptr, &size) != 0) throw std::runtime_error("no terminal");
    ::fcntl(Master, F_SETFD, FD_CLOEXEC);
    ::fcntl(Slave, F_SETFD, FD_CLOEXEC);
  }

  /// Until the last one who has the terminal open is gone.
  void ReadTerminal() {
    std::array<char, 4096> bytes{};
    for (;;) {
      const ssize_t count = ::read(Master, bytes.data(), bytes.size());
      if (count < 0 && errno == EINTR) continue;
      if (count <= 0) return;
      const std::lock_guard<std::mutex> guard(Lock);
      Shown.append(bytes.data(), static_cast<std::size_t>(count));
    }
  }

  void ConnectStreams(const Setup& setup, const std::string& output, const std::string& errors) const {
    const int null = ::open("/dev/null", O_RDWR);
    const int out = ::open(output.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    const int err = ::open(errors.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    if (Slave >= 0) {
      ::setsid();
      ::ioctl(Slave, TIOCSCTTY, 0);
    }
    ::dup2(Slave >= 0 ? Slave : null, STDIN_FILENO);
    ::dup2(out, STDOUT_FILENO);
    ::dup2(Slave >= 0 ? Slave : err, STDERR_FILENO);
    for (const int file : {null, out, err}) ::close(file);
    for (const int stream : setup.ClosedStreams) ::close(stream);
  }
};

ChildProgram::ChildProgram(const Setup& setup) : state_(std::make_unique<State>()) {
  const std::string output = state_->Folder.Write("output", "");
  const std::string errors = state_->Folder.Write("errors", "");
  std::vector<std::string> arguments{setup.Program};
  arguments.insert(arguments.end(), setup.Arguments.begin(), setup.Arguments.end());
  std::vector<std::string> environment = EnvironmentOf(setup);
  const std::vector<char*> argumentPointers = Pointers(arguments);
  const std::vector<char*> environmentPointers = Pointers(environment);
  if (setup.TerminalColumns > 0) state_->OpenTerminal(setup.TerminalColumns);
  state_->Child = ::fork();
  if (state_->Child == 0) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE, SIGXFSZ}) ::signal(signal, SIG_DFL);
    for (const int signal : setup.IgnoredSignals) ::signal(signal, SIG_IGN);
    sigset_t none;
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    state_->ConnectStreams(setup, output, errors);
    if (!setup.Folder.empty() && ::chdir(setup.Folder.c_str()) != 0) ::_exit(126);
    if (setup.BeforeStart) setup.BeforeStart();
    ::execve(setup.Program.c_str(), argumentPointers.data(), environmentPointers.data());
    ::_exit(127);
  }
  if (state_->Slave >= 0) {
    ::close(state_->Slave);
    state_->Reader = std::thread([this] { state_->ReadTerminal(); });
  }
}

ChildProgram::~ChildProgram() {
  if (state_->Child > 0) {
    // Without this, nobody knows what a test has waited for in vain.
    if (::testing::Test::HasFailure())
      std::cerr << "The program still runs. It wrote:\n" << Output() << Errors();
    Signal(SIGKILL);
    ::waitpid(state_->Child, nullptr, 0);
  }
  if (state_->Reader.joinable()) state_->Reader.join();
  if (state_->Master >= 0) ::close(state_->Master);
}

int ChildProgram::Wait() {
  int status = 0;
  pid_t ended = 0;
  if (!WaitUntil([&] { return (ended = ::waitpid(state_->Child, &status, WNOHANG)) != 0; }) || ended < 0) {
    ADD_FAILURE() << "the program does not end; it wrote:\n" << Output() << Errors();
    return -1;
  }
  state_->Child = -1;
  if (state_->Reader.joinable()) state_->Reader.join();
  return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

void ChildProgram::Signal(int signal) const {
  // Without a child the number is -1, which means every process there is.
  if (state_->Child > 0) ::kill(state_->Child, signal);
}

int ChildProgram::Id() const {
  return state_->Child;
}

void ChildProgram::Type(const std::string& keys) const {
  EXPECT_EQ(::write(state_->Master, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
}

std::string ChildProgram::Output() const {
  return ReadFile(state_->Folder.File("output"));
}

std::string ChildProgram::Errors() const {
  if (state_->Master < 0) return ReadFile(state_->Folder.File("errors"));
  const std::lock_guard<std::mutex> guard(state_->Lock);
  return state_->Shown;
}

}  // namespace folioweld::testing
