#pragma once

#include <map>

#include "prepare/carry/destinations_uses.h"
#include "prepare/carry/revision.h"

namespace folioweld {

/// By the document's index.
using UsesByDocument = std::map<int, NameUses>;

/// Carries what documents call their destinations. They are in one tree, or in one dictionary when all have
/// them in dictionaries: with both in a file, readers look into one of them alone. Returns what leads
/// somewhere in the documents that could be read.
UsesByDocument CarryDestinations(Revision& revision);

}  // namespace folioweld
