#pragma once

#include <string>

#include "platform/windows_api.h"

namespace folioweld {

/// Prints what "--help" or "--version" asks for; false, told on standard error, when it got lost.
[[nodiscard]] bool PrintAnswer(WindowsAPI& system, const std::string& program, const std::string& text);

}  // namespace folioweld
