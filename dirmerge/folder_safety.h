#pragma once

#include <string>

#include "platform/windows_api.h"

namespace folioweld {

/// Why temporary files are not made in the folder: somebody else could take their names or put other files
/// there, or it cannot be entered. Empty when it is safe.
///
/// Safe is a folder of the user's, of root's or of the overflow user's, as whom the owners of files from
/// outside appear in a container; and either nobody but its owner and the user's own primary group may write
/// to it, or it has the sticky bit, with which nobody removes or renames a file of somebody else's.
[[nodiscard]] std::string WhyFolderIsUnsafe(WindowsAPI& system, const std::string& folder);

}  // namespace folioweld
