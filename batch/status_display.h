#pragma once

#include <cstdint>
#include <string>

#include "engine/merge_shell.h"
#include "platform/windows_api.h"

namespace folioweld {

/// The three status lines on a terminal, one row each, rewritten in place and at most some twenty times a
/// second. Shows nothing where standard error is no terminal.
class StatusDisplay {
 public:
  explicit StatusDisplay(WindowsAPI& system);

  /// The lines changed; they are drawn now or at a later call.
  void Update(const MergeShell& shell);

  /// Takes the lines away, so that something else can be written; the next update draws them again.
  void Clear();

  /// Draws the lines as they stand now.
  void Draw(const MergeShell& shell);

 private:
  WindowsAPI& system_;
  bool enabled_;
  bool drawn_ = false;
  std::int64_t lastDrawn_ = 0;
};

}  // namespace folioweld
