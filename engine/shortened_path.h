#pragma once

#include <cstddef>
#include <string>

namespace folioweld {

/// The longest text of a path that a status line or label shows.
inline constexpr int kLongestShownPath = 116;

/// The path, or its two ends around " ... " when it is longer than `maxLen` (at least 5) characters. What a
/// character is, a byte or a code point, is for the caller to choose.
template <typename Character>
[[nodiscard]] std::basic_string<Character> ShortenPath(const std::basic_string<Character>& path, int maxLen) {
  if (path.size() <= static_cast<std::size_t>(maxLen)) return path;
  const Character gap[] = {' ', '.', '.', '.', ' ', 0};
  const auto end = static_cast<std::size_t>((maxLen - 5) / 2);
  return path.substr(0, end) + gap + path.substr(path.size() - end);
}

}  // namespace folioweld
