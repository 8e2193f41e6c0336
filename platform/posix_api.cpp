#include "platform/posix_api.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <poll.h>
#include <sched.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/child_process.h"
#include "platform/stop_signals.h"

namespace folioweld {

namespace {

SystemError LastError() {
  return SystemError{errno == 0 ? EIO : errno};
}

SystemError Outcome(int result) {
  return result < 0 ? LastError() : SystemError{};
}

int FlagsFor(OpenMode mode) {
  // Without O_NONBLOCK the open of a pipe would wait for its other end.
  constexpr int kAlways = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
  switch (mode) {
    case OpenMode::ReadExisting:
      return kAlways | O_RDONLY;
    case OpenMode::ReadUnlinked:
      return kAlways | O_RDONLY | O_NOFOLLOW;
    case OpenMode::ReadSequence:
      return O_CLOEXEC | O_NOCTTY | O_RDONLY;
    case OpenMode::WriteKeep:
      return kAlways | O_WRONLY | O_CREAT | O_NOFOLLOW;
    case OpenMode::ReadWriteExisting:
      return kAlways | O_RDWR | O_NOFOLLOW;
    case OpenMode::TruncateExisting:
      return kAlways | O_WRONLY | O_TRUNC | O_NOFOLLOW;
    case OpenMode::CreateNew:
    case OpenMode::CreateNewPrivate:
      return kAlways | O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW;
    case OpenMode::ReadWriteCreatePrivate:
      return kAlways | O_RDWR | O_CREAT | O_NOFOLLOW;
  }
  return kAlways | O_RDONLY;
}

mode_t ModeFor(OpenMode mode) {
  return mode == OpenMode::WriteKeep || mode == OpenMode::CreateNew ? 0666 : 0600;
}

FileKind KindOf(mode_t mode) {
  if (S_ISREG(mode)) return FileKind::Regular;
  if (S_ISDIR(mode)) return FileKind::Directory;
  if (S_ISLNK(mode)) return FileKind::Link;
  return FileKind::Other;
}

FileInformation FromStat(const struct stat& status) {
  FileInformation information;
  information.Kind = KindOf(status.st_mode);
  information.Identity = {status.st_dev, status.st_ino};
  information.Size = status.st_size;
  information.WriteSeconds = status.st_mtim.tv_sec;
  information.WriteNanoseconds = status.st_mtim.tv_nsec;
  information.ChangeSeconds = status.st_ctim.tv_sec;
  information.ChangeNanoseconds = status.st_ctim.tv_nsec;
  information.Links = status.st_nlink;
  information.OwnerCanWrite = (status.st_mode & S_IWUSR) != 0;
  information.Owner = status.st_uid;
  information.Group = status.st_gid;
  information.Mode = status.st_mode & 07777U;
  return information;
}

SystemResult<std::size_t> Transferred(ssize_t result) {
  if (result < 0) return LastError();
  return static_cast<std::size_t>(result);
}

/// Puts the null device where a standard stream was closed: the next file opened would take its number, and
/// what is written to standard error would land in a document.
void FillStandardStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(stream, F_GETFD) < 0 && errno == EBADF) static_cast<void>(::open("/dev/null", O_RDWR) < 0);
  }
}

}  // namespace

PosixApi::PosixApi() {
  FillStandardStreams();
  PassOverSignal(SIGXFSZ);
  PassOverSignal(SIGPIPE);
}

std::string SystemError::Words() const {
  return std::strerror(Code);
}

WindowsAPI& RealSystem() {
  static PosixApi system;
  return system;
}

SystemResult<PosixApi::Handle> PosixApi::CreateFile(const std::string& path, OpenMode mode) {
  const int file = ::open(path.c_str(), FlagsFor(mode), ModeFor(mode));
  if (file < 0) return LastError();
  return file;
}

SystemResult<PosixApi::Handle> PosixApi::CreateMemoryFile() {
  const int file = ::memfd_create("folioweld", MFD_CLOEXEC);
  if (file < 0) return LastError();
  return file;
}

SystemResult<std::size_t> PosixApi::ReadFile(Handle file, std::int64_t offset, char* bytes,
                                             std::size_t count) {
  return Transferred(::pread(file, bytes, count, offset));
}

SystemResult<std::size_t> PosixApi::ReadNext(Handle file, char* bytes, std::size_t count) {
  return Transferred(::read(file, bytes, count));
}

SystemResult<std::size_t> PosixApi::WriteFile(Handle file, std::int64_t offset, const char* bytes,
                                              std::size_t count) {
  return Transferred(::pwrite(file, bytes, count, offset));
}

// The input's pages are mapped and written from there: one copy instead of two, and at any offset, unlike
// calls that share or move whole blocks. Only the system touches them, so that where the file has become
// shorter or the disk cannot be read the write fails, and no signal comes.
SystemResult<std::size_t> PosixApi::CopyFileBytes(Handle from, std::int64_t fromOffset, Handle to,
                                                  std::int64_t toOffset, std::size_t count) {
  const auto before = static_cast<std::size_t>(fromOffset % ::sysconf(_SC_PAGESIZE));
  void* const pages = ::mmap(nullptr, before + count, PROT_READ, MAP_SHARED | MAP_POPULATE, from,
                             fromOffset - static_cast<std::int64_t>(before));
  if (pages == MAP_FAILED) return LastError();
  const auto written = Transferred(::pwrite(to, static_cast<const char*>(pages) + before, count, toOffset));
  ::munmap(pages, before + count);
  // After the file's end its last page holds zeros.
  struct stat status {};
  if (::fstat(from, &status) < 0) return LastError();
  if (status.st_size < fromOffset + static_cast<std::int64_t>(count)) return SystemError{EIO};
  return written;
}

SystemResult<FileInformation> PosixApi::GetFileInformationByHandle(Handle file) {
  struct stat status {};
  if (::fstat(file, &status) < 0) return LastError();
  return FromStat(status);
}

SystemError PosixApi::SetEndOfFile(Handle file, std::int64_t size) {
  return Outcome(::ftruncate(file, size));
}

SystemError PosixApi::FlushFileBuffers(Handle file) {
  return Outcome(::fsync(file));
}

SystemError PosixApi::TryLockFile(Handle file) {
  return Outcome(::flock(file, LOCK_EX | LOCK_NB));
}

SystemError PosixApi::CloseHandle(Handle file) {
  // An interrupted close has closed the file all the same on this system.
  const SystemError error = Outcome(::close(file));
  return error.Code == EINTR ? SystemError{} : error;
}

SystemResult<FileInformation> PosixApi::GetFileAttributes(const std::string& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) < 0) return LastError();
  return FromStat(status);
}

SystemResult<FileInformation> PosixApi::GetLinkAttributes(const std::string& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) < 0) return LastError();
  return FromStat(status);
}

SystemError PosixApi::SetFileAttributesNormal(const std::string& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) < 0) return LastError();
  return Outcome(::fchmodat(AT_FDCWD, path.c_str(), (status.st_mode & 07777) | S_IWUSR, AT_SYMLINK_NOFOLLOW));
}

SystemError PosixApi::DeleteFile(const std::string& path) {
  return Outcome(::unlink(path.c_str()));
}

SystemError PosixApi::MoveFile(const std::string& from, const std::string& to, Replace replace) {
  if (replace == Replace::Yes) return Outcome(::rename(from.c_str(), to.c_str()));
  return Outcome(::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE));
}

SystemError PosixApi::CreateDirectory(const std::string& path) {
  return Outcome(::mkdir(path.c_str(), 0700));
}

SystemResult<PosixApi::Search> PosixApi::FindFirstFile(const std::string& folder) {
  DIR* directory = ::opendir(folder.c_str());
  if (directory == nullptr) return LastError();
  return static_cast<Search>(directory);
}

SystemResult<std::optional<std::string>> PosixApi::FindNextFile(Search search) {
  errno = 0;
  const struct dirent* entry = ::readdir(static_cast<DIR*>(search));
  if (entry != nullptr) return std::optional<std::string>(entry->d_name);
  if (errno != 0) return LastError();
  return std::optional<std::string>();
}

void PosixApi::FindClose(Search search) {
  ::closedir(static_cast<DIR*>(search));
}

SystemResult<std::string> PosixApi::GetCurrentDirectory() {
  const std::unique_ptr<char, void (*)(void*)> text(::getcwd(nullptr, 0), std::free);
  if (text == nullptr) return LastError();
  return std::string(text.get());
}

SystemError PosixApi::SetCurrentDirectory(const std::string& folder) {
  return Outcome(::chdir(folder.c_str()));
}

std::optional<std::string> PosixApi::GetEnvironmentVariable(const std::string& name) {
  const char* value = std::getenv(name.c_str());
  if (value == nullptr) return std::nullopt;
  return std::string(value);
}

UserIds PosixApi::GetUserIds() {
  constexpr std::uint32_t kUsualOverflowUser = 65534;
  std::array<char, 16> text{};
  const int file = ::open("/proc/sys/kernel/overflowuid", O_RDONLY | O_CLOEXEC);
  const bool known = file >= 0 && ::read(file, text.data(), text.size() - 1) > 0;
  if (file >= 0) ::close(file);
  const auto overflow = static_cast<std::uint32_t>(std::strtoul(text.data(), nullptr, 10));
  return {::geteuid(), ::getegid(), known ? overflow : kUsualOverflowUser};
}

SystemResult<std::uint32_t> PosixApi::RandomNumber() {
  std::uint32_t number = 0;
  const ssize_t count = ::getrandom(&number, sizeof number, 0);
  if (count != static_cast<ssize_t>(sizeof number)) return LastError();
  return number;
}

SystemResult<LocalTime> PosixApi::FileTimeToLocalTime(std::int64_t seconds) {
  const std::time_t moment = seconds;
  struct tm parts {};
  if (::localtime_r(&moment, &parts) == nullptr) return LastError();
  return LocalTime{parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday,
                   parts.tm_hour,        parts.tm_min,     parts.tm_sec};
}

std::int64_t PosixApi::MillisecondsNow() {
  struct timespec now {};
  ::clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<std::int64_t>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

SystemResult<std::string> PosixApi::GetModuleFileName() {
  std::string path(PATH_MAX, '\0');
  const ssize_t length = ::readlink("/proc/self/exe", path.data(), path.size());
  if (length < 0) return LastError();
  path.resize(static_cast<std::size_t>(length));
  return path;
}

SystemError PosixApi::ReplaceProcess(const std::string& program, const std::vector<std::string>& arguments) {
  std::vector<char*> pointers;
  pointers.reserve(arguments.size() + 1);
  for (const std::string& argument : arguments) pointers.push_back(const_cast<char*>(argument.c_str()));
  pointers.push_back(nullptr);
  return Outcome(::execv(program.c_str(), pointers.data()));
}

SystemResult<bool> PosixApi::PollProcess(Process child) {
  const pid_t ended = ::waitpid(child, nullptr, WNOHANG);
  if (ended < 0) return LastError();
  return ended == 0;
}

SystemResult<StartedProcess> PosixApi::StartProcess(const std::string& program,
                                                    const std::vector<std::string>& arguments,
                                                    const std::vector<Handle>& kept) {
  return SpawnProcess(program, arguments, kept);
}

SystemResult<std::optional<int>> PosixApi::ExitOfProcess(Process child) {
  int status = 0;
  const pid_t ended = ::waitpid(child, &status, WNOHANG);
  if (ended < 0) return LastError();
  if (ended == 0) return std::optional<int>();
  return std::optional<int>(WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status));
}

SystemError PosixApi::KillProcess(Process child) {
  return child > 0 ? Outcome(::kill(child, SIGKILL)) : SystemError{ESRCH};
}

void PosixApi::WaitForInput(const std::vector<Handle>& handles, int milliseconds) {
  std::vector<struct pollfd> waiting{{CaughtSignalHandle(), POLLIN, 0}};
  for (const Handle handle : handles) waiting.push_back({handle, POLLIN, 0});
  // Waiting too short, after another signal, does no harm.
  static_cast<void>(::poll(waiting.data(), waiting.size(), milliseconds));
}

int PosixApi::ProcessorCount() {
  cpu_set_t processors;
  return ::sched_getaffinity(0, sizeof processors, &processors) < 0 ? 1 : CPU_COUNT(&processors);
}

SystemResult<PosixApi::Process> PosixApi::ParentOfProcess(Process process) {
  const std::string name = "/proc/" + std::to_string(process) + "/stat";
  const int file = ::open(name.c_str(), O_RDONLY | O_CLOEXEC);
  if (file < 0) return LastError();
  std::array<char, 256> text{};
  const bool told = ::read(file, text.data(), text.size() - 1) > 0;
  ::close(file);
  // The program's name stands in parentheses and may hold any itself; a letter for the state follows.
  const char* after = std::strrchr(text.data(), ')');
  if (!told || after == nullptr || std::strlen(after) < 5) return SystemError{ESRCH};
  return static_cast<Process>(std::strtol(after + 4, nullptr, 10));
}

SystemError PosixApi::TerminateProcess(Process process) {
  // 0 and below would reach whole groups of processes.
  return process > 0 ? Outcome(::kill(process, SIGTERM)) : SystemError{ESRCH};
}

SystemError PosixApi::PreferLargePages(void* memory, std::size_t size) {
#ifdef MADV_HUGEPAGE
  return Outcome(::madvise(memory, size, MADV_HUGEPAGE));
#else
  static_cast<void>(memory);
  static_cast<void>(size);
  return {ENOSYS};
#endif
}

SystemResult<std::size_t> PosixApi::WriteStandardOutput(const char* bytes, std::size_t count) {
  return Transferred(::write(STDOUT_FILENO, bytes, count));
}

bool PosixApi::ErrorOutputIsTerminal() {
  return ::isatty(STDERR_FILENO) == 1;
}

bool PosixApi::ErrorOutputIsInForeground() {
  return ::tcgetpgrp(STDERR_FILENO) == ::getpgrp();
}

int PosixApi::TimesContinued() {
  return ContinuationCount();
}

bool PosixApi::PutOffStops(bool putOff) {
  sigset_t stop;
  sigset_t before;
  ::sigemptyset(&stop);
  ::sigemptyset(&before);
  ::sigaddset(&stop, SIGTSTP);
  static_cast<void>(::sigprocmask(putOff ? SIG_BLOCK : SIG_UNBLOCK, &stop, &before));
  return ::sigismember(&before, SIGTSTP) == 1;
}

int PosixApi::TerminalColumns() {
  struct winsize size {};
  if (::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) < 0 || size.ws_col == 0) return 80;
  return size.ws_col;
}

SystemResult<std::size_t> PosixApi::WriteErrorOutput(const char* bytes, std::size_t count) {
  // Waiting here and not in the write: a signal that came just before would not end that.
  std::array<struct pollfd, 2> either{{{STDERR_FILENO, POLLOUT, 0}, {CaughtSignalHandle(), POLLIN, 0}}};
  if (::poll(either.data(), either.size(), -1) < 0) return LastError();
  if (either[0].revents == 0) return SystemError{EAGAIN};
  // There is room for so many at least.
  return Transferred(::write(STDERR_FILENO, bytes, std::min<std::size_t>(count, PIPE_BUF)));
}

SystemError PosixApi::CatchStopSignals(StopRule rule) {
  return CatchSignals(rule);
}

int PosixApi::ReleaseStopSignals() {
  return ReleaseSignals();
}

void PosixApi::EndBySignal(int signal) {
  EndProcessBy(signal);
}

const volatile std::sig_atomic_t& PosixApi::StopSignal() {
  return CaughtSignal();
}

PosixApi::Handle PosixApi::StopSignalHandle() {
  return CaughtSignalHandle();
}

void PosixApi::WaitForStopSignal(int milliseconds) {
  struct pollfd signal {
    CaughtSignalHandle(), POLLIN, 0
  };
  // Waiting too short, after another signal, does no harm.
  static_cast<void>(::poll(&signal, 1, milliseconds));
}

}  // namespace folioweld
