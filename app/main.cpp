// folioweld: joins what the command line names, and opens the window otherwise.

#include <new>
#include <string>
#include <vector>

#include "app/answers.h"
#include "app/window_program.h"
#include "batch/batch_run.h"
#include "batch/error_output.h"
#include "batch/stopped_run.h"
#include "dirmerge/arguments.h"
#include "platform/windows_api.h"

namespace folioweld {

namespace {

int Run(WindowsAPI& system, int argc, char** argv) {
  const std::vector<std::string> words(argv + (argc > 0 ? 1 : 0), argv + argc);
  const Arguments arguments = ParseArguments(words);
  if (const auto status = Answer(system, arguments)) return *status;
  if (arguments.RunsWithoutScreen()) {
    const ExitStatus status = RunBatch(system, arguments);
    EndIfStopped(system, status);
    return status;
  }
  if (!HasScreen(system)) {
    WriteError(system,
               std::string("folioweld: there is no screen to open a window on; to join without one: ") +
                   kUsage + " (see folioweld --help)\n");
    return kNotServed;
  }
  const SystemError error = BecomeWindowProgram(system, words);
  WriteError(system, "folioweld: the window program folioweld-window cannot be started: " + error.Words() +
                         " (it is in the package folioweld-window); to join without it: " + kUsage + "\n");
  return kNotServed;
}

}  // namespace

}  // namespace folioweld

int main(int argc, char** argv) {
  using namespace folioweld;
  WindowsAPI& system = RealSystem();
  try {
    return Run(system, argc, argv);
  } catch (const std::bad_alloc&) {
    // What a merge had begun is gone by now.
    WriteError(system, "folioweld: out of memory\n");
    return kNoOutput;
  }
}
