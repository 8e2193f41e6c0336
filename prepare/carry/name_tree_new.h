#pragma once

#include <map>
#include <string>

#include "prepare/carry/revision.h"
#include "prepare/libqpdf.h"

namespace folioweld {

/// The root of a new tree, none of whose nodes is large.
[[nodiscard]] QPDFObjectHandle NewNameTree(Revision& revision,
                                           const std::map<std::string, QPDFObjectHandle>& values);
[[nodiscard]] QPDFObjectHandle NewNumberTree(Revision& revision,
                                             const std::map<int, QPDFObjectHandle>& values);

}  // namespace folioweld
