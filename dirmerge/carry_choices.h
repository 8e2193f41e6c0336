#pragma once

#include <optional>
#include <string>

namespace folioweld {

/// What is to be carried over from the catalogs of later documents, as the command line says it.
struct CarryChoices {
  bool Wanted = false;
  std::string Bookmarks;             ///< "documents", "own", "both" or "none"; empty = as the program does
  std::optional<std::string> Title;  ///< of the output, in UTF-8
};

}  // namespace folioweld
