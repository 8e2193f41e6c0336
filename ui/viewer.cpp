#include "ui/viewer.h"

#include <algorithm>
#include <cerrno>

namespace folioweld {

void Viewer::WaitForViewer(ViewerProcess process, const std::function<Request()>& request,
                           const std::function<void()>& idle) {
  while (StillRuns(process)) {
    idle();
    const Request now = request();
    if (now == Request::None) continue;
    if (now == Request::Close && StillRuns(process)) Close(process);
    unobserved_.push_back(process);
    return;
  }
}

bool Viewer::CollectEnded() {
  unobserved_.erase(std::remove_if(unobserved_.begin(), unobserved_.end(),
                                   [this](ViewerProcess process) { return !StillRuns(process); }),
                    unobserved_.end());
  return !unobserved_.empty();
}

bool Viewer::StillRuns(ViewerProcess process) {
  const auto running = system_.PollProcess(process);
  if (!running.Ok()) return running.Error().Code == EINTR;
  return running.Value();
}

void Viewer::Close(ViewerProcess process) {
  if (desktop_.CloseThreadWindows(process)) return;
  // No window that is known to be the viewer's. An error says that it has ended already, which is as good.
  static_cast<void>(system_.TerminateProcess(process));
}

}  // namespace folioweld
