// folioweld-window: the main window.

#include <string>
#include <utility>
#include <vector>

#include "app/answers.h"
#include "batch/error_output.h"
#include "dirmerge/arguments.h"
#include "dirmerge/source_list.h"
#include "platform/windows_api.h"
#include "ui/window_program.h"

int main(int argc, char** argv) {
  using namespace folioweld;
  WindowsAPI& system = RealSystem();
  Arguments arguments = ParseArguments(std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc));
  if (const auto status = Answer(system, arguments)) return *status;
  std::string problem;
  if (!ReadSourceNames(system, arguments, problem)) {
    WriteError(system, "folioweld: " + ShownOnTerminal(problem) + "\n");
    return kNoOutput;
  }
  // The toolkit gets no arguments: an option of its own would be taken from among the documents.
  argc = argc > 0 ? 1 : 0;
  LogReader reader;
  if (arguments.Verbose) reader = [&](const std::string& line) { PrintErrorLine(system, line); };
  return RunWindowProgram(argc, argv, arguments, std::move(reader));
}
