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
  std::string
      Flaw;  ///< why a part was left out, such as "has a node that is no dictionary"; empty when none was
};

/// Reads a tree by going through all of it, since order and /Limits may be wrong. Of two values with one key
/// the first one counts. Raises `NotCarried` when the tree is too large. No tree, null, is an empty one.
[[nodiscard]] TreeValues<std::string> ReadNameTree(Revision& revision, const CarriedDocument& document,
                                                   const QPDFObjectHandle& root);
/// The same for numbers from 0 on.
[[nodiscard]] TreeValues<int> ReadNumberTree(Revision& revision, const CarriedDocument& document,
                                             const QPDFObjectHandle& root);

}  // namespace folioweld
