#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace folioweld {

/// The XMP metadata with another title in the place of theirs; nothing when they have none. `title` is UTF-8.
/// Raises `NotCarried` when they have one that cannot be told from other text.
[[nodiscard]] std::optional<std::string> WithTitle(std::string_view xmp, std::string_view title);

}  // namespace folioweld
