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

/// Writes a line of the log or a message: on one line and, where it is a terminal that reads it, shown
/// safely.
void PrintErrorLine(WindowsAPI& system, std::string_view text);

/// The text with a "?" for every control character and every mark that turns the direction of reading: the
/// name of a file may hold anything, and a terminal would obey. Of text that is not UTF-8 only ASCII stays.
[[nodiscard]] std::string ShownOnTerminal(std::string text);

}  // namespace folioweld
