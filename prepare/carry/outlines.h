#pragma once

#include "prepare/carry/bookmarks.h"
#include "prepare/carry/revision.h"

namespace folioweld {

/// Makes one outline of those of all documents. The entry of a document leads to its first page and bears its
/// title or, without one, its file's name; it is closed, so that the entries are what is seen first.
void CarryOutlines(Revision& revision, Bookmarks bookmarks);

}  // namespace folioweld
