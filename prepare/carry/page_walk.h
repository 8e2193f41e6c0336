#pragma once

#include <vector>

#include "prepare/carry/revision.h"
#include "prepare/libqpdf.h"

namespace folioweld {

/// A page as a reader comes to it.
struct FoundPage {
  QPDFObjectHandle Page;
  int Number = 0;  ///< of the page's object, or of the node that a page without one stands in
};

/// The file's pages in their order, one as often as the tree leads to it. Nothing is repaired or changed.
/// Raises `NotCarried` where the tree is too deep or endless.
[[nodiscard]] std::vector<FoundPage> WalkPages(QPDF& file);

/// Gives every document its pages.
void GivePages(const std::vector<FoundPage>& pages, std::vector<CarriedDocument>& documents);

}  // namespace folioweld
