#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "dirmerge/arguments.h"
#include "engine/merge_shell.h"
#include "platform/windows_api.h"

namespace folioweld {

/// The progress of a run on a terminal: a headline and the three status lines, one row each, rewritten in
/// place and at most ten times a second. On a terminal of less than 60 columns the headline stands alone.
/// With `Auto` it shows nothing where standard error is no terminal, where the terminal cannot move its
/// cursor, and while the program runs in the background.
class StatusDisplay {
 public:
  StatusDisplay(WindowsAPI& system, ProgressChoice choice);

  /// The headline: `text`, and a name that is shortened in front where the row is too narrow for it. Nothing
  /// is drawn before there is one.
  void SetHeadline(std::string text, std::string name);

  /// Something changed; it is drawn now or at a later call.
  void Update(const MergeShell& shell);

  /// Takes the rows away, so that something else can be written there; nothing below them is touched. Whether
  /// there were any.
  bool Clear();

  /// Draws the rows as they stand now.
  void Draw(const MergeShell& shell);

 private:
  /// The shell has written below them, or another program: the cursor no longer stands where it stood.
  void LeaveRowsOfBeforeAStop();
  [[nodiscard]] bool MayDraw();
  [[nodiscard]] std::vector<std::string> Rows(const MergeShell& shell) const;

  WindowsAPI& system_;
  ProgressChoice choice_;
  bool canMoveCursor_;
  std::string headline_;
  std::string name_;
  std::size_t drawn_ = 0;  ///< rows on the screen
  std::int64_t lastDrawn_ = 0;
  int timesContinued_ = 0;
};

}  // namespace folioweld
