#pragma once

#include <string>

#include "platform/windows_api.h"

namespace folioweld {

/// A file that is only read, closed at the end of this object's life.
class OpenedFile {
 public:
  /// Raises `NotPrepared`, with the `name` that the file has there, when it cannot be opened.
  OpenedFile(WindowsAPI& system, const std::string& path, OpenMode mode, const std::string& name);
  OpenedFile(const OpenedFile&) = delete;
  OpenedFile& operator=(const OpenedFile&) = delete;
  ~OpenedFile();

  [[nodiscard]] WindowsAPI::Handle Handle() const { return handle_; }

 private:
  WindowsAPI& system_;
  WindowsAPI::Handle handle_ = -1;
};

/// Under this name an open file can be opened once more.
[[nodiscard]] std::string PathOf(WindowsAPI::Handle file);

/// What the system says of a file that is open. Raises `NotPrepared` when it says nothing, or when that is
/// no file.
[[nodiscard]] FileInformation LookAt(WindowsAPI& system, WindowsAPI::Handle file);

}  // namespace folioweld
