#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace folioweld {

// The text form of the settings file: group "[Settings]", one "name=value" a line. Any bytes are safe in a
// value: control characters, backslashes, blanks at the ends and bytes that are no UTF-8 are escaped.

/// The value of the name in the group; nothing when it is not there.
[[nodiscard]] std::optional<std::string> FindSetting(std::string_view fileText, std::string_view name);

/// The file's text with the name set to the value; every other line, known or not, stays as it is.
[[nodiscard]] std::string ReplaceSetting(std::string_view fileText, std::string_view name,
                                         std::string_view value);

/// Whether the bytes are well-formed UTF-8.
[[nodiscard]] bool IsUtf8(std::string_view bytes);

}  // namespace folioweld
