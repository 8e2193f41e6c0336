#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace folioweld {

/// A fixed set of characters that tells with one look whether a character belongs to it. Texts of objects are
/// walked several times, so that a search of the set for every character would be most of a merge's work.
class CharacterSet {
 public:
  constexpr explicit CharacterSet(std::string_view characters) {
    for (const char c : characters) members_[static_cast<unsigned char>(c)] = true;
  }

  [[nodiscard]] constexpr bool Has(char c) const { return members_[static_cast<unsigned char>(c)]; }

  // Indices count from 0 and lie within the text or at its end.

  /// Index of the first member at or after `index`; the text's size when there is none.
  [[nodiscard]] constexpr std::size_t Find(std::string_view text, std::size_t index) const {
    while (index < text.size() && !Has(text[index])) ++index;
    return index;
  }

  /// Index of the first character at or after `index` that is no member; the text's size when there is none.
  [[nodiscard]] constexpr std::size_t Skip(std::string_view text, std::size_t index) const {
    while (index < text.size() && Has(text[index])) ++index;
    return index;
  }

  /// The text without the members at its end.
  [[nodiscard]] constexpr std::string_view TrimRight(std::string_view text) const {
    std::size_t size = text.size();
    while (size > 0 && Has(text[size - 1])) --size;
    return text.substr(0, size);
  }

  /// The text without the members at both ends. What is left of a text of members only points to its
  /// beginning.
  [[nodiscard]] constexpr std::string_view Trim(std::string_view text) const {
    const std::string_view left = TrimRight(text);
    return left.substr(Skip(left, 0));
  }

 private:
  std::array<bool, 256> members_{};
};

}  // namespace folioweld
