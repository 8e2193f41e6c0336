#pragma once

#include <string>

#include "dirmerge/directory_merge_report.h"
#include "platform/windows_api.h"

namespace folioweld {

/// Runs the command line's directory merge without a window, with the order kept in the settings.
[[nodiscard]] ExitStatus RunBatch(WindowsAPI& system, const std::string& commandLine);

}  // namespace folioweld
