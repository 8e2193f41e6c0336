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
  /// Sends a close request to every top-level window of the process and of those that it started, and nothing
  /// to any other. False when there was no window to ask.
  virtual bool CloseThreadWindows(ViewerProcess process) = 0;

  /// What came of a document that a service was asked to show.
  enum class Answer { None, Refused, Given };
  /// Where the desktop starts that program as a service: asks it to show a document, and does not wait. False
  /// when it is none; then `LaunchProcess` is the way.
  virtual bool AskService(const std::string& document) = 0;
  virtual Answer ServiceAnswer() = 0;
  /// Whether a window is on the screen that the service opened since it was asked.
  virtual bool ServiceHasWindow() = 0;
  /// Sends a close request to these windows.
  virtual void CloseServiceWindows() = 0;
};

/// Starts the viewer, waits for it, and asks it to close. One is waited for at a time.
class Viewer {
 public:
  Viewer(WindowsAPI& system, ViewerDesktop& desktop) : system_(system), desktop_(desktop) {}

  [[nodiscard]] std::string FindPdfReader() { return desktop_.FindPdfReader("pdf"); }
  /// False when nothing was started. `process` stays 0 where a service was asked to show the document.
  [[nodiscard]] bool LaunchProcess(const std::string& document, ViewerProcess& process);

  /// How a wait goes on; looked at after every call of the idle step.
  enum class Request { None, Close, Leave };

  /// Comes back when the process has ended, when a close request was honoured, or at once, with the viewer
  /// left alone, on `Leave`. `idle` handles events and sleeps until there are some, for a moment at most.
  ///
  /// A service has five seconds to answer; after that, its program is started like any other. Of one that
  /// has answered only a window that it opened is waited for: it goes on running by itself.
  void WaitForViewer(ViewerProcess process, const std::function<Request()>& request,
                     const std::function<void()>& idle);

  /// Reaps viewers that outlived their close request and have ended since; they would stay zombie processes.
  /// True while some still run.
  bool CollectEnded();

 private:
  [[nodiscard]] ViewerDesktop::Answer WaitForAnswer(const std::function<Request()>& request,
                                                    const std::function<void()>& idle);
  void WaitForServiceWindow(const std::function<Request()>& request, const std::function<void()>& idle);
  [[nodiscard]] bool StillRuns(ViewerProcess process);
  void Close(ViewerProcess process);

  WindowsAPI& system_;
  ViewerDesktop& desktop_;
  std::string askedFor_;  ///< the document that a service was asked to show
  std::vector<ViewerProcess> unobserved_;
};

}  // namespace folioweld
