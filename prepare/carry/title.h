#pragma once

#include <string>

#include "prepare/carry/revision.h"

namespace folioweld {

/// Gives the file a title: in its information dictionary, and in its XMP metadata where these have one. Where
/// they cannot be changed safely, that is a loss of the first document. `title` is UTF-8, or any bytes of the
/// user's.
void SetTitle(Revision& revision, const std::string& title);

}  // namespace folioweld
