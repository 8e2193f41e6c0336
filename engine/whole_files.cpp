// The operations of FileModule on files that are not open.

#include <cerrno>

#include "engine/file_module.h"
#include "engine/input_buffer.h"
#include "platform/retry.h"

namespace folioweld {

bool FileModule::FileExists(const std::string& path) {
  const auto handle = RetryInterrupted([&] { return system_.CreateFile(path, OpenMode::ReadExisting); });
  if (!handle.Ok()) return false;
  const auto information = system_.GetFileInformationByHandle(handle.Value());
  static_cast<void>(system_.CloseHandle(handle.Value()));
  return information.Ok() && information.Value().Kind != FileKind::Directory;
}

void FileModule::DeleteFile(const std::string& path) {
  const auto information = system_.GetLinkAttributes(path);
  if (information.Ok()) {
    const bool oneName = information.Value().Links == 1;
    // Another name of the same file keeps its mode and its contents.
    if (information.Value().Kind == FileKind::Regular && oneName && !information.Value().OwnerCanWrite) {
      static_cast<void>(system_.SetFileAttributesNormal(path));
    }
  }
  const SystemError error = RetryInterrupted([&] { return system_.DeleteFile(path); });
  if (!error || error.Code == ENOENT) return;
  lastError_ = error;
  if (information.Ok() && information.Value().Kind == FileKind::Regular && information.Value().Links == 1) {
    TruncateFile(path);
    // What kept the name may have been over in a moment.
    static_cast<void>(system_.DeleteFile(path));
  }
}

bool FileModule::TruncateFile(const std::string& path) {
  const auto handle = RetryInterrupted([&] { return system_.CreateFile(path, OpenMode::TruncateExisting); });
  if (!handle.Ok()) return Fail(handle.Error());
  const SystemError error = system_.CloseHandle(handle.Value());
  return !error || Fail(error);
}

bool FileModule::SetFileSize(const std::string& path, std::int32_t size) {
  const auto handle = RetryInterrupted([&] { return system_.CreateFile(path, OpenMode::ReadWriteExisting); });
  if (!handle.Ok()) return Fail(handle.Error());
  const SystemError error = RetryInterrupted([&] { return system_.SetEndOfFile(handle.Value(), size); });
  const SystemError closeError = system_.CloseHandle(handle.Value());
  if (error) return Fail(error);
  return !closeError || Fail(closeError);
}

}  // namespace folioweld
