#include "batch/error_output.h"

#include <algorithm>

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

/// In UTF-8 the codes 128 to 159, some of which begin a terminal's commands, are C2 and the code.
void ReplaceUpperControls(std::string& text) {
  for (std::size_t at = text.find('\xC2'); at != std::string::npos; at = text.find('\xC2', at + 1)) {
    if (static_cast<unsigned char>(text[at + 1]) < 160) text.replace(at, 2, "?");
  }
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

std::string ShownOnTerminal(std::string text) {
  std::replace_if(text.begin(), text.end(), IsControl, '?');
  if (IsUtf8(text)) {
    ReplaceUpperControls(text);
  } else {
    std::replace_if(text.begin(), text.end(), IsBeyondAscii, '?');
  }
  return text;
}

}  // namespace folioweld
