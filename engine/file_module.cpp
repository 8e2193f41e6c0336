#include "engine/file_module.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include "engine/open_file.h"
#include "platform/retry.h"

namespace folioweld {

FileModule::FileModule(WindowsAPI& system) : system_(system) {}

FileModule::~FileModule() {
  for (std::size_t i = 0; i < files_.size(); ++i) {
    // Nobody is left to hear of a failure.
    static_cast<void>(Close(static_cast<std::int16_t>(i + 1)));
  }
}

std::int16_t FileModule::OpenForBinaryRead(const std::string& document) {
  const DocumentCopy* const copy = prepared_.Find(document);
  const std::string& path = copy == nullptr ? document : copy->Path;
  const FileInformation* const own = own_.Find(path);
  const OpenMode mode = own == nullptr ? OpenMode::ReadExisting : OpenMode::ReadUnlinked;
  auto file = MakeRoom();
  const auto handle = RetryInterrupted([&] { return system_.CreateFile(path, mode); });
  if (!handle.Ok()) return Refuse(-1, handle.Error(), own);
  const auto information = system_.GetFileInformationByHandle(handle.Value());
  if (!information.Ok()) return Refuse(handle.Value(), information.Error());
  if (own != nullptr && !IsUntouched(*own, information.Value())) {
    return Refuse(handle.Value(), SystemError{ESTALE}, own);
  }
  if (information.Value().Kind == FileKind::Directory) return Refuse(handle.Value(), SystemError{EISDIR});
  if (information.Value().Kind != FileKind::Regular) return Refuse(handle.Value(), SystemError{EINVAL});
  file->Handle = handle.Value();
  file->Information = information.Value();
  if (copy != nullptr) file->Original = copy->Original;
  file->Input.emplace(system_, file->Handle, file->Information.Size, spareBuffers_);
  return Store(std::move(file));
}

std::int16_t FileModule::OpenForBinaryWrite(const std::string& path) {
  return OpenOutput(path, true);
}

std::int16_t FileModule::OpenOutput(const std::string& path, bool mayReplace) {
  const FileInformation* const own = own_.Find(path);
  const OpenMode mode = own == nullptr ? OpenMode::WriteKeep : OpenMode::ReadWriteExisting;
  auto file = MakeRoom();
  const auto handle = RetryInterrupted([&] { return system_.CreateFile(path, mode); });
  if (!handle.Ok()) return Refuse(-1, handle.Error(), own);
  const auto information = system_.GetFileInformationByHandle(handle.Value());
  if (!information.Ok()) {
    if (own == nullptr) RemoveEmpty(path);
    return Refuse(handle.Value(), information.Error());
  }
  if (own != nullptr && !IsUntouched(*own, information.Value())) {
    return Refuse(handle.Value(), SystemError{ESTALE}, own);
  }
  if (information.Value().Kind != FileKind::Regular) return Refuse(handle.Value(), SystemError{EINVAL});
  if (IsOpenInput(information.Value().Identity)) return Refuse(handle.Value(), SystemError{EBUSY});
  // Two programs that write one output would leave a mixture of both. Where files cannot be locked at all,
  // there is nothing that could be done.
  const SystemError lock = RetryInterrupted([&] { return system_.TryLockFile(handle.Value()); });
  if (lock.Code == EWOULDBLOCK) return Refuse(handle.Value(), SystemError{EBUSY});
  if (information.Value().Links > 1) {
    return mayReplace ? ReplaceName(path, handle.Value()) : Refuse(handle.Value(), SystemError{EMLINK});
  }
  // Emptied only now that it is known not to be an input, and only when there is something to empty: a file
  // system may take any cut to nothing for the start of a replacement and write it to the disk when it is
  // closed.
  const SystemError error = information.Value().Size == 0
                                ? SystemError{}
                                : RetryInterrupted([&] { return system_.SetEndOfFile(handle.Value(), 0); });
  if (error) return Refuse(handle.Value(), error);
  file->Handle = handle.Value();
  file->Information = information.Value();
  file->Output.emplace(system_, file->Handle, spareBuffers_);
  return Store(std::move(file));
}

/// Whoever can write to the folder may have given a file of somebody else's this name, and whoever made a
/// copy of a folder out of links does not want it changed: the name is taken away, and the file stays as it
/// is.
std::int16_t FileModule::ReplaceName(const std::string& path, WindowsAPI::Handle handle) {
  const SystemError error = RetryInterrupted([&] { return system_.DeleteFile(path); });
  if (error) return Refuse(handle, error);
  static_cast<void>(system_.CloseHandle(handle));
  return OpenOutput(path, false);
}

bool FileModule::Close(std::int16_t fileNumber) {
  OpenFile* const file = Find(fileNumber);
  if (file == nullptr) return fileNumber < 1;
  const SystemError flushError = file->Output ? file->Output->Flush() : SystemError{};
  const SystemError closeError = system_.CloseHandle(file->Handle);
  files_[static_cast<std::size_t>(fileNumber) - 1].reset();
  if (flushError) return Fail(flushError);
  if (closeError) return Fail(closeError);
  return true;
}

void FileModule::Abandon(std::int16_t fileNumber, const std::string& path, bool& stillNamed) {
  stillNamed = false;
  OpenFile* const file = Find(fileNumber);
  if (file == nullptr) return;
  stillNamed = IsNamed(fileNumber, path);
  // Best effort: the deletion that follows reports what remains.
  static_cast<void>(RetryInterrupted([&] { return system_.SetEndOfFile(file->Handle, 0); }));
  static_cast<void>(system_.CloseHandle(file->Handle));
  files_[static_cast<std::size_t>(fileNumber) - 1].reset();
}

bool FileModule::IsNamed(std::int16_t fileNumber, const std::string& path) {
  const OpenFile* const file = Find(fileNumber);
  const auto named = system_.GetLinkAttributes(path);
  if (!named.Ok()) return Fail(named.Error());
  return file != nullptr && named.Value().Identity == file->Information.Identity;
}

FileInformation FileModule::InformationOf(std::int16_t fileNumber) const {
  const OpenFile* const file = Find(fileNumber);
  return file == nullptr ? FileInformation() : file->Information;
}

std::int32_t FileModule::FileLength(std::int16_t fileNumber) const {
  const OpenFile* const file = Find(fileNumber);
  const std::int32_t length = file == nullptr ? -1 : file->Length();
  return length < 0 ? static_cast<std::int32_t>(kNoLength) : length;
}

bool FileModule::InputIsUnchanged(std::int16_t fileNumber) {
  const OpenFile* const file = Find(fileNumber);
  if (file == nullptr) return false;
  const auto now = system_.GetFileInformationByHandle(file->Handle);
  if (!now.Ok()) return Fail(now.Error());
  return IsSameState(now.Value(), file->Information);
}

bool FileModule::WriteAt(std::int16_t fileNumber, std::string_view text, std::int32_t offset) {
  OpenFile* const file = Find(fileNumber);
  if (file == nullptr || !file->Output || offset < 0) return Fail(SystemError{EBADF});
  const SystemError error = file->Output->Write(offset, text);
  return !error || Fail(error);
}

bool FileModule::CopyBlock(std::int16_t inputNumber, std::int32_t inputOffset, std::int16_t outputNumber,
                           std::int32_t outputOffset, std::int32_t count) {
  OpenFile* const input = Find(inputNumber);
  OpenFile* const output = Find(outputNumber);
  if (input == nullptr || !input->Input || output == nullptr || !output->Output)
    return Fail(SystemError{EBADF});
  if (inputOffset < 0 || outputOffset < 0 || count < 1) return Fail(SystemError{EINVAL});
  if (inputOffset + std::int64_t{count} > input->Information.Size) return Fail(SystemError{EIO});
  const SystemError error = output->Output->Copy(outputOffset, *input->Input, inputOffset, count);
  return !error || Fail(error);
}

bool FileModule::Flush(std::int16_t fileNumber) {
  OpenFile* const file = Find(fileNumber);
  if (file == nullptr || !file->Output) return Fail(SystemError{EBADF});
  const SystemError error = file->Output->Flush();
  return !error || Fail(error);
}

bool FileModule::SetFileSize(std::int16_t fileNumber, std::int32_t size) {
  OpenFile* const file = Find(fileNumber);
  if (file == nullptr || !file->Output) return Fail(SystemError{EBADF});
  const SystemError error = RetryInterrupted([&] { return system_.SetEndOfFile(file->Handle, size); });
  return !error || Fail(error);
}

/// Whatever an open file takes of memory is got before it is opened, so that it is not lost without any.
std::unique_ptr<OpenFile> FileModule::MakeRoom() {
  files_.reserve(files_.size() + 1);
  spareBuffers_.GiveBack(spareBuffers_.Take());
  return std::make_unique<OpenFile>();
}

std::int16_t FileModule::Store(std::unique_ptr<OpenFile> file) {
  auto place = std::find(files_.begin(), files_.end(), nullptr);
  if (place == files_.end()) place = files_.insert(files_.end(), nullptr);
  *place = std::move(file);
  return static_cast<std::int16_t>(place - files_.begin() + 1);
}

std::int16_t FileModule::Refuse(WindowsAPI::Handle handle, SystemError error, const FileInformation* own) {
  // Closing cannot lose anything here: nothing was written.
  if (handle >= 0) static_cast<void>(system_.CloseHandle(handle));
  lastError_ = error;
  // A link in its place is refused by the system already.
  replaced_ = own != nullptr && (error.Code == ESTALE || error.Code == ELOOP);
  return -1;
}

/// Takes back a file that an open has just made, as far as that can be told.
void FileModule::RemoveEmpty(const std::string& path) {
  const auto made = system_.GetLinkAttributes(path);
  if (!made.Ok() || made.Value().Kind != FileKind::Regular || made.Value().Size > 0) return;
  static_cast<void>(system_.DeleteFile(path));
}

std::string FileModule::LastReason() const {
  return replaced_ ? "another file has taken its place" : lastError_.Words();
}

bool FileModule::Fail(SystemError error) {
  lastError_ = error;
  replaced_ = false;
  return false;
}

bool FileModule::IsOpenInput(const FileIdentity& identity) const {
  return std::any_of(files_.begin(), files_.end(), [&](const std::unique_ptr<OpenFile>& file) {
    return file && file->Input && (file->Information.Identity == identity || file->Original == identity);
  });
}

}  // namespace folioweld
