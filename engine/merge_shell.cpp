#include "engine/merge_shell.h"

#include <utility>

#include "engine/merge_state.h"

namespace folioweld {

const std::string& MergeShell::StatusText(int line) const {
  return statusTexts_.at(static_cast<std::size_t>(line));
}

void MergeShell::SetStatusText(int line, std::string text) {
  statusTexts_.at(static_cast<std::size_t>(line)) = std::move(text);
  TakeChange(line);
}

void MergeShell::AppendStatusText(int line, const std::string& text) {
  statusTexts_.at(static_cast<std::size_t>(line)) += text;
  TakeChange(line);
}

void MergeShell::TakeChange(int line) {
  std::string& text = statusTexts_.at(static_cast<std::size_t>(line));
  if (text.size() > kLongestStatusText) text.erase(0, text.size() - kLongestStatusText);
  StatusTextChanged(line);
}

void MergeShell::MergeStarts(const MergeNumber& /*number*/, const std::string& /*document*/) {}

void MergeShell::PreparingStarts(int /*number*/, int /*documents*/, const std::string& /*document*/) {}

void MergeShell::CarryingStarts(const std::string& /*output*/) {}

void MergeShell::ShowMessage(MessageIcon /*icon*/, const std::string& /*title*/,
                             const std::string& /*text*/) {}

std::string MergeShell::AskForOutputFile(const OutputQuestion& /*question*/) {
  return {};
}

std::string MergeShell::BrowseForFolder(const std::string& /*title*/, const std::string& /*initialFolder*/) {
  return {};
}

void MergeShell::ShowOutput(const std::string& /*path*/) {}

void MergeShell::Notice(const std::string& /*line*/) {}

void MergeShell::LogLineAdded(const std::string& /*line*/) {}

void MergeShell::StatusTextChanged(int /*line*/) {}

bool YieldAndCheckAbort(MergeShell& shell, const MergeState& state) {
  shell.Yield();
  shell.Yield();
  return state.AbortRequested;
}

}  // namespace folioweld
