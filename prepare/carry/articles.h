#pragma once

#include "prepare/carry/destinations.h"
#include "prepare/carry/revision.h"

namespace folioweld {

/// Carries the articles (threads of text) of all documents, and has actions that name one by its place in the
/// list or by its title lead to the one of their own document. `uses` has the actions.
void CarryArticles(Revision& revision, const UsesByDocument& uses);

}  // namespace folioweld
