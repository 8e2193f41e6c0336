#pragma once

#include <string>
#include <vector>

namespace folioweld::testing {

/// A document that is made to cost as much as its bytes can.
struct HostileDocument {
  std::string Name;
  /// Builds it with about this many bytes; every one passes the acceptance test.
  std::string (*Build)(std::size_t bytes);
};

[[nodiscard]] const std::vector<HostileDocument>& HostileDocuments();

}  // namespace folioweld::testing
