#pragma once

#include <optional>
#include <string>

#include "prepare/carry/bookmarks.h"
#include "prepare/carry/revision.h"

namespace folioweld {

/// Puts everything that is carried over into the revision. `title` is UTF-8, or whatever the user's bytes
/// are.
void CarryParts(Revision& revision, Bookmarks bookmarks, const std::optional<std::string>& title);

}  // namespace folioweld
