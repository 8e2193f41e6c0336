#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "prepare/libqpdf.h"

namespace folioweld {

/// What was found in a page tree, and set right there.
struct PageTree {
  std::vector<QPDFObjectHandle> Nodes;  ///< the root, all nodes and all pages, each an indirect object
  std::size_t Pages = 0;
  std::vector<std::string> Repairs;  ///< one line each
};

/// Goes through the page tree of the document and makes it one that can be joined: every kid is a reference
/// to a node or a page, /Count is true, and the root has no /Parent. No page is guessed: raises `NotPrepared`
/// where the tree leads to one node twice or has no root.
[[nodiscard]] PageTree SetPageTreeRight(QPDF& document);

}  // namespace folioweld
