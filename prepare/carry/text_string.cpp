#include "prepare/carry/text_string.h"

#include "engine/settings_text.h"

namespace folioweld {

std::string AsUtf8(std::string_view bytes) {
  if (IsUtf8(bytes)) return std::string(bytes);
  std::string text;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80) {
      text += c;
    } else {
      text += static_cast<char>(0xC0U | byte >> 6U);
      text += static_cast<char>(0x80U | (byte & 0x3FU));
    }
  }
  return text;
}

QPDFObjectHandle TextString(std::string_view bytes) {
  return QPDFObjectHandle::newUnicodeString(AsUtf8(bytes));
}

bool IsBlank(QPDFObjectHandle string) {
  return string.getUTF8Value().find_first_not_of(" \t\r\n") == std::string::npos;
}

}  // namespace folioweld
