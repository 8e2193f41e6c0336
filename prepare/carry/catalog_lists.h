#pragma once

#include <string>
#include <vector>

#include "prepare/carry/revision.h"

namespace folioweld {

/// The items of an entry of the document's catalog: an array, or the only item of one.
[[nodiscard]] std::vector<QPDFObjectHandle> CatalogList(Revision& revision, const CarriedDocument& document,
                                                        const std::string& key);

/// Carries such an entry, the items of which nothing calls by a name: those of all documents, in their order.
void CarryList(Revision& revision, const std::string& key, const std::string& part);

}  // namespace folioweld
