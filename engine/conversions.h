#pragma once

#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace folioweld::Conversions {

// Text helpers that know nothing of files. Text is bytes; positions count from 1 and 0 means not found.
// Results that are views point into the text given.

/// Tab, form feed and NUL are not white space anywhere in the reader: a tab ends no token. Kept on purpose.
inline constexpr std::string_view kWhiteSpace = " \r\n";
inline constexpr std::string_view kLineEnd = "\r\n";
inline constexpr std::string_view kDelimiters = " ()<>[]{}/%\r\n";
inline constexpr std::string_view kDelimitersWithEscape = " ()<>[]{}/%\\\r\n";
inline constexpr std::string_view kCommentOrLineEnd = "%\r\n";
inline constexpr std::string_view kDelimitersInLine = " ()<>[]{}/%";
inline constexpr std::string_view kDelimitersInLineWithEscape = " ()<>[]{}/%\\";

/// Position of the first character at or after `start` that is in `set`; 0 = none. A start below 1 raises
/// std::invalid_argument.
[[nodiscard]] std::int32_t FindFirstOf(std::string_view text, std::string_view set, std::int32_t start);

/// Position of the first character at or after `start` that is not in `set`; 0 = none. A start below 1
/// raises std::invalid_argument.
[[nodiscard]] std::int32_t FindFirstNotOf(std::string_view text, std::string_view set, std::int32_t start);

/// Whether the character at `position` (1 or more) is in `set`; false past the end.
[[nodiscard]] bool IsCharInSet(std::string_view text, std::int32_t position, std::string_view set);

/// Whether the text is non-empty and holds "0" to "9" only.
[[nodiscard]] bool IsAllDigits(std::string_view text);

/// The text from its FIRST character up to the first set character at or after `start`; the whole text when
/// there is none. What stands before `start` stays in the result: callers rely on it.
[[nodiscard]] std::string_view LeftUntilFirstOf(std::string_view text, std::string_view set,
                                                std::int32_t start);

[[nodiscard]] std::string_view TrimRightSet(std::string_view text, std::string_view set);
[[nodiscard]] std::string_view TrimSet(std::string_view text, std::string_view set);
[[nodiscard]] std::string_view TrimCrLf(std::string_view text);

/// Whether the character is in `kWhiteSpace`.
[[nodiscard]] constexpr bool IsBlank(char c) {
  return c == ' ' || c == '\r' || c == '\n';
}

// Trimming `kWhiteSpace` stands here for speed: every text of a document is trimmed, and few have much to
// lose.
[[nodiscard]] constexpr std::string_view TrimRightBlanks(std::string_view text) {
  std::size_t length = text.size();
  while (length > 0 && IsBlank(text[length - 1])) --length;
  return text.substr(0, length);
}
/// Nothing is left of a text of white space only: the result points to its beginning all the same.
[[nodiscard]] constexpr std::string_view TrimBlanks(std::string_view text) {
  const std::string_view left = TrimRightBlanks(text);
  std::size_t first = 0;
  while (first < left.size() && IsBlank(left[first])) ++first;
  return left.substr(first);
}

/// Without leading and trailing spaces, and spaces only.
[[nodiscard]] std::string_view TrimSpaces(std::string_view text);

/// The value of the first blank-separated word as an unsigned decimal of at most ten digits and at most
/// 2147483646; `digitCount` is the word's length, leading zeros included. A word that is no such number
/// gives 0 with a digit count of 0, which is how callers tell it from "0".
[[nodiscard]] std::int32_t ParseDecimalToken(std::string_view text, std::int16_t& digitCount);

/// `ParseDecimalToken` of the first token after leading white space.
[[nodiscard]] std::int32_t ParseLeadingNumber(std::string_view text, std::int16_t& digitCount);

/// A number in decimal digits, without memory of its own to get.
class DecimalDigits {
 public:
  explicit DecimalDigits(std::int32_t number)
      : size_(static_cast<std::size_t>(
            std::to_chars(digits_.data(), digits_.data() + digits_.size(), number).ptr - digits_.data())) {}

  [[nodiscard]] std::string_view View() const { return {digits_.data(), size_}; }

 private:
  std::array<char, 11> digits_;  ///< as many as the longest number has, sign included
  std::size_t size_;
};

/// The text before its first NUL.
[[nodiscard]] std::string_view StripAtNull(std::string_view text);

/// "&H", the address in upper-case hexadecimal, ": " and the bytes as two digits each, separated by one
/// space; empty when `count` is below 1. The caller owns at least `count` bytes at `bytes`.
[[nodiscard]] std::string HexDumpMemory(const void* bytes, std::int32_t count);

/// The same value.
[[nodiscard]] std::int32_t PassThroughLong(std::int32_t value);

/// Reads a leading decimal number (blanks, sign, digits, one point) as far as the text is one; 0 when it is
/// none. Independent of the locale.
[[nodiscard]] double LenientNumber(std::string_view text);

}  // namespace folioweld::Conversions
