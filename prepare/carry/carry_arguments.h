#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/windows_api.h"
#include "prepare/carry/bookmarks.h"

namespace folioweld {

/// What the arguments of folioweld-carry ask for.
struct CarryArguments {
  enum class Wish {
    Append,  ///< a revision to what is open as `Joined`
    ShowHelp,
    ShowVersion,
    Refuse  ///< `Problem` says why
  };
  Wish Asked = Wish::Refuse;
  std::string Problem;
  WindowsAPI::Handle Joined = -1;
  WindowsAPI::Handle List = -1;  ///< of the joined documents
  std::optional<ProcessLimits> Limits;
  Bookmarks Shown = Bookmarks::Both;
  std::optional<std::string> Title;
};

/// `arguments` without the program's name.
[[nodiscard]] CarryArguments ParseCarryArguments(const std::vector<std::string>& arguments);

/// What "--help" prints.
[[nodiscard]] std::string CarryHelpText();
/// What "--version" prints.
[[nodiscard]] std::string CarryVersionText();

}  // namespace folioweld
