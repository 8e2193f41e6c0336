#pragma once

#include "prepare/carry/revision.h"

namespace folioweld {

/// Carries what documents have names for: destinations, embedded files and the rest of their name trees.
/// Where two documents use one name, the later one's gets another, and so does whatever leads there. Scripts
/// of the whole document are the first document's.
void CarryNames(Revision& revision);

}  // namespace folioweld
