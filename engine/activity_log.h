#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "engine/merge_shell.h"

namespace folioweld {

/// The activity log's ring and the text that a log window shows of it. Writers never wait for a screen: a
/// window looks at the ring on its own timer. One thread only; `LogBusy` and `LogPainting` guard against
/// re-entrance through the event loop.
class ActivityLog {
 public:
  static constexpr std::int16_t kRingSize = 300;
  /// What a text box takes; a longer text keeps its end.
  static constexpr std::size_t kTextLimit = 32760;

  /// `shell` is yielded to before a line is stored; it has to outlive the log.
  explicit ActivityLog(MergeShell& shell);

  /// Stores the line, bytes as they are, as the newest entry. The caller puts the source prefix, such as
  /// "[Folioweld-cmdOK]=>", in front; nothing is added here.
  void AddLogLine(std::string logString);

  /// Empties the ring; the next line is stored at index 1.
  void ClearLogScreen();

  /// Belongs to the log's interface; nothing in the program calls it. Writes "[header]=>" and a hexadecimal
  /// dump of `count` bytes from index `start` on; nothing when the count is not positive or the start lies
  /// outside the bytes. The dump ends with the bytes.
  void displayLogByteArray(const std::string& header, std::string_view bytes, std::int32_t start,
                           std::int32_t count);

  /// The lines from the oldest to the newest, each with CR LF, empty ones left out, and at most the last
  /// 32,760 bytes of that. Built when asked for.
  [[nodiscard]] const std::string& LogText() const;

  [[nodiscard]] std::int16_t LogIndex() const { return logIndex_; }
  [[nodiscard]] const std::string& LogLine(std::int16_t index) const;

  /// One tick of the window's timer: calls `show(LogText())` when the newest line's index changed since the
  /// last tick, and nothing while a writer or another tick is at work. A burst of exactly 300 lines is
  /// therefore not shown before the next line; kept on purpose.
  template <typename Show>
  void Tick(Show show) {
    if (LogBusy || LogPainting) return;
    LogPainting = true;
    if (logIndex_ != LogShownIndex) show(LogText());
    LogShownIndex = logIndex_;
    LogPainting = false;
  }

  std::int16_t LogShownIndex = 0;  ///< `LogIndex` when the text box was last filled
  bool LogPainting = false;        ///< a timer is filling the text box
  bool LogBusy = false;            ///< a writer is changing the ring

 private:
  [[nodiscard]] std::string BuildLogText() const;

  MergeShell& shell_;
  std::array<std::string, kRingSize> logLines_;
  std::int16_t logIndex_ = 0;
  mutable std::string logText_;
  mutable bool logTextStale_ = false;
};

}  // namespace folioweld
