#include "prepare/carry/forms_same_value.h"

#include <cstddef>
#include <set>
#include <string>

namespace folioweld {

namespace {

/// A font without its file, with its widths and its encoding, has some hundred values. Values may refer to
/// each other without end.
constexpr std::size_t kMostValues = 2'000;

class Comparison {
 public:
  bool IsSame(QPDFObjectHandle one, QPDFObjectHandle other) {
    if (one.isIndirect() && one.isSameObjectAs(other)) return true;
    if (++values_ > kMostValues) return false;
    if (one.getTypeCode() != other.getTypeCode() || one.isStream()) return false;
    if (one.isDictionary()) return AreSameEntries(one, other);
    if (one.isArray()) return AreSameItems(one, other);
    return one.unparseResolved() == other.unparseResolved();
  }

 private:
  bool AreSameEntries(QPDFObjectHandle one, QPDFObjectHandle other) {
    const std::set<std::string> keys = one.getKeys();
    values_ += keys.size();
    if (keys != other.getKeys()) return false;
    for (const std::string& key : keys) {
      if (!IsSame(one.getKey(key), other.getKey(key))) return false;
    }
    return true;
  }

  bool AreSameItems(QPDFObjectHandle one, QPDFObjectHandle other) {
    const int length = one.getArrayNItems();
    if (length != other.getArrayNItems()) return false;
    for (int i = 0; i < length; ++i) {
      if (!IsSame(one.getArrayItem(i), other.getArrayItem(i))) return false;
    }
    return true;
  }

  std::size_t values_ = 0;
};

}  // namespace

bool IsSameValue(const QPDFObjectHandle& one, const QPDFObjectHandle& other) {
  return Comparison().IsSame(one, other);
}

}  // namespace folioweld
