#include "batch/status_display.h"

#include <algorithm>

#include "batch/error_output.h"
#include "engine/settings_text.h"

namespace folioweld {

namespace {

constexpr int kLines = 3;
constexpr std::int64_t kMillisecondsBetween = 50;

/// At most `columns` columns of the line: its beginning, "..." and its end, where the progress is.
std::string Fitted(const std::string& line, std::size_t columns) {
  std::string shown = ShownOnTerminal(line);
  if (shown.size() <= columns) return shown;
  const std::size_t head = columns / 3;
  const std::size_t tail = columns - head - 3;
  std::string end = shown.substr(shown.size() - tail);
  std::string begin = shown.substr(0, head);
  // A character may not be cut in two.
  const auto isContinuation = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; };
  while (!end.empty() && isContinuation(end.front())) end.erase(0, 1);
  while (!begin.empty() && !IsUtf8(begin)) begin.pop_back();
  return begin + "..." + end;
}

}  // namespace

StatusDisplay::StatusDisplay(WindowsAPI& system)
    : system_(system), enabled_(system.ErrorOutputIsTerminal()) {}

void StatusDisplay::Update(const MergeShell& shell) {
  if (!enabled_) return;
  const std::int64_t now = system_.MillisecondsNow();
  if (drawn_ && now - lastDrawn_ < kMillisecondsBetween) return;
  Draw(shell);
}

void StatusDisplay::Draw(const MergeShell& shell) {
  if (!enabled_) return;
  std::string text = drawn_ ? "\x1b[3A" : "";
  // The last column stays free, so that no terminal breaks the row.
  const auto columns = static_cast<std::size_t>(std::max(system_.TerminalColumns() - 1, 5));
  for (int line = 0; line < kLines; ++line) {
    text += "\r\x1b[K" + Fitted(OnOneLine(shell.StatusText(line)), columns) + "\n";
  }
  WriteError(system_, text);
  drawn_ = true;
  lastDrawn_ = system_.MillisecondsNow();
}

void StatusDisplay::Clear() {
  if (!drawn_) return;
  WriteError(system_, "\x1b[3A\r\x1b[J");
  drawn_ = false;
}

}  // namespace folioweld
