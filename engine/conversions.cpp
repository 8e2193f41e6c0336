#include "engine/conversions.h"

#include <cstddef>

#include "engine/hex_digits.h"

namespace folioweld {

namespace {

/// 0-based index of the character at a 1-based position.
std::size_t IndexAt(std::int32_t position) {
  if (position < 1) throw std::invalid_argument("a text position starts at 1");
  return static_cast<std::size_t>(position) - 1;
}

/// The 1-based position of an index; 0 for the text's end.
std::int32_t PositionAt(std::string_view text, std::size_t index) {
  return index >= text.size() ? 0 : static_cast<std::int32_t>(index) + 1;
}

std::int32_t LengthOf(std::string_view text) {
  return static_cast<std::int32_t>(text.size());
}

std::int32_t ValueAndDigits(std::string_view word, std::int16_t& digitCount) {
  const std::int32_t value = NumberOf(word);
  digitCount = static_cast<std::int16_t>(value < 0 ? 0 : word.size());
  return value < 0 ? 0 : value;
}

std::string UpperHex(std::uintptr_t value) {
  std::string text;
  for (; value != 0 || text.empty(); value >>= 4U) text.insert(text.begin(), kHexDigits[value & 15U]);
  return text;
}

char CharAt(std::string_view text, std::int32_t position) {
  return text[static_cast<std::size_t>(position) - 1];
}

/// An escape is told by the one character before the bracket.
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

}  // namespace

namespace Conversions {

std::int32_t FindFirstOf(std::string_view text, std::string_view set, std::int32_t start) {
  if (start > LengthOf(text) || text.empty() || set.empty()) return 0;
  return PositionAt(text, CharacterSet(set).Find(text, IndexAt(start)));
}

std::int32_t FindFirstNotOf(std::string_view text, std::string_view set, std::int32_t start) {
  if (start > LengthOf(text) || text.empty() || set.empty()) return 0;
  return PositionAt(text, CharacterSet(set).Skip(text, IndexAt(start)));
}

bool IsCharInSet(std::string_view text, std::int32_t position, std::string_view set) {
  return position <= LengthOf(text) && CharacterSet(set).Has(text[IndexAt(position)]);
}

bool IsAllDigits(std::string_view text) {
  return !text.empty() && kDigitSet.Skip(text, 0) == text.size();
}

std::string_view LeftUntilFirstOf(std::string_view text, std::string_view set, std::int32_t start) {
  const std::int32_t end = FindFirstOf(text, set, start);
  return end == 0 ? text : text.substr(0, IndexAt(end));
}

std::string_view TrimRightSet(std::string_view text, std::string_view set) {
  return CharacterSet(set).TrimRight(text);
}

std::string_view TrimSet(std::string_view text, std::string_view set) {
  return CharacterSet(set).Trim(text);
}

std::string_view TrimCrLf(std::string_view text) {
  return kLineEndSet.Trim(text);
}

std::int32_t ParseDecimalToken(std::string_view text, std::int16_t& digitCount) {
  return ValueAndDigits(FirstWord(text, kSpaceSet), digitCount);
}

std::int32_t ParseLeadingNumber(std::string_view text, std::int16_t& digitCount) {
  return ValueAndDigits(FirstWord(text, kWhiteSpaceSet), digitCount);
}

std::string_view StripAtNull(std::string_view text) {
  return text.substr(0, text.find('\0'));
}

std::string HexDumpMemory(const void* bytes, std::int32_t count) {
  if (count < 1) return {};
  std::string text = "&H" + UpperHex(reinterpret_cast<std::uintptr_t>(bytes)) + ":";
  const auto* next = static_cast<const unsigned char*>(bytes);
  for (std::int32_t i = 0; i < count; ++i) {
    text += ' ';
    text += kHexDigits[next[i] >> 4U];
    text += kHexDigits[next[i] & 15U];
  }
  return text;
}

std::int32_t PassThroughLong(std::int32_t value) {
  return value;
}

}  // namespace Conversions

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
  return Conversions::LeftUntilFirstOf(text, Conversions::kCommentOrLineEnd, 1);
}

std::string_view CutCommentAndLeftTrim(std::string_view text) {
  const std::string_view cut = CutAtComment(text);
  return cut.substr(kWhiteSpaceSet.Skip(cut, 0));
}

std::string_view CutCommentAndTrim(std::string_view text) {
  return TrimBlanks(CutAtComment(text));
}

std::int32_t ParseNumberPairKeyword(std::string_view text, std::int32_t start,
                                    std::span<const std::string_view> keywords, NumberPairKeyword& found) {
  found = {};
  if (start < 1 || start > LengthOf(text)) return 0;
  NumberPair pair;
  static_cast<void>(ReadNumberPair(text, IndexAt(start), keywords, pair));
  if (pair.Start == text.size()) return 0;
  found.FirstTokenStart = PositionAt(text, pair.Start);
  if (pair.Number < 0) return PositionAt(text, kWhiteSpaceSet.Find(text, pair.Start));
  found.DigitCount = static_cast<std::int16_t>(pair.NumberEnd - pair.Start);
  const std::size_t secondEnd = kWhiteSpaceSet.Find(text, pair.SecondStart);
  std::int32_t second = pair.Generation;
  std::int32_t keyword = pair.Keyword;
  std::size_t resume = pair.End;
  if (!IsUsable(keywords)) {
    // Without a keyword the second number may end the text.
    second = NumberOf(text.substr(pair.SecondStart, secondEnd - pair.SecondStart));
    keyword = 0;
    resume = secondEnd;
  }
  if (second < 0) return PositionAt(text, secondEnd);
  if (keyword < 0) return pair.KeywordStart == text.size() ? 0 : PositionAt(text, pair.SecondStart);
  found.FirstNumber = pair.Number;
  found.SecondNumber = second;
  found.KeywordIndex = keyword;
  return PositionAt(text, resume);
}

}  // namespace folioweld
