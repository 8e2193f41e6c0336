#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/posix_api.h"

namespace folioweld::testing {

/// The real system, but every call is counted and named, and any of them can be made to fail.
class FaultingSystem : public PosixApi {
 public:
  struct Call {
    std::string Name;  ///< as the method is called
    std::string Path;  ///< empty for calls on handles
    FaultingSystem* System = nullptr;

    /// Whether this is a call of the method. A test that asks for a method which is never called has lost its
    /// target and fails when the system goes.
    [[nodiscard]] bool Is(const char* name) const;
  };

  /// What is to happen to a call instead of, or before, the real one.
  struct Fault {
    int Error = 0;            ///< errno to report instead of calling; 0 = none
    std::size_t ShortBy = 0;  ///< bytes that a read or write leaves out (at least one byte is moved)
  };

  /// Decides about every call, in order; `index` counts from 0. The default lets everything pass.
  std::function<Fault(const Call& call, std::size_t index)> Decide;

  std::vector<Call> Calls;

  ~FaultingSystem() override;

  /// A fault that fails every call of the method with the error; the test fails where there is none.
  static std::function<Fault(const Call&, std::size_t)> Failing(const std::string& name, int error);

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
  SystemResult<std::string> GetCurrentDirectory() override;
  SystemError SetCurrentDirectory(const std::string& folder) override;
  std::optional<std::string> GetEnvironmentVariable(const std::string& name) override;
  SystemResult<std::uint32_t> RandomNumber() override;
  SystemResult<LocalTime> FileTimeToLocalTime(std::int64_t seconds) override;
  SystemResult<bool> PollProcess(Process child) override;
  SystemResult<StartedProcess> StartProcess(const std::string& program,
                                            const std::vector<std::string>& arguments,
                                            const std::vector<Handle>& kept) override;
  SystemResult<std::optional<int>> ExitOfProcess(Process child) override;
  SystemError KillProcess(Process child) override;
  SystemResult<Process> ParentOfProcess(Process process) override;
  SystemError TerminateProcess(Process process) override;
  std::int64_t MillisecondsNow() override { return PosixApi::MillisecondsNow() + MillisecondsAhead; }
  SystemResult<std::string> GetModuleFileName() override {
    return ModulePath.empty() ? PosixApi::GetModuleFileName() : SystemResult<std::string>(ModulePath);
  }
  int ProcessorCount() override { return Processors == 0 ? PosixApi::ProcessorCount() : Processors; }
  SystemError PreferLargePages(void* memory, std::size_t size) override;

  /// Environment variables as the code under test sees them, in place of the real ones; "\x01" = unset.
  std::vector<std::pair<std::string, std::string>> Environment;
  std::string ModulePath;              ///< of the running program; empty = the real one
  std::int64_t MillisecondsAhead = 0;  ///< of the real clock
  int Processors = 0;                  ///< 0 = as many as there are

 protected:
  /// Notes a call and decides about it; for calls that a derived class answers by itself.
  Fault Count(const char* name, const std::string& path = {});

 private:
  std::map<std::string, bool> wanted_;  ///< the methods that somebody asked for, and whether they were called
};

}  // namespace folioweld::testing
