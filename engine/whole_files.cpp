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

/// What stands under the name now, looked at without opening it if that can be done: nothing lies then
/// between the look and a deletion.
SystemResult<FileInformation> FileModule::Look(const std::string& path) {
  const auto named = system_.GetLinkAttributes(path);
  if (named.Ok() || named.Error().Code == ENOENT) return named;
  const auto handle = RetryInterrupted([&] { return system_.CreateFile(path, OpenMode::ReadUnlinked); });
  if (!handle.Ok()) return handle.Error();
  auto information = system_.GetFileInformationByHandle(handle.Value());
  static_cast<void>(system_.CloseHandle(handle.Value()));
  return information;
}

OwnDeletion FileModule::DeleteOwn(const std::string& path, const FileInformation& made) {
  const auto now = Look(path);
  if (!now.Ok()) return OwnDeletion::Itself;
  if (!IsSameFile(made, now.Value())) return OwnDeletion::Another;
  const SystemError error = RetryInterrupted([&] { return system_.DeleteFile(path); });
  if (!error) return OwnDeletion::Itself;
  lastError_ = error;
  // What cannot be deleted is emptied, and that not by its name.
  const auto handle = RetryInterrupted([&] { return system_.CreateFile(path, OpenMode::ReadWriteExisting); });
  if (!handle.Ok()) return OwnDeletion::Itself;
  const auto information = system_.GetFileInformationByHandle(handle.Value());
  if (information.Ok() && IsUntouched(made, information.Value())) {
    static_cast<void>(RetryInterrupted([&] { return system_.SetEndOfFile(handle.Value(), 0); }));
  }
  static_cast<void>(system_.CloseHandle(handle.Value()));
  // What kept the name may have been over in a moment.
  static_cast<void>(system_.DeleteFile(path));
  return OwnDeletion::Itself;
}

void FileModule::DeleteFile(const std::string& path) {
  if (const FileInformation* const own = own_.Find(path)) {
    static_cast<void>(DeleteOwn(path, *own));
    return;
  }
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
    // Best effort: why it could not be deleted is what is told.
    static_cast<void>(TruncateFile(path));
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
