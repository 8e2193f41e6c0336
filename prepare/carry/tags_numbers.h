#pragma once

#include <vector>

#include "prepare/carry/dictionaries.h"
#include "prepare/carry/revision.h"

namespace folioweld {

/// Where a page, annotation or picture says which number it has in the tree of its structure elements.
struct TagNumber {
  Place Where;
  std::string Key;  ///< "/StructParent" or "/StructParents"
  int Number = 0;   ///< from 0
};

/// Raises `NotCarried` when the document is too large.
[[nodiscard]] std::vector<TagNumber> FindTagNumbers(Revision& revision, const CarriedDocument& document);

}  // namespace folioweld
