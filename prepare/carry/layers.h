#pragma once

#include "prepare/carry/revision.h"

namespace folioweld {

/// Gives the new catalog the layers (optional content groups) of all documents, shown and hidden as the
/// default configuration of each document says. Changes nothing where only the first document has layers.
void CarryLayers(Revision& revision);

}  // namespace folioweld
