#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace folioweld {

// Where lines end: at a carriage return or a line feed. Here, where the compiler can merge it into its
// callers: every line of a document is looked for.

[[nodiscard]] constexpr bool IsLineEnd(char c) {
  return c == '\r' || c == '\n';
}

/// The highest bit of the first of the eight bytes that is below 0x0E, as line ends are and few other
/// characters, and none below it; 0 when there is no such byte.
[[nodiscard]] constexpr std::uint64_t MarkControlCharacter(std::uint64_t bytes) {
  return (bytes - 0x0E0E0E0E0E0E0E0EU) & ~bytes & 0x8080808080808080U;
}

/// 0-based index of the first line end at or after `from`; the size when there is none.
[[nodiscard]] inline std::size_t FindLineEnd(std::string_view bytes, std::size_t from) {
  if constexpr (std::endian::native == std::endian::little) {
    // Eight bytes at a look as long as there are so many.
    std::uint64_t eight = 0;
    while (from + sizeof eight <= bytes.size()) {
      std::memcpy(&eight, bytes.data() + from, sizeof eight);
      const std::uint64_t mark = MarkControlCharacter(eight);
      if (mark == 0) {
        from += sizeof eight;
        continue;
      }
      from += static_cast<std::size_t>(std::countr_zero(mark)) / 8;
      if (IsLineEnd(bytes[from])) return from;
      ++from;
    }
  }
  while (from < bytes.size() && !IsLineEnd(bytes[from])) ++from;
  return from;
}

/// 0-based index of the first character that ends no line; the size when there is none.
[[nodiscard]] inline std::size_t SkipLineEnds(std::string_view bytes) {
  std::size_t first = 0;
  while (first < bytes.size() && IsLineEnd(bytes[first])) ++first;
  return first;
}

}  // namespace folioweld
