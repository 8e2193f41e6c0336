#pragma once

#include <string>
#include <unordered_map>

#include "platform/windows_api.h"

namespace folioweld {

/// The files that a job made for itself, by path. Others may be able to write to the folder, so a path is
/// only trusted as far as it leads to the very file that was made.
class OwnFiles {
 public:
  /// `made` is what the system said of the file when it was made.
  void Add(const std::string& path, const FileInformation& made) { files_.insert_or_assign(path, made); }
  void Remove(const std::string& path) { files_.erase(path); }
  /// Null for a path that none of them has.
  [[nodiscard]] const FileInformation* Find(const std::string& path) const;

 private:
  std::unordered_map<std::string, FileInformation> files_;
};

/// The same file, of the same owner.
[[nodiscard]] bool IsSameFile(const FileInformation& made, const FileInformation& now);

/// The same file, and its owner alone can still get at it: no other mode and no further name.
[[nodiscard]] bool IsUntouched(const FileInformation& made, const FileInformation& now);

/// The same file in the same state: not written to since, and neither its name, nor its links, nor its
/// permissions changed.
[[nodiscard]] bool IsSameState(const FileInformation& now, const FileInformation& before);

}  // namespace folioweld
