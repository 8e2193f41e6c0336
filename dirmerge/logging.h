#pragma once

#include <functional>
#include <string>

#include "engine/activity_log.h"
#include "engine/merge_shell.h"
#include "engine/merge_state.h"

namespace folioweld {

/// Where the parts of a directory merge tell what happens, a line without a prefix at a time.
struct Logging {
  std::function<void(const std::string&)> Log;     ///< to the log
  std::function<void(const std::string&)> Notice;  ///< to the log and to whoever watches
};

/// Both, with a prefix before each line; the log only where it is switched on. Everything given has to
/// outlive what is returned.
[[nodiscard]] Logging LoggingOf(const char* prefix, const MergeState& state, MergeShell& shell,
                                ActivityLog& log);

}  // namespace folioweld
