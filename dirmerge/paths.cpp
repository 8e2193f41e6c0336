#include "dirmerge/paths.h"

#include <cerrno>
#include <cstdint>
#include <utility>

#include "engine/hex_digits.h"
#include "platform/retry.h"

namespace folioweld {

namespace {

constexpr int kMostAttempts = 1000;
constexpr std::uint32_t kNames = 0x10000;

std::string FourHexDigits(std::uint32_t number) {
  std::string text;
  for (int shift = 12; shift >= 0; shift -= 4) text += kHexDigits[(number >> shift) & 15U];
  return text;
}

/// Whether nobody but its owner can get at it, which not every file system grants.
bool IsPrivate(const FileInformation& file) {
  return file.Kind == FileKind::Regular && file.Links == 1 && file.Mode == 0600;
}

/// Takes a new file back, unless something else has its name by now.
void RemoveMade(WindowsAPI& system, const std::string& path, const SystemResult<FileInformation>& made) {
  const auto now = system.GetLinkAttributes(path);
  if (!now.Ok() || now.Value().Kind != FileKind::Regular || now.Value().Size > 0) return;
  if (!made.Ok() || now.Value().Identity == made.Value().Identity) static_cast<void>(system.DeleteFile(path));
}

/// Creates prefix, four digits, ".tmp" under a name that is not taken.
SystemResult<std::string> CreateTempFile(WindowsAPI& system, const std::string& folder,
                                         const std::string& prefix, FileInformation& made) {
  const auto number = RetryInterrupted([&] { return system.RandomNumber(); });
  if (!number.Ok()) return number.Error();
  for (std::uint32_t i = 0; i < kNames; ++i) {
    std::string path = WithSeparator(folder) + prefix + FourHexDigits(number.Value() + i) + ".tmp";
    const auto file = RetryInterrupted([&] { return system.CreateFile(path, OpenMode::CreateNewPrivate); });
    if (file.Ok()) {
      const auto information = system.GetFileInformationByHandle(file.Value());
      SystemError error = system.CloseHandle(file.Value());
      if (!information.Ok()) error = information.Error();
      made = information.Value();
      if (!error && !IsPrivate(made)) error = {EPERM};
      if (!error) return path;
      RemoveMade(system, path, information);
      return error;
    }
    if (file.Error().Code != EEXIST) return file.Error();
  }
  return SystemError{EEXIST};
}

std::string WithExtension(const std::string& path, const std::string& extension) {
  const std::string stem = path.substr(0, path.rfind('.'));
  return stem + (extension.substr(0, 1) == "." ? "" : ".") + extension;
}

}  // namespace

void SplitPath(const std::string& fullName, std::string& fileName, std::string& folder) {
  const std::size_t separator = fullName.rfind(PathSeparator);
  if (separator == std::string::npos) {
    fileName = fullName;
    folder.clear();
    return;
  }
  // Either output may be the very text that is split, so both parts are taken first.
  std::string after = fullName.substr(separator + 1);
  folder = fullName.substr(0, separator);
  fileName = std::move(after);
}

std::string FullPath(WindowsAPI& system, const std::string& path) {
  if (path.empty() || path[0] == PathSeparator) return path;
  const auto current = system.GetCurrentDirectory();
  if (!current.Ok()) return {};
  return WithSeparator(current.Value()) + path;
}

std::string WithSeparator(std::string path) {
  if (path.empty() || path.back() != PathSeparator) path += PathSeparator;
  return path;
}

std::string GetSystemTempFolder(WindowsAPI& system) {
  const auto named = system.GetEnvironmentVariable("TMPDIR");
  return FullPath(system, named && !named->empty() ? *named : std::string("/tmp"));
}

std::string MakeTempFileName(WindowsAPI& system, const std::string& folder, const std::string& prefix,
                             const std::string& extension, SystemError* why, FileInformation* made) {
  const std::string fullFolder = folder.empty() ? GetSystemTempFolder(system) : FullPath(system, folder);
  if (fullFolder.empty()) {
    if (why != nullptr) *why = system.GetCurrentDirectory().Error();
    return {};
  }
  const std::string usedPrefix = prefix.empty() ? std::string("KEM") : prefix.substr(0, 3);
  for (int attempt = 0; attempt < kMostAttempts; ++attempt) {
    FileInformation information;
    auto created = CreateTempFile(system, fullFolder, usedPrefix, information);
    if (made != nullptr) *made = information;
    if (!created.Ok() && why != nullptr) *why = created.Error();
    // Moved, since a copy may find no memory, and nobody would know of the file.
    if (!created.Ok() || extension.empty()) return std::move(created.Value());
    std::string renamed = WithExtension(created.Value(), extension);
    if (renamed == created.Value()) return renamed;
    const SystemError taken = system.MoveFile(created.Value(), renamed, WindowsAPI::Replace::No);
    if (!taken) return renamed;
    if (why != nullptr) *why = taken;
    static_cast<void>(system.DeleteFile(created.Value()));
  }
  return {};
}

CurrentDirectoryKeeper::CurrentDirectoryKeeper(WindowsAPI& system) : system_(system) {
  const auto current = system_.GetCurrentDirectory();
  if (current.Ok()) folder_ = current.Value();
}

CurrentDirectoryKeeper::~CurrentDirectoryKeeper() {
  // A folder that has vanished meanwhile cannot be gone back to; nothing depends on it.
  if (!folder_.empty()) static_cast<void>(system_.SetCurrentDirectory(folder_));
}

}  // namespace folioweld
