#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>

#include "engine/merge_shell.h"
#include "platform/windows_api.h"
#include "ui/job_window.h"

namespace folioweld {

/// Gets a line of the log when it is written.
using LogReader = std::function<void(const std::string&)>;

/// The face of a job in the window. Events are handled every few milliseconds of a job, and only while one
/// runs or a viewer is watched: outside of that nothing may come in between the steps of a handler.
class WindowShell : public MergeShell {
 public:
  WindowShell(WindowsAPI& system, JobWindow& window) : system_(system), window_(window) {}

  void RefreshControls() override;
  void DisableInputPicking() override;
  void EnterRunningState() override;
  void LeaveRunningState() override;
  void ShowMessage(MessageIcon icon, const std::string& title, const std::string& text) override;
  std::string AskForOutputFile(const OutputQuestion& question) override;
  std::string BrowseForFolder(const std::string& title, const std::string& initialFolder) override;
  void ShowOutput(const std::string& path) override;
  void LogLineAdded(const std::string& line) override;

  /// Gets every line of the log; nobody unless it is set.
  LogReader ReadsLog;

  /// Handles events until there are none; sleeps up to the time given when there are none at first.
  void WaitForEvents(int millis);

 protected:
  void HandleEvents() override;
  void StatusTextChanged(int line) override;

 private:
  void ShowChangedStatusTexts();

  WindowsAPI& system_;
  JobWindow& window_;
  std::int64_t pumpedAt_ = 0;   ///< milliseconds
  std::int64_t paintedAt_ = 0;  ///< milliseconds
  bool pumping_ = false;
  std::array<bool, 3> changed_{};
};

}  // namespace folioweld
