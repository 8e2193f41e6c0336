#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/windows_api.h"

namespace folioweld {

/// What the start of a viewer leaves behind: the child to be asked about and ended.
using ViewerProcess = WindowsAPI::Process;

/// The desktop as far as a viewer for documents is concerned.
class ViewerDesktop {
 public:
  ViewerDesktop() = default;
  ViewerDesktop(const ViewerDesktop&) = delete;
  ViewerDesktop& operator=(const ViewerDesktop&) = delete;
  virtual ~ViewerDesktop() = default;

  /// Full path of the program that the desktop associates with a file extension such as "pdf"; empty when
  /// there is none.
  virtual std::string FindPdfReader(const std::string& extension) = 0;
  /// Starts that program on a document, as the desktop would. The process is a child of this one, to be
  /// asked about with `WindowsAPI::PollProcess`. False when it was not started.
  virtual bool LaunchProcess(const std::string& document, ViewerProcess& process) = 0;
  /// Sends a close request to every top-level window of the process and nothing to any other. False when
  /// there was no window to ask.
  virtual bool CloseThreadWindows(ViewerProcess process) = 0;
};

/// Starts the viewer, waits for it, and asks it to close. One is waited for at a time.
class Viewer {
 public:
  Viewer(WindowsAPI& system, ViewerDesktop& desktop) : system_(system), desktop_(desktop) {}

  [[nodiscard]] std::string FindPdfReader() { return desktop_.FindPdfReader("pdf"); }
  [[nodiscard]] bool LaunchProcess(const std::string& document, ViewerProcess& process) {
    return desktop_.LaunchProcess(document, process);
  }

  /// How a wait goes on; looked at after every call of the idle step.
  enum class Request { None, Close, Leave };

  /// Comes back when the process has ended, when a close request was honoured, or at once, with the viewer
  /// left alone, on `Leave`. `idle` handles events and sleeps until there are some, for a moment at most.
  void WaitForViewer(ViewerProcess process, const std::function<Request()>& request,
                     const std::function<void()>& idle);

  /// Reaps viewers that outlived their close request and have ended since; they would stay zombie processes.
  /// True while some still run.
  bool CollectEnded();

 private:
  [[nodiscard]] bool StillRuns(ViewerProcess process);
  void Close(ViewerProcess process);

  WindowsAPI& system_;
  ViewerDesktop& desktop_;
  std::vector<ViewerProcess> unobserved_;
};

}  // namespace folioweld
