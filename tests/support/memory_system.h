#pragma once

#include <map>
#include <memory>
#include <string>

#include "platform/posix_api.h"

namespace folioweld::testing {

/// A system whose files live in memory: no folders, no links, nothing of the real disk is touched. What has
/// to do with other things than files is the real system's.
class MemorySystem : public PosixApi {
 public:
  SystemResult<Handle> CreateFile(const std::string& path, OpenMode mode) override;
  SystemResult<std::size_t> ReadFile(Handle file, std::int64_t offset, char* bytes,
                                     std::size_t count) override;
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
  SystemError SetCurrentDirectory(const std::string& folder) override;
  std::optional<std::string> GetEnvironmentVariable(const std::string& name) override;

  [[nodiscard]] bool Has(const std::string& path) const { return names_.count(path) != 0; }
  [[nodiscard]] const std::string& Bytes(const std::string& path) const { return names_.at(path)->Bytes; }
  void Put(const std::string& path, std::string bytes);
  [[nodiscard]] std::size_t OpenFiles() const { return open_.size(); }

 private:
  struct File {
    std::string Bytes;
    std::uint64_t Number = 0;
    std::int64_t Changes = 0;  ///< stands for the time of the last write
  };

  [[nodiscard]] static FileInformation InformationOf(const File& file);

  std::map<std::string, std::shared_ptr<File>> names_;
  std::map<Handle, std::shared_ptr<File>> open_;
  std::uint64_t nextNumber_ = 1;
};

}  // namespace folioweld::testing
