#include "tests/support/memory_system.h"

#include <algorithm>
#include <cerrno>
#include <utility>

namespace folioweld::testing {

SystemResult<MemorySystem::Handle> MemorySystem::CreateFile(const std::string& path, OpenMode mode) {
  const bool mayCreate = mode == OpenMode::WriteKeep || mode == OpenMode::CreateNewPrivate ||
                         mode == OpenMode::ReadWriteCreatePrivate;
  const auto known = names_.find(path);
  if (known != names_.end() && mode == OpenMode::CreateNewPrivate) return SystemError{EEXIST};
  if (known == names_.end() && !mayCreate) return SystemError{ENOENT};
  if (known == names_.end()) Put(path, {});
  Handle handle = 0;
  while (open_.count(handle) != 0) ++handle;
  open_[handle] = names_.at(path);
  if (mode == OpenMode::TruncateExisting) open_[handle]->Bytes.clear();
  return handle;
}

SystemResult<std::size_t> MemorySystem::ReadFile(Handle file, std::int64_t offset, char* bytes,
                                                 std::size_t count) {
  const auto known = open_.find(file);
  if (known == open_.end()) return SystemError{EBADF};
  if (offset < 0) return SystemError{EINVAL};
  const std::string& all = known->second->Bytes;
  const auto from = static_cast<std::size_t>(offset);
  const std::size_t moved = from >= all.size() ? 0 : std::min(count, all.size() - from);
  std::copy_n(all.data() + std::min(from, all.size()), moved, bytes);
  return moved;
}

SystemResult<std::size_t> MemorySystem::WriteFile(Handle file, std::int64_t offset, const char* bytes,
                                                  std::size_t count) {
  const auto known = open_.find(file);
  if (known == open_.end()) return SystemError{EBADF};
  if (offset < 0) return SystemError{EINVAL};
  const auto to = static_cast<std::size_t>(offset);
  // As large as any honest output of a test; more is a full disk.
  if (to + count > 64U * 1024 * 1024) return SystemError{ENOSPC};
  std::string& all = known->second->Bytes;
  if (all.size() < to + count) all.resize(to + count);
  std::copy_n(bytes, count, all.data() + to);
  ++known->second->Changes;
  return count;
}

SystemResult<std::size_t> MemorySystem::CopyFileBytes(Handle from, std::int64_t fromOffset, Handle to,
                                                      std::int64_t toOffset, std::size_t count) {
  std::string bytes(count, '\0');
  const auto read = ReadFile(from, fromOffset, bytes.data(), count);
  return read.Ok() ? WriteFile(to, toOffset, bytes.data(), read.Value()) : read;
}

FileInformation MemorySystem::InformationOf(const File& file) {
  FileInformation information;
  information.Kind = FileKind::Regular;
  information.Identity = {1, file.Number};
  information.Size = static_cast<std::int64_t>(file.Bytes.size());
  information.WriteSeconds = file.Changes;
  information.ChangeSeconds = file.Changes;
  return information;
}

SystemResult<FileInformation> MemorySystem::GetFileInformationByHandle(Handle file) {
  const auto known = open_.find(file);
  if (known == open_.end()) return SystemError{EBADF};
  return InformationOf(*known->second);
}

SystemError MemorySystem::SetEndOfFile(Handle file, std::int64_t size) {
  const auto known = open_.find(file);
  if (known == open_.end()) return SystemError{EBADF};
  if (size < 0) return SystemError{EINVAL};
  known->second->Bytes.resize(static_cast<std::size_t>(size));
  ++known->second->Changes;
  return {};
}

SystemError MemorySystem::FlushFileBuffers(Handle /*file*/) {
  return {};
}

SystemError MemorySystem::TryLockFile(Handle /*file*/) {
  return {};
}

SystemError MemorySystem::CloseHandle(Handle file) {
  return open_.erase(file) == 1 ? SystemError{} : SystemError{EBADF};
}

SystemResult<FileInformation> MemorySystem::GetFileAttributes(const std::string& path) {
  const auto known = names_.find(path);
  if (known == names_.end()) return SystemError{ENOENT};
  return InformationOf(*known->second);
}

SystemResult<FileInformation> MemorySystem::GetLinkAttributes(const std::string& path) {
  return GetFileAttributes(path);
}

SystemError MemorySystem::SetFileAttributesNormal(const std::string& path) {
  return Has(path) ? SystemError{} : SystemError{ENOENT};
}

SystemError MemorySystem::DeleteFile(const std::string& path) {
  return names_.erase(path) == 1 ? SystemError{} : SystemError{ENOENT};
}

SystemError MemorySystem::MoveFile(const std::string& from, const std::string& to, Replace replace) {
  if (!Has(from)) return SystemError{ENOENT};
  if (Has(to) && replace == Replace::No) return SystemError{EEXIST};
  names_[to] = names_.at(from);
  names_.erase(from);
  return {};
}

SystemError MemorySystem::CreateDirectory(const std::string& /*path*/) {
  return {};
}

SystemError MemorySystem::SetCurrentDirectory(const std::string& /*folder*/) {
  return SystemError{ENOENT};
}

std::optional<std::string> MemorySystem::GetEnvironmentVariable(const std::string& name) {
  if (name == "XDG_CONFIG_HOME") return "/config";
  return std::nullopt;
}

void MemorySystem::Put(const std::string& path, std::string bytes) {
  names_[path] = std::make_shared<File>(File{std::move(bytes), nextNumber_++, 0});
}

}  // namespace folioweld::testing
