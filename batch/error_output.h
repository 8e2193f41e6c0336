#pragma once

#include <string>
#include <string_view>

#include "platform/windows_api.h"

namespace folioweld {

/// Writes to standard error, going on after short and interrupted writes; what cannot be written is lost, as
/// there is nobody left to tell.
void WriteError(WindowsAPI& system, std::string_view text);

/// The text on one line: every run of carriage returns and line feeds becomes one blank.
[[nodiscard]] std::string OnOneLine(std::string_view text);

/// The text with a "?" for everything that would make a terminal do something instead of showing it, as the
/// name of a file may hold anything; text that is not UTF-8 keeps its ASCII characters only.
[[nodiscard]] std::string ShownOnTerminal(std::string text);

}  // namespace folioweld
