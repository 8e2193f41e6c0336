#pragma once

#include "platform/windows_api.h"

namespace folioweld {

/// `WindowsAPI` on POSIX: each call is one system call or a few that belong together, errors are errno
/// values.
class PosixApi : public WindowsAPI {
 public:
  /// From here on a write beyond a size limit or into a closed pipe is an error of that write. The signals
  /// that come with it would end the program, and leave a half-written file behind.
  PosixApi();

  SystemResult<Handle> CreateFile(const std::string& path, OpenMode mode) override;
  SystemResult<Handle> CreateMemoryFile() override;
  SystemResult<std::size_t> ReadFile(Handle file, std::int64_t offset, char* bytes,
                                     std::size_t count) override;
  SystemResult<std::size_t> ReadNext(Handle file, char* bytes, std::size_t count) override;
  SystemResult<std::size_t> WriteFile(Handle file, std::int64_t offset, const char* bytes,
                                      std::size_t count) override;
  SystemResult<std::size_t> CopyFileBytes(Handle from, std::int64_t fromOffset, Handle to,
                                          std::int64_t toOffset, std::size_t count) override;
  SystemResult<FileInformation> GetFileInformationByHandle(Handle file) override;
  SystemError SetEndOfFile(Handle file, std::int64_t size) override;
  SystemError FlushFileBuffers(Handle file) override;
  SystemError TryLockFile(Handle file) override;
  SystemError CloseHandle(Handle file) override;

  SystemResult<FileInformation> GetFileAttributes(const std::string& path) override;
  SystemResult<FileInformation> GetLinkAttributes(const std::string& path) override;
  SystemError SetFileAttributesNormal(const std::string& path) override;
  SystemError DeleteFile(const std::string& path) override;
  SystemError MoveFile(const std::string& from, const std::string& to, Replace replace) override;
  SystemError CreateDirectory(const std::string& path) override;

  SystemResult<Search> FindFirstFile(const std::string& folder) override;
  SystemResult<std::optional<std::string>> FindNextFile(Search search) override;
  void FindClose(Search search) override;
  SystemResult<std::string> GetCurrentDirectory() override;
  SystemError SetCurrentDirectory(const std::string& folder) override;

  std::optional<std::string> GetEnvironmentVariable(const std::string& name) override;
  UserIds GetUserIds() override;
  SystemResult<std::uint32_t> RandomNumber() override;
  SystemResult<LocalTime> FileTimeToLocalTime(std::int64_t seconds) override;
  std::int64_t MillisecondsNow() override;
  SystemResult<std::string> GetModuleFileName() override;
  SystemError ReplaceProcess(const std::string& program, const std::vector<std::string>& arguments) override;
  SystemResult<bool> PollProcess(Process child) override;
  SystemResult<StartedProcess> StartProcess(const std::string& program,
                                            const std::vector<std::string>& arguments,
                                            const std::vector<Handle>& kept) override;
  SystemResult<std::optional<int>> ExitOfProcess(Process child) override;
  SystemError KillProcess(Process child) override;
  void WaitForInput(const std::vector<Handle>& handles, int milliseconds) override;
  int ProcessorCount() override;
  SystemResult<Process> ParentOfProcess(Process process) override;
  SystemError TerminateProcess(Process process) override;
  SystemError LimitProcess(const ProcessLimits& limits) override;

  SystemError PreferLargePages(void* memory, std::size_t size) override;
  SystemResult<std::size_t> WriteStandardOutput(const char* bytes, std::size_t count) override;
  bool ErrorOutputIsTerminal() override;
  bool ErrorOutputIsInForeground() override;
  int TimesContinued() override;
  bool PutOffStops(bool putOff) override;
  int TerminalColumns() override;
  SystemResult<std::size_t> WriteErrorOutput(const char* bytes, std::size_t count) override;
  SystemError CatchStopSignals(StopRule rule) override;
  int ReleaseStopSignals() override;
  void EndBySignal(int signal) override;
  const volatile std::sig_atomic_t& StopSignal() override;
  Handle StopSignalHandle() override;
  void WaitForStopSignal(int milliseconds) override;
};

}  // namespace folioweld
