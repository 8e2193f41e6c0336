#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "prepare/carry/name_tree.h"
#include "prepare/carry/revision.h"

namespace folioweld {

/// The names of one kind in a document.
struct DocumentNames {
  CarriedDocument* Document = nullptr;
  TreeValues<std::string> Own;
  std::set<std::string> Used;  ///< also those that lead to nothing, and must not lead into another document
  std::map<std::string, std::string> NewNames;  ///< by name; those that do not stay
};

/// Names of one kind in all documents that could be read, in their order. Unless those of the first one can
/// be read, those of the others are told as lost: what it has stays as it is.
[[nodiscard]] std::vector<DocumentNames> ReadNames(Revision& revision, const std::string& part,
                                                   const std::function<void(DocumentNames&)>& read);

/// The first document that has a name keeps it. Others that have it or use it get a name that is new.
void MakeNamesUnique(std::vector<DocumentNames>& documents);

/// Whether a later document has a name for something.
[[nodiscard]] bool HasLaterNames(const std::vector<DocumentNames>& documents);

/// What the documents have, by new name; tells what was left out of their trees.
[[nodiscard]] std::map<std::string, QPDFObjectHandle> MergedNames(
    Revision& revision, const std::string& part, const std::vector<DocumentNames>& documents);

/// Puts the tree with these values into the new catalog's name dictionary.
void SetNames(Revision& revision, const std::string& key,
              const std::map<std::string, QPDFObjectHandle>& values);

}  // namespace folioweld
