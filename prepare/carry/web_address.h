#pragma once

#include <string>

namespace folioweld {

/// Whether an address begins with a scheme, as in "https:".
[[nodiscard]] bool IsWholeAddress(const std::string& address);

/// The address that a link stands for below a base, as RFC 3986 (5.2) has it. `base` begins with a scheme.
[[nodiscard]] std::string WholeAddress(const std::string& base, const std::string& link);

}  // namespace folioweld
