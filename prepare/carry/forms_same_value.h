#pragma once

#include "prepare/libqpdf.h"

namespace folioweld {

/// Whether two values are written alike, with the values of references in their places. False also where
/// finding it out would take long. Streams are alike only when they are the same object.
[[nodiscard]] bool IsSameValue(const QPDFObjectHandle& one, const QPDFObjectHandle& other);

}  // namespace folioweld
