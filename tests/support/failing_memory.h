#pragma once

#include <cstddef>

namespace folioweld::testing {

/// While it lives, every request for memory of at least `least` and at most `most` bytes fails.
class FailingMemory {
 public:
  FailingMemory(std::size_t least, std::size_t most);
  FailingMemory(const FailingMemory&) = delete;
  FailingMemory& operator=(const FailingMemory&) = delete;
  ~FailingMemory();
};

/// While it lives, the n-th request for memory from its beginning on fails, and no other.
class FailingRequest {
 public:
  explicit FailingRequest(long n);
  FailingRequest(const FailingRequest&) = delete;
  FailingRequest& operator=(const FailingRequest&) = delete;
  ~FailingRequest();
  /// Whether that many were made.
  [[nodiscard]] static bool Reached();
};

}  // namespace folioweld::testing
