// folioweld: joins a folder when the command line asks for it, and opens the window otherwise.

#include <string>
#include <vector>

#include "app/window_program.h"
#include "batch/batch_run.h"
#include "batch/error_output.h"
#include "batch/stopped_run.h"
#include "dirmerge/command_line.h"
#include "platform/windows_api.h"

int main(int argc, char** argv) {
  using namespace folioweld;
  WindowsAPI& system = RealSystem();
  const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
  const std::string commandLine = CommandLineText(arguments);
  if (IsBatchCommandLine(commandLine)) {
    const ExitStatus status = RunBatch(system, commandLine);
    EndIfStopped(system, status);
    return status;
  }
  if (!HasScreen(system)) {
    WriteError(system, std::string("folioweld: there is no screen to open a window on; to join a folder: ") +
                           kCommandLineForm + "\n");
    return kNotServed;
  }
  const SystemError error = BecomeWindowProgram(system, arguments);
  WriteError(system,
             "folioweld: the window program folioweld-window cannot be started: " + error.Words() + "\n");
  return kNotServed;
}
