#include "ui/viewer.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>

namespace folioweld {

namespace {

constexpr std::int64_t kAnswerMillis = 5000;
/// After its answer a service gets this long until its window is there. One that shows the document in a
/// window that it has already opens none.
constexpr std::int64_t kWindowMillis = 1000;

}  // namespace

bool Viewer::LaunchProcess(const std::string& document, ViewerProcess& process) {
  process = 0;
  askedFor_.clear();
  if (!desktop_.AskService(document)) return desktop_.LaunchProcess(document, process);
  askedFor_ = document;
  return true;
}

void Viewer::WaitForViewer(ViewerProcess process, const std::function<Request()>& request,
                           const std::function<void()>& idle) {
  if (!askedFor_.empty()) {
    const auto answer = WaitForAnswer(request, idle);
    if (request() != Request::None) return;
    if (answer == ViewerDesktop::Answer::Given) return WaitForServiceWindow(request, idle);
    if (!desktop_.LaunchProcess(askedFor_, process)) return;
  }
  while (StillRuns(process)) {
    idle();
    const Request now = request();
    if (now == Request::None) continue;
    if (now == Request::Close && StillRuns(process)) Close(process);
    unobserved_.push_back(process);
    return;
  }
}

ViewerDesktop::Answer Viewer::WaitForAnswer(const std::function<Request()>& request,
                                            const std::function<void()>& idle) {
  const std::int64_t asked = system_.MillisecondsNow();
  auto answer = desktop_.ServiceAnswer();
  while (answer == ViewerDesktop::Answer::None && request() == Request::None &&
         system_.MillisecondsNow() - asked < kAnswerMillis) {
    idle();
    answer = desktop_.ServiceAnswer();
  }
  return answer;
}

void Viewer::WaitForServiceWindow(const std::function<Request()>& request,
                                  const std::function<void()>& idle) {
  const std::int64_t answered = system_.MillisecondsNow();
  bool seen = false;
  for (;;) {
    const bool shown = desktop_.ServiceHasWindow();
    seen = seen || shown;
    if (!shown && (seen || system_.MillisecondsNow() - answered >= kWindowMillis)) return;
    idle();
    const Request now = request();
    if (now == Request::Close) desktop_.CloseServiceWindows();
    if (now != Request::None) return;
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
