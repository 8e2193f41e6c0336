#pragma once

#include <cstddef>
#include <string>

namespace folioweld {

/// The longest text of a path that a status line or label shows, in bytes.
inline constexpr int kLongestShownPath = 116;

/// The path, or its two ends around " ... " when it is longer than `maxLen` (at least 5) bytes. A cut that
/// falls into a UTF-8 character moves outwards, so that no half of one is left.
[[nodiscard]] inline std::string ShortenPath(const std::string& path, int maxLen) {
  if (path.size() <= static_cast<std::size_t>(maxLen)) return path;
  const auto isInside = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; };
  std::size_t left = static_cast<std::size_t>(maxLen - 5) / 2;
  std::size_t right = path.size() - left;
  // A character has at most four bytes; what goes on longer is no UTF-8.
  for (int i = 0; i < 3 && left > 0 && isInside(path[left]); ++i) --left;
  for (int i = 0; i < 3 && right < path.size() && isInside(path[right]); ++i) ++right;
  return path.substr(0, left) + " ... " + path.substr(right);
}

}  // namespace folioweld
