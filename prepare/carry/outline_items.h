#pragma once

#include <vector>

#include "prepare/carry/revision.h"
#include "prepare/libqpdf.h"

namespace folioweld {

/// A document's outline, every item of which was looked at.
struct OutlineItems {
  QPDFObjectHandle Root;                ///< not initialised when it is no indirect object
  std::vector<QPDFObjectHandle> Items;  ///< of the top level, in their order; none = there is no outline
  long long Shown = 0;                  ///< items that are seen when only closed ones hide theirs
};

/// Raises `NotCarried` when the outline is not what a reader can go through: an item is reached twice, is no
/// object of the document or is one of its pages, or there are too many.
[[nodiscard]] OutlineItems FindOutline(Revision& revision, CarriedDocument& document);

}  // namespace folioweld
