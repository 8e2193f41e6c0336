#include "batch/batch_shell.h"

#include "batch/error_output.h"

namespace folioweld {

BatchShell::BatchShell(WindowsAPI& system, MergeState& state)
    : system_(system), state_(state), display_(system) {
  HandleEventsOnlyWhile(system_.StopSignal());
}

BatchShell::~BatchShell() {
  display_.Clear();
}

void BatchShell::HandleEvents() {
  state_.AbortRequested = true;
}

void BatchShell::ShowMessage(MessageIcon /*icon*/, const std::string& /*title*/, const std::string& text) {
  // What a stopped run has to say comes in one line at its end.
  if (system_.StopSignal() == 0) PrintLine("folioweld: " + OnOneLine(text));
}

void BatchShell::Notice(const std::string& line) {
  PrintLine(OnOneLine(line));
}

void BatchShell::StatusTextChanged(int /*line*/) {
  display_.Update(*this);
}

void BatchShell::PrintLine(const std::string& line) {
  display_.Clear();
  WriteError(system_, (system_.ErrorOutputIsTerminal() ? ShownOnTerminal(line) : line) + "\n");
}

}  // namespace folioweld
