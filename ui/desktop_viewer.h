#pragma once

#include <memory>

#include "ui/viewer.h"

namespace folioweld {

/// The real desktop: the association and the start are GIO's, the windows are asked through X11.
class DesktopViewer : public ViewerDesktop {
 public:
  DesktopViewer();
  ~DesktopViewer() override;

  std::string FindPdfReader(const std::string& extension) override;
  bool LaunchProcess(const std::string& document, ViewerProcess& process) override;
  bool CloseThreadWindows(ViewerProcess process) override;

 private:
  struct Association;

  std::unique_ptr<Association> association_;  ///< of the last `FindPdfReader`; null = none
};

}  // namespace folioweld
