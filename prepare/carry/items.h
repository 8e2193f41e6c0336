#pragma once

#include <string>
#include <vector>

#include "prepare/carry/revision.h"

namespace folioweld {

/// The items of an array, each of which is a step; none for what is no array. Raises `NotCarried`.
[[nodiscard]] std::vector<QPDFObjectHandle> ItemsOf(Revision& revision, QPDFObjectHandle array);

/// The entry when it is a dictionary, else an empty one.
[[nodiscard]] QPDFObjectHandle DictionaryOf(QPDFObjectHandle owner, const std::string& key);

}  // namespace folioweld
