#pragma once

#include <cstdint>
#include <string_view>

#include "engine/merge_state.h"

namespace folioweld {

/// One object of an input as it was read, by its number in that input. Dictionaries are those that the object
/// scanner parsed, so their references have the input's own numbers, before and after the renumbering.
class ReadObject {
 public:
  ReadObject(const MergeState& state, std::int16_t slot, std::int32_t number);

  /// The input has an object of that number that is not free.
  [[nodiscard]] bool Exists() const { return entry_ != nullptr; }
  [[nodiscard]] bool IsDictionary() const { return Text().substr(0, 2) == "<<"; }
  [[nodiscard]] bool HasStream() const { return Exists() && entry_->ObjState == kWithStream; }

  /// What stands between the object's header and "endobj" or "stream", as read.
  [[nodiscard]] std::string_view Text() const;

  /// The value of a key of the dictionary, the first if there are several; empty when there is none.
  [[nodiscard]] std::string_view Value(std::string_view key) const;

 private:
  const MergeState& state_;
  const ObjectEntry* entry_ = nullptr;
};

/// The number of the reference with which the text begins; -1 when it begins with none.
[[nodiscard]] std::int32_t ReferencedNumber(std::string_view text);

}  // namespace folioweld
