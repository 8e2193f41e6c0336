#pragma once

#include <string>

#include "platform/windows_api.h"

namespace folioweld {

/// What keeps the engine from joining the document in the file without a word, as the first and as a later
/// one; empty when nothing does. What every later document loses with its catalog is not counted.
[[nodiscard]] std::string EngineObjection(WindowsAPI& system, const std::string& path);

/// What keeps the engine from joining the document in the file at all; empty when nothing does.
[[nodiscard]] std::string EngineRefusal(WindowsAPI& system, const std::string& path);

}  // namespace folioweld
