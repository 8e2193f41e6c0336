#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/windows_api.h"

namespace folioweld {

/// What the arguments of folioweld-prepare ask for.
struct PrepareArguments {
  enum class Wish {
    CopyPaths,    ///< `Input` to `Output`
    CopyHandles,  ///< what is open as `InputHandle` to the empty file that is open as `OutputHandle`
    ShowHelp,
    ShowVersion,
    Refuse  ///< `Problem` says why
  };
  Wish Asked = Wish::Refuse;
  std::string Problem;
  std::string Input;
  std::string Output;
  WindowsAPI::Handle InputHandle = -1;
  WindowsAPI::Handle OutputHandle = -1;
  std::optional<std::string> PasswordFile;
  std::optional<ProcessLimits> Limits;
};

/// `arguments` without the program's name.
[[nodiscard]] PrepareArguments ParsePrepareArguments(const std::vector<std::string>& arguments);

/// What "--help" prints.
[[nodiscard]] std::string PrepareHelpText();
/// What "--version" prints.
[[nodiscard]] std::string PrepareVersionText();

}  // namespace folioweld
