#include "batch/batch_shell.h"

#include <utility>

#include "batch/error_output.h"

namespace folioweld {

BatchShell::BatchShell(WindowsAPI& system, MergeState& state, const Arguments& arguments)
    : system_(system),
      state_(state),
      verbose_(arguments.Verbose),
      quiet_(arguments.Quiet),
      display_(system, arguments.Quiet ? ProgressChoice::Never : arguments.Progress) {
  HandleEventsOnlyWhile(system_.StopSignal());
}

BatchShell::~BatchShell() {
  display_.Clear();
}

void BatchShell::HandleEvents() {
  state_.AbortRequested = true;
}

void BatchShell::ShowMessage(MessageIcon /*icon*/, const std::string& /*title*/, const std::string& text) {
  PrintKeptNotices();
  // What a stopped run has to say comes in one line at its end.
  if (system_.StopSignal() == 0) PrintLine("folioweld: " + text);
}

void BatchShell::Notice(const std::string& line) {
  // The log has every notice as well.
  if (verbose_) return;
  if (quiet_) {
    kept_.push_back(line);
  } else {
    PrintLine(line);
  }
}

void BatchShell::LogLineAdded(const std::string& line) {
  if (!verbose_) return;
  PrintLine(line);
}

void BatchShell::PrintKeptNotices() {
  for (const std::string& line : std::exchange(kept_, {})) PrintLine(line);
}

void BatchShell::MergeStarts(const MergeNumber& number, const std::string& document) {
  display_.SetHeadline("Merge " + std::to_string(number.Merge) + " of " + std::to_string(number.Merges) +
                           " (round " + std::to_string(number.Round) + " of " +
                           std::to_string(number.Rounds) + "): ",
                       document);
}

void BatchShell::PreparingStarts(int number, int documents, const std::string& document) {
  display_.SetHeadline("Preparing " + std::to_string(number) + " of " + std::to_string(documents) + ": ",
                       document);
}

void BatchShell::CarryingStarts(const std::string& output) {
  display_.SetHeadline("Carrying over into ", output);
  display_.Update(*this);
}

void BatchShell::StatusTextChanged(int /*line*/) {
  display_.Update(*this);
}

void BatchShell::PrintLine(const std::string& line) {
  const bool wasDrawn = display_.Clear();
  PrintErrorLine(system_, line);
  if (wasDrawn) display_.Draw(*this);
}

}  // namespace folioweld
