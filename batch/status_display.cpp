#include "batch/status_display.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "batch/error_output.h"
#include "engine/settings_text.h"

namespace folioweld {

namespace {

constexpr int kStatusLines = 3;
constexpr std::int64_t kMillisecondsBetween = 100;
constexpr int kColumnsForAllRows = 60;
constexpr std::string_view kDots = "...";

/// A stop comes before or after what is done meanwhile. In between, the terminal that was looked at would be
/// somebody else's when it is written to.
class NoStopMeanwhile {
 public:
  explicit NoStopMeanwhile(WindowsAPI& system) : system_(system), before_(system.PutOffStops(true)) {}
  NoStopMeanwhile(const NoStopMeanwhile&) = delete;
  NoStopMeanwhile& operator=(const NoStopMeanwhile&) = delete;
  ~NoStopMeanwhile() { system_.PutOffStops(before_); }

 private:
  WindowsAPI& system_;
  bool before_;
};

/// A terminal that says it is "dumb", or nothing at all, does not move its cursor.
bool CanMoveCursor(WindowsAPI& system) {
  const auto terminal = system.GetEnvironmentVariable("TERM");
  return system.ErrorOutputIsTerminal() && terminal && !terminal->empty() && *terminal != "dumb";
}

std::string CursorUp(std::size_t rows) {
  return "\x1b[" + std::to_string(rows) + "A";
}

/// The end of a text that is too long, after three dots. A character is not cut in two.
std::string ShortenedInFront(std::string text, std::size_t columns) {
  if (text.size() <= columns) return text;
  text.erase(0, text.size() - (columns > kDots.size() ? columns - kDots.size() : 0));
  const auto isContinuation = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; };
  while (!text.empty() && isContinuation(text.front())) text.erase(0, 1);
  return std::string(kDots) + text;
}

/// A status line in one row: its label whole, the end of the name after it, and the end of the rest, where
/// the progress is.
std::string StatusRow(const std::string& text, std::size_t columns) {
  std::string whole = ShownOnTerminal(OnOneLine(text));
  if (whole.size() <= columns) return whole;
  const std::string first = ShownOnTerminal(text.substr(0, text.find('\r')));
  const std::string rest = whole.substr(std::min(first.size(), whole.size()));
  const std::size_t colon = first.find(": ");
  const std::size_t label = colon == std::string::npos ? 0 : colon + 2;
  const std::size_t nameColumns = std::max(columns / 3, columns - std::min(columns, rest.size() + label));
  const std::string begin = first.substr(0, label) + ShortenedInFront(first.substr(label), nameColumns);
  if (begin.size() >= columns) return ShortenedInFront(whole, columns);
  return begin + ShortenedInFront(rest, columns - begin.size());
}

}  // namespace

StatusDisplay::StatusDisplay(WindowsAPI& system, ProgressChoice choice)
    : system_(system), choice_(choice), canMoveCursor_(CanMoveCursor(system)) {}

void StatusDisplay::SetHeadline(std::string text, std::string name) {
  headline_ = std::move(text);
  name_ = std::move(name);
}

void StatusDisplay::Update(const MergeShell& shell) {
  if (choice_ == ProgressChoice::Never) return;
  if (drawn_ > 0 && system_.MillisecondsNow() - lastDrawn_ < kMillisecondsBetween) return;
  Draw(shell);
}

void StatusDisplay::Draw(const MergeShell& shell) {
  // Most often nothing is drawn for a reason that no stop changes.
  if (headline_.empty() || !MayDraw()) return;
  const NoStopMeanwhile together(system_);
  if (!MayDraw()) return;
  LeaveRowsOfBeforeAStop();
  const std::vector<std::string> rows = Rows(shell);
  if (drawn_ != rows.size()) Clear();
  std::string text = drawn_ > 0 ? CursorUp(drawn_) : "";
  for (const std::string& row : rows) text += "\r\x1b[K" + row + "\n";
  WriteError(system_, text);
  drawn_ = rows.size();
  lastDrawn_ = system_.MillisecondsNow();
}

bool StatusDisplay::Clear() {
  if (drawn_ == 0) return false;
  const NoStopMeanwhile together(system_);
  LeaveRowsOfBeforeAStop();
  const std::size_t rows = std::exchange(drawn_, 0);
  // In the background the rows are left where they are: the terminal is somebody else's by now.
  if (rows == 0 || !MayDraw()) return false;
  std::string text = CursorUp(rows);
  for (std::size_t row = 0; row < rows; ++row) text += "\r\x1b[K\n";
  WriteError(system_, text + CursorUp(rows));
  return true;
}

void StatusDisplay::LeaveRowsOfBeforeAStop() {
  const int times = system_.TimesContinued();
  if (std::exchange(timesContinued_, times) != times) drawn_ = 0;
}

bool StatusDisplay::MayDraw() {
  if (choice_ != ProgressChoice::Auto) return choice_ == ProgressChoice::Always;
  return canMoveCursor_ && system_.ErrorOutputIsInForeground();
}

std::vector<std::string> StatusDisplay::Rows(const MergeShell& shell) const {
  const int width = system_.TerminalColumns();
  // The last column stays free, so that no terminal breaks the row.
  const auto columns = static_cast<std::size_t>(std::max(width - 1, 5));
  const std::size_t left = columns - std::min(columns, headline_.size());
  std::vector<std::string> rows = {left > kDots.size()
                                       ? headline_ + ShortenedInFront(ShownOnTerminal(OnOneLine(name_)), left)
                                       : headline_.substr(0, columns)};
  if (width < kColumnsForAllRows) return rows;
  for (int line = 0; line < kStatusLines; ++line) rows.push_back(StatusRow(shell.StatusText(line), columns));
  return rows;
}

}  // namespace folioweld
