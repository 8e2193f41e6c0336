#pragma once

#include <cstdint>
#include <string>

#include "platform/windows_api.h"

namespace folioweld {

/// The lock under which the settings are replaced: held, if `Error` is 0, as long as this lives.
class SettingsLock {
 public:
  /// Waits at most so long for another program that holds the lock, and no longer than until a stop signal
  /// comes. `Error` is then EWOULDBLOCK.
  SettingsLock(WindowsAPI& system, const std::string& path, std::int64_t mostMilliseconds);
  SettingsLock(const SettingsLock&) = delete;
  SettingsLock& operator=(const SettingsLock&) = delete;
  ~SettingsLock();

  [[nodiscard]] SystemError Error() const { return error_; }

 private:
  [[nodiscard]] SystemError Take(std::int64_t mostMilliseconds);

  WindowsAPI& system_;
  WindowsAPI::Handle file_ = -1;
  SystemError error_;
};

}  // namespace folioweld
