#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace folioweld {

/// Walks the references and dictionaries of an array's text; whatever else stands there is passed over.
class ArrayWalk {
 public:
  explicit ArrayWalk(std::string_view array) : text_(array), dictionary_(array.find("<<")) {}

  [[nodiscard]] bool Next();

  /// The object that is referred to; -1 for a dictionary that stands in the array itself.
  [[nodiscard]] std::int32_t Number() const { return number_; }

  /// The dictionary, or the text that begins with the reference.
  [[nodiscard]] std::string_view Element() const { return element_; }

 private:
  [[nodiscard]] std::size_t DictionaryEnd() const;

  std::string_view text_;
  std::size_t index_ = 0;
  std::size_t dictionary_;  ///< index of the next one; `npos` = none
  std::int32_t number_ = -1;
  std::string_view element_;
};

}  // namespace folioweld
