#include "engine/activity_log.h"

#include <utility>

#include "engine/conversions.h"

namespace folioweld {

ActivityLog::ActivityLog(MergeShell& shell) : shell_(shell) {}

void ActivityLog::AddLogLine(std::string logString) {
  LogBusy = true;
  shell_.Yield();
  while (LogPainting) shell_.Yield();
  logIndex_ = static_cast<std::int16_t>((logIndex_ + 1) % kRingSize);
  std::string& line = logLines_.at(static_cast<std::size_t>(logIndex_));
  line = std::move(logString);
  logTextStale_ = true;
  LogBusy = false;
  shell_.LogLineAdded(line);
}

void ActivityLog::ClearLogScreen() {
  LogBusy = true;
  logIndex_ = 0;
  logText_.clear();
  logTextStale_ = false;
  logLines_.fill({});
  LogBusy = false;
}

void ActivityLog::displayLogByteArray(const std::string& header, std::string_view bytes, std::int32_t start,
                                      std::int32_t count) {
  if (count <= 0 || start < 0 || static_cast<std::size_t>(start) >= bytes.size()) return;
  const std::string_view part =
      bytes.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(count));
  AddLogLine("[" + header + "]=>" +
             Conversions::HexDumpMemory(part.data(), static_cast<std::int32_t>(part.size())));
}

const std::string& ActivityLog::LogLine(std::int16_t index) const {
  return logLines_.at(static_cast<std::size_t>(index));
}

const std::string& ActivityLog::LogText() const {
  if (logTextStale_) logText_ = BuildLogText();
  logTextStale_ = false;
  return logText_;
}

std::string ActivityLog::BuildLogText() const {
  std::string text;
  for (int k = kRingSize - 1; k >= 0; --k) {
    const std::string& line = LogLine(static_cast<std::int16_t>((logIndex_ + kRingSize - k) % kRingSize));
    // The newest line is shown even when it is empty.
    if (line.empty() && k != 0) continue;
    text += line;
    text += "\r\n";
  }
  if (text.size() > kTextLimit) text.erase(0, text.size() - kTextLimit);
  return text;
}

}  // namespace folioweld
