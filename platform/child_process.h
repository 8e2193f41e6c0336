#pragma once

#include <string>
#include <vector>

#include "platform/windows_api.h"

namespace folioweld {

/// `WindowsAPI::StartProcess`, which has several steps.
[[nodiscard]] SystemResult<StartedProcess> SpawnProcess(const std::string& program,
                                                        const std::vector<std::string>& arguments,
                                                        const std::vector<WindowsAPI::Handle>& kept);

}  // namespace folioweld
