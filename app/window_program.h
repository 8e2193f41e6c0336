#pragma once

#include <string>
#include <vector>

#include "platform/windows_api.h"

namespace folioweld {

/// Whether there is a screen that a window could open on.
[[nodiscard]] bool HasScreen(WindowsAPI& system);

/// Becomes `folioweld-window` with the same arguments. It lives beside this program or in the private program
/// folder of an installation. Comes back only when it cannot be started.
[[nodiscard]] SystemError BecomeWindowProgram(WindowsAPI& system, const std::vector<std::string>& arguments);

}  // namespace folioweld
