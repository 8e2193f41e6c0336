// folioweld-prepare: writes a copy of a document in the form that folioweld joins.

#include <string>
#include <vector>

#include "batch/error_output.h"
#include "batch/printed_answer.h"
#include "prepare/prepare_arguments.h"
#include "prepare/prepare_run.h"

namespace {

using namespace folioweld;

PrepareStatus Print(WindowsAPI& system, const std::string& text) {
  return PrintAnswer(system, "folioweld-prepare", text) ? kCopyWritten : kNoCopy;
}

/// By hand a signal takes back what was begun; a program that started this one ends it at once.
PrepareStatus RunByHand(WindowsAPI& system, const PrepareArguments& arguments) {
  static_cast<void>(system.CatchStopSignals(StopRule::EndByIt));
  const PrepareStatus status = RunPrepare(system, arguments);
  const int signal = system.ReleaseStopSignals();
  if (signal != 0) system.EndBySignal(signal);
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  WindowsAPI& system = RealSystem();
  const std::vector<std::string> words(argv + (argc > 0 ? 1 : 0), argv + argc);
  const PrepareArguments arguments = ParsePrepareArguments(words);
  switch (arguments.Asked) {
    case PrepareArguments::Wish::ShowHelp:
      return Print(system, PrepareHelpText());
    case PrepareArguments::Wish::ShowVersion:
      return Print(system, PrepareVersionText());
    case PrepareArguments::Wish::CopyPaths:
      return RunByHand(system, arguments);
    case PrepareArguments::Wish::CopyHandles:
      return RunPrepare(system, arguments);
    default:
      WriteError(system, "folioweld-prepare: " + ShownOnTerminal(arguments.Problem) +
                             " (see folioweld-prepare --help)\n");
      return kNotUnderstood;
  }
}
