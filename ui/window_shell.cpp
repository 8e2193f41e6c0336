#include "ui/window_shell.h"

#include <QCoreApplication>
#include <QTimer>

namespace folioweld {

namespace {

constexpr std::int64_t kPumpMillis = 5;
/// A status text changes far more often than an eye can follow.
constexpr std::int64_t kPaintMillis = 40;

BoxIcon BoxIconOf(MessageIcon icon) {
  switch (icon) {
    case MessageIcon::Exclamation:
      return BoxIcon::Exclamation;
    case MessageIcon::Critical:
      return BoxIcon::Critical;
    case MessageIcon::Plain:
      return BoxIcon::Plain;
  }
  return BoxIcon::Plain;
}

}  // namespace

void WindowShell::HandleEvents() {
  const std::int64_t now = system_.MillisecondsNow();
  if (now - pumpedAt_ < kPumpMillis || pumping_ || !window_.Busy()) return;
  if (now - paintedAt_ >= kPaintMillis) {
    ShowChangedStatusTexts();
    paintedAt_ = now;
  }
  pumping_ = true;
  QCoreApplication::processEvents();
  pumping_ = false;
  pumpedAt_ = system_.MillisecondsNow();
}

void WindowShell::WaitForEvents(int millis) {
  QTimer alarm;
  alarm.setSingleShot(true);
  alarm.start(millis);
  QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

void WindowShell::RefreshControls() {
  ShowChangedStatusTexts();
  window_.RefreshControls();
}

void WindowShell::DisableInputPicking() {
  window_.DisableInputPicking();
}

void WindowShell::EnterRunningState() {
  window_.EnterRunningState();
}

void WindowShell::LeaveRunningState() {
  ShowChangedStatusTexts();
  window_.LeaveRunningState();
}

void WindowShell::ShowMessage(MessageIcon icon, const std::string& title, const std::string& text) {
  // The box speaks of what the status lines have to show by then.
  ShowChangedStatusTexts();
  window_.ShowMessage({BoxIconOf(icon), title, text});
}

std::string WindowShell::AskForOutputFile(const OutputQuestion& question) {
  return window_.AskForOutputFile(
      {question.Title, question.DefaultExtension, question.Filter, question.InitialName});
}

std::string WindowShell::BrowseForFolder(const std::string& title, const std::string& initialFolder) {
  return window_.BrowseForFolder({title, initialFolder});
}

void WindowShell::LogLineAdded(const std::string& line) {
  if (ReadsLog) ReadsLog(line);
}

void WindowShell::ShowOutput(const std::string& path) {
  window_.ShowOutput(path);
}

void WindowShell::StatusTextChanged(int line) {
  changed_.at(static_cast<std::size_t>(line)) = true;
  if (!window_.Busy()) ShowChangedStatusTexts();
}

void WindowShell::ShowChangedStatusTexts() {
  for (int line = 0; line < 3; ++line) {
    if (!changed_.at(static_cast<std::size_t>(line))) continue;
    changed_.at(static_cast<std::size_t>(line)) = false;
    window_.ShowStatusText(line, StatusText(line));
  }
}

}  // namespace folioweld
