#pragma once

#include <string>

#include "platform/windows_api.h"

namespace folioweld {

/// The Debian package that brings the program which prepares documents.
inline constexpr char kPreparePackage[] = "folioweld-extras";

/// The full path of `folioweld-prepare`, which lives beside this program or in the private program folder of
/// an installation, and is looked for nowhere else; empty when it is not installed.
[[nodiscard]] std::string FindPrepareProgram(WindowsAPI& system);

}  // namespace folioweld
