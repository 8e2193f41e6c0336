#pragma once

#include <string>
#include <vector>

#include "dirmerge/arguments.h"
#include "platform/windows_api.h"

namespace folioweld {

/// What a person named to be joined: a document, or a folder of documents.
struct Source {
  std::string Name;  ///< as it was written; empty for the folder that a menu, a drop or "OUTPUT|FOLDER" names
  std::string Path;  ///< the full path; that of a folder ends in a separator
  bool IsFolder = false;
};

/// The sources of these names, which are taken from the current folder. A name that leads to neither a file
/// nor a folder empties the list, and `problem` becomes a sentence about it.
[[nodiscard]] std::vector<Source> FindSources(WindowsAPI& system, const std::vector<std::string>& names,
                                              std::string& problem);

/// Adds the names in the arguments' `SourcesFile`, if there is one, to their sources: each is ended by a NUL
/// (the last one may do without). On failure false, and `problem` becomes a sentence about it. Waits where a
/// pipe is slow, so it is called before stop signals are caught.
[[nodiscard]] bool ReadSourceNames(WindowsAPI& system, Arguments& arguments, std::string& problem);

}  // namespace folioweld
