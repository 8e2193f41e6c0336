#pragma once

#include <string>

#include "batch/status_display.h"
#include "engine/merge_shell.h"
#include "engine/merge_state.h"
#include "platform/windows_api.h"

namespace folioweld {

/// The face of a job on a terminal: status lines, messages and notices on standard error. A stop
/// signal does what Cancel does, and no message is shown after it. Questions stay unanswered.
class BatchShell : public MergeShell {
 public:
  /// The state's `AbortRequested` is set when the user stops the program; it has to outlive the shell.
  BatchShell(WindowsAPI& system, MergeState& state);
  ~BatchShell() override;

  void ShowMessage(MessageIcon icon, const std::string& title, const std::string& text) override;
  void Notice(const std::string& line) override;

 protected:
  void HandleEvents() override;
  void StatusTextChanged(int line) override;

 private:
  void PrintLine(const std::string& line);

  WindowsAPI& system_;
  MergeState& state_;
  StatusDisplay display_;
};

}  // namespace folioweld
