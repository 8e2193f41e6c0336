#include "engine/conversions.h"

#include <cstddef>
#include <limits>
#include <stdexcept>

namespace folioweld::Conversions {

namespace {

/// 0-based index of the character at a 1-based position.
std::size_t IndexAt(std::int32_t start) {
  if (start < 1) throw std::invalid_argument("a text position starts at 1");
  return static_cast<std::size_t>(start) - 1;
}

/// The 1-based position of an index; 0 for the text's end.
std::int32_t PositionAt(std::string_view text, std::size_t index) {
  return index >= text.size() ? 0 : static_cast<std::int32_t>(index) + 1;
}

/// The sets have a dozen characters at most: comparing with each beats calling a search.
bool IsMember(std::string_view set, char c) {
  for (const char member : set) {
    if (member == c) return true;
  }
  return false;
}

constexpr bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

void AppendHexByte(std::string& text, unsigned char byte) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  text += kDigits[byte >> 4U];
  text += kDigits[byte & 15U];
}

std::string UpperHex(std::uintptr_t value) {
  std::string text;
  for (; value != 0 || text.empty(); value >>= 4U) text.insert(text.begin(), "0123456789ABCDEF"[value & 15U]);
  return text;
}

}  // namespace

std::int32_t FindFirstOf(std::string_view text, std::string_view set, std::int32_t start) {
  if (start > static_cast<std::int64_t>(text.size()) || text.empty() || set.empty()) return 0;
  std::size_t index = IndexAt(start);
  while (index < text.size() && !IsMember(set, text[index])) ++index;
  return PositionAt(text, index);
}

std::int32_t FindFirstNotOf(std::string_view text, std::string_view set, std::int32_t start) {
  if (start > static_cast<std::int64_t>(text.size()) || text.empty() || set.empty()) return 0;
  std::size_t index = IndexAt(start);
  while (index < text.size() && IsMember(set, text[index])) ++index;
  return PositionAt(text, index);
}

bool IsCharInSet(std::string_view text, std::int32_t position, std::string_view set) {
  if (position > static_cast<std::int64_t>(text.size())) return false;
  return IsMember(set, text[IndexAt(position)]);
}

bool IsAllDigits(std::string_view text) {
  for (const char c : text) {
    if (!IsDigit(c)) return false;
  }
  return !text.empty();
}

std::string_view LeftUntilFirstOf(std::string_view text, std::string_view set, std::int32_t start) {
  const std::int32_t end = FindFirstOf(text, set, start);
  return end == 0 ? text : text.substr(0, static_cast<std::size_t>(end) - 1);
}

std::string_view TrimRightSet(std::string_view text, std::string_view set) {
  std::size_t length = text.size();
  while (length > 0 && IsMember(set, text[length - 1])) --length;
  return text.substr(0, length);
}

std::string_view TrimSet(std::string_view text, std::string_view set) {
  std::size_t first = 0;
  while (first < text.size() && IsMember(set, text[first])) ++first;
  // Nothing is left of a text of members only: the result points to its beginning all the same.
  return first == text.size() ? text.substr(0, 0) : TrimRightSet(text.substr(first), set);
}

std::string_view TrimCrLf(std::string_view text) {
  return TrimSet(text, kLineEnd);
}

std::string_view TrimSpaces(std::string_view text) {
  return TrimSet(text, " ");
}

std::int32_t ParseDecimalToken(std::string_view text, std::int16_t& digitCount) {
  digitCount = 0;
  std::size_t start = 0;
  while (start < text.size() && text[start] == ' ') ++start;
  std::int64_t value = 0;
  std::size_t end = start;
  for (; end < text.size() && IsDigit(text[end]); ++end) {
    if (end - start == 10) return 0;
    value = value * 10 + (text[end] - '0');
  }
  if (end == start || (end < text.size() && text[end] != ' ')) return 0;
  // The largest 32-bit value itself is refused on purpose.
  if (value > std::numeric_limits<std::int32_t>::max() - 1) return 0;
  digitCount = static_cast<std::int16_t>(end - start);
  return static_cast<std::int32_t>(value);
}

std::int32_t ParseLeadingNumber(std::string_view text, std::int16_t& digitCount) {
  digitCount = 0;
  const std::size_t first = text.find_first_not_of(kWhiteSpace);
  if (first == std::string_view::npos) return 0;
  return ParseDecimalToken(LeftUntilFirstOf(text.substr(first), kWhiteSpace, 1), digitCount);
}

std::string_view StripAtNull(std::string_view text) {
  return text.substr(0, text.find('\0'));
}

std::string HexDumpMemory(const void* bytes, std::int32_t count) {
  if (count < 1) return {};
  std::string text = "&H" + UpperHex(reinterpret_cast<std::uintptr_t>(bytes)) + ": ";
  const auto* next = static_cast<const unsigned char*>(bytes);
  for (std::int32_t i = 0; i < count; ++i) {
    if (i > 0) text += ' ';
    AppendHexByte(text, next[i]);
  }
  return text;
}

std::int32_t PassThroughLong(std::int32_t value) {
  return value;
}

double LenientNumber(std::string_view text) {
  std::size_t i = text.find_first_not_of(' ');
  if (i == std::string_view::npos) return 0;
  const bool negative = text[i] == '-';
  if (text[i] == '-' || text[i] == '+') ++i;
  double value = 0;
  for (; i < text.size() && IsDigit(text[i]); ++i) value = value * 10 + (text[i] - '0');
  if (i < text.size() && text[i] == '.') {
    double divisor = 1;
    double fraction = 0;
    for (++i; i < text.size() && IsDigit(text[i]); ++i) {
      fraction = fraction * 10 + (text[i] - '0');
      divisor *= 10;
    }
    value += fraction / divisor;
  }
  return negative ? -value : value;
}

}  // namespace folioweld::Conversions
