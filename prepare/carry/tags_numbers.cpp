#include "prepare/carry/tags_numbers.h"

#include <climits>
#include <set>
#include <string>

namespace folioweld {

namespace {

/// What leads to much, but to nothing that has such a number.
const std::set<std::string> kWithoutTags = {"/A",  "/AA",        "/ColorSpace", "/Contents", "/Dest",
                                            "/EF", "/Font",      "/Metadata",   "/OC",       "/Outlines",
                                            "/P",  "/PieceInfo", "/Properties", "/Shading",  "/Thumb"};

}  // namespace

std::vector<TagNumber> FindTagNumbers(Revision& revision, const CarriedDocument& document) {
  std::vector<TagNumber> numbers;
  ForEachDictionary(revision, document, kWithoutTags, [&](const Place& place) {
    for (const char* key : {"/StructParent", "/StructParents"}) {
      QPDFObjectHandle value = EntryOf(place.Dictionary, key);
      if (!value.isInteger()) continue;
      const long long number = value.getIntValue();
      if (number >= 0 && number <= INT_MAX) numbers.push_back({place, key, static_cast<int>(number)});
    }
  });
  return numbers;
}

}  // namespace folioweld
