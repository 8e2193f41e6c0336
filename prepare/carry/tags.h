#pragma once

#include "prepare/carry/revision.h"

namespace folioweld {

/// Carries the structure trees of all documents below one root. Whether the file calls itself tagged stays
/// the first document's word. The numbers of later documents are changed also where their tree has to stay
/// behind, so that no page leads to another document's elements.
void CarryTags(Revision& revision);

}  // namespace folioweld
