#include "tests/support/faulting_system.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace folioweld::testing {

namespace {

std::size_t Shortened(std::size_t count, std::size_t by) {
  if (by == 0 || count <= 1) return count;
  return count > by ? count - by : 1;
}

}  // namespace

std::function<FaultingSystem::Fault(const FaultingSystem::Call&, std::size_t)> FaultingSystem::Failing(
    const std::string& name, int error) {
  return [=](const Call& call, std::size_t) { return call.Is(name.c_str()) ? Fault{error, 0} : Fault{}; };
}

bool FaultingSystem::Call::Is(const char* name) const {
  const bool same = Name == name;
  bool& called = System->wanted_[name];
  called = called || same;
  return same;
}

FaultingSystem::~FaultingSystem() {
  for (const auto& [name, called] : wanted_) {
    EXPECT_TRUE(called) << "no call of " << name << " was made, and the test is about one";
  }
}

FaultingSystem::Fault FaultingSystem::Count(const char* name, const std::string& path) {
  Calls.push_back({name, path, this});
  return Decide ? Decide(Calls.back(), Calls.size() - 1) : Fault{};
}

SystemResult<FaultingSystem::Handle> FaultingSystem::CreateFile(const std::string& path, OpenMode mode) {
  const Fault fault = Count("CreateFile", path);
  if (fault.Error != 0) return SystemError{fault.Error};
  return PosixApi::CreateFile(path, mode);
}

SystemResult<FaultingSystem::Handle> FaultingSystem::CreateMemoryFile() {
  const Fault fault = Count("CreateMemoryFile");
  if (fault.Error != 0) return SystemError{fault.Error};
  return PosixApi::CreateMemoryFile();
}

SystemResult<std::size_t> FaultingSystem::ReadFile(Handle file, std::int64_t offset, char* bytes,
                                                   std::size_t count) {
  const Fault fault = Count("ReadFile");
  if (fault.Error != 0) return SystemError{fault.Error};
  return PosixApi::ReadFile(file, offset, bytes, Shortened(count, fault.ShortBy));
}

SystemResult<std::size_t> FaultingSystem::ReadNext(Handle file, char* bytes, std::size_t count) {
  const Fault fault = Count("ReadNext");
  if (fault.Error != 0) return SystemError{fault.Error};
  return PosixApi::ReadNext(file, bytes, Shortened(count, fault.ShortBy));
}

SystemResult<std::size_t> FaultingSystem::WriteFile(Handle file, std::int64_t offset, const char* bytes,
                                                    std::size_t count) {
  const Fault fault = Count("WriteFile");
  if (fault.Error != 0) return SystemError{fault.Error};
  return PosixApi::WriteFile(file, offset, bytes, Shortened(count, fault.ShortBy));
}

SystemResult<std::size_t> FaultingSystem::CopyFileBytes(Handle from, std::int64_t fromOffset, Handle to,
                                                        std::int64_t toOffset, std::size_t count) {
  const Fault fault = Count("CopyFileBytes");
  if (fault.Error != 0) return SystemError{fault.Error};
  return PosixApi::CopyFileBytes(from, fromOffset, to, toOffset, Shortened(count, fault.ShortBy));
}

SystemResult<FileInformation> FaultingSystem::GetFileInformationByHandle(Handle file) {
  const Fault fault = Count("GetFileInformationByHandle");
  if (fault.Error != 0) return SystemError{fault.Error};
  return PosixApi::GetFileInformationByHandle(file);
}

SystemError FaultingSystem::SetEndOfFile(Handle file, std::int64_t size) {
  const Fault fault = Count("SetEndOfFile");
  return fault.Error != 0 ? SystemError{fault.Error} : PosixApi::SetEndOfFile(file, size);
}

SystemError FaultingSystem::FlushFileBuffers(Handle file) {
  const Fault fault = Count("FlushFileBuffers");
  return fault.Error != 0 ? SystemError{fault.Error} : PosixApi::FlushFileBuffers(file);
}

SystemError FaultingSystem::TryLockFile(Handle file) {
  const Fault fault = Count("TryLockFile");
  return fault.Error != 0 ? SystemError{fault.Error} : PosixApi::TryLockFile(file);
}

SystemError FaultingSystem::CloseHandle(Handle file) {
  const Fault fault = Count("CloseHandle");
  // A failed close has closed the file all the same.
  const SystemError real = PosixApi::CloseHandle(file);
  return fault.Error != 0 ? SystemError{fault.Error} : real;
}

SystemResult<FileInformation> FaultingSystem::GetFileAttributes(const std::string& path) {
  const Fault fault = Count("GetFileAttributes", path);
  if (fault.Error != 0) return SystemError{fault.Error};
  return PosixApi::GetFileAttributes(path);
}

SystemResult<FileInformation> FaultingSystem::GetLinkAttributes(const std::string& path) {
  const Fault fault = Count("GetLinkAttributes", path);
  if (fault.Error != 0) return SystemError{fault.Error};
  return PosixApi::GetLinkAttributes(path);
}

SystemError FaultingSystem::SetFileAttributesNormal(const std::string& path) {
  const Fault fault = Count("SetFileAttributesNormal", path);
  return fault.Error != 0 ? SystemError{fault.Error} : PosixApi::SetFileAttributesNormal(path);
}

SystemError FaultingSystem::DeleteFile(const std::string& path) {
  const Fault fault = Count("DeleteFile", path);
  return fault.Error != 0 ? SystemError{fault.Error} : PosixApi::DeleteFile(path);
}

SystemError FaultingSystem::MoveFile(const std::string& from, const std::string& to, Replace replace) {
  const Fault fault = Count("MoveFile", from);
  return fault.Error != 0 ? SystemError{fault.Error} : PosixApi::MoveFile(from, to, replace);
}

SystemError FaultingSystem::CreateDirectory(const std::string& path) {
  const Fault fault = Count("CreateDirectory", path);
  return fault.Error != 0 ? SystemError{fault.Error} : PosixApi::CreateDirectory(path);
}

SystemResult<FaultingSystem::Search> FaultingSystem::FindFirstFile(const std::string& folder) {
  const Fault fault = Count("FindFirstFile", folder);
  if (fault.Error != 0) return SystemError{fault.Error};
  return PosixApi::FindFirstFile(folder);
}

SystemResult<std::optional<std::string>> FaultingSystem::FindNextFile(Search search) {
  const Fault fault = Count("FindNextFile");
  if (fault.Error != 0) return SystemError{fault.Error};
  return PosixApi::FindNextFile(search);
}

SystemResult<std::string> FaultingSystem::GetCurrentDirectory() {
  const Fault fault = Count("GetCurrentDirectory");
  if (fault.Error != 0) return SystemError{fault.Error};
  return PosixApi::GetCurrentDirectory();
}

SystemError FaultingSystem::SetCurrentDirectory(const std::string& folder) {
  const Fault fault = Count("SetCurrentDirectory", folder);
  return fault.Error != 0 ? SystemError{fault.Error} : PosixApi::SetCurrentDirectory(folder);
}

std::optional<std::string> FaultingSystem::GetEnvironmentVariable(const std::string& name) {
  for (const auto& [known, value] : Environment) {
    if (known != name) continue;
    return value == "\x01" ? std::nullopt : std::optional<std::string>(value);
  }
  return PosixApi::GetEnvironmentVariable(name);
}

SystemResult<std::uint32_t> FaultingSystem::RandomNumber() {
  const Fault fault = Count("RandomNumber");
  if (fault.Error != 0) return SystemError{fault.Error};
  return PosixApi::RandomNumber();
}

SystemResult<LocalTime> FaultingSystem::FileTimeToLocalTime(std::int64_t seconds) {
  const Fault fault = Count("FileTimeToLocalTime");
  if (fault.Error != 0) return SystemError{fault.Error};
  return PosixApi::FileTimeToLocalTime(seconds);
}

SystemResult<bool> FaultingSystem::PollProcess(Process child) {
  const Fault fault = Count("PollProcess");
  if (fault.Error != 0) return SystemError{fault.Error};
  return PosixApi::PollProcess(child);
}

SystemResult<StartedProcess> FaultingSystem::StartProcess(const std::string& program,
                                                          const std::vector<std::string>& arguments,
                                                          const std::vector<Handle>& kept) {
  const Fault fault = Count("StartProcess", program);
  if (fault.Error != 0) return SystemError{fault.Error};
  return PosixApi::StartProcess(program, arguments, kept);
}

SystemResult<std::optional<int>> FaultingSystem::ExitOfProcess(Process child) {
  const Fault fault = Count("ExitOfProcess");
  if (fault.Error != 0) return SystemError{fault.Error};
  return PosixApi::ExitOfProcess(child);
}

SystemError FaultingSystem::KillProcess(Process child) {
  const Fault fault = Count("KillProcess");
  return fault.Error != 0 ? SystemError{fault.Error} : PosixApi::KillProcess(child);
}

SystemResult<WindowsAPI::Process> FaultingSystem::ParentOfProcess(Process process) {
  const Fault fault = Count("ParentOfProcess");
  if (fault.Error != 0) return SystemError{fault.Error};
  return PosixApi::ParentOfProcess(process);
}

SystemError FaultingSystem::TerminateProcess(Process process) {
  const Fault fault = Count("TerminateProcess");
  return fault.Error != 0 ? SystemError{fault.Error} : PosixApi::TerminateProcess(process);
}

SystemError FaultingSystem::PreferLargePages(void* memory, std::size_t size) {
  const Fault fault = Count("PreferLargePages");
  return fault.Error != 0 ? SystemError{fault.Error} : PosixApi::PreferLargePages(memory, size);
}

}  // namespace folioweld::testing
