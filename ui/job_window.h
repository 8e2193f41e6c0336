#pragma once

#include <string>

#include "ui/dialogs.h"

namespace folioweld {

/// What `WindowShell` needs of the window in which a job runs.
class JobWindow {
 public:
  JobWindow() = default;
  JobWindow(const JobWindow&) = delete;
  JobWindow& operator=(const JobWindow&) = delete;
  virtual ~JobWindow() = default;

  /// A job or a directory merge runs, or a viewer is watched.
  [[nodiscard]] virtual bool Busy() const = 0;
  virtual void RefreshControls() = 0;
  virtual void DisableInputPicking() = 0;
  virtual void EnterRunningState() = 0;
  virtual void LeaveRunningState() = 0;
  virtual void ShowStatusText(int line, const std::string& text) = 0;
  virtual void ShowOutput(const std::string& path) = 0;

  // The questions of a job. While one is open, the window does not look as if it ran.
  virtual void ShowMessage(const BoxRequest& request) = 0;
  virtual std::string AskForOutputFile(const FileRequest& request) = 0;
  virtual std::string BrowseForFolder(const FolderRequest& request) = 0;
};

}  // namespace folioweld
