#pragma once

#include <string>
#include <unordered_map>
#include <utility>

#include "platform/windows_api.h"

namespace folioweld {

/// A copy of a document in a form that can be joined.
struct DocumentCopy {
  std::string Path;
  FileIdentity Original;  ///< of the document
};

/// What inputs are read from: their own file, or a copy that was prepared in its place. This is the only
/// place that knows of copies; whoever opens an input goes on calling it by the document's path.
class PreparedCopies {
 public:
  void Add(const std::string& document, DocumentCopy copy) {
    copies_.insert_or_assign(document, std::move(copy));
  }
  void Remove(const std::string& document) { copies_.erase(document); }
  /// Null for a document that is read as it is.
  [[nodiscard]] const DocumentCopy* Find(const std::string& document) const {
    // Most runs have none, and every open asks.
    if (copies_.empty()) return nullptr;
    const auto found = copies_.find(document);
    return found == copies_.end() ? nullptr : &found->second;
  }

 private:
  std::unordered_map<std::string, DocumentCopy> copies_;
};

}  // namespace folioweld
