#pragma once

#include "prepare/carry/destinations.h"
#include "prepare/carry/revision.h"

namespace folioweld {

/// Has actions that go to the first or the last page lead to that of their own document. `uses` has the
/// actions.
void KeepEndPages(Revision& revision, const UsesByDocument& uses);

}  // namespace folioweld
