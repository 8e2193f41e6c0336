#pragma once

#include <string>
#include <vector>

#include "platform/windows_api.h"

namespace folioweld {

/// A document that no output may replace.
struct NamedDocument {
  FileIdentity Identity;
  std::string Name;  ///< as it is told
};

/// Why a path cannot be opened as the output, for the line after a message that gives no cause: the rule that
/// it breaks, or the system's words for `error`.
[[nodiscard]] std::string WhyNoOutput(WindowsAPI& system, const std::string& path, SystemError error,
                                      const std::vector<NamedDocument>& documents);

}  // namespace folioweld
