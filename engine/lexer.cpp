#include "engine/lexer.h"

#include <algorithm>

namespace folioweld {

namespace {

constexpr CharacterSet kOpaqueMarks{"(<%"};

std::int32_t IndexOfKeyword(std::string_view word, std::span<const std::string_view> keywords) {
  // Character by character: for so few, a call of the library's comparison takes longer.
  const auto same = [](char first, char second) { return first == second; };
  for (std::size_t i = 0; i < keywords.size(); ++i) {
    if (std::ranges::equal(word, keywords[i], same)) return static_cast<std::int32_t>(i);
  }
  return -1;
}

/// Delimiters that open nothing.
constexpr CharacterSet kSeparatorSet{" )>[]{}\r\n"};

/// Index after the token that begins at `index`: a string, a comment, a "<<", a name or any other word.
std::size_t SkipToken(std::string_view text, std::size_t index) {
  switch (text[index]) {
    case '(':
      return SkipLiteralString(text, index);
    case '<':
      return index + 1 < text.size() && text[index + 1] == '<' ? index + 2 : SkipHexString(text, index);
    case '%':
      return SkipComment(text, index);
    default:
      return kDelimiterSet.Find(text, index + 1);
  }
}

}  // namespace

double LenientNumber(std::string_view text) {
  std::size_t i = kSpaceSet.Skip(text, 0);
  if (i == text.size()) return 0;
  const bool negative = text[i] == '-';
  if (text[i] == '-' || text[i] == '+') ++i;
  double value = 0;
  for (; i < text.size() && kDigitSet.Has(text[i]); ++i) value = value * 10 + (text[i] - '0');
  if (i < text.size() && text[i] == '.') {
    double divisor = 1;
    double fraction = 0;
    for (++i; i < text.size() && kDigitSet.Has(text[i]); ++i) {
      fraction = fraction * 10 + (text[i] - '0');
      divisor *= 10;
    }
    value += fraction / divisor;
  }
  return negative ? -value : value;
}

std::size_t SkipLiteralString(std::string_view text, std::size_t index) {
  std::int32_t depth = 0;
  for (; index < text.size(); ++index) {
    const char c = text[index];
    if (c == '\\') {
      ++index;
    } else if (c == '(') {
      ++depth;
    } else if (c == ')' && --depth == 0) {
      return index + 1;
    }
  }
  return text.size();
}

std::size_t SkipHexString(std::string_view text, std::size_t index) {
  const std::size_t end = text.find('>', index);
  return end == std::string_view::npos ? text.size() : end + 1;
}

std::size_t SkipComment(std::string_view text, std::size_t index) {
  return kLineEndSet.Find(text, index);
}

bool HasOtherWhiteSpace(std::string_view text) {
  // A quick search for each: few texts have any.
  for (const char c : {'\t', '\f', '\0'}) {
    if (text.find(c) != std::string_view::npos) return true;
  }
  return false;
}

bool HasLongNumber(std::string_view text) {
  constexpr std::size_t kLong = kMostDigits + 1;
  // Digits are counted backwards: of so many, none stands before a character that is no digit.
  std::size_t digits = 0;
  for (std::size_t end = kLong; end <= text.size() && digits < kLong; end += kLong - digits) {
    digits = 0;
    while (digits < kLong && kDigitSet.Has(text[end - 1 - digits])) ++digits;
  }
  return digits == kLong;
}

bool FindOpaque(std::string_view text, std::size_t index, OpaquePiece& piece) {
  for (;;) {
    index = kOpaqueMarks.Find(text, index);
    if (index == text.size()) return false;
    if (text.substr(index, 2) == "<<") {
      index += 2;
      continue;
    }
    const char c = text[index];
    const std::size_t end = c == '('   ? SkipLiteralString(text, index)
                            : c == '%' ? SkipComment(text, index)
                                       : SkipHexString(text, index);
    piece = {index, end};
    return true;
  }
}

bool ReadNumberPair(std::string_view text, std::size_t index, std::span<const std::string_view> keywords,
                    NumberPair& pair) {
  const auto blankAt = [&](std::size_t end) { return end < text.size() && kWhiteSpaceSet.Has(text[end]); };
  pair.Generation = -1;
  pair.Keyword = -1;
  pair.Start = kWhiteSpaceSet.Skip(text, index);
  pair.Number = ReadNumber(text, pair.Start, pair.NumberEnd);
  if (!blankAt(pair.NumberEnd)) pair.Number = -1;
  if (pair.Number < 0) return false;
  std::size_t secondEnd = 0;
  pair.SecondStart = kWhiteSpaceSet.Skip(text, pair.NumberEnd);
  pair.Generation = ReadNumber(text, pair.SecondStart, secondEnd);
  if (!blankAt(secondEnd)) pair.Generation = -1;
  if (pair.Generation < 0) return false;
  pair.KeywordStart = kWhiteSpaceSet.Skip(text, secondEnd);
  pair.End = kDelimiterOrEscapeSet.Find(text, pair.KeywordStart);
  pair.Keyword = IndexOfKeyword(text.substr(pair.KeywordStart, pair.End - pair.KeywordStart), keywords);
  return pair.Keyword >= 0;
}

bool FindReference(std::string_view text, std::size_t index, std::span<const std::string_view> keywords,
                   NumberPair& found) {
  const auto nextToken = [&] { return kSeparatorSet.Skip(text, index); };
  for (index = nextToken(); index < text.size(); index = nextToken()) {
    if (kDigitSet.Has(text[index])) {
      if (ReadNumberPair(text, index, keywords, found)) return true;
      // The second number may be the first one of a reference.
      if (found.Number >= 0) {
        index = found.SecondStart;
        continue;
      }
    }
    index = SkipToken(text, index);
  }
  found = {};
  return false;
}

std::size_t CountReferences(std::string_view text) {
  std::size_t count = 0;
  NumberPair found;
  while (FindReference(text, found.End, kReferenceKeyword, found)) ++count;
  return count;
}

}  // namespace folioweld
