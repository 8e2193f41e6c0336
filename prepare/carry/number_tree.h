#pragma once

#include <map>

#include "prepare/carry/revision.h"
#include "prepare/libqpdf.h"

namespace folioweld {

/// The entries of a number tree of the document. Raises `NotCarried` when it is no tree, or too deep. Where a
/// number is there twice, the first one counts.
[[nodiscard]] std::map<long long, QPDFObjectHandle> ReadNumberTree(Revision& revision,
                                                                   const CarriedDocument& document,
                                                                   QPDFObjectHandle root);

}  // namespace folioweld
