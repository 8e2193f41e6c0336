#pragma once

#include <string>

#include "engine/file_module.h"
#include "platform/windows_api.h"

namespace folioweld {

/// The system's own separator.
inline constexpr char PathSeparator = '/';

/// Splits at the last separator: the name after it, and the folder before it without the separator. A name
/// without a separator has an empty folder.
void SplitPath(const std::string& fullName, std::string& fileName, std::string& folder);

/// The path from the root, taken from the current folder when it is relative; empty when that folder cannot
/// be had. Links and dots are left as they are.
[[nodiscard]] std::string FullPath(WindowsAPI& system, const std::string& path);

/// The path with a separator at its end.
[[nodiscard]] std::string WithSeparator(std::string path);

/// The system's folder for temporary files as a full path; empty when it cannot be had.
[[nodiscard]] std::string GetSystemTempFolder(WindowsAPI& system);

/// Makes a new, empty file that only its owner can read, and returns its full name; empty on failure.
///
/// An empty folder means the system's temporary folder; an empty prefix means "KEM", and three characters of
/// it are used. The name is the prefix, four hexadecimal digits and ".tmp", or the given extension, with or
/// without its ".", in place of the latter. The system's error of a failure goes to `why`, and
/// what it says of the new file to `made`.
[[nodiscard]] std::string MakeTempFileName(WindowsAPI& system, const std::string& folder,
                                           const std::string& prefix, const std::string& extension,
                                           SystemError* why = nullptr, FileInformation* made = nullptr);

/// Goes back, at the end of its life, to the folder that was the current one at its beginning.
class CurrentDirectoryKeeper {
 public:
  explicit CurrentDirectoryKeeper(WindowsAPI& system);
  CurrentDirectoryKeeper(const CurrentDirectoryKeeper&) = delete;
  CurrentDirectoryKeeper& operator=(const CurrentDirectoryKeeper&) = delete;
  ~CurrentDirectoryKeeper();

 private:
  WindowsAPI& system_;
  std::string folder_;
};

}  // namespace folioweld
