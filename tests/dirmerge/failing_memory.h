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

}  // namespace folioweld::testing
