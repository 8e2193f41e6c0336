#include "engine/settings_lock.h"

#include <cerrno>

#include "platform/retry.h"

namespace folioweld {

namespace {

constexpr int kMillisecondsBetween = 20;

}  // namespace

SettingsLock::SettingsLock(WindowsAPI& system, const std::string& path, std::int64_t mostMilliseconds)
    : system_(system) {
  const auto file =
      RetryInterrupted([&] { return system_.CreateFile(path, OpenMode::ReadWriteCreatePrivate); });
  if (file.Ok()) file_ = file.Value();
  error_ = file.Ok() ? Take(mostMilliseconds) : file.Error();
}

SettingsLock::~SettingsLock() {
  // Closing gives the lock back; there is nothing in the file that could get lost.
  if (file_ >= 0) static_cast<void>(system_.CloseHandle(file_));
}

/// Asks again and again: a call that waits by itself would not notice a signal that comes just before it.
SystemError SettingsLock::Take(std::int64_t mostMilliseconds) {
  const std::int64_t end = system_.MillisecondsNow() + mostMilliseconds;
  for (;;) {
    const SystemError error = RetryInterrupted([&] { return system_.TryLockFile(file_); });
    if (error.Code != EWOULDBLOCK || system_.StopSignal() != 0 || system_.MillisecondsNow() >= end)
      return error;
    system_.WaitForStopSignal(kMillisecondsBetween);
  }
}

}  // namespace folioweld
