#pragma once

#include "prepare/carry/revision.h"

namespace folioweld {

/// The first document's output intents are those of the file. Later documents that have others lose theirs.
void CarryIntents(Revision& revision);

}  // namespace folioweld
