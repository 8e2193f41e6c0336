#include "dirmerge/object_limit.h"

#include <algorithm>

namespace folioweld {

namespace {

/// The writer counts two lines for each with 16 bits.
constexpr std::int64_t kMostWrittenObjects = 16384;
constexpr std::size_t kMostPartsTold = 8;

/// Documents that one output holds.
struct Part {
  std::size_t First = 0;
  std::size_t Last = 0;  ///< both count from 0
  std::int64_t Objects = 0;
};

/// As few as there can be in this order.
std::vector<Part> Split(const std::vector<CountedDocument>& documents) {
  std::vector<Part> parts;
  for (std::size_t i = 0; i < documents.size(); ++i) {
    const std::int64_t more = std::int64_t{documents[i].Objects} + 1;
    if (!parts.empty() && parts.back().Objects + more <= kMostWrittenObjects) {
      parts.back().Last = i;
      parts.back().Objects += more;
    } else {
      parts.push_back({i, i, documents[i].Objects});
    }
  }
  return parts;
}

std::string Words(const Part& part, const std::vector<CountedDocument>& documents) {
  const bool isOne = part.Last == part.First;
  std::string words = isOne ? "document " : "documents ";
  words += std::to_string(part.First + 1) + (isOne ? "" : " to " + std::to_string(part.Last + 1));
  return words + " (\"" + documents[part.Last].Name + "\", " + std::to_string(part.Objects) + " objects)";
}

}  // namespace

std::string WhyTooManyObjects(const std::vector<CountedDocument>& documents) {
  if (documents.empty()) return {};
  std::int64_t total = -1;
  for (const CountedDocument& document : documents) total += std::int64_t{document.Objects} + 1;
  if (total <= kMostWrittenObjects) return {};
  const std::string start = "the output would hold " + std::to_string(total) + " objects, and at most " +
                            std::to_string(kMostWrittenObjects) + " can be written: ";
  const auto tooLarge = std::find_if(documents.begin(), documents.end(), [](const CountedDocument& document) {
    return document.Objects > kMostWrittenObjects;
  });
  if (tooLarge != documents.end()) {
    return start + "\"" + tooLarge->Name + "\" alone has " + std::to_string(tooLarge->Objects) +
           " and has to be left out";
  }
  const std::vector<Part> parts = Split(documents);
  std::string words = start + "make " + std::to_string(parts.size()) + " outputs, of ";
  for (std::size_t i = 0; i < std::min(parts.size(), kMostPartsTold); ++i) {
    if (i > 0) words += ", ";
    words += Words(parts[i], documents);
  }
  return parts.size() > kMostPartsTold ? words + " and so on" : words;
}

}  // namespace folioweld
