#pragma once

#include <string>

#include "platform/windows_api.h"

namespace folioweld {

/// The Debian package that brings both programs.
inline constexpr char kExtrasPackage[] = "folioweld-extras";
inline constexpr char kPrepareProgram[] = "folioweld-prepare";
inline constexpr char kCarryProgram[] = "folioweld-carry";

/// The full path of such a program, which lives beside this one or in the private program folder of an
/// installation, and is looked for nowhere else; empty when it is not installed.
[[nodiscard]] std::string FindExtraProgram(WindowsAPI& system, const std::string& name);

}  // namespace folioweld
