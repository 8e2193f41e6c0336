#pragma once

#include <memory>
#include <vector>

#include "ui/service_request.h"
#include "ui/viewer.h"
#include "ui/x11_windows.h"

namespace folioweld {

/// The real desktop: the association and the start are GIO's, the windows are asked through X11.
class DesktopViewer : public ViewerDesktop {
 public:
  explicit DesktopViewer(WindowsAPI& system);
  ~DesktopViewer() override;

  std::string FindPdfReader(const std::string& extension) override;
  bool LaunchProcess(const std::string& document, ViewerProcess& process) override;
  bool CloseThreadWindows(ViewerProcess process) override;

  bool AskService(const std::string& document) override;
  Answer ServiceAnswer() override;
  bool ServiceHasWindow() override;
  void CloseServiceWindows() override;

 private:
  struct Association;
  /// The request under way or answered, and the windows that were there before it.
  struct Asked;

  [[nodiscard]] bool IsOrDescendsFrom(ViewerProcess process, ViewerProcess ancestor);
  [[nodiscard]] std::vector<X11Windows::Window> WindowsOf(const X11Windows& windows, ViewerProcess process);
  [[nodiscard]] std::vector<X11Windows::Window> ServiceWindows();

  WindowsAPI& system_;
  std::unique_ptr<Association> association_;  ///< of the last `FindPdfReader`; null = none
  std::unique_ptr<Asked> asked_;
};

}  // namespace folioweld
