// folioweld-carry: appends to a joined file what the catalogs of its documents hold.

#include <string>
#include <vector>

#include "batch/error_output.h"
#include "batch/printed_answer.h"
#include "prepare/carry/carry_arguments.h"
#include "prepare/carry/carry_run.h"

namespace {

using namespace folioweld;

CarryStatus Print(WindowsAPI& system, const std::string& text) {
  return PrintAnswer(system, "folioweld-carry", text) ? kCarried : kNothingCarried;
}

}  // namespace

int main(int argc, char** argv) {
  WindowsAPI& system = RealSystem();
  const CarryArguments arguments = ParseCarryArguments({argv + (argc > 0 ? 1 : 0), argv + argc});
  switch (arguments.Asked) {
    case CarryArguments::Wish::ShowHelp:
      return Print(system, CarryHelpText());
    case CarryArguments::Wish::ShowVersion:
      return Print(system, CarryVersionText());
    case CarryArguments::Wish::Append:
      return RunCarry(system, arguments);
    default:
      WriteError(system, "folioweld-carry: " + ShownOnTerminal(arguments.Problem) +
                             " (see folioweld-carry --help)\n");
      return kCarryNotUnderstood;
  }
}
