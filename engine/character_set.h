#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "engine/conversions.h"

namespace folioweld {

/// A fixed set of characters that tells with one look whether a character belongs to it. Texts of objects are
/// walked several times, so that a search of the set for every character would be most of a merge's work.
class CharacterSet {
 public:
  constexpr explicit CharacterSet(std::string_view characters) {
    for (const char c : characters) members_[static_cast<unsigned char>(c)] = true;
  }

  [[nodiscard]] constexpr bool Has(char c) const { return members_[static_cast<unsigned char>(c)]; }

  /// 0-based index of the first member at or after `index`; the text's size when there is none.
  [[nodiscard]] constexpr std::size_t Find(std::string_view text, std::size_t index) const {
    while (index < text.size() && !Has(text[index])) ++index;
    return index;
  }

  /// 0-based index of the first character at or after `index` that is no member; the size when there is none.
  [[nodiscard]] constexpr std::size_t Skip(std::string_view text, std::size_t index) const {
    while (index < text.size() && Has(text[index])) ++index;
    return index;
  }

 private:
  std::array<bool, 256> members_{};
};

inline constexpr CharacterSet kWhiteSpaceSet{Conversions::kWhiteSpace};
inline constexpr CharacterSet kDelimiterSet{Conversions::kDelimiters};
inline constexpr CharacterSet kDelimiterOrEscapeSet{Conversions::kDelimitersWithEscape};
inline constexpr CharacterSet kDigitSet{"0123456789"};

}  // namespace folioweld
