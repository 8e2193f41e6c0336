#pragma once

#include <set>
#include <string>
#include <vector>

#include "prepare/carry/revision.h"

namespace folioweld {

struct LayerStates {
  std::vector<QPDFObjectHandle> On;
  std::vector<QPDFObjectHandle> Off;
};

/// What a configuration, a dictionary, says of these groups; those that it leaves as they are, are in
/// neither list.
[[nodiscard]] LayerStates StatesOf(Revision& revision, const std::vector<QPDFObjectHandle>& groups,
                                   QPDFObjectHandle configuration);

/// The intents of a configuration or a group; without any it has "/View".
[[nodiscard]] std::set<std::string> IntentsOf(Revision& revision, QPDFObjectHandle owner);

}  // namespace folioweld
