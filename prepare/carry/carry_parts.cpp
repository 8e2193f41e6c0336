#include "prepare/carry/carry_parts.h"

#include "prepare/carry/forms.h"
#include "prepare/carry/layers.h"

namespace folioweld {

void CarryParts(Revision& revision, Bookmarks bookmarks, const std::optional<std::string>& title) {
  static_cast<void>(bookmarks);
  static_cast<void>(title);
  CarryLayers(revision);
  CarryForms(revision);
}

}  // namespace folioweld
