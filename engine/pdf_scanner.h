#pragma once

#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

namespace folioweld {

// Scanners that know PDF's strings, names and comments, on text in memory. Text is bytes; positions count
// from 1 and 0 means not found. Results that are views point into the text given.

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

inline constexpr std::string_view kObjectKeyword[] = {"obj"};
inline constexpr std::string_view kReferenceKeyword[] = {"R"};
inline constexpr std::string_view kObjectOrReference[] = {"obj", "R"};

/// Looks for the next "number generation keyword" from `position` (outside strings) on, at every token of
/// digits that begins after white space or a delimiter and stands outside literal strings, hex strings,
/// names and comments. Returns the position behind the match, 0 when the text ends there or nothing was
/// found; in the latter case both numbers are -1. Linear in the text that it passes. No keyword
/// may be empty or begin with a digit.
[[nodiscard]] std::int32_t FindNextReference(std::string_view text, std::int32_t position,
                                             std::span<const std::string_view> keywords,
                                             NumberPairKeyword& found);

/// 0-based index behind the literal string, hex string or comment that begins at `index`; the text's size
/// when it never ends. Escapes and nested brackets count as in PDF.
[[nodiscard]] std::size_t SkipLiteralString(std::string_view text, std::size_t index);
[[nodiscard]] std::size_t SkipHexString(std::string_view text, std::size_t index);
[[nodiscard]] std::size_t SkipComment(std::string_view text, std::size_t index);

}  // namespace folioweld
