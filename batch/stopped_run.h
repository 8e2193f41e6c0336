#pragma once

#include "dirmerge/directory_merge_report.h"
#include "platform/windows_api.h"

namespace folioweld {

/// After a run: when a signal stopped it, or came too late for that, one line on standard error says so and
/// the process ends by that signal, so that a shell's loop ends as well. Comes back when none came; from then
/// on a signal ends the process as if none had ever been caught.
void EndIfStopped(WindowsAPI& system, ExitStatus status);

}  // namespace folioweld
