#pragma once

#include <string>
#include <vector>

#include "prepare/carry/forms_names.h"

namespace folioweld {

struct NewEntry {
  QPDFObjectHandle Field;
  std::string Key;
  QPDFObjectHandle Value;
};

/// The entries with which the fields of a form look below `merged` as they did: default appearances that name
/// their fonts by the new names, and what the roots inherited from their form where `merged` has something
/// else. Raises `NotCarried`.
[[nodiscard]] std::vector<NewEntry> EntriesForLooks(Revision& revision, const DocumentForm& read,
                                                    const NewNames& fonts, const QPDFObjectHandle& merged);

}  // namespace folioweld
