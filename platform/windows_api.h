#pragma once

#include <csignal>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/system_result.h"

namespace folioweld {

/// How `WindowsAPI::CreateFile` opens a path. But for `ReadSequence` nothing here ever blocks on a pipe or
/// a device, and nothing that is opened for writing is reached through a symbolic link in the last component
/// of its path.
enum class OpenMode {
  ReadExisting,           ///< reading, existing files only
  ReadUnlinked,           ///< the same, but not through a symbolic link
  ReadSequence,           ///< reading from the beginning to the end, waiting where it is a pipe
  WriteKeep,              ///< writing, created when missing (mode 0666 less the umask), contents kept
  ReadWriteExisting,      ///< reading and writing, existing files only
  TruncateExisting,       ///< writing, existing files only, emptied by the open
  CreateNew,              ///< writing, fails when the name exists, mode 0666 less the umask
  CreateNewPrivate,       ///< writing, fails when the name exists, mode 0600
  ReadWriteCreatePrivate  ///< reading and writing, created when missing with mode 0600
};

/// Which file it is, however many names lead to it.
struct FileIdentity {
  std::uint64_t Device = 0;
  std::uint64_t File = 0;

  friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
};

enum class FileKind { Regular, Directory, Link, Other };

struct FileInformation {
  FileKind Kind = FileKind::Other;
  FileIdentity Identity;
  std::int64_t Size = 0;          ///< bytes
  std::int64_t WriteSeconds = 0;  ///< last write, seconds since the epoch
  std::int64_t WriteNanoseconds = 0;
  std::int64_t ChangeSeconds =
      0;  ///< last change of bytes, name, links or permissions; nobody can set it back
  std::int64_t ChangeNanoseconds = 0;
  std::uint64_t Links = 1;  ///< how many names the file has
  bool OwnerCanWrite = true;
  std::uint32_t Owner = 0;  ///< user id
  std::uint32_t Group = 0;  ///< group id
  std::uint32_t Mode = 0;   ///< permissions, with the sticky bit
};

/// As whom the program acts.
struct UserIds {
  std::uint32_t User = 0;
  std::uint32_t Group = 0;         ///< the primary one
  std::uint32_t OverflowUser = 0;  ///< stands for owners that this process has no id for, as in a container
};

/// What a process may use at most.
struct ProcessLimits {
  std::int64_t Memory = 0;            ///< bytes of address space; not kept where sanitizers need more
  std::int64_t ProcessorSeconds = 0;  ///< the process is ended after that
  std::int64_t FileSize = 0;          ///< bytes; a write beyond is an error
};

/// What the signals that ask a program to end do while they are caught.
enum class StopRule {
  Remember,  ///< SIGINT, SIGTERM and SIGHUP are remembered, the last of them; no call notices
  /// SIGQUIT as well. The first one is remembered and interrupts a call that waits. A second one ends the
  /// process at once, though not in the first 200 ms, as some programs send theirs twice.
  EndByIt
};

/// A moment in the local time zone.
struct LocalTime {
  int Year = 0;   ///< full, as in 2026
  int Month = 0;  ///< 1 to 12
  int Day = 0;
  int Hour = 0;
  int Minute = 0;
  int Second = 0;
};

/// A child process.
struct StartedProcess {
  int Child = -1;   ///< its process id
  int Errors = -1;  ///< the reading end of its standard error, EAGAIN where nothing is there yet
};

/// The only place that talks to the operating system. Every call can be made to fail in a test by deriving
/// from this class; `PosixApi` is the real one. Paths are the system's bytes. Calls are not retried here:
/// an interrupted or short call is reported as it happened and its caller goes on.
class WindowsAPI {
 public:
  /// A file descriptor; the caller closes it with `CloseHandle`.
  using Handle = int;
  /// Never closed.
  static constexpr Handle kStandardInput = 0;
  /// An open folder listing; the caller closes it with `FindClose`.
  using Search = void*;
  /// A process id.
  using Process = int;

  WindowsAPI() = default;
  WindowsAPI(const WindowsAPI&) = delete;
  WindowsAPI& operator=(const WindowsAPI&) = delete;
  virtual ~WindowsAPI() = default;

  // Open files. Positions are 0-based byte offsets.
  virtual SystemResult<Handle> CreateFile(const std::string& path, OpenMode mode) = 0;
  /// An empty file in memory, for reading and writing, that no path leads to.
  virtual SystemResult<Handle> CreateMemoryFile() = 0;
  /// May read less than asked for; 0 bytes means the end of the file.
  virtual SystemResult<std::size_t> ReadFile(Handle file, std::int64_t offset, char* bytes,
                                             std::size_t count) = 0;
  /// Reads what comes next, from a pipe too; 0 bytes means the end.
  virtual SystemResult<std::size_t> ReadNext(Handle file, char* bytes, std::size_t count) = 0;
  /// May write less than asked for.
  virtual SystemResult<std::size_t> WriteFile(Handle file, std::int64_t offset, const char* bytes,
                                              std::size_t count) = 0;
  /// Writes the `count` bytes from `fromOffset` of one file, at least one, to `toOffset` of the other, and
  /// spares the way through this program's memory. May write less than asked for. Fails where a file cannot
  /// be read like this, where reading or writing fails and where the first file is too short; `ReadFile` and
  /// `WriteFile` then do it or tell why not.
  virtual SystemResult<std::size_t> CopyFileBytes(Handle from, std::int64_t fromOffset, Handle to,
                                                  std::int64_t toOffset, std::size_t count) = 0;
  virtual SystemResult<FileInformation> GetFileInformationByHandle(Handle file) = 0;
  virtual SystemError SetEndOfFile(Handle file, std::int64_t size) = 0;
  virtual SystemError FlushFileBuffers(Handle file) = 0;
  /// Takes the file's lock without waiting: EWOULDBLOCK when another process holds it. Closing the handle
  /// gives it back.
  virtual SystemError TryLockFile(Handle file) = 0;
  /// The handle is gone afterwards, whatever the result.
  virtual SystemError CloseHandle(Handle file) = 0;

  // Paths.
  /// What the path leads to, links followed.
  virtual SystemResult<FileInformation> GetFileAttributes(const std::string& path) = 0;
  /// What the name itself is; a link is reported as a link.
  virtual SystemResult<FileInformation> GetLinkAttributes(const std::string& path) = 0;
  /// Lets the owner write the file again; never follows a link.
  virtual SystemError SetFileAttributesNormal(const std::string& path) = 0;
  virtual SystemError DeleteFile(const std::string& path) = 0;
  enum class Replace { No, Yes };
  virtual SystemError MoveFile(const std::string& from, const std::string& to, Replace replace) = 0;
  /// Makes a folder that only its owner can enter.
  virtual SystemError CreateDirectory(const std::string& path) = 0;

  // Folders.
  virtual SystemResult<Search> FindFirstFile(const std::string& folder) = 0;
  /// The next name ("." and ".." included), or nothing at the end.
  virtual SystemResult<std::optional<std::string>> FindNextFile(Search search) = 0;
  virtual void FindClose(Search search) = 0;
  virtual SystemResult<std::string> GetCurrentDirectory() = 0;
  virtual SystemError SetCurrentDirectory(const std::string& folder) = 0;

  // The process and its surroundings.
  virtual std::optional<std::string> GetEnvironmentVariable(const std::string& name) = 0;
  virtual UserIds GetUserIds() = 0;
  virtual SystemResult<std::uint32_t> RandomNumber() = 0;
  virtual SystemResult<LocalTime> FileTimeToLocalTime(std::int64_t seconds) = 0;
  /// Monotonic.
  virtual std::int64_t MillisecondsNow() = 0;
  /// The full path of the running program.
  virtual SystemResult<std::string> GetModuleFileName() = 0;
  /// Becomes the other program; comes back only when that failed.
  virtual SystemError ReplaceProcess(const std::string& program,
                                     const std::vector<std::string>& arguments) = 0;
  /// Whether a child process still runs. One that ended is taken leave of here, so that nothing of it stays
  /// behind; asking about it again is an error.
  virtual SystemResult<bool> PollProcess(Process child) = 0;
  /// Starts a program, not through a shell: its standard error can be read here, the other two streams lead
  /// nowhere, and of the open files it gets those in `kept`, under their numbers.
  virtual SystemResult<StartedProcess> StartProcess(const std::string& program,
                                                    const std::vector<std::string>& arguments,
                                                    const std::vector<Handle>& kept) = 0;
  /// How a child ended: its exit status, or 128 and the signal that ended it; nothing while it runs. Like
  /// `PollProcess` it takes leave of one that ended.
  virtual SystemResult<std::optional<int>> ExitOfProcess(Process child) = 0;
  /// Ends a child, which cannot refuse.
  virtual SystemError KillProcess(Process child) = 0;
  /// Waits until one of the handles can be read or has ended, a stop signal is there, or the time is over.
  virtual void WaitForInput(const std::vector<Handle>& handles, int milliseconds) = 0;
  /// How many processors this process may use; at least 1.
  virtual int ProcessorCount() = 0;
  /// The process that started another one, or the one that took it over since.
  virtual SystemResult<Process> ParentOfProcess(Process process) = 0;
  /// Asks a process to end, in the way that it may refuse or take its time over.
  virtual SystemError TerminateProcess(Process process) = 0;

  /// From now on this process has these limits, or the lower ones that it had, leaves no core dump, and is
  /// ended together with the process that started it.
  virtual SystemError LimitProcess(const ProcessLimits& limits) = 0;

  /// Asks for this memory, which begins at a multiple of a huge page's size, to come in huge pages; nothing
  /// that it holds changes.
  virtual SystemError PreferLargePages(void* memory, std::size_t size) = 0;

  // The terminal. Standard output gets nothing but the answers to "--help" and "--version".
  virtual SystemResult<std::size_t> WriteStandardOutput(const char* bytes, std::size_t count) = 0;
  virtual bool ErrorOutputIsTerminal() = 0;
  /// Whether that terminal is the controlling one and this program belongs to its foreground; it can change
  /// at any moment.
  virtual bool ErrorOutputIsInForeground() = 0;
  /// How often the program was stopped and went on since stop signals are caught to end it: each time
  /// somebody else may have written to the terminal.
  virtual int TimesContinued() = 0;
  /// Whether the key that stops the program (Ctrl-Z) waits from now on; returns what was so before.
  virtual bool PutOffStops(bool putOff) = 0;
  /// Columns of the terminal, or 80 when they cannot be had.
  virtual int TerminalColumns() = 0;
  /// Waits until there is room; EAGAIN when there is none and a stop signal came. May write less than asked
  /// for.
  virtual SystemResult<std::size_t> WriteErrorOutput(const char* bytes, std::size_t count) = 0;
  /// From now on the stop signals are remembered, see `StopSignal`; one that is ignored stays ignored.
  virtual SystemError CatchStopSignals(StopRule rule) = 0;
  /// From now on they end the process again, as if they had never been caught. The one remembered, or 0.
  virtual int ReleaseStopSignals() = 0;
  /// Ends the process by the signal.
  virtual void EndBySignal(int signal) = 0;
  /// The stop signal that is remembered, 0 when none came. The reference stays good, and what it leads to
  /// changes when a signal comes.
  virtual const volatile std::sig_atomic_t& StopSignal() = 0;
  /// Becomes readable when a stop signal comes, for a program that waits instead of asking. It belongs to the
  /// system and stays open; -1 before `CatchStopSignals`, or when none could be had.
  virtual Handle StopSignalHandle() = 0;
  /// Waits so long, or until a stop signal comes.
  virtual void WaitForStopSignal(int milliseconds) = 0;
};

/// The real system; it lives as long as the program.
WindowsAPI& RealSystem();

}  // namespace folioweld
