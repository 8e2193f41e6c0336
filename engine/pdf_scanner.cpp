#include "engine/pdf_scanner.h"

#include "engine/character_set.h"
#include "engine/conversions.h"

namespace folioweld {

using namespace Conversions;

namespace {

std::int32_t LengthOf(std::string_view text) {
  return static_cast<std::int32_t>(text.size());
}

char CharAt(std::string_view text, std::int32_t position) {
  return text[static_cast<std::size_t>(position) - 1];
}

/// The text from one position up to, not including, another.
std::string_view Between(std::string_view text, std::int32_t start, std::int32_t end) {
  return text.substr(static_cast<std::size_t>(start) - 1, static_cast<std::size_t>(end - start));
}

std::int32_t FindGroupEnd(std::string_view text, std::int32_t start, char open, char close) {
  const std::int32_t length = LengthOf(text);
  if (start < 2 || start > length) return length + 1;
  std::int32_t depth = 0;
  for (std::int32_t i = start; i <= length; ++i) {
    const char c = CharAt(text, i);
    if ((c != open && c != close) || CharAt(text, i - 1) == '\\') continue;
    if (c == open) {
      ++depth;
    } else if (depth == 0) {
      return i;
    } else {
      --depth;
    }
  }
  return 0;
}

/// The end of the group that the bracket at `position` opens, 0 for an unterminated one, -1 for no bracket.
std::int32_t EndOfGroupAt(std::string_view text, std::int32_t position) {
  switch (CharAt(text, position)) {
    case '(':
      return FindLiteralStringEnd(text, position + 1);
    case '<':
      return FindAngleGroupEnd(text, position + 1);
    case '[':
      return FindArrayEnd(text, position + 1);
    default:
      return -1;
  }
}

bool IsUsable(std::span<const std::string_view> keywords) {
  for (const std::string_view keyword : keywords) {
    if (keyword.empty()) return false;
  }
  return !keywords.empty();
}

/// Parses a whole token; false when it is no number.
bool ParseToken(std::string_view token, std::int32_t& value, std::int16_t& digitCount) {
  value = ParseDecimalToken(token, digitCount);
  return digitCount == LengthOf(token) && digitCount > 0;
}

/// `FindFirstOf` and `FindFirstNotOf` for a fixed set and a position within the text.
std::int32_t FindIn(std::string_view text, const CharacterSet& set, std::int32_t start) {
  const std::size_t index = set.Find(text, static_cast<std::size_t>(start) - 1);
  return index == text.size() ? 0 : static_cast<std::int32_t>(index) + 1;
}

std::int32_t SkipWhiteSpace(std::string_view text, std::int32_t start) {
  const std::size_t index = kWhiteSpaceSet.Skip(text, static_cast<std::size_t>(start) - 1);
  return index == text.size() ? 0 : static_cast<std::int32_t>(index) + 1;
}

std::int32_t MatchKeyword(std::string_view word, std::span<const std::string_view> keywords) {
  for (std::size_t i = 0; i < keywords.size(); ++i) {
    if (word == keywords[i]) return static_cast<std::int32_t>(i);
  }
  return -1;
}

/// Reads the keyword behind the second token; see `ParseNumberPairKeyword`.
std::int32_t ParseKeyword(std::string_view text, std::int32_t secondStart, std::int32_t secondEnd,
                          std::span<const std::string_view> keywords, NumberPairKeyword& found) {
  const std::int32_t start = SkipWhiteSpace(text, secondEnd);
  std::int32_t result = 0;
  if (start != 0) {
    const std::int32_t delimiter = FindIn(text, kDelimiterOrEscapeSet, start);
    const std::int32_t end = delimiter == 0 ? LengthOf(text) + 1 : delimiter;
    found.KeywordIndex = MatchKeyword(Between(text, start, end), keywords);
    if (found.KeywordIndex >= 0) return delimiter;
    result = secondStart;
  }
  found.FirstNumber = -1;
  found.SecondNumber = -1;
  return result;
}

/// Whether the digits from `index` to `end` are a whole token, as the first number is.
bool EndsFirstNumber(std::string_view text, std::size_t index, std::size_t end) {
  return end > index && end < text.size() && kWhiteSpaceSet.Has(text[end]);
}

/// `ParseNumberPairKeyword` for usable keywords and a first token known to be the digits from `index` to
/// `firstEnd`, with white space behind. Looks at the keyword before it computes anything, as most pairs of
/// numbers belong to no reference; `found` is left as it is then.
std::int32_t MatchReference(std::string_view text, std::size_t index, std::size_t firstEnd,
                            std::span<const std::string_view> keywords, NumberPairKeyword& found) {
  const std::size_t second = kWhiteSpaceSet.Skip(text, firstEnd);
  const std::size_t secondEnd = kDigitSet.Skip(text, second);
  if (secondEnd == second || secondEnd == text.size() || !kWhiteSpaceSet.Has(text[secondEnd])) return 0;
  const std::size_t word = kWhiteSpaceSet.Skip(text, secondEnd);
  const std::size_t end = kDelimiterOrEscapeSet.Find(text, word);
  NumberPairKeyword match;
  match.KeywordIndex = MatchKeyword(text.substr(word, end - word), keywords);
  std::int16_t digits = 0;
  if (match.KeywordIndex < 0 ||
      !ParseToken(text.substr(index, firstEnd - index), match.FirstNumber, match.DigitCount) ||
      !ParseToken(text.substr(second, secondEnd - second), match.SecondNumber, digits)) {
    return 0;
  }
  match.FirstTokenStart = static_cast<std::int32_t>(index) + 1;
  found = match;
  return end == text.size() ? 0 : static_cast<std::int32_t>(end) + 1;
}

/// Index behind whatever is no candidate: a string, name, comment or single delimiter.
std::size_t SkipOther(std::string_view text, std::size_t index) {
  switch (text[index]) {
    case '(':
      return SkipLiteralString(text, index);
    case '<':
      return index + 1 < text.size() && text[index + 1] == '<' ? index + 2 : SkipHexString(text, index);
    case '%':
      return SkipComment(text, index);
    case '/':
      return kDelimiterSet.Find(text, index + 1);
    default:
      return index + 1;
  }
}

}  // namespace

std::int32_t PdfLookUpForSeparator(std::string_view sTringToLook, std::string_view sSeparators,
                                   std::int32_t lIndStart) {
  const std::int32_t length = LengthOf(sTringToLook);
  if (lIndStart < 1 || lIndStart > length || sSeparators.empty()) return 0;
  if (lIndStart == 1) throw InvalidScan("there is no character before the first one");
  char previous = CharAt(sTringToLook, lIndStart - 1);
  for (std::int32_t i = lIndStart; i <= length; ++i) {
    const char c = CharAt(sTringToLook, i);
    const std::int32_t end = previous == '\\' ? -1 : EndOfGroupAt(sTringToLook, i);
    if (end == 0) throw InvalidScan("a group has no end");
    if (end > length) return 0;
    if (end > 0) {
      i = end;
    } else if (sSeparators.find(c) != std::string_view::npos) {
      return i;
    }
    previous = CharAt(sTringToLook, i);
  }
  return 0;
}

std::int32_t FindLiteralStringEnd(std::string_view text, std::int32_t start) {
  return FindGroupEnd(text, start, '(', ')');
}

std::int32_t FindAngleGroupEnd(std::string_view text, std::int32_t start) {
  return FindGroupEnd(text, start, '<', '>');
}

std::int32_t FindArrayEnd(std::string_view text, std::int32_t start) {
  return FindGroupEnd(text, start, '[', ']');
}

std::string_view CutAtComment(std::string_view text) {
  return LeftUntilFirstOf(text, kCommentOrLineEnd, 1);
}

std::string_view CutCommentAndLeftTrim(std::string_view text) {
  const std::string_view cut = CutAtComment(text);
  const std::size_t first = cut.find_first_not_of(kWhiteSpace);
  return first == std::string_view::npos ? cut.substr(0, 0) : cut.substr(first);
}

std::string_view CutCommentAndTrim(std::string_view text) {
  return TrimBlanks(CutAtComment(text));
}

std::int32_t ParseNumberPairKeyword(std::string_view text, std::int32_t start,
                                    std::span<const std::string_view> keywords, NumberPairKeyword& found) {
  found = {};
  if (start < 1 || start > LengthOf(text)) return 0;
  const bool usable = IsUsable(keywords);
  const std::int32_t first = SkipWhiteSpace(text, start);
  if (first == 0) return 0;
  if (usable) {
    const std::size_t index = static_cast<std::size_t>(first) - 1;
    const std::size_t end = kDigitSet.Skip(text, index);
    if (EndsFirstNumber(text, index, end)) {
      const std::int32_t behind = MatchReference(text, index, end, keywords, found);
      if (found.KeywordIndex >= 0) return behind;
    }
  }
  found.FirstTokenStart = first;
  const std::int32_t firstEnd = FindIn(text, kWhiteSpaceSet, first);
  if (firstEnd == 0) return 0;
  if (!ParseToken(Between(text, first, firstEnd), found.FirstNumber, found.DigitCount)) {
    found.FirstNumber = -1;
    return firstEnd;
  }

  const std::int32_t second = SkipWhiteSpace(text, firstEnd);
  const std::int32_t secondEnd = second == 0 ? 0 : FindIn(text, kWhiteSpaceSet, second);
  if (second == 0 || (secondEnd == 0 && usable)) {
    found.FirstNumber = -1;
    return 0;
  }
  std::int16_t digits = 0;
  const std::int32_t tokenEnd = secondEnd == 0 ? LengthOf(text) + 1 : secondEnd;
  if (!ParseToken(Between(text, second, tokenEnd), found.SecondNumber, digits)) {
    found.FirstNumber = -1;
    found.SecondNumber = -1;
    return secondEnd;
  }
  if (!usable) {
    found.KeywordIndex = 0;
    return secondEnd;
  }
  return ParseKeyword(text, second, secondEnd, keywords, found);
}

std::int32_t FindNextReference(std::string_view text, std::int32_t position,
                               std::span<const std::string_view> keywords, NumberPairKeyword& found) {
  found = {};
  std::size_t index = position < 1 ? text.size() : static_cast<std::size_t>(position) - 1;
  while (index < text.size()) {
    if (kDelimiterSet.Has(text[index])) {
      index = SkipOther(text, index);
      continue;
    }
    const std::size_t digits = kDigitSet.Skip(text, index);
    if (EndsFirstNumber(text, index, digits)) {
      const std::int32_t next = MatchReference(text, index, digits, keywords, found);
      if (found.KeywordIndex >= 0) return next;
    }
    index = kDelimiterSet.Find(text, digits);
  }
  found = {};
  return 0;
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
  const std::size_t end = text.find_first_of(kLineEnd, index);
  return end == std::string_view::npos ? text.size() : end;
}

}  // namespace folioweld
