#pragma once

#include "prepare/carry/destinations.h"
#include "prepare/carry/revision.h"

namespace folioweld {

/// Has the relative links to the web of each document begin with its own base. A file has one base; links
/// that it does not hold for are written whole. `uses` has those of the documents that could be read.
void CarryWebLinks(Revision& revision, const UsesByDocument& uses);

}  // namespace folioweld
