#pragma once

#include <string>
#include <vector>

#include "batch/status_display.h"
#include "dirmerge/arguments.h"
#include "engine/merge_shell.h"
#include "engine/merge_state.h"
#include "platform/windows_api.h"

namespace folioweld {

/// The face of a job on a terminal: progress, messages, notices and, when it is asked for, the log on
/// standard error. A stop signal does what Cancel does, and no message is shown after it. Questions stay
/// unanswered.
class BatchShell : public MergeShell {
 public:
  /// `arguments` chooses what is printed. The state's `AbortRequested` is set when the user stops the
  /// program; it has to outlive the shell.
  BatchShell(WindowsAPI& system, MergeState& state, const Arguments& arguments);
  ~BatchShell() override;

  void ShowMessage(MessageIcon icon, const std::string& title, const std::string& text) override;
  void Notice(const std::string& line) override;
  /// Printed where the run is verbose; a notice that is logged as well is printed once.
  void LogLineAdded(const std::string& line) override;
  void PreparingStarts(int number, int documents, const std::string& document) override;
  void CarryingStarts(const std::string& output) override;
  void MergeStarts(const MergeNumber& number, const std::string& document) override;

  /// Prints a line, whatever was chosen.
  void PrintLine(const std::string& line);

  /// Prints the notices that a quiet run has kept for itself: it has not ended well.
  void PrintKeptNotices();

 protected:
  void HandleEvents() override;
  void StatusTextChanged(int line) override;

 private:
  WindowsAPI& system_;
  MergeState& state_;
  bool verbose_;
  bool quiet_;
  std::vector<std::string> kept_;
  StatusDisplay display_;
};

}  // namespace folioweld
