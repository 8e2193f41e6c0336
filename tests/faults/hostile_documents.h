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

/// Those whose objects or sections run through each other as often as a document may have it: what is read of
/// them is sixteen megabytes longer than they are.
[[nodiscard]] const std::vector<HostileDocument>& SharingDocuments();

}  // namespace folioweld::testing
