#pragma once

#include <optional>

#include "dirmerge/arguments.h"
#include "dirmerge/directory_merge_report.h"
#include "platform/windows_api.h"

namespace folioweld {

/// Answers "--help", "--version" and a command line that cannot be served; nothing for all others. One
/// that asks for documents to be prepared cannot be where the program for that is not installed. What was
/// asked for goes to standard output, and the status is 1 when it cannot be written there.
[[nodiscard]] std::optional<ExitStatus> Answer(WindowsAPI& system, const Arguments& arguments);

}  // namespace folioweld
