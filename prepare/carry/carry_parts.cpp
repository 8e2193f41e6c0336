#include "prepare/carry/carry_parts.h"

#include "prepare/carry/forms.h"
#include "prepare/carry/intents.h"
#include "prepare/carry/labels.h"
#include "prepare/carry/layers.h"
#include "prepare/carry/names.h"
#include "prepare/carry/outlines.h"
#include "prepare/carry/tags.h"
#include "prepare/carry/title.h"

namespace folioweld {

void CarryParts(Revision& revision, Bookmarks bookmarks, const std::optional<std::string>& title) {
  // First, as it goes through the outlines of the documents while each has its own.
  CarryNames(revision);
  CarryOutlines(revision, bookmarks);
  CarryLabels(revision);
  CarryLayers(revision);
  CarryForms(revision);
  CarryTags(revision);
  CarryIntents(revision);
  if (title) SetTitle(revision, *title);
}

}  // namespace folioweld
