#pragma once

#include "dirmerge/arguments.h"
#include "dirmerge/directory_merge_report.h"
#include "platform/windows_api.h"

namespace folioweld {

/// Joins what the arguments name without a window, in the order kept in the settings unless they choose one.
[[nodiscard]] ExitStatus RunBatch(WindowsAPI& system, Arguments arguments);

}  // namespace folioweld
