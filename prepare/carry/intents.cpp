#include "prepare/carry/intents.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "prepare/carry/forms_same_value.h"

namespace folioweld {

namespace {

constexpr char kProfile[] = "/DestOutputProfile";

std::vector<QPDFObjectHandle> IntentsOf(CarriedDocument& document) {
  QPDFObjectHandle intents = document.Catalog.getKey("/OutputIntents");
  return intents.isArray() ? intents.getArrayAsVector() : std::vector<QPDFObjectHandle>();
}

/// Two documents of one kind have the same profile, each for itself.
bool IsSameProfile(QPDFObjectHandle one, QPDFObjectHandle other) {
  if (!one.isStream() || !other.isStream()) return IsSameValue(one, other);
  if (!IsSameValue(one.getDict(), other.getDict())) return false;
  const auto bytes = one.getRawStreamData();
  const auto otherBytes = other.getRawStreamData();
  const auto view = [](Buffer& buffer) {
    return std::string_view(reinterpret_cast<const char*>(buffer.getBuffer()), buffer.getSize());
  };
  return view(*bytes) == view(*otherBytes);
}

bool IsSameIntent(QPDFObjectHandle one, QPDFObjectHandle other) {
  if (!one.isDictionary() || !other.isDictionary()) return false;
  if (!IsSameProfile(one.getKey(kProfile), other.getKey(kProfile))) return false;
  QPDFObjectHandle rest = one.shallowCopy();
  QPDFObjectHandle otherRest = other.shallowCopy();
  rest.removeKey(kProfile);
  otherRest.removeKey(kProfile);
  return IsSameValue(rest, otherRest);
}

bool AreSame(const std::vector<QPDFObjectHandle>& intents, const std::vector<QPDFObjectHandle>& others) {
  return std::equal(intents.begin(), intents.end(), others.begin(), others.end(), IsSameIntent);
}

}  // namespace

void CarryIntents(Revision& revision) {
  std::vector<QPDFObjectHandle> kept;
  revision.ForEach("intent", [&](CarriedDocument& document) {
    const std::vector<QPDFObjectHandle> intents = IntentsOf(document);
    if (document.Index == revision.Documents().front().Index) {
      kept = intents;
    } else if (!intents.empty() && !AreSame(kept, intents)) {
      throw NotCarried("its output intent is not the one of the first document");
    }
  });
}

}  // namespace folioweld
