#pragma once

#include <vector>

#include "prepare/carry/forms_read.h"

namespace folioweld {

/// The fields of a form but for those that `excluded` lists, by reference or by full name, and all below
/// them. A field stands for all below it, so that the list is short. Raises `NotCarried`.
[[nodiscard]] std::vector<QPDFObjectHandle> FieldsBut(Revision& revision, const DocumentForm& form,
                                                      const QPDFObjectHandle& excluded);

}  // namespace folioweld
