#pragma once

#include <map>
#include <string>

#include "prepare/carry/revision.h"
#include "prepare/libqpdf.h"

namespace folioweld {

/// What a name tree or a number tree holds, by key.
template <class Key>
struct TreeValues {
  std::map<Key, QPDFObjectHandle> Values;
  bool Whole = true;  ///< otherwise nodes that are broken, or that stand in the tree twice, were left out
};

/// Reads a tree by going through all of it, since order and /Limits may be wrong. Of two values with one key
/// the first one counts. Nothing when `root` is no dictionary. Raises `NotCarried` when it is too large.
[[nodiscard]] TreeValues<std::string> ReadNameTree(Revision& revision, const QPDFObjectHandle& root);
[[nodiscard]] TreeValues<int> ReadNumberTree(Revision& revision, const QPDFObjectHandle& root);

}  // namespace folioweld
