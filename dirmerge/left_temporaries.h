#pragma once

#include <string>

#include "engine/file_module.h"

namespace folioweld {

/// Whether the file is a temporary one that a run left which was killed: named and owned as this user's are,
/// for its owner alone, and empty or with a document in it that was joined here or prepared for that. `name`
/// is the path's without folder.
[[nodiscard]] bool IsLeftTemporary(FileModule& files, const std::string& path, const std::string& name);

}  // namespace folioweld
