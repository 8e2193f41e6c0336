#pragma once

#include <cerrno>
#include <string>

#include "tests/support/faulting_system.h"

namespace folioweld::testing {

/// Keeps what the program says instead of showing it, and does not wait for the disk.
class QuietSystem : public FaultingSystem {
 public:
  SystemError FlushFileBuffers(Handle file) override {
    // The base class counts the call and decides about it; a handle of nothing keeps it from reaching the
    // disk.
    const SystemError error = FaultingSystem::FlushFileBuffers(-1);
    static_cast<void>(file);
    return error.Code == EBADF ? SystemError{} : error;
  }
  bool ErrorOutputIsTerminal() override { return false; }
  SystemResult<std::size_t> WriteErrorOutput(const char* bytes, std::size_t count) override {
    Said.append(bytes, count);
    return count;
  }

  std::string Said;
};

}  // namespace folioweld::testing
