#pragma once

#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

#include "engine/lexer.h"

// The text operations of the engine's interface, under their own names. No pass calls them: the passes read
// with the lexer, on which most of these stand. Text is bytes; positions count from 1 and 0 means not found.
// Results that are views point into the text given.

namespace folioweld::Conversions {

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
using folioweld::TrimBlanks;

/// The value of the first word between spaces when it is a number as `NumberOf` reads it; `digitCount` is the
/// word's length, leading zeros included. Any other word gives 0 with a digit count of 0, which is how
/// callers tell it from "0".
[[nodiscard]] std::int32_t ParseDecimalToken(std::string_view text, std::int16_t& digitCount);

/// The same of the first word between white space.
[[nodiscard]] std::int32_t ParseLeadingNumber(std::string_view text, std::int16_t& digitCount);

/// The text before its first NUL.
[[nodiscard]] std::string_view StripAtNull(std::string_view text);

/// "&H", the address in upper-case hexadecimal, ": " and the bytes as two digits each, separated by one
/// space; empty when `count` is below 1. The caller owns at least `count` bytes at `bytes`.
[[nodiscard]] std::string HexDumpMemory(const void* bytes, std::int32_t count);

/// The same value.
[[nodiscard]] std::int32_t PassThroughLong(std::int32_t value);

}  // namespace folioweld::Conversions

namespace folioweld {

/// An argument that `PdfLookUpForSeparator` cannot work with: a start of 1, or a group that never ends.
/// Callers absorb it; it is told apart from "not found" on purpose.
class InvalidScan : public std::invalid_argument {
 public:
  using std::invalid_argument::invalid_argument;
};

/// Position of the first separator at or after `lIndStart` outside literal strings, angle-bracket groups and
/// arrays; 0 = none. An opening bracket is a separator only when a "\" stands before it; one preceding
/// character is looked at, so a bracket after two backslashes counts as escaped too. Raises `InvalidScan`
/// for a start of 1 and for a group without an end; both kept on purpose.
[[nodiscard]] std::int32_t PdfLookUpForSeparator(std::string_view sTringToLook, std::string_view sSeparators,
                                                 std::int32_t lIndStart);

/// Position of the bracket that matches the one just before `start`: the text's length + 1 when the start
/// is below 2 or past the end, 0 when there is none. Brackets after a "\" do not count, other kinds neither.
[[nodiscard]] std::int32_t FindLiteralStringEnd(std::string_view text, std::int32_t start);
[[nodiscard]] std::int32_t FindAngleGroupEnd(std::string_view text, std::int32_t start);
[[nodiscard]] std::int32_t FindArrayEnd(std::string_view text, std::int32_t start);

/// The text before its first "%", carriage return or line feed.
[[nodiscard]] std::string_view CutAtComment(std::string_view text);
[[nodiscard]] std::string_view CutCommentAndLeftTrim(std::string_view text);
[[nodiscard]] std::string_view CutCommentAndTrim(std::string_view text);

/// What `ParseNumberPairKeyword` found; -1 = nothing.
struct NumberPairKeyword {
  std::int32_t FirstNumber = -1;
  std::int32_t SecondNumber = -1;
  std::int32_t KeywordIndex = -1;  ///< index in the keyword list
  std::int32_t FirstTokenStart = 0;
  std::int16_t DigitCount = 0;  ///< digits of the first number
};

/// Reads a number, a second number and one of the keywords, as in "12 0 obj". Returns where the caller
/// resumes: the delimiter that ends the keyword, or 0 when the text ends there, so success is judged by the
/// keyword index. When no keyword matches it is the start of the second token: "5 0 7 0 obj" is tried again
/// at "0 7 0 obj". A list that is empty or holds an empty word is not used: two numbers suffice then.
[[nodiscard]] std::int32_t ParseNumberPairKeyword(std::string_view text, std::int32_t start,
                                                  std::span<const std::string_view> keywords,
                                                  NumberPairKeyword& found);

}  // namespace folioweld
