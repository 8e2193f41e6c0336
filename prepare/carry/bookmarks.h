#pragma once

namespace folioweld {

/// What the outline of the joined file holds.
enum class Bookmarks {
  Both,       ///< an entry for each document, with the document's own items below it
  Documents,  ///< an entry for each document
  Own,        ///< the documents' own items, one document after the other
  None        ///< the first document's items
};

}  // namespace folioweld
