#pragma once

#include <string>

#include "platform/windows_api.h"

namespace folioweld {

/// A file that gets its name when it is complete. Until then it has another one in the same folder, which is
/// gone at the end of this object's life. Every operation raises `NotPrepared` when it fails.
class NewOutput {
 public:
  /// `input` may not be what the path names already, under whatever name. The file gets the mode that the
  /// user's mask leaves.
  NewOutput(WindowsAPI& system, std::string path, const FileIdentity& input);
  NewOutput(const NewOutput&) = delete;
  NewOutput& operator=(const NewOutput&) = delete;
  ~NewOutput();

  [[nodiscard]] WindowsAPI::Handle File() const { return file_; }
  /// Empty after `Publish`.
  [[nodiscard]] const std::string& TemporaryPath() const { return temporary_; }
  /// Gives the file its name; another file of that name is replaced.
  void Publish();

 private:
  void Create();

  WindowsAPI& system_;
  std::string path_;
  FileIdentity input_;
  std::string temporary_;  ///< empty = there is none
  WindowsAPI::Handle file_ = -1;
};

}  // namespace folioweld
