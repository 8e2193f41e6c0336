#include "engine/pdf_scanner.h"

#include <limits>

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

/// The value of a token of digits as `ParseDecimalToken` reads it; -1 for one that it refuses.
std::int32_t ValueOfDigits(std::string_view digits) {
  if (digits.size() > 10) return -1;
  std::int64_t value = 0;
  for (const char c : digits) value = value * 10 + (c - '0');
  return value < std::numeric_limits<std::int32_t>::max() ? static_cast<std::int32_t>(value) : -1;
}

/// The last two whole numbers on the way through a text that only white space parts and follows.
struct NumberPair {
  struct Token {
    std::size_t Start = 0;
    std::size_t End = 0;
  };
  Token First;
  Token Second;
  int Count = 0;  ///< how many of them there are, the second one last

  void Add(Token number) {
    First = Second;
    Second = number;
    if (Count < 2) ++Count;
  }
};

/// Whether one of the keywords stands at `index`, behind the two numbers. `end` becomes the index behind it.
bool CompletesReference(std::string_view text, const NumberPair& numbers, std::size_t index,
                        std::span<const std::string_view> keywords, NumberPairKeyword& found,
                        std::size_t& end) {
  end = kDelimiterOrEscapeSet.Find(text, index);
  const std::int32_t keyword = MatchKeyword(text.substr(index, end - index), keywords);
  if (keyword < 0) return false;
  const auto& [first, second, count] = numbers;
  const std::int32_t firstNumber = ValueOfDigits(text.substr(first.Start, first.End - first.Start));
  const std::int32_t secondNumber = ValueOfDigits(text.substr(second.Start, second.End - second.Start));
  if (firstNumber < 0 || secondNumber < 0) return false;
  found = {firstNumber, secondNumber, keyword, static_cast<std::int32_t>(first.Start) + 1,
           static_cast<std::int16_t>(first.End - first.Start)};
  return true;
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
  NumberPair numbers;
  std::size_t index = position < 1 ? text.size() : static_cast<std::size_t>(position) - 1;
  while (index < text.size()) {
    if (kWhiteSpaceSet.Has(text[index])) {
      ++index;
      continue;
    }
    if (kDelimiterSet.Has(text[index])) {
      numbers.Count = 0;
      index = SkipOther(text, index);
      continue;
    }
    std::size_t end = 0;
    if (numbers.Count == 2 && !kDigitSet.Has(text[index]) &&
        CompletesReference(text, numbers, index, keywords, found, end)) {
      return end == text.size() ? 0 : static_cast<std::int32_t>(end) + 1;
    }
    end = kDigitSet.Skip(text, index);
    if (end > index && end < text.size() && kWhiteSpaceSet.Has(text[end])) {
      numbers.Add({index, end});
      index = end + 1;
    } else {
      numbers.Count = 0;
      index = kDelimiterSet.Find(text, end);
    }
  }
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
