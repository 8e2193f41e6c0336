#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace folioweld {

/// A document and how many objects the output would hold because of it, as the first one.
struct CountedDocument {
  std::string Name;
  std::int32_t Objects = 0;
};

/// Why the documents cannot be joined into one output, and how they could be split, where that would hold
/// more objects than can be written; empty where it would not. Each document but the first brings one more
/// object.
[[nodiscard]] std::string WhyTooManyObjects(const std::vector<CountedDocument>& documents);

}  // namespace folioweld
