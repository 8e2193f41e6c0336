#include "engine/settings_text.h"

#include <cstddef>

#include "engine/hex_digits.h"

namespace folioweld {

namespace {

constexpr std::string_view kGroup = "[Settings]";

/// Takes the next line, with its line feed, off the front.
std::string_view TakeLine(std::string_view& rest) {
  const std::size_t end = rest.find('\n');
  const std::string_view line = rest.substr(0, end == std::string_view::npos ? rest.size() : end + 1);
  rest.remove_prefix(line.size());
  return line;
}

std::string_view WithoutLineEnd(std::string_view line) {
  while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.remove_suffix(1);
  return line;
}

bool IsGroupLine(std::string_view line) {
  return line.substr(0, 1) == "[";
}

bool SetsName(std::string_view line, std::string_view name) {
  return line.size() > name.size() && line.substr(0, name.size()) == name && line[name.size()] == '=';
}

void AppendEscaped(std::string& text, unsigned char byte) {
  text += "\\x";
  text += kHexDigits[byte >> 4U];
  text += kHexDigits[byte & 15U];
}

std::string Escape(std::string_view value) {
  const bool utf8 = IsUtf8(value);
  std::string text;
  for (std::size_t i = 0; i < value.size(); ++i) {
    const auto byte = static_cast<unsigned char>(value[i]);
    const bool outerBlank = byte == ' ' && (i == 0 || i + 1 == value.size());
    if (byte == '\\') {
      text += "\\\\";
    } else if (byte == '\n') {
      text += "\\n";
    } else if (byte == '\r') {
      text += "\\r";
    } else if (byte < 32 || byte == 127 || outerBlank || (byte >= 128 && !utf8)) {
      AppendEscaped(text, byte);
    } else {
      text += value[i];
    }
  }
  return text;
}

/// Reads the escape after a backslash and returns how many characters it takes; 0 when it is none.
std::size_t TakeEscape(std::string_view text, std::string& value) {
  if (text.empty()) return 0;
  switch (text[0]) {
    case '\\':
      value += '\\';
      return 1;
    case 'n':
      value += '\n';
      return 1;
    case 'r':
      value += '\r';
      return 1;
    case 'x':
      if (text.size() < 3 || HexValue(text[1]) < 0 || HexValue(text[2]) < 0) return 0;
      value += static_cast<char>(HexValue(text[1]) * 16 + HexValue(text[2]));
      return 3;
    default:
      return 0;
  }
}

std::string Unescape(std::string_view text) {
  std::string value;
  while (!text.empty()) {
    std::size_t taken = 1;
    if (text[0] == '\\') taken += TakeEscape(text.substr(1), value);
    // A backslash that begins no escape stands for itself: somebody edited the file by hand.
    if (taken == 1) value += text[0];
    text.remove_prefix(taken);
  }
  return value;
}

/// How many continuation bytes follow a leading byte, and the least code point that may use them.
int ContinuationCount(unsigned char lead, unsigned& least, unsigned& code) {
  if (lead < 0x80) {
    least = 0;
    code = lead;
    return 0;
  }
  if ((lead & 0xE0U) == 0xC0U) {
    least = 0x80;
    code = lead & 0x1FU;
    return 1;
  }
  if ((lead & 0xF0U) == 0xE0U) {
    least = 0x800;
    code = lead & 0x0FU;
    return 2;
  }
  if ((lead & 0xF8U) == 0xF0U) {
    least = 0x10000;
    code = lead & 0x07U;
    return 3;
  }
  return -1;
}

}  // namespace

std::optional<std::string> FindSetting(std::string_view fileText, std::string_view name) {
  bool inGroup = false;
  while (!fileText.empty()) {
    const std::string_view line = WithoutLineEnd(TakeLine(fileText));
    if (IsGroupLine(line)) {
      inGroup = line == kGroup;
    } else if (inGroup && SetsName(line, name)) {
      return Unescape(line.substr(name.size() + 1));
    }
  }
  return std::nullopt;
}

std::string ReplaceSetting(std::string_view fileText, std::string_view name, std::string_view value) {
  const std::string setting = std::string(name) + "=" + Escape(value) + "\n";
  std::string text;
  std::size_t groupEnd = std::string::npos;
  bool inGroup = false;
  while (!fileText.empty()) {
    const std::string_view line = TakeLine(fileText);
    const std::string_view content = WithoutLineEnd(line);
    if (IsGroupLine(content)) inGroup = content == kGroup;
    if (inGroup && SetsName(content, name)) {
      // The first line of the name is the one that is read.
      return text + setting + std::string(fileText);
    }
    text += line;
    if (text.back() != '\n') text += '\n';
    if (inGroup && !content.empty()) groupEnd = text.size();
  }
  if (groupEnd == std::string::npos) {
    text += std::string(kGroup) + "\n";
    groupEnd = text.size();
  }
  return text.insert(groupEnd, setting);
}

bool IsUtf8(std::string_view bytes) {
  while (!bytes.empty()) {
    unsigned least = 0;
    unsigned code = 0;
    const int count = ContinuationCount(static_cast<unsigned char>(bytes[0]), least, code);
    if (count < 0 || bytes.size() <= static_cast<std::size_t>(count)) return false;
    for (int i = 1; i <= count; ++i) {
      const auto byte = static_cast<unsigned char>(bytes[static_cast<std::size_t>(i)]);
      if ((byte & 0xC0U) != 0x80U) return false;
      code = (code << 6U) | (byte & 0x3FU);
    }
    if (code < least || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count) + 1);
  }
  return true;
}

}  // namespace folioweld
