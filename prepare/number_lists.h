#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "platform/windows_api.h"

namespace folioweld {

// Values of options, which are numbers with commas between them.

/// Numbers of open files; none where the text is anything else.
[[nodiscard]] std::vector<WindowsAPI::Handle> HandlesOf(std::string_view text);

/// Memory, seconds of the processor, and the size of a file.
[[nodiscard]] std::optional<ProcessLimits> LimitsOf(std::string_view text);

}  // namespace folioweld
