#include "batch/error_output.h"

#include <algorithm>
#include <utility>

#include "engine/settings_text.h"
#include "platform/retry.h"

namespace folioweld {

namespace {

bool IsControl(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte < 32 || byte == 127;
}

bool IsBeyondAscii(char c) {
  return static_cast<unsigned char>(c) >= 128;
}

/// The first character of well-formed UTF-8, and how many bytes it takes.
std::pair<char32_t, std::size_t> FirstCharacter(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text[0]);
  if (lead < 0x80) return {lead, 1};
  const std::size_t size = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  char32_t code = lead & (0x7FU >> size);
  for (const char c : text.substr(1, size - 1)) code = code << 6U | (static_cast<unsigned char>(c) & 0x3FU);
  return {code, size};
}

/// Codes 128 to 159, some of which begin a terminal's commands.
bool IsUpperControl(char32_t code) {
  return code >= 0x80 && code < 0xA0;
}

/// Bidirectional controls: what follows one of them is read from the other side, so that the end of a name
/// looks like another one.
bool TurnsReadingDirection(char32_t code) {
  return code == 0x061C || code == 0x200E || code == 0x200F || (code >= 0x202A && code <= 0x202E) ||
         (code >= 0x2066 && code <= 0x2069);
}

std::string WithoutHarmfulCharacters(std::string_view text) {
  std::string shown;
  while (!text.empty()) {
    const auto [code, size] = FirstCharacter(text);
    const bool harmful = IsUpperControl(code) || TurnsReadingDirection(code);
    shown += harmful ? std::string_view("?") : text.substr(0, size);
    text.remove_prefix(size);
  }
  return shown;
}

}  // namespace

void WriteError(WindowsAPI& system, std::string_view text) {
  while (!text.empty()) {
    const auto part = RetryInterrupted([&] { return system.WriteErrorOutput(text.data(), text.size()); });
    if (!part.Ok() || part.Value() == 0) return;
    text.remove_prefix(part.Value());
  }
}

std::string OnOneLine(std::string_view text) {
  std::string line;
  bool pending = false;
  for (const char c : text) {
    if (c == '\r' || c == '\n') {
      pending = true;
      continue;
    }
    if (pending && !line.empty() && line.back() != ' ' && c != ' ') line += ' ';
    pending = false;
    line += c;
  }
  return line;
}

void PrintErrorLine(WindowsAPI& system, std::string_view text) {
  const std::string line = OnOneLine(text);
  WriteError(system, (system.ErrorOutputIsTerminal() ? ShownOnTerminal(line) : line) + "\n");
}

std::string ShownOnTerminal(std::string text) {
  std::replace_if(text.begin(), text.end(), IsControl, '?');
  if (IsUtf8(text)) return WithoutHarmfulCharacters(text);
  std::replace_if(text.begin(), text.end(), IsBeyondAscii, '?');
  return text;
}

}  // namespace folioweld
