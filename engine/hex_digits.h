#pragma once

#include <string_view>

namespace folioweld {

inline constexpr std::string_view kHexDigits = "0123456789ABCDEF";

/// The value of a hexadecimal digit of either case; -1 for any other character.
[[nodiscard]] constexpr int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

}  // namespace folioweld
