#include "prepare/token_text.h"

#include <algorithm>

#include "engine/character_set.h"

namespace folioweld {

namespace {

constexpr char kDigits[] = "0123456789abcdef";
/// Bytes on one line of a long string.
constexpr std::size_t kBytesPerLine = 40;
constexpr CharacterSet kNameDelimiters{"#()<>[]{}/%"};

bool IsPlain(char c) {
  return c >= ' ' && c <= '~';
}

void AppendHex(char c, std::string& text) {
  const auto byte = static_cast<unsigned char>(c);
  text += kDigits[byte >> 4U];
  text += kDigits[byte & 15U];
}

/// Three octal digits, so that a digit that follows is not taken for one of them.
void AppendEscape(char c, std::string& text) {
  const auto byte = static_cast<unsigned char>(c);
  text += '\\';
  for (const unsigned shift : {6U, 3U, 0U}) text += kDigits[(byte >> shift) & 7U];
}

std::string LiteralToken(std::string_view bytes) {
  std::string text = "(";
  for (const char c : bytes) {
    if (!IsPlain(c)) {
      AppendEscape(c, text);
      continue;
    }
    if (c == '(' || c == ')' || c == '\\') text += '\\';
    text += c;
  }
  return text += ')';
}

}  // namespace

std::string HexToken(std::string_view bytes) {
  std::string text = "<";
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i > 0 && i % kBytesPerLine == 0 && bytes.size() > kLongestLiteral / 2) text += '\n';
    AppendHex(bytes[i], text);
  }
  return text += '>';
}

std::string StringToken(std::string_view bytes) {
  const auto plain = static_cast<std::size_t>(std::count_if(bytes.begin(), bytes.end(), IsPlain));
  // An escape takes four bytes and two digits take two.
  if (bytes.size() - plain > plain / 2) return HexToken(bytes);
  std::string literal = LiteralToken(bytes);
  return literal.size() > kLongestLiteral ? HexToken(bytes) : literal;
}

std::string NameToken(std::string_view name) {
  std::string text;
  for (std::size_t i = 0; i < name.size(); ++i) {
    const char c = name[i];
    if (c == '\0') {
      // This stands for a "#" that escapes nothing.
      text += '#';
    } else if (i > 0 && (c == ' ' || !IsPlain(c) || kNameDelimiters.Has(c))) {
      text += '#';
      AppendHex(c, text);
    } else {
      text += c;
    }
  }
  return text;
}

}  // namespace folioweld
