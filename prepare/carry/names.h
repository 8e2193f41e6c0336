#pragma once

#include "prepare/carry/revision.h"

namespace folioweld {

/// Carries what documents have names for: destinations, embedded files and the rest of their name trees.
/// Where two documents use one name, the later one's gets another, and so does whatever leads there. Carries
/// associated files and articles, which have no names, and has page numbers and relative links to the web
/// lead where they led. Scripts of the whole document and how attached files are presented are the first
/// document's.
void CarryNames(Revision& revision);

}  // namespace folioweld
