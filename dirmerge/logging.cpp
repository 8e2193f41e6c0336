#include "dirmerge/logging.h"

namespace folioweld {

Logging LoggingOf(const char* prefix, const MergeState& state, MergeShell& shell, ActivityLog& log) {
  const auto write = [prefix, &state, &log](const std::string& text) {
    if (state.LogEnabled) log.AddLogLine(prefix + text);
  };
  return {write, [prefix, write, &shell](const std::string& text) {
            write(text);
            shell.Notice(prefix + text);
          }};
}

}  // namespace folioweld
