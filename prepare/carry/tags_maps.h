#pragma once

#include <map>
#include <string>
#include <vector>

#include "prepare/carry/dictionaries.h"
#include "prepare/carry/revision.h"

namespace folioweld {

/// What structure elements mean by a name, such as the role map has it. Keys are with their slash.
using NameMap = std::map<std::string, QPDFObjectHandle>;

/// Adds a document's map, a dictionary or nothing. Returns the new names, by name, of those that mean
/// something else in `merged`. Raises `NotCarried`; `merged` is not to be used then.
[[nodiscard]] std::map<std::string, std::string> MergeMap(Revision& revision, NameMap& merged,
                                                          QPDFObjectHandle own, int document);

/// All structure elements from these on down. Raises `NotCarried` where the tree is endless or too large.
[[nodiscard]] std::vector<Place> ElementsOf(Revision& revision, const CarriedDocument& document,
                                            const std::vector<QPDFObjectHandle>& top);

/// Changes the elements' types and classes.
void RenameInElements(Revision& revision, const std::vector<Place>& elements,
                      const std::map<std::string, std::string>& roles,
                      const std::map<std::string, std::string>& classes);

}  // namespace folioweld
