#pragma once

#include "prepare/carry/revision.h"

namespace folioweld {

/// Makes one tree of the page labels of all documents: each has its own from its first page on, and plain
/// numbers from 1 where it has none. Changes nothing when no document has labels.
void CarryLabels(Revision& revision);

}  // namespace folioweld
