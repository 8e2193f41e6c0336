#pragma once

#include <cerrno>
#include <cstdint>
#include <string>

#include "tests/support/faulting_system.h"

namespace folioweld::testing {

/// Keeps what the program says instead of showing it, and waits neither for the disk nor for others.
class QuietSystem : public FaultingSystem {
 public:
  SystemError FlushFileBuffers(Handle file) override {
    // The base class counts the call and decides about it; a handle of nothing keeps it from reaching the
    // disk.
    const SystemError error = FaultingSystem::FlushFileBuffers(-1);
    static_cast<void>(file);
    return error.Code == EBADF ? SystemError{} : error;
  }
  /// Waiting takes no time.
  std::int64_t MillisecondsNow() override { return FaultingSystem::MillisecondsNow() + waited_; }
  void WaitForStopSignal(int milliseconds) override { waited_ += milliseconds; }
  bool ErrorOutputIsTerminal() override { return false; }
  SystemResult<std::size_t> WriteErrorOutput(const char* bytes, std::size_t count) override {
    Said.append(bytes, count);
    return count;
  }

  std::string Said;

 private:
  std::int64_t waited_ = 0;
};

}  // namespace folioweld::testing
