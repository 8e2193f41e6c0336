#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <string_view>

#include "engine/character_set.h"

namespace folioweld {

// How the syntax of a document is read: white space, delimiters, numbers, strings, names, comments and
// references. The only lexer that the passes know. Text is bytes, indices count from 0, and where nothing is
// found an index is the text's size. Nothing is copied: a view that is returned points into the text given.

/// Tab, form feed and NUL are not white space anywhere in the reader: a tab ends no token. Kept on purpose.
inline constexpr std::string_view kWhiteSpace = " \r\n";
inline constexpr std::string_view kLineEnd = "\r\n";
inline constexpr std::string_view kDelimiters = " ()<>[]{}/%\r\n";
inline constexpr std::string_view kDelimitersWithEscape = " ()<>[]{}/%\\\r\n";

inline constexpr CharacterSet kSpaceSet{" "};
inline constexpr CharacterSet kWhiteSpaceSet{kWhiteSpace};
inline constexpr CharacterSet kLineEndSet{kLineEnd};
inline constexpr CharacterSet kDelimiterSet{kDelimiters};
inline constexpr CharacterSet kDelimiterOrEscapeSet{kDelimitersWithEscape};
inline constexpr CharacterSet kDigitSet{"0123456789"};
/// White space to other programs.
inline constexpr CharacterSet kOtherWhiteSpaceSet{std::string_view(" \r\n\t\f\0", 6)};

/// The text without the white space at its right end, or at both ends.
[[nodiscard]] constexpr std::string_view TrimRightBlanks(std::string_view text) {
  return kWhiteSpaceSet.TrimRight(text);
}
[[nodiscard]] constexpr std::string_view TrimBlanks(std::string_view text) {
  return kWhiteSpaceSet.Trim(text);
}

/// The first run of characters that are not in the set; empty when there is none.
[[nodiscard]] constexpr std::string_view FirstWord(std::string_view text, const CharacterSet& separators) {
  const std::size_t start = separators.Skip(text, 0);
  return text.substr(start, separators.Find(text, start) - start);
}

/// The value of the digits at `index`; `end` becomes the index after them, or after the eleventh. -1 when
/// there are none or more than ten, and for a value above 2147483646: the largest 32-bit value itself is
/// refused on purpose.
[[nodiscard]] constexpr std::int32_t ReadNumber(std::string_view text, std::size_t index, std::size_t& end) {
  const std::size_t limit = std::min(text.size(), index + 11);
  // Its value tells a digit as well: cross-reference tables are nothing but numbers.
  const auto digitAt = [&](std::size_t i) {
    return static_cast<unsigned char>(text[i]) - std::uint64_t{'0'};
  };
  std::uint64_t value = 0;
  std::size_t i = index;
  for (; i < limit && digitAt(i) <= 9; ++i) value = value * 10 + digitAt(i);
  end = i;
  const bool isNumber = i > index && i - index <= 10 && value < std::numeric_limits<std::int32_t>::max();
  return isNumber ? static_cast<std::int32_t>(value) : -1;
}

/// The value of a word that is a number as a whole; -1 for any other word.
[[nodiscard]] constexpr std::int32_t NumberOf(std::string_view word) {
  std::size_t end = 0;
  const std::int32_t value = ReadNumber(word, 0, end);
  return end == word.size() ? value : -1;
}

/// `NumberOf` the text's first word between spaces.
[[nodiscard]] constexpr std::int32_t FirstNumberOf(std::string_view text) {
  return NumberOf(FirstWord(text, kSpaceSet));
}

/// Reads a leading decimal number (blanks, sign, digits, one point) as far as the text is one; 0 when it is
/// none. Independent of the locale.
[[nodiscard]] double LenientNumber(std::string_view text);

/// Index after the literal string, hex string or comment that begins at `index`; the text's size when it
/// never ends. Escapes and nested brackets count as in PDF. A comment ends before its line end.
[[nodiscard]] std::size_t SkipLiteralString(std::string_view text, std::size_t index);
[[nodiscard]] std::size_t SkipHexString(std::string_view text, std::size_t index);
[[nodiscard]] std::size_t SkipComment(std::string_view text, std::size_t index);

/// Index after the name whose "/" stands at `index`.
[[nodiscard]] constexpr std::size_t SkipName(std::string_view text, std::size_t index) {
  return kDelimiterSet.Find(text, index + 1);
}

/// More digits than this are read as no number.
inline constexpr std::size_t kMostDigits = 10;

/// Whether more digits stand together somewhere in the text.
[[nodiscard]] bool HasLongNumber(std::string_view text);

/// Whether the text has a tab, a form feed or a NUL, which are white space to other programs.
[[nodiscard]] bool HasOtherWhiteSpace(std::string_view text);

/// A literal string, a hex string or a comment: what is passed over as a whole.
struct OpaquePiece {
  std::size_t Start = 0;
  std::size_t End = 0;
};

/// Looks for the next one from `index` (outside such) on; false when there is none.
[[nodiscard]] bool FindOpaque(std::string_view text, std::size_t index, OpaquePiece& piece);

/// Two numbers and a keyword, as in "12 0 obj" and "12 0 R", as far as the text holds them.
struct NumberPair {
  std::int32_t Number = -1;      ///< -1 = the text is no number that white space follows
  std::int32_t Generation = -1;  ///< the same for the second number
  std::int32_t Keyword = -1;     ///< index in the list of keywords; -1 = none of them follows
  std::size_t Start = 0;         ///< index of the first number, which white space may precede
  std::size_t NumberEnd = 0;     ///< index after its digits
  std::size_t SecondStart = 0;   ///< index of what follows it; counts when `Number` is one
  std::size_t KeywordStart = 0;  ///< index of what follows both; counts when `Generation` is a number
  std::size_t End = 0;           ///< index after the keyword; counts when `Keyword` is one
};

inline constexpr std::string_view kObjectKeyword[] = {"obj"};
inline constexpr std::string_view kReferenceKeyword[] = {"R"};
inline constexpr std::string_view kObjectOrReference[] = {"obj", "R"};
inline constexpr std::int32_t kIsReference = 1;  ///< index of "R" there

/// Reads two numbers and one of the keywords at `index`; false when that is not what stands there. White
/// space parts them, and a delimiter or a "\" ends the keyword. No keyword may be empty.
[[nodiscard]] bool ReadNumberPair(std::string_view text, std::size_t index,
                                  std::span<const std::string_view> keywords, NumberPair& pair);

/// Looks for the next "number generation keyword" from `index` (outside strings) on, at every token of digits
/// that begins after white space or a delimiter and stands outside literal strings, hex strings, names and
/// comments. False when there is none. Linear in the text that it passes.
[[nodiscard]] bool FindReference(std::string_view text, std::size_t index,
                                 std::span<const std::string_view> keywords, NumberPair& found);

/// How many references `FindReference` finds in the text.
[[nodiscard]] std::size_t CountReferences(std::string_view text);

/// Gives `take` the digits of whatever may be the number of a reference, found backwards from each "R". Takes
/// a fraction of the time of `FindReference` and misses none; strings and comments are not told from the
/// rest.
template <typename Take>
void GuessReferences(std::string_view text, Take take) {
  // Index of the first of the members of the set that stand before `end`; `end` when none does.
  const auto startOf = [&](const CharacterSet& set, std::size_t end) {
    while (end > 0 && set.Has(text[end - 1])) --end;
    return end;
  };
  for (std::size_t r = text.find('R'); r != std::string_view::npos; r = text.find('R', r + 1)) {
    const std::size_t afterGeneration = startOf(kOtherWhiteSpaceSet, r);
    if (afterGeneration == r) continue;
    const std::size_t generation = startOf(kDigitSet, afterGeneration);
    const std::size_t afterNumber = startOf(kOtherWhiteSpaceSet, generation);
    const std::size_t number = startOf(kDigitSet, afterNumber);
    if (generation < afterGeneration && afterNumber < generation && number < afterNumber) {
      take(text.substr(number, afterNumber - number));
    }
  }
}

}  // namespace folioweld
