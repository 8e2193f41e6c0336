#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace folioweld {

/// A string that is longer than this as a literal is written as hexadecimal digits, which may be broken.
inline constexpr std::size_t kLongestLiteral = 16'000;

/// The string between brackets when few of its bytes need an escape, and as hexadecimal digits otherwise, a
/// long one over several lines. It holds no line end, tab, form feed or NUL, and no byte above 126.
[[nodiscard]] std::string StringToken(std::string_view bytes);

/// `StringToken` in hexadecimal digits, whatever the bytes are.
[[nodiscard]] std::string HexToken(std::string_view bytes);

/// The name, which is given as libqpdf has it: with the "/" at its beginning and without escapes.
[[nodiscard]] std::string NameToken(std::string_view name);

}  // namespace folioweld
